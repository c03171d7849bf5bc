// What a connection may use up, in bytes and in time.
#pragma once

#include <chrono>
#include <cstddef>

namespace hub::http {

inline constexpr size_t kHeaderMost = 8 * 1024;
inline constexpr size_t kBodyMost = 64 * 1024;
inline constexpr size_t kMessageMost = 64 * 1024;  // of a WebSocket, in

inline constexpr std::chrono::seconds kHeaderTime{10};  // also for the handshake of TLS
inline constexpr std::chrono::seconds kBodyTime{30};
inline constexpr std::chrono::seconds kWorkTime{120};   // to make an answer
inline constexpr std::chrono::seconds kAnswerTime{30};  // to take it
inline constexpr std::chrono::seconds kIdleTime{60};    // between two requests
inline constexpr std::chrono::seconds kLingerTime{2};   // to read the last answer

inline constexpr std::chrono::seconds kPingTime{15};  // between two pings
inline constexpr std::chrono::seconds kSilentTime{
    45};  // a WebSocket that answers none, or takes nothing

}  // namespace hub::http
