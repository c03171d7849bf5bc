// All that people have settled as one document, to be kept elsewhere and put back. Accounts,
// tokens and other secrets are not in it.
#include <utility>

#include "api/Handlers.h"
#include "api/KeptSettings.h"

namespace hub::api {

namespace json = boost::json;

namespace {

constexpr int64_t kVersion = 1;

Reply BackupReply(const House& house) {
  return Done(json::object{{"version", kVersion},
                           {"names", NamesNow(house)},
                           {"setup", SetupNow(house)},
                           {"page", house.page}});
}

}  // namespace

Answer GetBackup(House& house, Request) { co_return BackupReply(house); }

// All of it or nothing.
Answer PutBackup(House& house, Request request) {
  const json::object names = ObjectAt(request, "names");
  const json::object setup = ObjectAt(request, "setup");
  const json::object page = ObjectAt(request, "page");
  CheckNames(house, names);
  CheckSetup(house, setup);
  ReadPage(page);
  KeepNames(house, names);
  KeepSetup(house, setup);
  KeepPage(house, page);
  Note(house, request, "hub", "a backup was put back");
  co_return BackupReply(house);
}

}  // namespace hub::api
