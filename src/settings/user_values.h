// Texts that the program keeps for its user, by name, below one key of the registry.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "settings/registry.h"

namespace tidyfold {

// What cannot be read is absent; what cannot be written is dropped.
class User_Values {
 public:
  // `key` is a path below HKEY_CURRENT_USER.
  User_Values(Registry& registry, std::string key) : registry_(registry), key_(std::move(key)) {}

  // Empty where there is none.
  std::string Text(const std::string& name) const;
  // False where the registry could not be written.
  bool Set_Text(const std::string& name, const std::string& text);

 private:
  Registry& registry_;
  std::string key_;
};

// Numbers by name, kept together as one text, so that keeping them is one write.
class Kept_Numbers {
 public:
  Kept_Numbers() = default;
  explicit Kept_Numbers(std::string text) : text_(std::move(text)) {}

  std::optional<std::int32_t> Get(const std::string& name) const;
  // A name holds neither "+" nor "=".
  void Set(const std::string& name, std::int32_t number);
  const std::string& Text() const { return text_; }

 private:
  std::string text_;  // see Get_Parameter
};

}  // namespace tidyfold
