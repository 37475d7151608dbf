#include "settings/file_registry.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>

#include "settings/registry_routines.h"

namespace tidyfold {
namespace {

class File_Registry_Test : public testing::Test {
 protected:
  File_Registry_Test()
      : folder_(std::filesystem::temp_directory_path() /
                ("tidyfold-registry-" + std::to_string(std::random_device{}()))),
        file_(folder_ / "tidyfold" / "registry.json") {
    std::filesystem::create_directories(file_.parent_path());
  }
  ~File_Registry_Test() override { std::filesystem::remove_all(folder_); }

  // As a program of its own would see it.
  std::string Setting(std::int16_t identifier) {
    File_Registry registry(file_, [this](const std::string& text) { told_.push_back(text); });
    return Registry_Routines(registry).Get_Setting(identifier);
  }
  void Save(std::int16_t identifier, const Registry_Routines::New_Value& value) {
    File_Registry registry(file_, nullptr);
    Registry_Routines(registry).Save_Setting(identifier, value);
  }
  std::string Text(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  std::filesystem::path folder_, file_;
  std::vector<std::string> told_;
};

TEST_F(File_Registry_Test, Keeps_Settings_From_One_Program_To_The_Next) {
  std::filesystem::remove_all(folder_);
  EXPECT_EQ(Setting(setting::help_screen_height), "");
  Save(setting::help_screen_height, 8400.0);
  Save(setting::help_screen_width, -1.0);
  Save(setting::home_dir, std::string("/home/Zo\xC3\xAB \"x\"\\ \xFF"));
  EXPECT_EQ(Setting(setting::help_screen_height), "8400");
  EXPECT_EQ(Setting(setting::help_screen_width), "-1");
  EXPECT_EQ(Setting(setting::home_dir), "/home/Zo\xC3\xAB \"x\"\\ \xEF\xBF\xBD");
  // Nothing but the registry itself is left behind.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file_.parent_path()), {}), 1);
}

TEST_F(File_Registry_Test, A_Damaged_File_Is_Set_Aside_With_A_Message_And_Everything_Goes_On) {
  const std::string damaged[] = {
      "",
      "{\"HKEY_LOCAL_MACHINE\":",
      std::string("\0\0\0\0", 4),
      R"({"HKEY_LOCAL_MACHINE": []})",
      R"({"HKEY_LOCAL_MACHINE": {"Software\\Tidyfold": {"HelpScreenHeight": 5000}}})",
      R"({"HKEY_LOCAL_MACHINE": {"Software\\Tidyfold": {"HelpScreenHeight": {"type": "REG_DWORD", "data": 1e10}}}})",
      R"({"HKEY_LOCAL_MACHINE": {"Software\\Tidyfold": {"HelpScreenHeight": {"type": "REG_SZ"}}}})",
      R"({"HKEY_LOCAL_MACHINE": {"Software\\Tidyfold": {"HelpScreenHeight": {"type": 4, "data": 1}}}})",
      std::string(100000, '[')};
  for (const std::string& text : damaged) {
    told_.clear();
    std::ofstream(file_) << text;
    EXPECT_EQ(Setting(setting::help_screen_height), "") << text.substr(0, 80);
    ASSERT_EQ(told_.size(), 1u) << text.substr(0, 80);
    EXPECT_NE(told_[0].find(file_.string()), std::string::npos);
    EXPECT_EQ(Text(file_.string() + ".damaged"), text);
    Save(setting::help_screen_height, 5000.0);
    EXPECT_EQ(Setting(setting::help_screen_height), "5000");
    EXPECT_EQ(told_.size(), 1u);
  }
}

TEST_F(File_Registry_Test, Names_Have_No_Case_And_Values_Of_Other_Types_Are_Empty_And_Stay) {
  std::ofstream(file_) << R"({"HKEY_LOCAL_MACHINE": {"SOFTWARE\\tidyfold": {)"
                       << R"("Colours": {"data": [1, 2], "type": "REG_BINARY"},)"
                       << R"("helpscreenheight": {"type": "REG_DWORD", "data": 5000}}}})";
  File_Registry registry(file_, nullptr);
  Registry_Routines routines(registry);
  EXPECT_EQ(routines.Get_Setting(setting::help_screen_height), "5000");
  EXPECT_EQ(routines.Registry_Get_Value(Registry_Root::Local_Machine, "\\Software\\Tidyfold", "Colours"),
            Registry_Routines::Value(""));
  EXPECT_FALSE(routines.Registry_Key_Exists(Registry_Root::Current_User, "Software\\Tidyfold"));
  routines.Save_Setting(setting::help_screen_height, 6000.0);
  const std::string text = Text(file_);
  EXPECT_NE(text.find("REG_BINARY"), std::string::npos);
  EXPECT_EQ(text.find("5000"), std::string::npos);
  EXPECT_EQ(text.find("HelpScreenHeight"), std::string::npos)
      << "written a second time under another spelling";
}

TEST_F(File_Registry_Test, What_Cannot_Be_Reached_Is_Neither_Set_Aside_Nor_Written) {
  std::filesystem::create_directory(file_);
  Save(setting::help_screen_height, 5000.0);
  EXPECT_EQ(Setting(setting::help_screen_height), "");
  EXPECT_TRUE(std::filesystem::is_directory(file_));
  EXPECT_TRUE(told_.empty());
}

}  // namespace
}  // namespace tidyfold
