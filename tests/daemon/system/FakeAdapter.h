// The bus adapter and its cards, played on a pseudo terminal by a thread of
// its own. Every frame of the daemon is recorded in order, after it has been
// answered. A slave descriptor stays open here, so that the terminal does not
// hang up when the daemon closes its side.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "kit/Bytes.h"
#include "kit/Place.h"

enum CardKind : std::uint8_t {
  kEmpty = 0x00,
  kDigitalOutput = 0x03,
  kDigitalInput = 0x04,
  kServo = 0x05,
  kMotor = 0x06,
  kAnalogueInput = 0x07,
  kKeyMatrix = 0x08,
  kLcd = 0x09,
  kInfrared = 0x0A,
  kNoAnswer = 0xFF,
};

// What the adapter writes for one frame, piece after piece.
struct Reply {
  std::vector<Bytes> pieces;
};

Reply Silence();
Reply Raw(Bytes bytes);
Reply Packet(Bytes payload);    // with its length byte in front
Reply InPieces(Bytes payload);  // a packet, a byte at a time
Bytes operator+(Bytes head, const Bytes& tail);

class FakeAdapter {
 public:
  explicit FakeAdapter(std::string link = "/dev/ttyUSB0");
  ~FakeAdapter();
  FakeAdapter(const FakeAdapter&) = delete;
  FakeAdapter& operator=(const FakeAdapter&) = delete;

  // The cable: the device name is there and the adapter answers, or neither.
  void Plug();
  void Pull();
  // The device itself vanishes under the daemon: reads and writes fail.
  void HangUp();

  void PlugCard(int address, std::uint8_t type);
  void SetInputs(int address, Bytes blocks);
  void SetRegister(int address, std::uint8_t value);
  void SetVersion(std::string text);

  // The next frames that begin with `prefix` get these replies, one each.
  void Script(Bytes prefix, std::vector<Reply> replies);
  // Every further frame that begins with `prefix` gets this reply.
  void Always(Bytes prefix, Reply reply);
  void ForgetScripts();
  // Writes bytes nobody asked for.
  void Send(const Bytes& bytes);

  // The very next frames, in order and without any other between them.
  void ExpectFrames(const std::vector<Bytes>& frames, Place place = Place::current());
  // The next frame equal to this one; others are passed over.
  void ExpectFrame(const Bytes& frame, Place place = Place::current());
  // Waits for `count` further frames that begin with `prefix`; others are passed over.
  void ExpectCount(const Bytes& prefix, int count, Place place = Place::current());
  // Frames from now on count; what came before is passed over.
  void ForgetFrames();
  std::vector<Bytes> Frames();

  const std::string& SlavePath() const { return slave_path_; }
  int SlaveDescriptor() const { return slave_; }

 private:
  void Serve();
  void TakeFrames(Bytes& received);
  Reply Choose(const Bytes& frame);
  Reply ByDefault(const Bytes& frame) const;
  void Write(const Bytes& bytes);
  bool NextFrame(Bytes& frame);

  struct Scripted {
    Bytes prefix;
    std::deque<Reply> replies;
    bool forever;
  };

  // Set once at start.
  std::string link_;
  std::string slave_path_;
  int master_ = -1;
  int slave_ = -1;
  int wake_ = -1;

  // Shared with the serving thread, under the lock.
  std::mutex lock_;
  std::condition_variable recorded_;
  bool silent_ = true;
  std::string version_ = "Xv1.2 bus adapter";
  std::uint8_t types_[16] = {};
  std::uint8_t registers_[16] = {};
  std::map<int, Bytes> inputs_;
  std::vector<Scripted> scripts_;
  std::vector<Bytes> frames_;

  std::size_t cursor_ = 0;  // of the test's thread only
  std::thread server_;
};
