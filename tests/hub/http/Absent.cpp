// A link and a store that are not there: no daemon, no disk.
#include "link/Link.h"
#include "store/Store.h"

namespace hub::link {

struct Link::Parts {};

Link::Link(boost::asio::io_context&, LinkOptions, model::Bus&, Sinks) {}
Link::~Link() = default;
Link::Counters Link::Count() const { return {.commands = 42}; }

}  // namespace hub::link

namespace hub::store {

struct Store::Parts {};

Store::Store(boost::asio::io_context&, StoreOptions, const model::Clock&) {}
Store::~Store() = default;
std::string Store::Trouble() const { return "there is none"; }
Store::Counters Store::Count() const { return {}; }

}  // namespace hub::store
