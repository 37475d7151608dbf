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
};

// All texts are UTF-8; dates are local day counts, no_date where there is none.
struct New_Item {
  std::int32_t item_class = item_class::mail;
  std::string sender;      // display name
  std::string recipients;  // display names of the "To" line
  std::string subject;
  std::string body;
  bool unread = false;
  Date received = no_date;
  Date last_modified = no_date;
  Date completed = no_date;
  Date due = no_date;
  Date end = no_date;
  std::int64_t size = 0;    // bytes of the whole item
  std::string raw_message;  // RFC 5322, for mail; empty where there is none
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
  virtual void Begin() = 0;
  virtual void Commit() = 0;
  virtual void Roll_Back() = 0;
};

}  // namespace tidyfold
