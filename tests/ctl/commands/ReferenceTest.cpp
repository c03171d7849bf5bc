// Whatever the table of commands names stands in the manual page.
#include <gtest/gtest.h>

#include "base/Text.h"
#include "commands/Command.h"
#include "kit/Files.h"

namespace ctl {
namespace {

TEST(Reference, NamesEveryCommandAndEveryOption) {
  const std::string page = ReadFile(COMPLETIONS "/../../docs/reference/qelmctl.1.md");
  ASSERT_FALSE(page.empty());
  for (const Command& command : Commands()) {
    const size_t entry = page.find("**`" + command.name);
    ASSERT_NE(entry, std::string::npos) << command.name;
    const std::string heading = page.substr(entry, page.find('\n', entry) - entry);
    for (const Option& option : command.options)
      for (const std::string& name : Split(option.name, ','))
        EXPECT_NE(heading.find(name), std::string::npos) << command.name << " " << name;
  }
}

}  // namespace
}  // namespace ctl
