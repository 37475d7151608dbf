// How items get into a store: what importers and sample makers write through. The program itself never adds
// anything.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

struct New_Attachment {
  std::string name;
  std::int64_t size = 0;  // bytes
  // Only of items whose raw form does not hold it; empty otherwise.
  std::string content = {};
};

// All texts are UTF-8; dates are local day counts, no_date where there is none.
struct New_Item {
  std::int32_t item_class = item_class::mail;
  std::string sender;          // display name
  std::string sender_address;  // of mail; may be empty
  std::string recipients;      // display names of the "To" line
  std::string message_id;      // of mail, without angle brackets
  std::string list_id;         // of a mailing list's mail (RFC 2919), without angle brackets
  std::string subject;
  std::string body;
  bool unread = false;
  bool flagged = false;   // marked for follow-up
  bool answered = false;  // replied to
  Date received = no_date;
  Date last_modified = no_date;
  Date completed = no_date;
  Date due = no_date;
  // Of a recurring appointment, the end of its last occurrence; no_date if it goes on for ever.
  Date end = no_date;
  std::int64_t size = 0;  // bytes of the whole item
  // The item in the form that other programs read; empty where there is none. Mail, meetings and reports:
  // a message (RFC 5322). Appointments and tasks: iCalendar (RFC 5545), one VCALENDAR. Contacts and
  // distribution lists: vCard (RFC 6350), the latter with KIND:group. Notes, posts and journal entries have
  // none.
  std::string raw_message;
  std::vector<New_Attachment> attachments;
};

// Equal for items that are the same one; made by Key_Of (outlook/item_key.h).
struct Item_Key {
  std::string message_id;
  std::uint64_t content = 0;  // a hash
  bool operator==(const Item_Key&) const = default;
};

// Everything between Begin and Commit is kept or lost as one. Throws Automation_Error when the store cannot
// be written (full, read-only, damaged).
class Store_Writer {
 public:
  virtual ~Store_Writer() = default;
  virtual MAPIFolder_Ptr Top_Folder() = 0;
  // Folders of one parent may share a name. The type is an item_type number.
  virtual MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name,
                                    std::int32_t default_item_type) = 0;
  // Returns the new item's EntryID. The item becomes the last of its folder.
  virtual std::string Add_Item(MAPIFolder& folder, const New_Item& item) = 0;
  // How many items of the store are this one, in whatever folder; those that were added since Begin count.
  virtual std::int64_t Count_Alike(const Item_Key& key) = 0;
  virtual void Begin() = 0;
  virtual void Commit() = 0;
  virtual void Roll_Back() = 0;
};

}  // namespace tidyfold
