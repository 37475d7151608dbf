#include "cli/commands.h"

int main(int count, char** words) {
  return static_cast<int>(tidyfold::cli::Run({words + 1, words + count}));
}
