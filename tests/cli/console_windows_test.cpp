// clang-format off
#include <windows.h>
// clang-format on

#include "cli/console.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace tidyfold::cli {
namespace {

TEST(Console, Shows_Every_Character_Whatever_Its_Code_Page) {
  FreeConsole();
  ASSERT_TRUE(AllocConsole());
  SetConsoleOutputCP(437);
  std::FILE* const console = std::fopen("CONOUT$", "r+");
  ASSERT_NE(console, nullptr);
  EXPECT_TRUE(Is_Terminal(console));
  Write_Text(console, "Zoë, Ωμέγα");
  const HANDLE screen = CreateFileW(L"CONOUT$", GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  std::array<wchar_t, 10> shown{};
  DWORD count = 0;
  ReadConsoleOutputCharacterW(screen, shown.data(), static_cast<DWORD>(shown.size()), {0, 0}, &count);
  EXPECT_EQ(std::wstring(shown.data(), count), L"Zoë, Ωμέγα");
  CloseHandle(screen);
  std::fclose(console);
  FreeConsole();

  std::FILE* const nowhere = std::fopen("NUL", "w");
  EXPECT_FALSE(Is_Terminal(nowhere)) << "nobody can be asked there";
  std::fclose(nowhere);
}

}  // namespace
}  // namespace tidyfold::cli
