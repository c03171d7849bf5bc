// One connection to a broker, from the first packet to the last, on the io_context. Whoever wants
// another one makes another Client, so nothing that was under way on one is sent again on the next.
//
// Only the name of the host is looked up aside, in a thread that ends with it. While more than
// kMostNews wait, nothing is read. One thread.
#pragma once

#include <boost/asio/awaitable.hpp>
#include <boost/asio/io_context.hpp>
#include <memory>
#include <string>

#include "mqtt/News.h"

namespace hub::mqtt {

class Client {
 public:
  static constexpr size_t kMostNews = 64;

  Client(boost::asio::io_context& context, const Server& server, Greeting greeting);
  ~Client();  // closes without a word: the broker publishes the will
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  // What happens, in order; the last is Ended.
  boost::asio::awaitable<News> Next();

  // It will be Subscribed with this id.
  int Subscribe(const std::string& filter, Hearing hearing = Hearing::kStates);
  void Unsubscribe(const std::string& filter);
  void Publish(const Message& message);  // it will be Taken
  void Disconnect();                     // says good-bye: there is no will
  void Close();                          // at once

 private:
  class Session;
  std::shared_ptr<Session> session_;
};

}  // namespace hub::mqtt
