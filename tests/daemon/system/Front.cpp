#include "Front.h"

namespace {

Front* used = nullptr;

}  // namespace

Front& Front::Now() {
  static Front daemon;
  return used == nullptr ? daemon : *used;
}

void Front::Use(Front& front) { used = &front; }

void Front::ExpectIllegal(Client&, Client& cae, const std::string& command, Place place) {
  cae.ExpectBytes("COE:Illegal command -> " + command + "\r\n\r>\r\n\r", place);
}
