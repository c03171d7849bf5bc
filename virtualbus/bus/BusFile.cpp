#include "bus/BusFile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <pugixml.hpp>
#include <sstream>

namespace virtualbus {

namespace {

// Reads one file; every problem names its line.
class Reader {
 public:
  Reader(std::string path, BusAdapter& adapter) : path_(std::move(path)), adapter_(adapter) {}

  Problem Read();

 private:
  Problem At(ptrdiff_t offset, const std::string& what) const;
  Problem ReadCard(pugi::xml_node element);
  Problem ReadFields(pugi::xml_node card_element, std::string_view name, Card& card);
  Problem ReadField(pugi::xml_node element, pugi::xml_attribute attribute, const Card& card);

  std::string path_;
  BusAdapter& adapter_;
  std::string text_;
};

struct GroupName {
  std::string_view element;
  Card::Group group;
};

constexpr GroupName kGroups[] = {{"Stored", Card::Group::kStored}, {"Start", Card::Group::kStart}};

Problem Reader::At(ptrdiff_t offset, const std::string& what) const {
  const auto end = text_.begin() + std::clamp<ptrdiff_t>(offset, 0, std::ssize(text_));
  const auto line = std::count(text_.begin(), end, '\n') + 1;
  return Problem(path_ + ":" + std::to_string(line) + ": " + what);
}

Problem Reader::Read() {
  std::ifstream file(path_, std::ios::binary);
  if (!file) return Problem(path_ + ": cannot be read");
  std::ostringstream text;
  if (!(text << file.rdbuf())) return Problem(path_ + ": is empty or a folder");
  text_ = text.str();
  pugi::xml_document document;
  const auto result = document.load_buffer(text_.data(), text_.size());
  if (!result) return At(result.offset, result.description());

  const pugi::xml_node root = document.document_element();
  if (std::string_view(root.name()) != "QELMBus") {
    return At(root.offset_debug(), "the document element must be QELMBus");
  }
  for (const pugi::xml_node element : root.children()) {
    if (Problem problem = ReadCard(element)) return problem;
  }
  return {};
}

Problem Reader::ReadCard(pugi::xml_node element) {
  const ptrdiff_t here = element.offset_debug();
  if (std::string_view(element.name()) != "Card") {
    return At(here, std::string("\"") + element.name() + "\" is not Card");
  }
  for (const pugi::xml_attribute attribute : element.attributes()) {
    const std::string_view name = attribute.name();
    if (name == "Address" || name == "Kind") continue;
    return At(here, "a Card has no \"" + std::string(name) + "\"");
  }
  const std::string address_text = element.attribute("Address").value();
  const std::string kind_text = element.attribute("Kind").value();
  const auto address = ParseAddress(address_text);
  if (!address) return At(here, "Address \"" + address_text + "\" is not one digit, 0 to F");
  const CardKind* const kind = FindKind(kind_text);
  if (kind == nullptr) return At(here, "Kind \"" + kind_text + "\" is none of " + KindWords());
  if (Problem problem = adapter_.Insert(*address, *kind)) return At(here, problem.Text());

  // What is stored comes first, then the card boots with it, then it gets its start values.
  Card& card = *adapter_.Present(*address);
  if (Problem problem = ReadFields(element, "Stored", card)) return problem;
  card.PowerUp();
  return ReadFields(element, "Start", card);
}

Problem Reader::ReadFields(pugi::xml_node card_element, std::string_view name, Card& card) {
  for (const pugi::xml_node element : card_element.children()) {
    const std::string_view found = element.name();
    if (std::ranges::find(kGroups, found, &GroupName::element) == std::end(kGroups)) {
      return At(element.offset_debug(), "a Card has no element \"" + std::string(found) + "\"");
    }
    if (found != name) continue;
    for (const pugi::xml_attribute attribute : element.attributes()) {
      if (Problem problem = ReadField(element, attribute, card)) return problem;
    }
  }
  return {};
}

Problem Reader::ReadField(pugi::xml_node element, pugi::xml_attribute attribute, const Card& card) {
  const ptrdiff_t here = element.offset_debug();
  const std::string name = attribute.name();
  const auto* const group =
      std::ranges::find(kGroups, std::string_view(element.name()), &GroupName::element);
  const auto field = std::ranges::find_if(card.Fields(), [&](const Card::Field& candidate) {
    return candidate.group == group->group && candidate.name == name;
  });
  if (field == card.Fields().end()) return At(here, "this kind of card has no \"" + name + "\"");

  const std::string value = attribute.value();
  const size_t size = field->cells.size();
  if (field->form == Card::Form::kText) {
    if (value.size() > size) return At(here, name + " is longer than " + std::to_string(size));
    std::ranges::fill(field->cells, ' ');
    std::ranges::copy(value, field->cells.begin());
    return {};
  }
  const auto bytes = ParseBytes(SplitWords(value));
  if (!bytes || bytes->size() != size) {
    return At(here, name + " \"" + value + "\" is not " + std::to_string(size) + " byte(s)");
  }
  std::ranges::copy(*bytes, field->cells.begin());
  return {};
}

}  // namespace

Problem ReadBusFile(const std::string& path, BusAdapter& adapter) {
  return Reader(path, adapter).Read();
}

}  // namespace virtualbus
