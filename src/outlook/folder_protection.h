// Where the marks of protected folders are kept. A mark belongs to one folder, by the identifiers of its
// store and of itself; that it also protects what lies below is the business of Protected_Folders.
#pragma once

#include <string>

namespace tidyfold {

class Folder_Protection {
 public:
  virtual ~Folder_Protection() = default;
  // Throws Automation_Error when the mark cannot be read.
  virtual bool Is_Protected(const std::string& store_id, const std::string& entry_id) = 0;
  // The mark lasts when this returns. Throws Automation_Error when it could not be changed, or something else
  // of the store failed with it.
  virtual void Set_Protected(const std::string& store_id, const std::string& entry_id, bool is_protected) = 0;
  // False for a store that is open for reading only.
  virtual bool Can_Change(const std::string& store_id) = 0;
};

}  // namespace tidyfold
