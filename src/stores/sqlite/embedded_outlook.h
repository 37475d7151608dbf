// The program's own store files behind the object model: a session over a list of open stores.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "outlook/change_groups.h"
#include "outlook/object_model.h"
#include "stores/sqlite/displayed_item.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

class Embedded_Outlook : public Automation, public Change_Groups {
 public:
  Embedded_Outlook();
  ~Embedded_Outlook() override;

  // Adds stores behind those that are open. All of them or, with a Store_Open_Error, none. A file that is
  // open here already, or named twice, is refused (Locked).
  void Open(const std::vector<std::filesystem::path>& paths, Store_Mode mode = Store_Mode::Read_Write);
  // Puts other stores in the place of those that are open; a store that stays keeps its objects. Pending
  // changes of the stores that leave are committed first. After an error the list is as it was.
  void Replace(const std::vector<std::filesystem::path>& paths, Store_Mode mode = Store_Mode::Read_Write);
  // Adds a store that is open already, for instance one just made.
  void Add(std::shared_ptr<Embedded_Store> store);

  // In the order given. Empty after nothing was opened.
  const std::vector<std::shared_ptr<Embedded_Store>>& Stores() const;

  // Also those stores that have left the list, while objects of theirs keep them open.
  void Commit_Pending() override;
  // A store tells nothing while it is closed: Commit_Pending comes first.
  void Watch(Group_Watcher* watcher) override;
  Change_Groups* Groups() override { return this; }
  std::string Place_Of_Store(const std::string& store_id) override;

  // What Item::Display calls. Without it Display throws Automation_Error (not_supported).
  void Set_Display(Display_Callback display);

  // Programs are "Outlook.Application" and "TidyDll.TidyMAPIUtils"; anything else throws Automation_Error
  // (call_failed). Stores opened later show up in objects handed out before.
  std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) override;
  std::shared_ptr<Application> CreateObject(const std::string& program) override;
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string& program) override;

  struct Session;

 private:
  std::shared_ptr<Session> session_;
};

}  // namespace tidyfold
