// Message stores that live in memory: what the tests run on, and the plainest statement of how a store
// behaves.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "outlook/object_model.h"
#include "outlook/store_writer.h"

namespace tidyfold {

class Memory_Outlook;

namespace memory {
struct Stored_Folder;
struct Stored_Item;
using Stored_Folder_Ptr = std::shared_ptr<Stored_Folder>;
using Stored_Item_Ptr = std::shared_ptr<Stored_Item>;
}  // namespace memory

// One information store. EntryIDs start anew in every store, so that a caller who forgets the StoreID meets
// another store's item. Folders and items that are passed in may be any object with the EntryID and StoreID
// of one in this store; anything else throws Automation_Error (not_found).
class Memory_Store : public Store_Writer {
 public:
  Memory_Store(Memory_Outlook& outlook, const std::string& name, std::string store_id);
  Memory_Store(const Memory_Store&) = delete;
  Memory_Store& operator=(const Memory_Store&) = delete;
  // Handles that a caller still holds are dead from then on.
  ~Memory_Store() override;

  const std::string& StoreID() const { return store_id_; }

  MAPIFolder_Ptr Top_Folder() override;
  MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name,
                            std::int32_t default_item_type) override;
  std::string Add_Item(MAPIFolder& folder, const New_Item& item) override;
  // Roll_Back takes back what was added through this object since Begin. A second Begin, and an end without
  // a Begin, throw Automation_Error (call_failed).
  void Begin() override;
  void Commit() override;
  void Roll_Back() override;

  // The folder that the names lead to from the top folder, taking the first of several with the same name.
  MAPIFolder_Ptr Folder(std::initializer_list<std::string_view> path);
  Item_Ptr Item(const std::string& entry_id);

  // What another program may do to the store and this one never does.
  void Rename_Folder(MAPIFolder& folder, const std::string& name);
  // Behind the last of the new parent's folders. A folder cannot go below itself (call_failed).
  void Move_Folder(MAPIFolder& folder, MAPIFolder& new_parent);
  // To the end of the folder.
  void Move_Item(const std::string& entry_id, MAPIFolder& folder);
  void Change_Item(const std::string& entry_id, const std::function<void(New_Item&)>& change);

  // How often Items.Item has handed out the item, which may be gone since.
  int Reads(const std::string& entry_id) const;

 private:
  friend struct memory::Stored_Folder;

  std::string New_Entry_Id();
  memory::Stored_Folder_Ptr Find_Folder(MAPIFolder& folder) const;
  memory::Stored_Item_Ptr Find_Item(const std::string& entry_id) const;
  void Check_Transaction(bool open) const;

  Memory_Outlook& outlook_;
  std::string store_id_;
  std::uint64_t last_id_ = 0;
  // Also what has been removed: an EntryID never comes back.
  std::unordered_map<std::string, memory::Stored_Folder_Ptr> folders_;
  std::unordered_map<std::string, memory::Stored_Item_Ptr> items_;
  memory::Stored_Folder_Ptr top_;
  bool in_transaction_ = false;
  std::vector<std::function<void()>> undo_;
};

// The program in which the stores are open. Objects that came out of it must not be used after it has gone.
class Memory_Outlook : public Automation {
 public:
  enum class Default_Folders { None, All };

  // All: those of outlook/default_folders.h.
  Memory_Store& Add_Store(const std::string& name, Default_Folders which = Default_Folders::All);
  Memory_Store& Store(std::size_t number) { return *stores_.at(number - 1); }  // from 1
  std::size_t Stores() const { return stores_.size(); }

  // Throw Automation_Error when the switches below say so.
  std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) override;
  std::shared_ptr<Application> CreateObject(const std::string& program) override;
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string& program) override;

  bool running = true;               // GetObject works
  bool startable = true;             // CreateObject works
  bool namespace_available = true;   // GetNamespace works
  bool mapi_utils_available = true;  // Create_Mapi_Utils works
  int get_object_calls = 0;
  int create_object_calls = 0;
  std::vector<std::string> displayed;  // the EntryIDs of the items shown, in order

 private:
  std::vector<std::unique_ptr<Memory_Store>> stores_;
};

}  // namespace tidyfold
