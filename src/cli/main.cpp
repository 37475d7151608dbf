#include "base/program_arguments.h"
#include "cli/commands.h"

int main(int count, char** words) {
  return static_cast<int>(tidyfold::cli::Run(tidyfold::Program_Arguments(count, words)));
}
