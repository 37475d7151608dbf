// clang-format off
#include <windows.h>
// clang-format on

#include "cli/console.h"

#include <io.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <string>

namespace tidyfold::cli {

namespace {

// A signal handler reaches nothing but statics.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void Note_Interrupt(int) {
  interrupted = 1;
}

// Null where the stream is no console.
HANDLE Console_Of(std::FILE* stream) {
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  DWORD mode = 0;
  return GetConsoleMode(handle, &mode) != FALSE ? handle : nullptr;
}

std::wstring To_Wide(std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(text.size(), L'\0');
  const int length = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), size);
  wide.resize(static_cast<std::size_t>(length));
  return wide;
}

// What has been typed and not been read yet.
std::string typed;

bool Read_Typed_Line(HANDLE console) {
  std::array<wchar_t, 4096> line{};
  DWORD count = 0;
  if (ReadConsoleW(console, line.data(), static_cast<DWORD>(line.size()), &count, nullptr) == FALSE ||
      count == 0)
    return false;
  typed.resize(3 * count);
  typed.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(count),
                                                            typed.data(), static_cast<int>(typed.size()),
                                                            nullptr, nullptr)));
  // Ctrl-Z at the beginning of a line ends the input.
  return typed.front() != '\x1A';
}

}  // namespace

// For the C library the null device is one, too.
bool Is_Terminal(std::FILE* stream) {
  return Console_Of(stream) != nullptr;
}

// The console takes UTF-16 whole; bytes would be read in its code page, which is another one.
void Write_Text(std::FILE* stream, std::string_view text) {
  const HANDLE console = Console_Of(stream);
  if (console == nullptr) {
    std::fwrite(text.data(), 1, text.size(), stream);
    return;
  }
  std::fflush(stream);
  const std::wstring wide = To_Wide(text);
  constexpr std::size_t most = 8192;  // of one call
  for (std::size_t at = 0, count = 0; at < wide.size(); at += count) {
    count = std::min(most, wide.size() - at);
    if (count > 1 && IS_HIGH_SURROGATE(wide[at + count - 1])) --count;
    DWORD written = 0;
    WriteConsoleW(console, wide.data() + at, static_cast<DWORD>(count), &written, nullptr);
  }
}

void Catch_Interrupt() {
  interrupted = 0;
  std::signal(SIGINT, &Note_Interrupt);
}

bool Interrupt_Caught() {
  return interrupted != 0;
}

int Read_Byte() {
  const HANDLE console = Console_Of(stdin);
  if (console == nullptr) return std::getc(stdin);
  if (typed.empty() && !Read_Typed_Line(console)) return -1;
  const auto byte = static_cast<unsigned char>(typed.front());
  typed.erase(0, 1);
  return byte;
}

}  // namespace tidyfold::cli
