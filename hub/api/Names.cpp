#include <utility>

#include "api/Handlers.h"
#include "api/KeptSettings.h"
#include "api/MergePatch.h"

namespace hub::api {

namespace json = boost::json;

namespace {

// What was given of a document whose keys are the parameters.
json::object Given(const Request& request) {
  json::object given;
  for (const auto& member : request.parameters)
    if (!member.value().is_null()) given[member.key()] = member.value();
  return given;
}

Reply NamesReply(const House& house) {
  json::object names{{"bus", nullptr}};
  for (const auto& member : NamesNow(house)) names[member.key()] = member.value();
  return Done(std::move(names));
}

Reply ChangeNames(House& house, const Request& request, const json::object& names) {
  KeepNames(house, names);
  Note(house, request, "hub", "names changed");
  return NamesReply(house);
}

Reply ChangeSetup(House& house, const Request& request, const json::object& setup) {
  KeepSetup(house, setup);
  Note(house, request, "hub", "setup of cards and channels changed");
  return Done(SetupNow(house));
}

}  // namespace

Answer GetNames(House& house, Request) { co_return NamesReply(house); }

Answer SetNames(House& house, Request request) {
  co_return ChangeNames(house, request, Given(request));
}

Answer MergeNames(House& house, Request request) {
  co_return ChangeNames(house, request, Merge(NamesNow(house), request.parameters));
}

Answer GetSetup(House& house, Request) { co_return Done(SetupNow(house)); }

Answer SetSetup(House& house, Request request) {
  co_return ChangeSetup(house, request, Given(request));
}

Answer MergeSetup(House& house, Request request) {
  co_return ChangeSetup(house, request, Merge(SetupNow(house), request.parameters));
}

Answer GetPage(House& house, Request) { co_return Done(house.page); }

Answer SetPage(House& house, Request request) {
  KeepPage(house, ObjectAt(request, "page"));
  Note(house, request, "hub", "order and groups of the page changed");
  co_return Done(house.page);
}

}  // namespace hub::api
