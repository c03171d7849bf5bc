#include "access/Sessions.h"

#include <algorithm>

#include "access/Secrets.h"

namespace hub::access {

using std::chrono::duration_cast;

Sessions::Sessions(const model::Clock& clock, const std::vector<SessionRecord>& records)
    : clock_(clock) {
  for (const SessionRecord& record : records) {
    const auto age = std::max(clock.Now() - record.used, model::Time::duration{0});
    sessions_.push_back({record.id, record.account, record.secret,
                         clock.Steady() - duration_cast<model::SteadyTime::duration>(age)});
  }
  DropUnused();
}

Sessions::Opened Sessions::Open(const std::string& account) {
  DropUnused();
  auto replaced = MakeRoom(account);
  const std::string secret = RandomSecret();
  sessions_.push_back({RandomId(), account, HashOf(secret), clock_.Steady()});
  return {sessions_.back().id, secret, std::move(replaced)};
}

std::optional<Sessions::Found> Sessions::Find(std::string_view secret) {
  DropUnused();
  const std::string hash = HashOf(secret);
  const auto found = std::ranges::find_if(
      sessions_, [&hash](const Session& session) { return IsSame(session.secret, hash); });
  if (found == sessions_.end()) return std::nullopt;
  return NoteUse(*found);
}

std::optional<Sessions::Found> Sessions::Use(std::string_view id) {
  DropUnused();
  const auto found = std::ranges::find(sessions_, id, &Session::id);
  if (found == sessions_.end()) return std::nullopt;
  return NoteUse(*found);
}

bool Sessions::Close(std::string_view id) {
  return std::erase_if(sessions_, [id](const Session& session) { return session.id == id; }) > 0;
}

std::vector<std::string> Sessions::CloseAll(std::string_view account) {
  std::vector<std::string> ids;
  std::erase_if(sessions_, [&](const Session& session) {
    if (session.account != account) return false;
    ids.push_back(session.id);
    return true;
  });
  return ids;
}

std::vector<SessionRecord> Sessions::Records() const {
  std::vector<SessionRecord> records;
  for (const Session& session : sessions_) {
    const auto age = clock_.Steady() - session.used;
    records.push_back({session.id, session.account, session.secret,
                       clock_.Now() - duration_cast<model::Time::duration>(age)});
  }
  return records;
}

void Sessions::DropUnused() {
  std::erase_if(sessions_, [now = clock_.Steady()](const Session& session) {
    return now - session.used >= kUnused;
  });
}

std::optional<std::string> Sessions::MakeRoom(const std::string& account) {
  if (std::ranges::count(sessions_, account, &Session::account) < std::ptrdiff_t{kMostOfAnAccount})
    return std::nullopt;
  auto oldest = sessions_.end();
  for (auto it = sessions_.begin(); it != sessions_.end(); ++it)
    if (it->account == account && (oldest == sessions_.end() || it->used < oldest->used))
      oldest = it;
  std::string id = std::move(oldest->id);
  sessions_.erase(oldest);
  return id;
}

Sessions::Found Sessions::NoteUse(Session& session) {
  const model::SteadyTime now = clock_.Steady();
  const bool noted = now - session.used >= kGrain;
  if (noted) session.used = now;
  return {session.id, session.account, noted};
}

}  // namespace hub::access
