// The object model over the program's own store files: a session with a list of open stores.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "outlook/change_groups.h"
#include "outlook/folder_protection.h"
#include "outlook/object_model.h"
#include "stores/sqlite/displayed_item.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

class Embedded_Outlook : public Automation, public Change_Groups, public Folder_Protection {
 public:
  Embedded_Outlook();
  ~Embedded_Outlook() override;

  // Appends stores to the list. Throws Store_Open_Error and adds none if one cannot be opened. A file that
  // is open here already or named twice is refused (Locked). Progress as Embedded_Store::Open tells it.
  void Open(const std::vector<std::filesystem::path>& paths, Store_Mode mode = Store_Mode::Read_Write,
            const Store_Progress& progress = {});
  // Replaces the list of stores. Stores in both lists stay open and their objects valid. Pending changes are
  // committed first. The list is unchanged after an error.
  void Replace(const std::vector<std::filesystem::path>& paths, Store_Mode mode = Store_Mode::Read_Write,
               const Store_Progress& progress = {});
  // Appends a store that is open already, such as a new one.
  void Add(std::shared_ptr<Embedded_Store> store);

  // In the order in which they were given.
  const std::vector<std::shared_ptr<Embedded_Store>>& Stores() const;

  // All of an item of an open store. Throws Automation_Error (not_found).
  New_Item Read_Whole_Item(const std::string& store_id, const std::string& entry_id) const;

  // Includes stores that have left the list but are still open because objects of theirs are in use.
  void Commit_Pending() override;
  // Closing stores by destroying this object does not call the watcher; call Commit_Pending before.
  void Watch(Group_Watcher* watcher) override;
  Change_Groups* Groups() override { return this; }
  // The absolute path of the file.
  std::string Place_Of_Store(const std::string& store_id) const override;

  // Kept in the store files.
  bool Is_Protected(const std::string& store_id, const std::string& entry_id) override;
  void Set_Protected(const std::string& store_id, const std::string& entry_id, bool is_protected) override;
  bool Can_Change(const std::string& store_id) override;

  // Called by Item::Display, which throws Automation_Error (not_supported) without it.
  void Set_Display(Display_Callback display);

  // The programs are "Outlook.Application" and "TidyDll.TidyMAPIUtils"; others throw Automation_Error
  // (call_failed). Existing session objects see stores that are opened later.
  std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) override;
  std::shared_ptr<Application> CreateObject(const std::string& program) override;
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string& program) override;

  struct Session;

 private:
  std::shared_ptr<Session> session_;
};

}  // namespace tidyfold
