#include "cli/console.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <csignal>

namespace tidyfold::cli {

namespace {

// A signal handler reaches nothing but statics.
volatile std::sig_atomic_t interrupted = 0;

// A pipe whose reading end wakes an open question, however late the signal comes.
std::array<int, 2> wake_up = {-1, -1};

extern "C" void Note_Interrupt(int) {
  interrupted = 1;
  [[maybe_unused]] const auto written = write(wake_up[1], "", 1);
}

}  // namespace

bool Is_Terminal(std::FILE* stream) {
  return isatty(fileno(stream)) != 0;
}

void Write_Text(std::FILE* stream, std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stream);
}

void Catch_Interrupt() {
  interrupted = 0;
  if (wake_up[0] < 0 && pipe(wake_up.data()) == 0)
    for (const int end : wake_up) fcntl(end, F_SETFD, FD_CLOEXEC);
  struct sigaction action {};
  action.sa_handler = &Note_Interrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  sigaction(SIGINT, &action, nullptr);
}

bool Interrupt_Caught() {
  return interrupted != 0;
}

int Read_Byte() {
  std::array<pollfd, 2> ready = {{{STDIN_FILENO, POLLIN, 0}, {wake_up[0], POLLIN, 0}}};
  while (interrupted == 0 && poll(ready.data(), ready.size(), -1) < 0) {
  }
  unsigned char byte = 0;
  return interrupted == 0 && read(STDIN_FILENO, &byte, 1) == 1 ? byte : -1;
}

}  // namespace tidyfold::cli
