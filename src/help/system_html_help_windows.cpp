// clang-format off
#include <windows.h>
// clang-format on

#include "help/system_html_help.h"

namespace tidyfold {

// Loaded on demand: the program also runs on systems without it.
std::intptr_t System_HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                               std::uintptr_t data) {
  using Function = HWND(WINAPI*)(HWND, LPCSTR, UINT, DWORD_PTR);
  static const HMODULE library = ::LoadLibraryA("hhctrl.ocx");
  if (library == nullptr) return 0;
  const auto function =
      reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, "HtmlHelpA")));
  if (function == nullptr) return 0;
  const auto window = reinterpret_cast<HWND>(static_cast<LONG_PTR>(owner));
  return reinterpret_cast<std::intptr_t>(function(window, file.c_str(), command, data));
}

}  // namespace tidyfold
