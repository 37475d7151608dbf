#include "settings/file_registry.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "doubles/temporary_directory.h"
#include "settings/last_stores.h"
#include "settings/registry_routines.h"
#include "settings/user_settings_file.h"

namespace tidyfold {
namespace {

class File_Registry_Test : public testing::Test {
 protected:
  File_Registry_Test() { std::filesystem::create_directories(file_.parent_path()); }

  // As a program of its own would see it.
  std::string Setting(std::int16_t identifier) {
    File_Registry registry(file_, [this](const std::string& text) { told_.push_back(text); });
    return Registry_Routines(registry).Get_Setting(identifier);
  }
  void Save(std::int16_t identifier, const Registry_Routines::New_Value& value) {
    File_Registry registry(file_, nullptr);
    Registry_Routines(registry).Save_Setting(identifier, value);
  }
  const Temporary_Directory folder_;
  const std::filesystem::path file_ = folder_ / "tidyfold" / "settings.json";
  std::vector<std::string> told_;
};

TEST_F(File_Registry_Test, Keeps_Settings_From_One_Program_To_The_Next) {
  std::filesystem::remove_all(file_.parent_path());
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
      "", std::string("\0\0\0\0", 4),
      R"({"HKEY_LOCAL_MACHINE": {"Software\\Tidyfold": {"HelpScreenHeight": 5000}}})",
      R"({"HKEY_LOCAL_MACHINE": {"Software\\Tidyfold": {"HelpScreenHeight": {"type": "REG_DWORD", "data": 1e10}}}})",
      std::string(100000, '[')};
  for (const std::string& text : damaged) {
    told_.clear();
    std::ofstream(file_) << text;
    EXPECT_EQ(Setting(setting::help_screen_height), "") << text.substr(0, 80);
    ASSERT_EQ(told_.size(), 1u) << text.substr(0, 80);
    EXPECT_EQ(told_[0], "The file with the settings, " + file_.string() +
                            ", is damaged. The settings start afresh; the damaged file is kept as " +
                            file_.string() + ".damaged.");
    EXPECT_EQ(Bytes_Of(file_.string() + ".damaged"), text);
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
  const std::string text = Bytes_Of(file_);
  EXPECT_NE(text.find("REG_BINARY"), std::string::npos);
  EXPECT_EQ(text.find("5000"), std::string::npos);
  EXPECT_EQ(text.find("HelpScreenHeight"), std::string::npos)
      << "written a second time under another spelling";
}

#ifndef _WIN32
// Absolute or relative, a link stays; behind it lies the new content with the permissions of the old.
TEST_F(File_Registry_Test, Writing_Keeps_Links_And_Permissions) {
  namespace fs = std::filesystem;
  const auto mode = [](const fs::path& file) {
    return static_cast<unsigned>(fs::status(file).permissions());
  };
  const fs::path kept = folder_ / "dotfiles" / "settings";
  fs::create_directories(kept.parent_path());
  std::ofstream(kept) << "{}";
  fs::permissions(kept, static_cast<fs::perms>(0640));
  for (const fs::path& link : {kept, fs::path("../dotfiles/settings"), fs::path("../new/settings")}) {
    fs::remove(file_);
    fs::create_symlink(link, file_);
    Save(setting::help_screen_height, 6000.0);
    EXPECT_EQ(fs::read_symlink(file_), link);
    const fs::path target = (file_.parent_path() / link).lexically_normal();
    EXPECT_NE(Bytes_Of(target).find("6000"), std::string::npos);
    EXPECT_EQ(mode(target), target == kept ? 0640u : 0600u) << target;
  }
}

TEST_F(File_Registry_Test, Takes_Over_The_Two_Files_Of_Earlier_Versions_Once) {
  const std::filesystem::path folder = file_.parent_path();
  const auto take_over = [&] {
    File_Registry registry(file_, nullptr);
    Take_Over_Old_Settings(folder, registry);
    std::vector<std::string> texts;
    for (const Store_Address& store : Last_Stores(registry)) texts.push_back(store.Text());
    return texts;
  };
  std::ofstream(folder / "registry.json") << R"({"HKEY_LOCAL_MACHINE": {"Software\\Tidyfold": {)"
                                          << R"("HelpScreenHeight": {"type": "REG_DWORD", "data": 5000}}}})";
  std::ofstream(folder / "tidyfold.conf") << "2=/not/of/the/group\n[Stores]\n1=/a b/my \\\\ store\n"
                                          << "2=/Privé\n[Other]\n4=/x\n";
  const std::vector<std::string> stores{"/a b/my \\ store", "/Privé"};
  EXPECT_EQ(take_over(), stores);
  EXPECT_EQ(Setting(setting::help_screen_height), "5000");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
  // What is kept now is newer than a file that comes back.
  File_Registry registry(file_, nullptr);
  const std::string addresses[] = {"maildir:/mail", "imaps://me%40example.org@host:1993/", "/newer"};
  ASSERT_TRUE(Keep_Last_Stores(registry, {Read_Store_Address("/new"), Read_Store_Address("2"),
                                          Store_Address("/3"), Store_Address("/4")}));
  ASSERT_TRUE(Keep_Last_Stores(registry, {Read_Store_Address(addresses[0]), Read_Store_Address(addresses[1]),
                                          Read_Store_Address(addresses[2])}));
  std::ofstream(folder / "tidyfold.conf") << "[Stores]\n1=/old\n";
  EXPECT_THAT(take_over(), testing::ElementsAreArray(addresses));
  EXPECT_FALSE(std::filesystem::exists(folder / "tidyfold.conf"));
}
#endif

TEST_F(File_Registry_Test, What_Cannot_Be_Reached_Is_Neither_Set_Aside_Nor_Written) {
  std::filesystem::create_directory(file_);
  Save(setting::help_screen_height, 5000.0);
  EXPECT_EQ(Setting(setting::help_screen_height), "");
  EXPECT_TRUE(std::filesystem::is_directory(file_));
  EXPECT_TRUE(told_.empty());
}

}  // namespace
}  // namespace tidyfold
