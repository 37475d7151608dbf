// clang-format off
#include <windows.h>
// clang-format on

#include "help/system_html_help.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

namespace tidyfold {
namespace {

constexpr std::uint32_t display_topic = 0, close_all = 0x12;

TEST(System_Html_Help, Opens_The_Book_And_Says_When_It_Cannot) {
  const HWND probe =
      CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  if (probe == nullptr) GTEST_SKIP() << "There is no screen to open a window on.";
  DestroyWindow(probe);

  const auto book = reinterpret_cast<HWND>(System_HtmlHelpA(0, TIDYFOLD_BOOK, display_topic, 0));
  ASSERT_TRUE(IsWindow(book));
  std::array<char, 64> title{};
  GetWindowTextA(book, title.data(), static_cast<int>(title.size()));
  EXPECT_STREQ(title.data(), "Tidyfold Help");
  System_HtmlHelpA(0, "", close_all, 0);

  EXPECT_EQ(System_HtmlHelpA(0, TIDYFOLD_BOOK ".none", display_topic, 0), 0);
}

}  // namespace
}  // namespace tidyfold
