#include "LinkDriver.h"

#include <algorithm>
#include <boost/asio/post.hpp>

namespace hub::link {

namespace asio = boost::asio;

namespace {

asio::awaitable<std::optional<protocol::Lines>> LinesOf(Link& link, std::string line) {
  auto asking = link.Ask(std::move(line));
  auto answer = co_await std::move(asking);
  if (!answer) co_return std::nullopt;
  co_return std::move(answer->lines);
}

}  // namespace

LinkDriver::LinkDriver(LinkOptions options, const std::vector<protocol::WriteBlock>& asked,
                       const model::Settings& settings)
    : work_(context_.get_executor()), remembered_(asked) {
  bus_.Apply(settings);
  link_ = std::make_unique<Link>(
      context_, std::move(options), bus_,
      Link::Sinks{
          .report = [](std::string_view) {},
          .monitored = [this](std::string_view line) { monitored_.emplace_back(line); },
          .asked = [this](const protocol::WriteBlock& command) { asked_.push_back(command); },
          .forgotten =
              [this](uint8_t address, uint8_t block) {
                std::erase_if(asked_, [&](const protocol::WriteBlock& each) {
                  return each.address == address && each.block == block;
                });
              },
          .journal = [this](const model::JournalEntry& entry) { journal_.push_back(entry.text); }});
  link_->Remember(asked);
  link_->Start();
  thread_ = std::jthread([this] { context_.run(); });
}

LinkDriver::~LinkDriver() {
  asio::post(context_, [this] {
    link_.reset();
    work_.reset();
  });
}

std::future<Outcome> LinkDriver::SetLater(unsigned address, std::vector<Target> targets,
                                          Motion motion) {
  return asio::co_spawn(context_, link_->Set(address, std::move(targets), motion),
                        asio::use_future);
}

std::future<Outcome> LinkDriver::SendLater(protocol::IoCommand command) {
  return asio::co_spawn(context_, link_->Send(std::move(command)), asio::use_future);
}

std::future<std::optional<protocol::Lines>> LinkDriver::AskLater(std::string line) {
  return asio::co_spawn(context_, LinesOf(*link_, std::move(line)), asio::use_future);
}

Outcome LinkDriver::Set(unsigned address, std::vector<Target> targets, Motion motion) {
  return SetLater(address, std::move(targets), motion).get();
}

Outcome LinkDriver::Send(protocol::IoCommand command) {
  return SendLater(std::move(command)).get();
}

std::optional<protocol::Lines> LinkDriver::Ask(std::string line) {
  return AskLater(std::move(line)).get();
}

model::Daemon LinkDriver::Daemon() {
  return Look([](const model::Bus& bus) { return bus.DaemonNow(); });
}

model::AdapterState LinkDriver::Adapter() {
  return Look([](const model::Bus& bus) { return bus.AdapterNow().state; });
}

std::optional<model::Channel> LinkDriver::Channel(unsigned address, unsigned number) {
  return Look([&](const model::Bus& bus) -> std::optional<model::Channel> {
    const model::Card* card = bus.At(address);
    if (card == nullptr || number >= card->channels.size()) return std::nullopt;
    return card->channels[number];
  });
}

bool LinkDriver::WaitUp() {
  return WaitUntil([this] {
    return Look([](const model::Bus& bus) {
      return bus.DaemonNow().state == model::DaemonState::kUp && bus.DaemonNow().version &&
             bus.Polling();
    });
  });
}

bool LinkDriver::WaitDown() {
  return WaitUntil([this] { return !IsUp(); });
}

bool LinkDriver::WaitValue(unsigned address, unsigned number, bool on) {
  return WaitUntil([&] {
    const auto channel = Channel(address, number);
    return channel && channel->IsKnown() && !channel->pending && (channel->raw != 0) == on;
  });
}

bool LinkDriver::WaitJournal(const std::string& text) {
  return WaitUntil([&] {
    const auto journal = Journal();
    return std::ranges::any_of(
        journal, [&](const std::string& line) { return line.find(text) != std::string::npos; });
  });
}

std::vector<std::string> LinkDriver::Journal() {
  return Look([this](const model::Bus&) { return journal_; });
}

std::vector<std::string> LinkDriver::Monitored() {
  return Look([this](const model::Bus&) { return monitored_; });
}

std::vector<protocol::WriteBlock> LinkDriver::Asked() {
  return Look([this](const model::Bus&) { return asked_; });
}

std::vector<protocol::WriteBlock> LinkDriver::Stored() {
  std::vector<protocol::WriteBlock> stored = remembered_;
  const auto asked = Asked();
  stored.insert(stored.end(), asked.begin(), asked.end());
  return stored;
}

bool LinkDriver::IsFree() {
  return Look([](const model::Bus& bus) {
    for (unsigned address = 0; address < protocol::kCardCount; ++address) {
      const model::Card* card = bus.At(address);
      if (card == nullptr) continue;
      for (const model::Channel& channel : card->channels)
        if (channel.pending) return false;
    }
    return true;
  });
}

bool LinkDriver::IsConsoleFull() {
  return Look([this](const model::Bus&) { return link_->IsConsoleFull(); });
}

Link::Counters LinkDriver::Count() {
  return Look([this](const model::Bus&) { return link_->Count(); });
}

}  // namespace hub::link
