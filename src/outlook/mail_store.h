// What a kind of store offers, so that stores of several kinds make one session (store_session.h).
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/store_address.h"
#include "outlook/change_groups.h"
#include "outlook/displayed_item.h"
#include "outlook/object_model.h"
#include "outlook/store_open_error.h"
#include "outlook/store_writer.h"

namespace tidyfold {

enum class Store_Mode {
  Read_Write,
  Read_Only,  // changes nothing, not a byte
};

// Long work on a store: how much is done of how much. Returns false to cancel.
using Store_Progress = std::function<bool(std::int64_t done, std::int64_t total)>;

// An open store. It lives as long as objects of it are in use. All calls come from one thread; they throw
// Automation_Error.
class Mail_Store {
 public:
  virtual ~Mail_Store() = default;

  // As it was named.
  virtual const Store_Address& Address() const = 0;
  // Whether the address leads here, however it is written.
  virtual bool Is_At(const Store_Address& address) const = 0;
  virtual Store_Mode Mode() const = 0;
  virtual std::string StoreID() const = 0;
  // Called before anything else where another open store has the same identity.
  virtual void Set_StoreID(std::string store_id) = 0;

  virtual MAPIFolder_Ptr Top_Folder() = 0;
  // Both as in NameSpace.
  virtual MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) = 0;
  virtual Item_Ptr GetItemFromID(const std::string& entry_id) = 0;
  // All of an item.
  virtual New_Item Read_Whole_Item(const std::string& entry_id) = 0;

  // Called by Item::Display, which throws not_supported without it.
  virtual void Set_Display(Display_Callback display) = 0;
  // Whom to tell of this store's groups of changes.
  virtual void Set_Watcher(std::weak_ptr<Group_Watcher> watcher) = 0;
  // Ends the group of changes.
  virtual void Commit_Pending() = 0;
  // As in Change_Groups. Called at every yield, also while nothing is pending, so that a store may see to
  // what it has to do in between.
  virtual bool Commit_Due() {
    Commit_Pending();
    return true;
  }
  // As in Automation.
  virtual void Ask_When_Busy(std::function<bool(const std::string& words)> /*go_on*/) {}

  // Marks of protected folders, by EntryID; without them they are kept in the settings.
  virtual bool Keeps_Marks() const { return false; }
  virtual bool Is_Protected(const std::string& /*folder_entry_id*/) const { return false; }
  virtual void Set_Protected(const std::string& /*folder_entry_id*/, bool /*is_protected*/) {}
};

using Begin_Wait = std::function<std::function<bool()>()>;

// How a store is to be opened.
struct Store_Opening {
  Store_Opening(Store_Mode how = Store_Mode::Read_Write,  // NOLINT(google-explicit-constructor)
                Store_Progress told = {})
      : mode(how), progress(std::move(told)) {}

  Store_Mode mode;
  Store_Progress progress;  // where opening takes long; may be empty

  // Of mailboxes on servers. The password or token of one; asked for at each login, with how often it has
  // been asked for before. Throws Store_Open_Error (Not_Let_In) where there is none.
  std::function<std::string(const Store_Address& address, int before)> password;
  // Called when the program begins to wait for a server. What it returns lives as long as the wait, is called
  // every few milliseconds, and must not call the store. Once that returns false, the wait ends within a
  // second.
  Begin_Wait wait;
};

// Opens the store at an address, or throws Store_Open_Error.
using Store_Opener =
    std::function<std::shared_ptr<Mail_Store>(const Store_Address& address, const Store_Opening& opening)>;

}  // namespace tidyfold
