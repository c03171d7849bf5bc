#include "api/fakes/FakeVirtualBus.h"

FakeVirtualBus* FakeVirtualBus::now = nullptr;

namespace hub::virtualbus {

boost::asio::awaitable<std::optional<std::vector<Answer>>> Control::Ask(
    std::vector<std::string> orders) {
  FakeVirtualBus& fake = *FakeVirtualBus::now;
  if (!fake.is_there) co_return std::nullopt;
  std::vector<Answer> answers;
  for (const std::string& order : orders) {
    fake.asked.push_back(order);
    const auto answer = fake.answers.find(order);
    answers.push_back(answer == fake.answers.end() ? Answer{} : answer->second);
  }
  co_return answers;
}

}  // namespace hub::virtualbus
