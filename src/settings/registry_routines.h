// Settings by number, the registry operations below them, and a parser of parameter texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "settings/number_texts.h"
#include "settings/registry.h"

namespace tidyfold {

namespace setting {
inline constexpr std::int16_t home_dir = 3, main_screen_height = 300, main_screen_width = 301,
                              help_screen_height = 302, help_screen_width = 303, template_editor_height = 304,
                              template_editor_width = 305;
}

// A failed registry call is not an error: a value that cannot be read is an empty text, and one that cannot
// be written anywhere is dropped. Last_Registry_Result holds the result of the latest call.
class Registry_Routines {
 public:
  using Value = std::variant<std::string, std::int32_t>;
  using New_Value = std::variant<std::string, double>;

  explicit Registry_Routines(Registry& registry) : registry_(registry) {}

  bool Registry_Key_Exists(Registry_Root root, const std::string& sub_key);
  // Also an empty text for a value that is neither text nor a 32-bit number.
  Value Registry_Get_Value(Registry_Root root, const std::string& sub_key, const std::string& name);
  // A text that is a number in the user's locale is stored as a number. Numbers are rounded to 32 bits;
  // throws std::overflow_error for one that does not fit, and writes nothing. False where it was refused.
  bool Registry_Set_Value(Registry_Root root, const std::string& sub_key, const std::string& name,
                          const New_Value& value);
  void Registry_Create_Key(Registry_Root root, const std::string& sub_key);

  // Of the user's own key, or else of the machine's. A number comes back as its decimal text; an unknown
  // identifier as empty text.
  std::string Get_Setting(std::int16_t identifier);
  // For the machine; for the user alone who may not write that. Does nothing for an unknown identifier;
  // throws like Registry_Set_Value.
  void Save_Setting(std::int16_t identifier, const New_Value& value);

  // 0: the most recent registry call succeeded.
  std::int32_t Last_Registry_Result() const { return last_registry_result_; }

 private:
  Registry& registry_;
  std::int32_t last_registry_result_ = 0;
};

// The value of a name in a text of name=value pairs joined by "+"; a value ends at its first "=". Names are
// told apart by case. Trims both texts in place.
std::string Get_Parameter(std::string& name, std::string& parameters);

}  // namespace tidyfold
