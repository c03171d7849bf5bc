// Runs the whole-daemon tests inside the sandbox: outside of it, the program
// starts itself again through the script. Listing the tests needs no sandbox.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <vector>

namespace {

bool InSandbox() {
  const char* mark = std::getenv("QELM_SANDBOX");
  return mark != nullptr && std::string_view(mark) == "inside";
}

void EnterSandbox(char** argv) {
  std::vector<char*> command{const_cast<char*>(SANDBOX_SCRIPT),
                             const_cast<char*>("/proc/self/exe")};
  char self[4096] = {};
  if (readlink("/proc/self/exe", self, sizeof self - 1) > 0) command[1] = self;
  for (char** argument = argv + 1; *argument != nullptr; ++argument) command.push_back(*argument);
  command.push_back(nullptr);
  execv(SANDBOX_SCRIPT, command.data());
  std::perror(SANDBOX_SCRIPT);
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<char*> arguments(argv, argv + argc + 1);
  testing::InitGoogleTest(&argc, argv);
  if (!InSandbox() && !testing::GTEST_FLAG(list_tests)) {
    // In a session of its own the scheduler weighs this program against other
    // busy ones, and not together with them: the fake adapter must answer soon.
    setsid();
    EnterSandbox(arguments.data());
    return 1;
  }
  return RUN_ALL_TESTS();
}
