#include "cli/console.h"

#include <io.h>

#include <csignal>

namespace tidyfold::cli {

namespace {

// A signal handler reaches nothing but statics.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void Note_Interrupt(int) {
  interrupted = 1;
}

}  // namespace

bool Is_Terminal(std::FILE* stream) {
  return _isatty(_fileno(stream)) != 0;
}

void Catch_Interrupt() {
  interrupted = 0;
  std::signal(SIGINT, &Note_Interrupt);
}

bool Interrupt_Caught() {
  return interrupted != 0;
}

int Read_Byte() {
  return std::getc(stdin);
}

}  // namespace tidyfold::cli
