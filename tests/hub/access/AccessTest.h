// All that access/ knows, on a clock that the test moves.
#pragma once

#include <gtest/gtest.h>

#include <boost/asio/co_spawn.hpp>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "access/Access.h"
#include "hub/FakeClock.h"

namespace hub::access {

using namespace std::chrono_literals;
namespace asio = boost::asio;

inline constexpr const char* kHere = "192.0.2.1";
inline constexpr const char* kThere = "192.0.2.2";
inline constexpr const char* kPassword = "correct horse";

using Tried = std::variant<Session, Refusal, Wait>;

class AccessTest : public testing::Test {
 protected:
  AccessTest() { Start(std::nullopt); }

  // The hub begins anew with what was kept.
  void Start(const std::optional<std::string>& document) {
    access.emplace(context, clock, document,
                   Access::Sinks{[this](std::string text) { kept.push_back(std::move(text)); },
                                 [this](const std::string& id) { ended.push_back(id); },
                                 [this](const std::string& name) { tokens_ended.push_back(name); },
                                 [this] { ++login_needed; }},
                   PasswordCost{8192, 1});
  }
  void Restart() { Start(kept.back()); }

  template <typename T>
  T Run(asio::awaitable<T> work) {
    std::optional<T> result;
    asio::co_spawn(context, std::move(work), [&result](std::exception_ptr failure, T value) {
      if (failure) std::rethrow_exception(failure);
      result = std::move(value);
    });
    context.restart();
    context.run();
    return std::move(*result);
  }

  std::optional<Refusal> Add(const std::string& name, Role role,
                             const std::string& password = kPassword) {
    return Run(access->AddAccount(name, password, role));
  }
  std::optional<Refusal> Change(const std::string& name, std::optional<std::string> password,
                                std::optional<Role> role) {
    return Run(access->ChangeAccount(name, std::move(password), role));
  }

  Tried Try(const std::string& name, const std::string& password, const std::string& from = kHere) {
    return Run(access->LogIn(name, password, from));
  }
  Session LogIn(const std::string& name, const std::string& password = kPassword) {
    Tried tried = Try(name, password);
    if (!std::holds_alternative<Session>(tried)) throw std::runtime_error(name + " is refused");
    return std::get<Session>(tried);
  }
  // "in", "wrong", or the seconds to wait.
  std::string Outcome(const std::string& name, const std::string& password,
                      const std::string& from = kHere) {
    return Word(Try(name, password, from));
  }
  static std::string Word(const Tried& tried) {
    if (const Wait* wait = std::get_if<Wait>(&tried)) return std::to_string(wait->time.count());
    return std::holds_alternative<Session>(tried) ? "in" : "wrong";
  }

  // All at once; their outcomes in the order in which they come.
  std::vector<std::string> TryAtOnce(const std::vector<std::string>& names) {
    std::vector<std::string> outcomes;
    for (const std::string& name : names)
      asio::co_spawn(
          context, access->LogIn(name, "wrong password", kHere),
          [&outcomes](std::exception_ptr, const Tried& tried) { outcomes.push_back(Word(tried)); });
    context.restart();
    context.run();
    return outcomes;
  }

  asio::io_context context;
  FakeClock clock;
  std::vector<std::string> kept;
  std::vector<std::string> ended;
  std::vector<std::string> tokens_ended;
  int login_needed = 0;
  std::optional<Access> access;
};

}  // namespace hub::access
