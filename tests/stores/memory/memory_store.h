// Message stores in memory, which most tests use.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
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

// One information store. Every store has the same EntryIDs, so that a caller who forgets the StoreID finds
// the wrong item. Folders and items are passed in by EntryID and StoreID, whatever the object; unknown ones
// throw Automation_Error (not_found).
class Memory_Store : public Store_Writer {
 public:
  Memory_Store(Memory_Outlook& outlook, const std::string& name, std::string store_id);
  Memory_Store(const Memory_Store&) = delete;
  Memory_Store& operator=(const Memory_Store&) = delete;
  // Handles that callers still hold become invalid.
  ~Memory_Store() override;

  const std::string& StoreID() const { return store_id_; }
  MAPIFolder_Ptr Top_Folder() override;
  MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name,
                            std::int32_t default_item_type) override;
  std::string Add_Item(MAPIFolder& folder, const New_Item& item) override;
  std::int64_t Count_Of(std::int64_t identity) override;
  void Begin() override { undo_.clear(); }
  void Commit() override { undo_.clear(); }
  // Removes what was added since Begin.
  void Roll_Back() override;

  // The folder that the names lead to from the top folder, taking the first of several with the same name.
  MAPIFolder_Ptr Folder(std::initializer_list<std::string_view> path);
  Item_Ptr Item(const std::string& entry_id);

  // Changes by another program. What is moved goes to the end of the folder.
  void Rename_Folder(MAPIFolder& folder, const std::string& name);
  void Move_Folder(MAPIFolder& folder, MAPIFolder& new_parent);
  void Move_Item(const std::string& entry_id, MAPIFolder& folder);
  void Change_Item(const std::string& entry_id, const std::function<void(New_Item&)>& change);

  // What stores of other kinds do otherwise:
  //   new ids: what is moved gets another EntryID;
  //   local names: Deleted Items and others bear the names of another language, and are known by identity;
  //   no Deleted Items: there is no such folder, and what is deleted is gone;
  //   moves what is removed: Items.Remove puts into Deleted Items;
  //   two texts: a folder that is no element of Folders has another EntryID than as one of these.
  void Behave(std::string_view way);

 private:
  friend struct memory::Stored_Folder;
  friend struct memory::Stored_Item;

  std::string New_Entry_Id();
  void Rename_Item(const memory::Stored_Item_Ptr& item);
  memory::Stored_Folder_Ptr Find_Folder(MAPIFolder& folder) const;
  memory::Stored_Item_Ptr Find_Item(const std::string& entry_id) const;

  Memory_Outlook& outlook_;
  std::string store_id_;
  int last_id_ = 0;
  bool new_ids_ = false, deletes_for_good_ = false, removing_moves_ = false, two_texts_ = false;
  std::map<std::int32_t, memory::Stored_Folder_Ptr> roles_;  // of folders whose names do not tell them
  // Removed ones included: an EntryID is never used again.
  std::unordered_map<std::string, memory::Stored_Folder_Ptr> folders_;
  std::unordered_map<std::string, memory::Stored_Item_Ptr> items_;
  memory::Stored_Folder_Ptr top_;
  std::vector<std::function<void()>> undo_;
};

// The program in which the stores are open. It must outlive its objects.
class Memory_Outlook : public Automation, Application, NameSpace, Folders, Mapi_Utils {
 public:
  enum class Default_Folders { None, All };

  // All: those of outlook/default_folders.h.
  Memory_Store& Add_Store(const std::string& name, Default_Folders which = Default_Folders::All);
  Memory_Store& Store(std::size_t number) { return *stores_.at(number - 1); }  // from 1
  std::size_t Stores() const { return stores_.size(); }

  std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) override;
  std::shared_ptr<Application> CreateObject(const std::string& program) override {
    return GetObject("", program);
  }
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string&) override {
    return Borrowed<Mapi_Utils>();
  }

  std::vector<std::string> displayed;  // the EntryIDs of the items shown, in order

 private:
  // As one of the objects that it is; it outlives them all.
  template <class Interface>
  std::shared_ptr<Interface> Borrowed() {
    return {std::shared_ptr<void>(), this};
  }
  std::shared_ptr<NameSpace> GetNamespace(const std::string&) override { return Borrowed<NameSpace>(); }
  // Of the session: its top folders.
  Folders_Ptr Folders() override { return Borrowed<tidyfold::Folders>(); }
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override;
  Item_Ptr GetItemFromID(const std::string& entry_id, const std::string& store_id) override;
  bool CompareEntryIDs(const std::string& one, const std::string& other) override;
  std::int32_t Count() override { return static_cast<std::int32_t>(stores_.size()); }
  MAPIFolder_Ptr Item(std::int32_t index) override;
  MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) override;
  void Remove(std::int32_t index) override;
  std::string HrGetOneProp(Mapi_Object& object, std::uint32_t tag) override {
    return object.String_Property(tag);
  }

  std::vector<std::unique_ptr<Memory_Store>> stores_;
};

}  // namespace tidyfold
