// What cards keep of themselves, by the daemon's console. A card is asked, or told, one value a
// second, and the bus stands still meanwhile; so it is asked only when somebody wants it.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <boost/json/array.hpp>
#include <span>
#include <utility>
#include <vector>

#include "api/Handlers.h"

namespace hub::api {

namespace json = boost::json;

namespace {

enum class Form { kByte, kFlag };

// {0} is the card's address, {1} the index, {2} the value.
struct Field {
  model::Kind kind;
  std::string_view name;
  Form form;
  unsigned count;  // 0: a value by itself, else a list of so many
  uint8_t most;
  std::string_view get;  // empty: the card cannot be asked
  std::string_view set;
};

constexpr std::array<Field, 6> kFields{{
    // clang-format off
    {model::Kind::kServo,         "end_a",        Form::kByte, 6, 0xFF, "GETSCA{1}:{0}",  "SETSCA{1}:{0}={2}"},
    {model::Kind::kServo,         "end_b",        Form::kByte, 6, 0xFF, "GETSCB{1}:{0}",  "SETSCB{1}:{0}={2}"},
    {model::Kind::kMotor,         "silent_range", Form::kByte, 3, 0x20, "GETMSR{1}:{0}",  "SETMSR{1}:{0}={2}"},
    {model::Kind::kAnalogueInput, "mask",         Form::kByte, 0, 0x3F, "GETANMASK:{0}",  "SETANMASK:{0}={2}"},
    {model::Kind::kLcd,           "self_test",    Form::kFlag, 0, 1,    "",               "LCDSELFTEST:{0}={2}"},
    {model::Kind::kLcd,           "init_light",   Form::kFlag, 0, 1,    "",               "LCDINITLIGHT:{0}={2}"},
    // clang-format on
}};

struct StoreWord {
  model::Kind kind;
  std::string_view word;
};

constexpr std::array<StoreWord, 3> kStoreWords{{
    {model::Kind::kServo, "STORESRVPOS"},
    {model::Kind::kMotor, "STOREMSRS"},
    {model::Kind::kAnalogueInput, "STOREANMASK"},
}};

std::vector<Field> FieldsOf(model::Kind kind) {
  std::vector<Field> fields;
  std::ranges::copy_if(kFields, std::back_inserter(fields),
                       [kind](const Field& field) { return field.kind == kind; });
  return fields;
}

unsigned ValuesOf(const Field& field) { return std::max(field.count, 1U); }

CardMemory::Place PlaceOf(const Field& field, unsigned address, unsigned index) {
  return {address, field.kind, field.name, index};
}

std::string CommandText(std::string_view pattern, unsigned address, unsigned index,
                        const std::string& value) {
  return fmt::format(fmt::runtime(pattern), AddressText(address), index, value);
}

const model::Card& RequireSettings(const House& house, const Request& request) {
  const model::Card& card = RequireCard(house, request);
  RequirePresent(card);
  if (FieldsOf(card.kind).empty())
    throw ProblemOf(409,
                    fmt::format("card {} is of the kind {}, which has no settings",
                                AddressText(card.address), card.Row().word),
                    "address");
  return card;
}

json::value OneJson(const House& house, const Field& field, unsigned address, unsigned index) {
  const auto value = house.card_memory.Recall(PlaceOf(field, address, index));
  if (!value) return nullptr;
  if (field.form == Form::kFlag) return *value != 0;
  return *value;
}

json::object SettingsJson(const House& house, const model::Card& card) {
  json::object settings;
  for (const Field& field : FieldsOf(card.kind)) {
    if (field.count == 0) {
      settings[field.name] = OneJson(house, field, card.address, 0);
      continue;
    }
    json::array list;
    for (unsigned index = 0; index < field.count; ++index)
      list.push_back(OneJson(house, field, card.address, index));
    settings[field.name] = std::move(list);
  }
  return settings;
}

// One value of one field, on its way to the card.
struct Order {
  Field field;
  unsigned index;
  uint8_t value;
};

Order OrderOf(const Field& field, unsigned index, const json::value& value) {
  const std::string where(field.name);
  if (field.form == Form::kFlag) {
    if (!value.is_bool()) throw DoesNotFit(where, fmt::format("{} takes true or false", where));
    return {field, index, static_cast<uint8_t>(value.get_bool() ? 1 : 0)};
  }
  if (!value.is_int64() || value.get_int64() < 0 || value.get_int64() > field.most)
    throw DoesNotFit(where, fmt::format("{} takes whole numbers from 0 to {}", where, field.most));
  return {field, index, static_cast<uint8_t>(value.get_int64())};
}

// A null leaves the card's value as it is, so that what was read can be sent back.
void AddOrders(const Field& field, const json::value& given, std::vector<Order>& orders) {
  if (field.count == 0) {
    if (!given.is_null()) orders.push_back(OrderOf(field, 0, given));
    return;
  }
  const auto* const list = given.if_array();
  if (list == nullptr || list->size() != field.count)
    throw DoesNotFit(std::string(field.name),
                     fmt::format("{} takes a list of {}, with null for what is to stay", field.name,
                                 field.count));
  for (unsigned index = 0; index < field.count; ++index)
    if (!(*list)[index].is_null()) orders.push_back(OrderOf(field, index, (*list)[index]));
}

std::vector<Order> OrdersOf(const model::Card& card, const json::object& parameters) {
  const std::vector<Field> fields = FieldsOf(card.kind);
  std::vector<Order> orders;
  for (const auto& member : parameters) {
    const std::string_view name = member.key();
    if (name == "address") continue;
    const auto field = std::ranges::find(fields, name, &Field::name);
    if (field == fields.end())
      throw DoesNotFit(std::string(name),
                       fmt::format("a card of the kind {} has no {}", card.Row().word, name));
    AddOrders(*field, member.value(), orders);
  }
  if (orders.empty()) throw DoesNotFit("", "nothing is to be set");
  return orders;
}

std::string ValueText(const Order& order) {
  if (order.field.form == Form::kFlag) return order.value != 0 ? "ON" : "OFF";
  return protocol::HexByte(order.value);
}

Answer AskAll(House& house, Request request) {
  RequireDaemon(house);
  const model::Card& card = RequireSettings(house, request);
  const unsigned address = card.address;
  const std::vector<Field> fields = FieldsOf(card.kind);
  for (const Field& field : fields) {
    for (unsigned index = 0; index < ValuesOf(field) && !field.get.empty(); ++index) {
      auto asking = AskDaemon(house, CommandText(field.get, address, index, ""));
      const protocol::Lines lines = co_await std::move(asking);
      const auto value = protocol::ParseCardValue(lines);
      if (!value)
        throw RetryLater(503, fmt::format("card {} gave no {}", AddressText(address), field.name),
                         kRetryDaemonSeconds);
      house.card_memory.Note(PlaceOf(field, address, index), *value);
    }
  }
  co_return Done(SettingsJson(house, RequireSettings(house, request)));
}

}  // namespace

Answer GetCardSettings(House& house, Request request) {
  if (FlagAt(request, "ask")) {
    if (request.caller.role < access::Role::kUse)
      throw ProblemOf(403, "asking a card stops the bus; it needs the role use", "ask");
    auto asking = AskAll(house, std::move(request));
    Reply reply = co_await std::move(asking);
    co_return reply;
  }
  co_return Done(SettingsJson(house, RequireSettings(house, request)));
}

Answer SetCardSettings(House& house, Request request) {
  RequireDaemon(house);
  const model::Card& card = RequireSettings(house, request);
  const unsigned address = card.address;
  const std::vector<Order> orders = OrdersOf(card, request.parameters);
  for (const Order& order : orders) {
    std::string line = CommandText(order.field.set, address, order.index, ValueText(order));
    std::string note = fmt::format("console: {}", line);
    auto asking = AskDaemon(house, std::move(line));
    const protocol::Lines lines = co_await std::move(asking);
    house.card_memory.Note(PlaceOf(order.field, address, order.index), order.value);
    Note(house, request, "command", std::move(note));
  }
  co_return Done(SettingsJson(house, RequireSettings(house, request)));
}

Answer StoreCardSettings(House& house, Request request) {
  RequireDaemon(house);
  const model::Card& card = RequireSettings(house, request);
  const std::string address = AddressText(card.address);
  const auto* const row = std::ranges::find(kStoreWords, card.kind, &StoreWord::kind);
  if (row == kStoreWords.end())
    throw ProblemOf(409,
                    fmt::format("card {} is of the kind {}, which keeps its settings by "
                                "itself",
                                address, card.Row().word),
                    "address");
  auto asking = AskDaemon(house, fmt::format("{}:{}", row->word, address));
  const protocol::Lines lines = co_await std::move(asking);
  Note(house, request, "command", fmt::format("{}: settings stored", address));
  co_return Done(SettingsJson(house, RequireSettings(house, request)));
}

}  // namespace hub::api
