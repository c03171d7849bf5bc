// Who is logged in. A session is found by its secret, of which only the hash is kept, and ends
// with its account, a new password, the log-out, or after 30 days without use.
//
// Within a run it ages by the steady clock, so a clock that is set moves nobody out; the time
// that passes while the hub is down counts too. Pure; one thread.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/Clock.h"

namespace hub::access {

struct SessionRecord {
  std::string id;
  std::string account;
  std::string secret;  // its hash
  model::Time used;
  bool operator==(const SessionRecord&) const = default;
};

class Sessions {
 public:
  static constexpr std::chrono::days kUnused{30};
  static constexpr size_t kMostOfAnAccount = 64;  // for the next one, the one unused longest ends

  // Use is noted to the hour, so that a busy page does not write to the disk all day.
  static constexpr std::chrono::hours kGrain{1};

  Sessions(const model::Clock& clock, const std::vector<SessionRecord>& records);

  struct Opened {
    std::string id;
    std::string secret;
    std::optional<std::string> replaced;  // the id of the one that had to end
  };
  Opened Open(const std::string& account);

  // Finding one is a use of it.
  struct Found {
    std::string id;
    std::string account;
    bool noted;  // the records have changed
  };
  std::optional<Found> Find(std::string_view secret);
  std::optional<Found> Use(std::string_view id);

  bool Close(std::string_view id);
  std::vector<std::string> CloseAll(std::string_view account);  // their ids

  std::vector<SessionRecord> Records() const;

 private:
  struct Session {
    std::string id;
    std::string account;
    std::string secret;
    model::SteadyTime used;
  };

  void DropUnused();
  std::optional<std::string> MakeRoom(const std::string& account);
  Found NoteUse(Session& session);

  const model::Clock& clock_;
  std::vector<Session> sessions_;
};

}  // namespace hub::access
