// What a server says of one message (FETCH), as far as it is asked for.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "outlook/object_model.h"
#include "stores/imap/response.h"
#include "stores/imap/uid_set.h"

namespace tidyfold::imap {

namespace message_flag {
inline constexpr std::uint8_t seen = 1, flagged = 2, deleted = 4, answered = 8;
}

// All that a row of the list needs. The structure tells attachments and invitations.
inline constexpr const char* row_items =
    "(UID FLAGS INTERNALDATE RFC822.SIZE BODYSTRUCTURE BODY.PEEK[HEADER.FIELDS (FROM SENDER SUBJECT)])";

struct Message_Data {
  Uid uid = 0;                        // 0: not told
  std::optional<std::uint8_t> flags;  // message_flag bits
  std::uint64_t modseq = 0;
  bool has_row = false;                  // the rest is told
  std::optional<std::int64_t> received;  // seconds since 1970 in UTC
  std::int64_t size = 0;
  std::int32_t item_class = item_class::mail;
  bool has_attachments = false;
  std::string sender, subject;
  // The part that says which answer an answer to an invitation gives; empty for all others.
  std::string answer_part, answer_encoding;
  std::string_view body;  // BODY[] or BODY[part], as long as the response
};

// Throws Protocol_Error for what is no FETCH.
Message_Data Read_Message_Data(const Response& fetch);

// "17-Jul-1996 02:44:25 -0700" in seconds since 1970 in UTC; nothing for what is none.
std::optional<std::int64_t> Read_Internal_Date(std::string_view text);

}  // namespace tidyfold::imap
