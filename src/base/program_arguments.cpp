#include "base/program_arguments.h"

namespace tidyfold {

std::vector<std::string> Program_Arguments(int count, char** words) {
  return count > 0 ? std::vector<std::string>(words + 1, words + count) : std::vector<std::string>();
}

}  // namespace tidyfold
