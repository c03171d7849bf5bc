// Prints the words of the console's commands as lines of a fuzzer's dictionary.
#include <cstdio>

#include "commands/CaeCommands.h"

int main() {
  for (const CaeCommand& row : CaeCommands())
    std::printf("\"%.*s\"\n", static_cast<int>(row.word.size()), row.word.data());
}
