// The names of this hub's topics: all of them stand below qelm/NAME/. Pure.
#pragma once

#include <string>
#include <string_view>

#include "model/Change.h"

namespace hub::mqtt {

// A name as a topic can have it, made of one that is for people: 1 to 32 letters, digits, "-", "_".
// Everything else becomes "-".
std::string TopicName(std::string_view name);

// Whether a filter takes this topic: "+" stands for a level, "#" for all that follow.
bool Matches(std::string_view filter, std::string_view topic);

class Topics {
 public:
  explicit Topics(std::string_view name) : root_("qelm/" + std::string(name) + '/') {}

  const std::string& Root() const { return root_; }  // "qelm/bench/"
  std::string Status() const { return root_ + "status"; }
  std::string Bus() const { return root_ + "bus"; }
  std::string Rates() const { return root_ + "rates"; }
  std::string Error() const { return root_ + "error"; }

  std::string CardStatus(unsigned address) const { return OfCard(address, "status"); }
  std::string Value(model::ChannelId id) const;  // "qelm/bench/5/0"
  std::string Glass(unsigned address) const { return OfCard(address, "glass"); }
  std::string Event(unsigned address) const { return OfCard(address, "event"); }

 private:
  std::string OfCard(unsigned address, std::string_view what) const;

  std::string root_;
};

}  // namespace hub::mqtt
