// The marks of protected folders, kept with the program's settings: for stores that have no place for them.
#pragma once

#include "outlook/folder_protection.h"
#include "settings/registry.h"

namespace tidyfold {

class Stored_Protection : public Folder_Protection {
 public:
  explicit Stored_Protection(Registry& registry) : registry_(registry) {}
  bool Is_Protected(const std::string& store_id, const std::string& entry_id) override;
  void Set_Protected(const std::string& store_id, const std::string& entry_id, bool is_protected) override;
  bool Can_Change(const std::string&) override { return true; }

 private:
  Registry& registry_;
};

}  // namespace tidyfold
