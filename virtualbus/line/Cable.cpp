#include "line/Cable.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

namespace virtualbus {

Cable::~Cable() {
  if (plugged_) RemoveLink();
}

Problem Cable::Plug() {
  if (plugged_) return Problem("the cable is plugged");
  wire_.SetConnected(true);
  // symlink() makes the link or fails; it never replaces another's.
  if (!link_.empty() && symlink(wire_.DevicePath().c_str(), link_.c_str()) != 0) {
    const int error = errno;
    wire_.SetConnected(false);
    if (error == EEXIST) return Problem(link_ + " exists and is not ours");
    return Problem("cannot make the link " + link_ + ": " + std::strerror(error));
  }
  plugged_ = true;
  journal_.Note("cable plugged: " + Where());
  return {};
}

Problem Cable::Pull() {
  if (!plugged_) return Problem("the cable is pulled");
  RemoveLink();
  wire_.SetConnected(false);
  plugged_ = false;
  journal_.Note("cable pulled");
  return {};
}

std::string Cable::Where() const {
  return link_.empty() ? wire_.DevicePath() : link_ + " -> " + wire_.DevicePath();
}

bool Cable::LinkIsOurs() const {
  std::array<char, 128> target{};
  const ssize_t length = readlink(link_.c_str(), target.data(), target.size());
  return length > 0 &&
         std::string_view(target.data(), static_cast<size_t>(length)) == wire_.DevicePath();
}

void Cable::RemoveLink() {
  if (!link_.empty() && LinkIsOurs()) unlink(link_.c_str());
}

}  // namespace virtualbus
