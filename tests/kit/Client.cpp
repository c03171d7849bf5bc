#include "kit/Client.h"

#include <algorithm>
#include <utility>

namespace {

// Shorter than the patience of a test, longer than any greeting takes.
constexpr std::chrono::seconds kGreetingPatience{10};

std::string Readable(std::string_view bytes) { return testing::PrintToString(std::string(bytes)); }

}  // namespace

Client::Client(int port, int local_port, const char* host) {
  const bool connected = WaitUntil([&] {
    static_cast<Stream&>(*this) = ToPort(port, local_port, host);
    return IsOpen();
  });
  if (!connected) ADD_FAILURE() << "port " << port << " refuses connections";
}

void Client::Send(std::string_view bytes, Place place) {
  if (!TrySend(bytes)) FAIL_AT(place) << "cannot send " << Readable(bytes.substr(0, 100));
}

void Client::ExpectBytes(std::string_view expected, Place place) {
  const auto fits_so_far = [&] {
    const std::size_t common = std::min(unread_.size(), expected.size());
    return unread_.compare(0, common, expected.substr(0, common)) == 0;
  };
  while (fits_so_far() && unread_.size() < expected.size() && ReadMore()) {
  }
  if (!fits_so_far() || unread_.size() < expected.size()) {
    FAIL_AT(place) << "expected " << Readable(expected) << "\n  came to " << Readable(unread_);
    return;
  }
  Take(expected.size());
}

std::string Client::ReadUntil(std::string_view ending, Place place) {
  while (unread_.find(ending) == std::string::npos) {
    if (ReadMore()) continue;
    FAIL_AT(place) << "no " << Readable(ending) << " in " << Readable(unread_);
    return std::exchange(unread_, "");
  }
  return Take(unread_.find(ending) + ending.size());
}

bool Client::Sees(std::string_view ending) {
  while (unread_.find(ending) == std::string::npos) {
    if (!ReadMore()) return false;
  }
  Take(unread_.find(ending) + ending.size());
  return true;
}

bool Client::IsServed() { return !unread_.empty() || ReadMore(kGreetingPatience); }

void Client::ExpectClosed(Place place) {
  const auto deadline = std::chrono::steady_clock::now() + kPatience;
  while (ReadMore()) {
  }
  if (std::chrono::steady_clock::now() >= deadline) FAIL_AT(place) << "the connection stays open";
}

void Client::ExpectSilence(Place place) {
  ReadMore(std::chrono::milliseconds(0));
  if (!unread_.empty()) FAIL_AT(place) << "nobody asked for " << Readable(unread_);
}
