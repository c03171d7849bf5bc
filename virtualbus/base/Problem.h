// What went wrong, as one line for a person, or that nothing did:
//   if (Problem problem = cable.Plug()) return problem;
#pragma once

#include <string>
#include <utility>

namespace virtualbus {

class [[nodiscard]] Problem {
 public:
  Problem() = default;  // nothing went wrong
  explicit Problem(std::string text) : text_(std::move(text)) {}

  explicit operator bool() const { return !text_.empty(); }
  const std::string& Text() const { return text_; }  // empty if nothing went wrong

 private:
  std::string text_;
};

}  // namespace virtualbus
