// What each system does in its own way for a program on a terminal.
#pragma once

#include <cstdio>

namespace tidyfold::cli {

bool Is_Terminal(std::FILE* stream);

// From here on the first Ctrl-C is only noted, and the second one kills.
void Catch_Interrupt();
bool Interrupt_Caught();

// A byte of standard input; -1 at its end, and on Ctrl-C where the system lets a read be interrupted.
int Read_Byte();

}  // namespace tidyfold::cli
