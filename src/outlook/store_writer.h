// How items get into a store: what importers and sample makers write through. The program itself never adds
// anything.
#pragma once

#include <cstdint>
#include <functional>
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
  // Tells an item from all that differ in content, wherever it lies; 0: not known, and never looked up.
  std::int64_t identity = 0;
  // The item in the form that other programs read; empty where there is none. Mail, meetings and reports:
  // a message (RFC 5322). Appointments and tasks: iCalendar (RFC 5545), one VCALENDAR. Contacts and
  // distribution lists: vCard (RFC 6350), the latter with KIND:group. Notes, posts and journal entries have
  // none.
  std::string raw_message;
  std::vector<New_Attachment> attachments;
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
  // How many items the store holds with this identity, those added since Begin included.
  virtual std::int64_t Count_Of(std::int64_t identity) = 0;
  // Gives items whose identity is not known, as those of a store of an older format, what `identity_of` says:
  // up to `most`, those behind the EntryID `after` or, where that is empty, from the first one on. Returns
  // the EntryID of the last one; empty when there are none.
  virtual std::string Fill_Identities(const std::string& /*after*/, std::int32_t /*most*/,
                                      const std::function<std::int64_t(const New_Item&)>& /*identity_of*/) {
    return {};
  }
  virtual void Begin() = 0;
  virtual void Commit() = 0;
  virtual void Roll_Back() = 0;
};

}  // namespace tidyfold
