#include "settings/registry_routines.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "doubles/memory_registry.h"

namespace tidyfold {
namespace {

using namespace std::string_literals;
using Value = Registry_Routines::New_Value;

constexpr const char* key = "Software\\Tidyfold";

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
               {6542.5, registry_type::dword, Number(6542), "6542"},
               {-0.5, registry_type::dword, Number(0), "0"},
               {-2147483648.0, registry_type::dword, Number(-2147483648), "-2147483648"},
               {"007"s, registry_type::dword, Number(7), "7"},
               {" 1200 "s, registry_type::dword, Number(1200), "1200"},
               {"1e3"s, registry_type::dword, Number(1000), "1000"},
               {"&HFF"s, registry_type::dword, Number(255), "255"},
               {"  C:\\Tidy  "s, registry_type::sz, "C:\\Tidy\0"s, "C:\\Tidy"},
               {"12 Main Street"s, registry_type::sz, "12 Main Street\0"s, "12 Main Street"},
               {"1.2.3"s, registry_type::sz, "1.2.3\0"s, "1.2.3"},
               {"nan"s, registry_type::sz, "nan\0"s, "nan"},
               {"-"s, registry_type::sz, "-\0"s, "-"},
               {"   "s, registry_type::sz, "\0"s, ""}};
  for (const auto& c : cases) {
    Memory_Registry registry;
    Registry_Routines routines(registry);
    routines.Save_Setting(setting::home_dir, c.value);
    const auto& stored = registry.values[{key, "Home_Dir"}];
    EXPECT_EQ(stored.type, c.type) << c.read_back;
    EXPECT_EQ(stored.bytes, c.bytes) << c.read_back;
    EXPECT_EQ(routines.Get_Setting(setting::home_dir), c.read_back);
    EXPECT_EQ(registry.open_keys, 0);
    EXPECT_EQ(routines.Last_Registry_Result(), 0);
  }
}

TEST(Registry_Routines, A_Number_That_Does_Not_Fit_Writes_Nothing) {
  for (const Value& value : {Value(2147483648.0), Value("99999999999"s)}) {
    Memory_Registry registry;
    EXPECT_THROW(Registry_Routines(registry).Save_Setting(setting::help_screen_height, value),
                 std::overflow_error);
    EXPECT_TRUE(registry.values.empty());
    EXPECT_EQ(registry.open_keys, 0);
  }
}

TEST(Registry_Routines, Reads_Whatever_Others_Have_Stored) {
  const struct {
    Memory_Registry::Stored stored;
    std::string read;
  } cases[] = {{{registry_type::sz, "without an end"}, "without an end"},
               {{registry_type::sz, "cut\0off"s}, "cut"},
               {{registry_type::sz, ""}, ""},
               {{3, "binary"}, ""},
               {{2, "%PATH%\0"s}, ""}};
  for (const auto& c : cases) {
    Memory_Registry registry;
    registry.values[{key, "HelpScreenWidth"}] = c.stored;
    EXPECT_EQ(Registry_Routines(registry).Get_Setting(setting::help_screen_width), c.read);
    EXPECT_EQ(registry.open_keys, 0);
  }
}

TEST(Registry_Routines, A_Setting_That_Nobody_Knows_Never_Reaches_The_Registry) {
  Memory_Registry registry;
  Registry_Routines routines(registry);
  routines.Save_Setting(306, 1.0);
  EXPECT_EQ(routines.Get_Setting(306), "");
  EXPECT_EQ(registry.calls, 0);
}

TEST(Registry_Routines, A_Refused_Write_Is_Silent_And_Leaves_The_Old_Value) {
  Memory_Registry registry;
  Registry_Routines routines(registry);
  routines.Save_Setting(setting::help_screen_height, 5000.0);
  registry.writable = false;
  routines.Save_Setting(setting::help_screen_height, 6000.0);
  EXPECT_NE(routines.Last_Registry_Result(), 0);
  EXPECT_EQ(routines.Get_Setting(setting::help_screen_height), "5000");
  EXPECT_EQ(registry.open_keys, 0);
  EXPECT_TRUE(routines.Registry_Key_Exists(Registry_Root::Local_Machine, key));
  EXPECT_FALSE(routines.Registry_Key_Exists(Registry_Root::Local_Machine, "Software"));
}

TEST(Numeric_Value, Follows_The_Locale) {
  const Number_Format german{",", "."}, plain;
  EXPECT_EQ(Numeric_Value("1.234,5", german), 1234.5);
  EXPECT_EQ(Numeric_Value("1,234.5", german), std::nullopt);
  EXPECT_EQ(Numeric_Value("-1234.5", plain), -1234.5);
  EXPECT_EQ(Numeric_Value("1,234", plain), std::nullopt);
  EXPECT_EQ(Numeric_Value("1e999", plain), std::nullopt);
}

TEST(Leading_Number, Is_What_A_Text_Starts_With) {
  const std::pair<const char*, double> cases[] = {
      {"1201", 1201}, {" 12 apples", 12}, {"-3.5x", -3.5}, {"1e2e", 100}, {"topic 7", 0}, {"", 0},
      {"+", 0},       {"inf", 0},         {"12,5", 12},    {".5", 0.5},   {"7.", 7},      {"2e", 2}};
  for (const auto& [text, number] : cases) EXPECT_EQ(Leading_Number(text), number) << text;
}

TEST(Get_Parameter, Takes_The_First_Piece_Of_That_Name_Up_To_Its_First_Equals_Sign) {
  const struct {
    std::string name, parameters, value;
  } cases[] = {{"FOLDER_COUNT", "FOLDER_COUNT=12+X=3", "12"},
               {"X", "XY=1+X=2", "2"},
               {"A", "A=1=2", "1"},
               {"A", "A", ""},
               {"A", "A=+A=2", ""},
               {"a", "A=1", ""},
               {"A", " B=1+A= 2 ", " 2"},
               {" A ", "  A=1+B=2", "1"},
               {"", "=1", ""},
               {"A", "B=1+ A=2", ""}};
  for (auto c : cases) EXPECT_EQ(Get_Parameter(c.name, c.parameters), c.value) << c.parameters;
  std::string name = " A ", parameters = "  A=1 ";
  Get_Parameter(name, parameters);
  EXPECT_EQ(name + "|" + parameters, "A|A=1");
}

}  // namespace
}  // namespace tidyfold
