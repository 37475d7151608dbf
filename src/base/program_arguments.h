// What a program was started with, in UTF-8.
#pragma once

#include <string>
#include <vector>

namespace tidyfold {

// Without the program's own name. Takes what `main` was given; Windows gives `main` less than was typed, so
// it is asked again there.
std::vector<std::string> Program_Arguments(int count, char** words);

}  // namespace tidyfold
