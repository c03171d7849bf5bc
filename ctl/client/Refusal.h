// A no of the hub, with what it said about it.
#pragma once

#include <boost/json/value.hpp>
#include <string>

#include "base/Failure.h"

namespace ctl {

class Refusal : public Failure {
 public:
  // `document` is the problem as it came; `text` the same as data.
  Refusal(int status, const boost::json::value& problem, std::string document)
      : Failure(kRefused, Sentence(status, problem)), document_(std::move(document)) {}

  const std::string& Document() const { return document_; }

  // What is wrong, where, and what to do.
  static std::string Sentence(int status, const boost::json::value& problem);

 private:
  std::string document_;
};

}  // namespace ctl
