// The session over the program's own stores: open stores of any kind, in a list, behind the object model.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "outlook/change_groups.h"
#include "outlook/folder_protection.h"
#include "outlook/mail_store.h"
#include "outlook/object_model.h"

namespace tidyfold {

class Store_Session : public Automation, public Change_Groups, public Folder_Protection {
 public:
  explicit Store_Session(Store_Opener opener);
  ~Store_Session() override;

  // Appends stores to the list. Throws Store_Open_Error and adds none if one cannot be opened. A store that
  // is open here already or named twice is refused (Locked).
  void Open(const std::vector<Store_Address>& addresses, const Store_Opening& opening = {});
  // Replaces the list of stores. Stores in both lists stay open and their objects valid. Pending changes are
  // kept first. The list is unchanged after an error.
  void Replace(const std::vector<Store_Address>& addresses, const Store_Opening& opening = {});
  // Appends a store that is open already, such as a new one.
  void Add(std::shared_ptr<Mail_Store> store);

  // In the order in which they were given.
  const std::vector<std::shared_ptr<Mail_Store>>& Open_Stores() const;
  // Their addresses as they were given.
  std::vector<std::string> Names() const;
  // Those of one kind, a class that implements Mail_Store.
  template <class Kind>
  std::vector<std::shared_ptr<Kind>> Stores_Of() const {
    std::vector<std::shared_ptr<Kind>> stores;
    for (const auto& store : Open_Stores())
      if (auto of_kind = std::dynamic_pointer_cast<Kind>(store)) stores.push_back(std::move(of_kind));
    return stores;
  }

  // All of an item of an open store. Throws Automation_Error (not_found).
  New_Item Read_Whole_Item(const std::string& store_id, const std::string& entry_id) const;

  // Includes stores that have left the list but are still open because objects of theirs are in use.
  void Commit_Pending() override;
  // Closing stores by destroying this object does not call the watcher; call Commit_Pending before.
  void Watch(Group_Watcher* watcher) override;
  bool Commit_Due() override;
  void Ask_When_Busy(std::function<bool(const std::string& words)> go_on) override;
  Change_Groups* Groups() override { return this; }
  // Store_Address::Lasting_Text.
  std::string Place_Of_Store(const std::string& store_id) const override;

  // Where the marks are kept of stores that keep none; without it their folders cannot be protected.
  void Keep_Marks_In(Folder_Protection* marks);
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
