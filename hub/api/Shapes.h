// What clients read: the shapes of the bus, its cards and channels, and of the messages that tell
// changes. Pure functions. A field that has no value is null.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "boards/Boards.h"
#include "model/Bus.h"
#include "model/Journal.h"
#include "store/Store.h"

namespace hub::api {

std::string AddressText(unsigned address);     // "E"
std::string ChannelText(model::ChannelId id);  // "E.0"
std::optional<unsigned> ParseAddress(std::string_view text);
std::optional<model::ChannelId> ParseChannel(std::string_view text);

boost::json::object BusJson(const model::Bus& bus);
boost::json::object CardJson(const model::Bus& bus, const model::Card& card);
boost::json::object ChannelJson(const model::Bus& bus, const model::Card& card, unsigned number);
boost::json::object GlassJson(const model::Glass& glass);
boost::json::object EventJson(const model::Event& event);

// {"cards":[...]}: those that are there, or did not answer, by address.
boost::json::object CardsJson(const model::Bus& bus);

boost::json::object JournalEntryJson(const model::JournalEntry& entry);
boost::json::object JournalJson(const store::JournalPage& page);
boost::json::object HistoryJson(const model::Bus& bus, model::ChannelId id,
                                const store::History& history);

// The whole state, what the page keeps, and the events behind that number. A number that the bus
// has not reached is from before it started: all events come. The other boards are in it where they
// are listened to.
boost::json::object SnapshotJson(const model::Bus& bus, const boost::json::object& page,
                                 std::optional<uint64_t> after,
                                 const boards::Boards* boards = nullptr);

// The parameters of a "changes" message: levels as they are now, and the events of the change.
// `lost` counts events that this reader missed.
boost::json::object ChangesJson(const model::Bus& bus, const boost::json::object& page,
                                const model::Change& change, uint64_t lost,
                                const boards::Boards* boards = nullptr);

// {"jsonrpc":"2.0","method":"changes","params":{...}} as text, once for all who hear it.
std::string ChangesText(const model::Bus& bus, const boost::json::object& page,
                        const model::Change& change, uint64_t lost,
                        const boards::Boards* boards = nullptr);

}  // namespace hub::api
