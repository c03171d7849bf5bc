#include "api/fakes/FakeLink.h"

#include "link/Link.h"

FakeLink* FakeLink::now = nullptr;

namespace hub::link {

struct Link::Parts {};

Link::Link(boost::asio::io_context&, LinkOptions, model::Bus&, Sinks) {}
Link::~Link() = default;
Link::Counters Link::Count() const { return {}; }

boost::asio::awaitable<Outcome> Link::Set(unsigned address, std::vector<Target> targets,
                                          Motion motion) {
  FakeLink& fake = *FakeLink::now;
  std::string text{protocol::HexDigit(address)};
  for (const Target& target : targets)
    text += ' ' + std::to_string(target.number) + '=' + std::to_string(target.raw);
  if (motion.pulse) text += " pulse=" + std::to_string(motion.pulse->count());
  if (motion.ramp) text += " ramp=" + std::to_string(motion.ramp->count());
  fake.set.push_back(text);
  if (fake.then) fake.then(text);
  co_return static_cast<Outcome>(fake.outcome);
}

bool Link::IsConsoleFull() const { return FakeLink::now->is_full; }

boost::asio::awaitable<Outcome> Link::Send(protocol::IoCommand command) {
  FakeLink& fake = *FakeLink::now;
  fake.sent.push_back(protocol::Format(command));
  if (fake.then) fake.then(fake.sent.back());
  co_return static_cast<Outcome>(fake.outcome);
}

boost::asio::awaitable<std::optional<protocol::Answer>> Link::Ask(std::string line) {
  FakeLink& fake = *FakeLink::now;
  fake.asked.push_back(line);
  if (fake.then) fake.then(line);
  if (fake.is_mute) co_return std::nullopt;
  const auto answer = fake.answers.find(line);
  if (answer == fake.answers.end()) co_return protocol::Answer{{"CIA: OK"}, ""};
  co_return protocol::Answer{answer->second, ""};
}

}  // namespace hub::link
