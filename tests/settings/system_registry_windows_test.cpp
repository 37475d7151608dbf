// clang-format off
#include <windows.h>
// clang-format on

#include <gtest/gtest.h>

#include "settings/registry_routines.h"

namespace tidyfold {
namespace {

constexpr const char* key = "Software\\Tidyfold";

// The type and bytes that another program reads.
std::pair<DWORD, std::string> Stored(const char* name) {
  DWORD type = REG_NONE, size = 64;
  std::string bytes(size, '?');
  if (RegGetValueA(HKEY_LOCAL_MACHINE, key, name, RRF_RT_ANY, &type, bytes.data(), &size) != ERROR_SUCCESS)
    return {REG_NONE, ""};
  bytes.resize(size);
  return {type, bytes};
}

class System_Registry : public testing::Test {
 protected:
  void SetUp() override {
    if (routines_.Registry_Key_Exists(Registry_Root::Local_Machine, key))
      GTEST_SKIP() << "There are settings here already, which may be a person's.";
  }
  void TearDown() override {
    if (!IsSkipped()) RegDeleteTreeA(HKEY_LOCAL_MACHINE, key);
  }

  std::unique_ptr<Registry> registry_ = Make_System_Registry(nullptr);
  Registry_Routines routines_{*registry_};
};

TEST_F(System_Registry, Settings_Lie_Under_The_Machines_Key_As_Numbers_And_Texts) {
  EXPECT_EQ(routines_.Get_Setting(setting::help_screen_height), "");
  routines_.Save_Setting(setting::help_screen_height, 6542.5);
  if (routines_.Last_Registry_Result() == ERROR_ACCESS_DENIED)
    GTEST_SKIP() << "Only an administrator may write there.";
  routines_.Save_Setting(setting::help_screen_width, std::string("007"));
  routines_.Save_Setting(setting::home_dir, std::string("  C:\\Tidy "));

  using namespace std::string_literals;
  EXPECT_EQ(Stored("HelpScreenHeight"), std::pair(DWORD{REG_DWORD}, "\x8E\x19\0\0"s));
  EXPECT_EQ(Stored("HelpScreenWidth"), std::pair(DWORD{REG_DWORD}, "\x07\0\0\0"s));
  EXPECT_EQ(Stored("Home_Dir"), std::pair(DWORD{REG_SZ}, "C:\\Tidy\0"s));
  EXPECT_EQ(routines_.Get_Setting(setting::help_screen_height), "6542");
  EXPECT_EQ(routines_.Get_Setting(setting::home_dir), "C:\\Tidy");

  const BYTE odd[] = {1, 2, 3};
  RegSetKeyValueA(HKEY_LOCAL_MACHINE, key, "Home_Dir", REG_BINARY, odd, sizeof odd);
  EXPECT_EQ(routines_.Get_Setting(setting::home_dir), "");
}

}  // namespace
}  // namespace tidyfold
