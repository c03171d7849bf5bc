// The pacing alone: the threads of the daemon with their pauses at SPEED=100, a byte string
// handed from one to the next, and nothing else. What the daemon takes longer is its work.
//   bench-pacing PORT DEVICE
// Serves one client on the loopback interface and ends with it.
#include <poll.h>
#include <sched.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "ends.h"

namespace {

// Where the daemon offers the processor while a prompt reply may come.
bool IsOffer(int reads) { return reads == 16 || reads == 64 || reads == 256 || reads == 1024; }

class Box {
 public:
  void Put(const std::string& bytes) {
    const std::lock_guard guard(mutex_);
    bytes_ += bytes;
  }
  std::string Take() {
    const std::lock_guard guard(mutex_);
    return std::exchange(bytes_, {});
  }

 private:
  std::mutex mutex_;
  std::string bytes_;
};

struct Boxes {
  Box received, to_send, to_device;
};

std::string ReadSome(int from) {
  std::array<char, 255> bytes;
  const ssize_t count = read(from, bytes.data(), bytes.size());
  return {bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

void WriteAll(int to, const std::string& bytes) {
  if (bytes.empty()) return;
  [[maybe_unused]] const ssize_t count = write(to, bytes.data(), bytes.size());
}

short Look(int client) {
  constexpr timespec kMicrosecond{0, 1000};
  pollfd end{client, POLLIN | POLLOUT, 0};
  ppoll(&end, 1, &kMicrosecond, nullptr);
  return end.revents;
}

// A worker: a pause before the work and one behind it.
void Repeat(auto work) {
  constexpr timespec kIdle{0, 100};
  while (true) {
    usleep(1);
    work();
    nanosleep(&kIdle, nullptr);
  }
}

void ServeClient(int client, Boxes& boxes) {
  if ((Look(client) & POLLIN) != 0) {
    const std::string bytes = ReadSome(client);
    if (bytes.empty()) _exit(0);
    boxes.received.Put(bytes);
  }
  WriteAll(client, boxes.to_send.Take());
}

void ServeDevice(int device, Boxes& boxes) {
  const std::string frame = boxes.to_device.Take();
  if (frame.empty()) return;
  WriteAll(device, frame);
  std::string reply;
  for (int reads = 1; reply.empty() || reply.size() <= static_cast<unsigned char>(reply[0]);
       ++reads) {
    reply += ReadSome(device);
    if (IsOffer(reads)) sched_yield();
  }
  boxes.to_send.Put(reply);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int device = OpenDevice(argv[2], O_NONBLOCK);
  const int client = AcceptClient(std::atoi(argv[1]));
  if (device < 0 || client < 0) return 1;
  Boxes boxes;
  const std::jthread io([&] { Repeat([&] { ServeClient(client, boxes); }); });
  const std::jthread cae([&] { Repeat([&] { Look(client); }); });  // its client is silent
  const std::jthread mon([] { pause(); });                         // it has none
  const std::jthread serial([&] { Repeat([&] { ServeDevice(device, boxes); }); });
  while (true) {
    usleep(1);
    boxes.to_device.Put(boxes.received.Take());
  }
}
