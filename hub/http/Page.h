// The page: files of one folder, as they are there at the moment they are asked for. Beside a
// file can lie the same compressed (NAME.br, NAME.gz). Names are plain words between slashes:
// no escape, no "..", nothing hidden. Without a folder a small page says what else there is.
#pragma once

#include <string>
#include <string_view>

#include "http/Message.h"

namespace hub::http {

class Page {
 public:
  explicit Page(std::string folder) : folder_(std::move(folder)) {}

  Response Answer(const Request& request) const;  // to GET or HEAD

 private:
  std::string folder_;  // empty: none
};

}  // namespace hub::http
