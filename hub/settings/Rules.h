// What the texts of the file may be: a test, and the words that say what is right. Pure.
#pragma once

#include <string_view>

namespace hub::settings {

struct Rule {
  bool (*fits)(std::string_view text);
  std::string_view takes;  // "it takes ..."
  bool is_secret = false;  // what stands there instead may be a secret, and is not shown
};

extern const Rule kAnyText;
extern const Rule kPath;        // not empty
extern const Rule kPathOrNone;  // or empty
extern const Rule kSecretPathOrNone;
extern const Rule kHost;  // to connect to: a name or an address
extern const Rule kHostOrNone;
extern const Rule kHostName;  // a name under which the page is reached
extern const Rule kAddress;   // literal
extern const Rule kTextListen;
extern const Rule kBoardName;  // "" too
extern const Rule kLabel;      // a name for people
extern const Rule kUnit;
extern const Rule kOutputForm;  // "light"
extern const Rule kDeviceClass;

}  // namespace hub::settings
