// The contents of an item for a window that shows it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "outlook/object_model.h"
#include "outlook/store_writer.h"

namespace tidyfold {

struct Displayed_Item {
  std::int32_t item_class = item_class::mail;
  std::string entry_id, store_id;
  std::string folder_name;
  std::string sender;      // display name
  std::string recipients;  // display names of the "To" line
  std::string subject;
  std::string body;
  bool unread = false;
  // Local time; no_date if there is none.
  Date received = no_date, last_modified = no_date, completed = no_date, due = no_date, end = no_date;
  std::int64_t size = 0;  // bytes of the whole item
  std::vector<New_Attachment> attachments;
  std::string raw_message;  // RFC 5322; only of mail, may be empty
};

using Display_Callback = std::function<void(const Displayed_Item&)>;

}  // namespace tidyfold
