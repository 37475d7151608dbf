// What a list shows of a message, from its header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "mail/mail_headers.h"
#include "outlook/store_writer.h"

namespace tidyfold {

struct Mail_Summary {
  std::int32_t item_class = item_class::mail;
  std::string subject, sender, sender_address;
  Date received = no_date;       // when the last server took it in, otherwise when it was written
  bool has_attachments = false;  // as far as the type of the whole tells
};

// Enough of a message for its header and for the first parts behind it.
inline constexpr std::size_t summary_bytes = std::size_t{16} * 1024;

// `raw_charset` is that of raw 8-bit text. The class is mail.
Mail_Summary Summarize(const Mail_Headers& headers, std::string_view raw_charset);

// Of a message's first summary_bytes or more. Reports and meetings are known by the types that stand there. A
// meeting whose calendar part comes later is mail. Throws Message_Error for data without header.
Mail_Summary Summarize_Beginning(std::string_view beginning);

}  // namespace tidyfold
