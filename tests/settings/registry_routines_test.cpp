#include "settings/registry_routines.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <stdexcept>

namespace tidyfold {
namespace {

using namespace std::string_literals;
using Value = Registry_Routines::New_Value;

// A registry with one value as raw bytes; counts open keys.
struct One_Value : Registry {
  std::uint32_t type = registry_type::none;
  std::string bytes;
  int open = 0;

  std::int32_t RegOpenKeyA(Registry_Root, const std::string&, Key& key) override {
    ++open;
    key = 1;
    return registry_result::success;
  }
  std::int32_t RegCreateKeyA(Registry_Root root, const std::string& sub_key, Key& key) override {
    return RegOpenKeyA(root, sub_key, key);
  }
  std::int32_t RegQueryValueExA(Key, const std::string&, std::uint32_t& found, void* data,
                                std::uint32_t& size) override {
    found = type;
    size = static_cast<std::uint32_t>(bytes.size());
    if (data != nullptr) std::memcpy(data, bytes.data(), size);
    return registry_result::success;
  }
  std::int32_t RegSetValueExA(Key, const std::string&, std::uint32_t given, const void* data,
                              std::uint32_t size) override {
    type = given;
    bytes.assign(static_cast<const char*>(data), size);
    return registry_result::success;
  }
  std::int32_t RegCloseKey(Key) override { return --open; }
};

std::string Number(std::int32_t number) {
  return {reinterpret_cast<const char*>(&number), sizeof number};
}

TEST(Registry_Routines, Stores_Numbers_And_What_Reads_As_One_As_Numbers_And_The_Rest_As_Trimmed_Text) {
  const struct {
    Value value;
    std::uint32_t type;
    std::string bytes;
    std::string read_back;
  } cases[] = {{6543.5, registry_type::dword, Number(6544), "6544"},
               {-0.5, registry_type::dword, Number(0), "0"},
               {-2147483648.0, registry_type::dword, Number(-2147483648), "-2147483648"},
               {" 1200 "s, registry_type::dword, Number(1200), "1200"},
               {"  C:\\Tidy  "s, registry_type::sz, "C:\\Tidy\0"s, "C:\\Tidy"},
               {"   "s, registry_type::sz, "\0"s, ""}};
  for (const auto& c : cases) {
    One_Value registry;
    Registry_Routines routines(registry);
    routines.Save_Setting(setting::home_dir, c.value);
    EXPECT_EQ(registry.type, c.type) << c.read_back;
    EXPECT_EQ(registry.bytes, c.bytes) << c.read_back;
    EXPECT_EQ(routines.Get_Setting(setting::home_dir), c.read_back);
    EXPECT_EQ(registry.open, 0);
  }
}

TEST(Registry_Routines, A_Number_That_Does_Not_Fit_Writes_Nothing) {
  for (const Value& value : {Value(2147483648.0), Value("99999999999"s)}) {
    One_Value registry;
    EXPECT_THROW(Registry_Routines(registry).Save_Setting(setting::help_screen_height, value),
                 std::overflow_error);
    EXPECT_EQ(registry.type, registry_type::none);
    EXPECT_EQ(registry.open, 0);
  }
}

TEST(Registry_Routines, Reads_Whatever_Others_Have_Stored) {
  const struct {
    std::uint32_t type;
    std::string bytes, read;
  } cases[] = {{registry_type::sz, "without an end", "without an end"},
               {registry_type::sz, "cut\0off"s, "cut"},
               {3, "binary", ""}};
  for (const auto& c : cases) {
    One_Value registry;
    registry.type = c.type;
    registry.bytes = c.bytes;
    EXPECT_EQ(Registry_Routines(registry).Get_Setting(setting::help_screen_width), c.read);
    EXPECT_EQ(registry.open, 0);
  }
}

// One value for each root; that of the machine may be closed to writing.
struct Value_By_Root : Registry {
  std::map<Key, std::int32_t> values;
  bool machine_may_be_written = true;

  std::int32_t RegOpenKeyA(Registry_Root root, const std::string&, Key& key) override {
    key = static_cast<Key>(root);
    return registry_result::success;
  }
  std::int32_t RegCreateKeyA(Registry_Root root, const std::string& sub_key, Key& key) override {
    if (machine_may_be_written || root != Registry_Root::Local_Machine)
      return RegOpenKeyA(root, sub_key, key);
    return registry_result::access_denied;
  }
  std::int32_t RegQueryValueExA(Key key, const std::string&, std::uint32_t& type, void* data,
                                std::uint32_t& size) override {
    if (!values.contains(key)) return registry_result::file_not_found;
    type = registry_type::dword;
    if (data != nullptr) std::memcpy(data, &values[key], size);
    return registry_result::success;
  }
  std::int32_t RegSetValueExA(Key key, const std::string&, std::uint32_t, const void* data,
                              std::uint32_t size) override {
    if (key == 0) return registry_result::invalid_handle;
    std::memcpy(&values[key], data, size);
    return registry_result::success;
  }
  std::int32_t RegCloseKey(Key) override { return registry_result::success; }
};

TEST(Registry_Routines, A_Setting_That_The_Machine_Refuses_Is_The_Users_And_What_Is_The_Users_Counts) {
  Value_By_Root registry;
  Registry_Routines routines(registry);
  const auto save = [&](double height) {
    routines.Save_Setting(setting::help_screen_height, height);
    return routines.Get_Setting(setting::help_screen_height);
  };
  EXPECT_EQ(save(6000), "6000");
  EXPECT_EQ(registry.values.size(), 1u) << "of the machine, where that can be written";
  registry.machine_may_be_written = false;
  EXPECT_EQ(save(7000), "7000");
  EXPECT_EQ(registry.values[static_cast<Registry::Key>(Registry_Root::Local_Machine)], 6000);
  registry.machine_may_be_written = true;
  EXPECT_EQ(save(8000), "8000") << "an older value of the user's hides none";
}

TEST(Numeric_Value, Follows_The_Locale) {
  const Number_Format german{",", "."}, plain;
  EXPECT_EQ(Numeric_Value("1.234,5", german), 1234.5);
  EXPECT_EQ(Numeric_Value("1,234.5", german), std::nullopt);
  EXPECT_EQ(Numeric_Value("-1.2345e3", plain), -1234.5);
  EXPECT_EQ(Numeric_Value("1e999", plain), std::nullopt);
}

TEST(Get_Parameter, Takes_The_First_Piece_Of_That_Name_Up_To_Its_First_Equals_Sign) {
  const struct {
    std::string name, parameters, value;
  } cases[] = {{"X", "XY=1+X=2", "2"}, {"A", "A=1=2", "1"}, {"A", "A=+A=2", ""}, {"A", " B=1+A= 2 ", " 2"}};
  for (auto c : cases) EXPECT_EQ(Get_Parameter(c.name, c.parameters), c.value) << c.parameters;
}

}  // namespace
}  // namespace tidyfold
