// The object model of a message store: the only way in which the program reads or deletes anything. Members
// bear the names of the Outlook object model
// (https://learn.microsoft.com/office/vba/api/overview/outlook/object-model) and are exactly those that the
// program uses. Indexes count from 1, collections are live: their counts and positions follow what this
// program or any other does to the store.
//
// Whatever cannot be done throws Automation_Error (errors/automation_error.h).
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "base/dates.h"
#include "outlook/change_groups.h"

namespace tidyfold {

class MAPIFolder;
class Folders;
class Items;
class Item;
class Store;
class Table;
using MAPIFolder_Ptr = std::shared_ptr<MAPIFolder>;
using Folders_Ptr = std::shared_ptr<Folders>;
using Items_Ptr = std::shared_ptr<Items>;
using Item_Ptr = std::shared_ptr<Item>;
using Store_Ptr = std::shared_ptr<Store>;
using Table_Ptr = std::shared_ptr<Table>;

// OlObjectClass
namespace item_class {
inline constexpr std::int32_t appointment = 26, contact = 40, journal = 42, mail = 43, note = 44, post = 45,
                              report = 46, task = 48, task_request = 49, task_request_update = 50,
                              task_request_accept = 51, task_request_decline = 52, meeting_request = 53,
                              meeting_cancellation = 54, meeting_response_negative = 55,
                              meeting_response_positive = 56, meeting_response_tentative = 57,
                              distribution_list = 69;
}

// OlFlagStatus
namespace flag_status {
inline constexpr std::int32_t none = 0, complete = 1, marked = 2;
}

// OlItemType, what a folder holds by default.
namespace item_type {
inline constexpr std::int32_t mail = 0, appointment = 1, contact = 2, task = 3, journal = 4, note = 5;
}

// OlDefaultFolders: what a folder is to its store. Stores of other kinds answer to the same numbers, whatever
// their folders are called.
inline constexpr std::int32_t default_folder_deleted_items = 3, default_folder_outbox = 4,
                              default_folder_sent = 5, default_folder_inbox = 6, default_folder_drafts = 16,
                              default_folder_junk = 23;

// PR_SENDER_NAME as an 8-bit string.
inline constexpr std::uint32_t sender_name_tag = 0x0C1A001E;

// What Outlook stores where there is no date: 4501-01-01.
inline constexpr Date no_date = 949998;

// The message object beneath an item; it answers to MAPI property tags.
class Mapi_Object {
 public:
  virtual ~Mapi_Object() = default;
  // Empty when the property is absent.
  virtual std::string String_Property(std::uint32_t property_tag) = 0;
};

class Item {
 public:
  virtual ~Item() = default;
  virtual std::int32_t Class() = 0;
  virtual std::string Subject() = 0;
  virtual std::string EntryID() = 0;
  // The first `characters` characters of the text, all of it by default.
  virtual std::string Body(std::size_t characters = std::numeric_limits<std::size_t>::max()) = 0;
  virtual std::shared_ptr<Mapi_Object> MAPIOBJECT() = 0;
  // Dates are local time; no_date where there is none.
  virtual Date ReceivedTime() = 0;
  virtual Date LastModificationTime() = 0;
  virtual Date DateCompleted() = 0;
  virtual Date DueDate() = 0;
  virtual Date End() = 0;
  virtual bool UnRead() = 0;
  // A flag_status number. Only mail has one in every store.
  virtual std::int32_t FlagStatus() = 0;
  // Bytes of the whole item; 0 where saying it would cost a call of its own.
  virtual std::int64_t Size() = 0;
  virtual MAPIFolder_Ptr Parent() = 0;
  // Moves the item to its store's "Deleted Items", or removes it for good when it lies there already.
  virtual void Delete() = 0;
  // Moves the item to a folder and returns it as it is there: a store may give it another EntryID, and this
  // object must not be used any more. It becomes the last of the folder.
  // To another store's folder: the store's own choice; not_supported where it cannot.
  virtual Item_Ptr Move(MAPIFolder& folder) = 0;
  // Opens the item in a window of its own and returns at once.
  virtual void Display() = 0;
};

// What a folder's table tells of an item. Dates are local time; no_date where there is none.
struct Table_Row {
  std::string EntryID;
  std::int32_t Class = 0;
  std::string Subject;
  std::string SenderOrText;  // the sender's name of mail, at least the first 20 characters of all other texts
  Date ReceivedTime = no_date, LastModificationTime = no_date, DateCompleted = no_date, DueDate = no_date,
       End = no_date;
  bool UnRead = false;
  std::int32_t FlagStatus = flag_status::none;
  std::int64_t Size = 0;        // bytes of the whole item
  bool HasAttachments = false;  // also where the store cannot tell without reading the item
};

// A folder's items in rows, a batch at a time, without a call for each of them. A row tells who its item is;
// its place in the table is no place in Items.
class Table {
 public:
  virtual ~Table() = default;
  // The next rows, no more than `most`; none at the end. What comes or goes meanwhile shifts no other row; an
  // item that has come stands behind all others, also after the end was reached.
  virtual std::vector<Table_Row> GetArray(std::int32_t most) = 0;
};

class Items {
 public:
  virtual ~Items() = default;
  virtual std::int32_t Count() = 0;
  virtual Item_Ptr Item(std::int32_t index) = 0;
  // Removes for good, by position.
  virtual void Remove(std::int32_t index) = 0;
};

class Folders {
 public:
  virtual ~Folders() = default;
  virtual std::int32_t Count() = 0;
  virtual MAPIFolder_Ptr Item(std::int32_t index) = 0;
  // Adds an empty folder. The type is an item_type number.
  virtual MAPIFolder_Ptr Add(const std::string& name, std::int32_t default_item_type) = 0;
  // Removes a folder with all that is in it.
  virtual void Remove(std::int32_t index) = 0;
};

class MAPIFolder {
 public:
  virtual ~MAPIFolder() = default;
  // The folder above; empty for a store's top folder.
  virtual MAPIFolder_Ptr Parent() = 0;
  virtual std::int32_t DefaultItemType() = 0;
  virtual std::string EntryID() = 0;
  virtual std::string StoreID() = 0;
  virtual std::string Name() = 0;
  virtual Folders_Ptr Folders() = 0;
  virtual Items_Ptr Items() = 0;
  // The items in rows, in the order of Items where the store can say so. Throws Automation_Error
  // (not_supported) where the store has no table, or none with all that a row holds.
  virtual Table_Ptr GetTable() = 0;
  // The information store that the folder lies in. Throws Automation_Error (not_supported) where stores are
  // no objects.
  virtual Store_Ptr Store() = 0;
};

// An information store.
class Store {
 public:
  virtual ~Store() = default;
  // The store's own default folder, known by its identity. Throws Automation_Error (not_found) when it has
  // none of this kind.
  virtual MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) = 0;
};

class NameSpace {
 public:
  virtual ~NameSpace() = default;
  // The top folders of the information stores.
  virtual Folders_Ptr Folders() = 0;
  virtual MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) = 0;
  virtual Item_Ptr GetItemFromID(const std::string& entry_id, const std::string& store_id) = 0;
  // Whether two texts name the same entry of one store; a store may have several for it.
  virtual bool CompareEntryIDs(const std::string& one, const std::string& other) { return one == other; }
};

class Application {
 public:
  virtual ~Application() = default;
  virtual std::shared_ptr<NameSpace> GetNamespace(const std::string& type) = 0;
};

// The companion that reads single properties of a message object.
class Mapi_Utils {
 public:
  virtual ~Mapi_Utils() = default;
  virtual std::string HrGetOneProp(Mapi_Object& object, std::uint32_t property_tag) = 0;
};

// Where the objects come from.
class Automation {
 public:
  virtual ~Automation() = default;
  // Attaches to what is running.
  virtual std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) = 0;
  // Starts it.
  virtual std::shared_ptr<Application> CreateObject(const std::string& program) = 0;
  virtual std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string& program) = 0;
  // The groups in which changes are kept; none where each change lasts at once.
  virtual Change_Groups* Groups() { return nullptr; }
  // Whether each question about an item is a call into another program.
  virtual bool Asking_Costs_Calls() const { return false; }
  // Where a call has been turned away for a long time, `go_on` is asked whether to try for longer, with the
  // words of whoever turned it away, if there are any. Otherwise such a call has failed as unavailable.
  virtual void Ask_When_Busy(std::function<bool(const std::string& words)> /*go_on*/) {}
  // Why the program behind the stores could not be reached, in words for a person; empty where it was, or
  // where there is nothing to say.
  virtual std::string Why_Not_Reached() const { return {}; }
  // What opens a store again, a file for one; empty where nothing does.
  virtual std::string Place_Of_Store(const std::string& /*store_id*/) const { return {}; }
};

}  // namespace tidyfold
