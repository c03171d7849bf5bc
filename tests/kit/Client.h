// A TCP client in the words of the tests. What does not go as expected is a failure where
// the test called, and throws nothing.
#pragma once

#include <string>
#include <string_view>

#include "kit/Place.h"
#include "kit/Stream.h"

class Client : public Stream {
 public:
  Client() = default;
  // Connects as soon as the port listens. `local_port` 0 lets the system choose.
  explicit Client(int port, int local_port = 0, const char* host = "127.0.0.1");
  // Connects, or is not open.
  static Client Try(int port) { return Client(Stream::ToPort(port)); }

  void Send(std::string_view bytes, Place place = Place::current());
  // The next bytes are exactly these.
  void ExpectBytes(std::string_view expected, Place place = Place::current());
  // Reads on until the bytes end with `ending`, and returns all of them.
  std::string ReadUntil(std::string_view ending, Place place = Place::current());
  // Reads on until `ending` has come; false when the connection ends before.
  bool Sees(std::string_view ending);
  // Waits for the first byte; false when the connection ends without one, or when
  // nobody is there: a client that connects in the very moment in which the port is
  // closed can be left with a connection that has no other side.
  bool IsServed();
  // The other side ends the connection; what it still sends is passed over.
  void ExpectClosed(Place place = Place::current());
  // Nothing has come that was not asked for.
  void ExpectSilence(Place place = Place::current());

 private:
  explicit Client(Stream&& stream) : Stream(std::move(stream)) {}
};
