// EntryIDs of messages and mailboxes.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "stores/imap/mailbox.h"

namespace tidyfold::imap {

// "mail:UIDVALIDITY:UID:MAILBOX"; of a folder "mail:UIDVALIDITY:MAILBOX".
struct Message_Id {
  std::uint32_t validity = 0;
  Uid uid = 0;
  std::string mailbox;
};

std::string Text_Of(const Message_Id& id);
std::string Folder_Id(const Mailbox& mailbox);
// Nothing where it is none. Every message has one text.
std::optional<Message_Id> Read_Message_Id(std::string_view text);
// Without a UID.
std::optional<Message_Id> Read_Folder_Id(std::string_view text);

}  // namespace tidyfold::imap
