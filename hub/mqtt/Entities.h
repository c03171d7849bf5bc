// The components of one device as Home Assistant has them: a function a platform, which knows that
// platform's keys. Pure.
//
// A key that a platform does not know is dropped in silence, and one without `platform` or
// `unique_id` costs the whole device; so components are made here and nowhere else.
#pragma once

#include <boost/json/object.hpp>
#include <string>
#include <string_view>

#include "mqtt/Announcement.h"

namespace hub::mqtt {

class Entities {
 public:
  // `place`: what entities are called in Home Assistant until somebody gives them another id,
  // "bench_5".
  Entities(Device& device, std::string place) : device_(device), place_(std::move(place)) {}

  struct Names {
    std::string id;      // of the component, says its kind: "out0"
    std::string unique;  // behind the device's id, never changes: "0"
    std::string name;    // for people; one that repeats the device's is cut
  };
  // Takes one more; whoever called adds the keys of the platform.
  boost::json::object& Add(std::string_view platform, const Names& names);

  // A press or a turn, for automations; no entity.
  void AddTrigger(const std::string& id, const std::string& topic, std::string_view type,
                  std::string_view subtype, std::string_view event, unsigned code);

 private:
  Device& device_;
  std::string place_;
};

// "bench_5" of "Bench/5": what an id in Home Assistant can have.
std::string Slug(std::string_view text);

}  // namespace hub::mqtt
