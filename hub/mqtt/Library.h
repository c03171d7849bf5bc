// libmosquitto, without a thread of its own: what its callbacks say is noted as News. It and its
// .cpp are all that knows the library.
//
// One thread at a time. Connect blocks while it looks up the host, so it is for a thread aside;
// nothing else blocks.
#pragma once

#include <deque>
#include <optional>
#include <string>

#include "mqtt/News.h"

struct mosquitto;

namespace hub::mqtt {

class Library {
 public:
  explicit Library(Greeting greeting);
  ~Library();  // closes without a word: the broker publishes the will
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  // Afterwards there is a socket, which may not be connected yet, or it has Ended.
  void Connect(const Server& server);

  int Socket() const;  // -1: none
  bool WantsToWrite() const;
  void Read(size_t most);  // what has come, until there are so many news
  void Write();
  void LookAfter();  // every few seconds: asks a silent broker whether it is there

  int Subscribe(const std::string& filter, Hearing hearing);
  void Unsubscribe(const std::string& filter);
  void Publish(const Message& message);
  void Disconnect();
  void End(Ended ended);  // here and now; only the first one counts

  std::deque<News> news;  // oldest first; Ended comes once, as the last
  bool is_connected = false;

 private:
  struct Callbacks;

  std::optional<std::string> SetUp(const Server& server);
  std::optional<std::string> SetUpTls(const Server& server);
  void Note(int result);
  Ended EndFor(int result) const;

  Greeting greeting_;
  mosquitto* handle_;
  std::string last_error_;         // as the library words it
  std::optional<Ended> farewell_;  // what the broker has said
  bool has_ended_ = false;
};

}  // namespace hub::mqtt
