// A link and a store that are not there: no daemon, no disk. Each of their numbers is another.
#include "link/Link.h"
#include "store/Store.h"

namespace hub::link {

struct Link::Parts {};

Link::Link(boost::asio::io_context&, LinkOptions, model::Bus&, Sinks) {}
Link::~Link() = default;
Link::Counters Link::Count() const {
  return {.commands = 42,
          .merged = 43,
          .refused = 44,
          .reports = 45,
          .sessions = 46,
          .frames_restored = 47};
}

// Nobody asks. Under a sanitizer the linker takes more files of api/ than the tests need.
boost::asio::awaitable<Outcome> Link::Send(protocol::IoCommand) { co_return Outcome::kAbsent; }
boost::asio::awaitable<std::optional<protocol::Answer>> Link::Ask(std::string) {
  co_return std::nullopt;
}
bool Link::IsConsoleFull() const { return false; }

}  // namespace hub::link

namespace hub::store {

struct Store::Parts {};

Store::Store(boost::asio::io_context&, StoreOptions, const model::Clock&) {}
Store::~Store() = default;
std::string Store::Trouble() const { return "there is none"; }
void Store::AddJournal(model::JournalEntry) {}
Store::Counters Store::Count() const {
  return {.bytes_written = 51, .values_waiting = 52, .values_dropped = 53, .documents_waiting = 54};
}

}  // namespace hub::store
