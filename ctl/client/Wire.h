// A stream of bytes to the hub and back: a Unix socket, TCP, or TLS over it. Blocking, with a time
// limit on each step. What cannot go, or does not come, is an error code; only connecting throws.
#pragma once

#include <openssl/ssl.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/beast/websocket/teardown.hpp>
#include <boost/system/error_code.hpp>
#include <boost/system/system_error.hpp>
#include <chrono>
#include <memory>
#include <string>

#include "client/Target.h"

namespace ctl {

class Wire {
 public:
  using Error = boost::system::error_code;
  using executor_type = boost::asio::io_context::executor_type;

  // Connects. Throws Failure(kUnreachable), which says what to do.
  explicit Wire(const Target& target);
  ~Wire();
  Wire(const Wire&) = delete;
  Wire& operator=(const Wire&) = delete;

  // None: wait for ever. A connection that has died without a word ends after a minute all the
  // same.
  void SetPatience(std::chrono::seconds patience);

  // As Beast asks for it, with its names. It reads into one buffer that is never empty, and
  // writes from several that may be.
  template <typename Buffers>
  size_t read_some(const Buffers& buffers, Error& error) {
    const boost::asio::mutable_buffer first = *boost::asio::buffer_sequence_begin(buffers);
    return Read(first.data(), first.size(), error);
  }
  template <typename Buffers>
  size_t write_some(const Buffers& buffers, Error& error) {
    const boost::asio::const_buffer first = FirstFilled(buffers);
    return Write(first.data(), first.size(), error);
  }
  template <typename Buffers>
  size_t read_some(const Buffers& buffers) {
    return Thrown([&](Error& error) { return read_some(buffers, error); });
  }
  template <typename Buffers>
  size_t write_some(const Buffers& buffers) {
    return Thrown([&](Error& error) { return write_some(buffers, error); });
  }
  executor_type get_executor() { return context_.get_executor(); }

  void Close();

 private:
  template <typename Buffers>
  static boost::asio::const_buffer FirstFilled(const Buffers& buffers) {
    for (auto it = boost::asio::buffer_sequence_begin(buffers);
         it != boost::asio::buffer_sequence_end(buffers); ++it)
      if (boost::asio::const_buffer(*it).size() > 0) return *it;
    return {};
  }
  template <typename Step>
  static size_t Thrown(Step step) {
    Error error;
    const size_t count = step(error);
    if (error) throw boost::system::system_error(error);
    return count;
  }

  size_t Read(void* bytes, size_t count, Error& error);
  size_t Write(const void* bytes, size_t count, Error& error);
  void ConnectToPath(const Target& target);
  void ConnectToHost(const Target& target);
  void StartTls(const Target& target);
  [[noreturn]] void Fail(const Target& target, const std::string& why);

  struct FreeContext {
    void operator()(SSL_CTX* context) const { SSL_CTX_free(context); }
  };
  struct FreeTls {
    void operator()(SSL* tls) const { SSL_free(tls); }
  };

  boost::asio::io_context context_;  // Beast wants an executor; nothing runs on it
  int fd_ = -1;
  std::unique_ptr<SSL_CTX, FreeContext> tls_context_;
  std::unique_ptr<SSL, FreeTls> tls_;
};

// How Beast ends the connection below a WebSocket.
inline void teardown(boost::beast::role_type /*role*/, Wire& wire, Wire::Error& error) {
  wire.Close();
  error = {};
}

}  // namespace ctl
