// clang-format off
#include <windows.h>
#include <shellapi.h>
// clang-format on

#include <memory>

#include "base/program_arguments.h"

namespace tidyfold {

namespace {

std::string Utf8(const wchar_t* text) {
  const int size = ::WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 1) return {};
  std::string utf8(static_cast<std::size_t>(size), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
  utf8.pop_back();  // the closing zero
  return utf8;
}

}  // namespace

std::vector<std::string> Program_Arguments(int, char**) {
  int count = 0;
  const std::unique_ptr<wchar_t*, decltype(&::LocalFree)> words(
      ::CommandLineToArgvW(::GetCommandLineW(), &count), &::LocalFree);
  std::vector<std::string> arguments;
  for (int i = 1; i < count; ++i) arguments.push_back(Utf8(words.get()[i]));
  return arguments;
}

}  // namespace tidyfold
