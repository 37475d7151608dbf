// What each system does in its own way for a program on a terminal.
#pragma once

#include <cstdio>
#include <string_view>

namespace tidyfold::cli {

bool Is_Terminal(std::FILE* stream);

// Writes UTF-8. A terminal shows it as it is, whatever its own character set.
void Write_Text(std::FILE* stream, std::string_view text);

// From here on the first Ctrl-C is only noted, and the second one kills.
void Catch_Interrupt();
bool Interrupt_Caught();

// A byte of standard input, which is UTF-8 where a terminal is typed at; -1 at its end, and on Ctrl-C where
// the system lets a read be interrupted.
int Read_Byte();

}  // namespace tidyfold::cli
