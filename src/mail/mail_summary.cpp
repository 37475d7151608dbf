#include "mail/mail_summary.h"

#include <algorithm>
#include <vector>

#include "mail/header_parameters.h"
#include "mail/header_text.h"
#include "mail/mail_addresses.h"
#include "mail/meeting.h"
#include "mail/mime_message.h"
#include "mail/mime_parts.h"
#include "mail/transfer_encoding.h"

namespace tidyfold {

namespace {

void Read_Sender(const Mail_Headers& headers, std::string_view raw_charset, Mail_Summary& summary) {
  for (const Mail_Field field : {Mail_Field::From, Mail_Field::Sender}) {
    const std::vector<Mail_Address> senders = Header_Addresses(headers[field], raw_charset);
    if (senders.empty()) continue;
    summary.sender = senders.front().name.empty() ? senders.front().address : senders.front().name;
    summary.sender_address = senders.front().address;
    return;
  }
}

// A mail has the date of its arrival, which the last server wrote on top.
Date Received(const Mail_Headers& headers) {
  const std::string_view received = headers[Mail_Field::Received];
  const std::size_t semicolon = received.rfind(';');
  if (semicolon != std::string_view::npos) {
    const Date date = Parse_Mail_Date(received.substr(semicolon + 1));
    if (date != no_date) return date;
  }
  return Parse_Mail_Date(headers[Mail_Field::Sent]);
}

bool Is_Plain(std::string_view text) {
  return std::none_of(text.begin(), text.end(),
                      [](char character) { return static_cast<unsigned char>(character) >= 0x80; });
}

// Of a message with several parts; mail where no part here makes it a meeting.
std::int32_t Class_Of_Parts(const std::vector<Mime_Part>& parts) {
  for (const Mime_Part& part : parts) {
    if (part.type != "text/calendar" ||
        Header_Word(part.headers[Mail_Field::Content_Disposition]) == "attachment")
      continue;
    const std::string encoding = Header_Word(part.headers[Mail_Field::Content_Transfer_Encoding]);
    const std::int32_t found =
        Meeting_Class(Decode_Transfer(part.body, encoding),
                      Header_Parameter(part.headers[Mail_Field::Content_Type], "method"));
    if (found != item_class::mail) return found;
  }
  return item_class::mail;
}

}  // namespace

Mail_Summary Summarize(const Mail_Headers& headers, std::string_view raw_charset) {
  Mail_Summary summary;
  Read_Sender(headers, raw_charset, summary);
  summary.subject = Header_Text(headers[Mail_Field::Subject], raw_charset);
  summary.received = Received(headers);
  return summary;
}

Mail_Summary Summarize_Beginning(std::string_view beginning) {
  const std::string_view text = Without_Lead_In(beginning);
  Mail_Headers headers;
  const std::size_t body = headers.Read(text);
  const bool empty_header = beginning.starts_with('\n') || beginning.starts_with("\r\n");
  if (headers.Empty() && !empty_header) throw Message_Error("it has no message headers");
  const std::string_view type = headers[Mail_Field::Content_Type];
  std::string raw_charset;
  if (!Is_Plain(headers[Mail_Field::Subject]) || !Is_Plain(headers[Mail_Field::From])) {
    for (const Mime_Part& part : Split_Message(text)) {
      if (!part.type.starts_with("text/")) continue;
      raw_charset = Header_Parameter(part.headers[Mail_Field::Content_Type], "charset");
      if (!raw_charset.empty()) break;
    }
  }
  Mail_Summary summary = Summarize(headers, raw_charset);
  const std::string word = type.empty() ? std::string() : Header_Word(type);
  summary.has_attachments = word == "multipart/mixed";
  if (word == "multipart/report") {
    summary.item_class = item_class::report;
  } else if (word == "text/calendar" ||
             (word.starts_with("multipart/") && text.find("alendar", body) != std::string_view::npos)) {
    summary.item_class = Class_Of_Parts(Split_Message(text));
  }
  return summary;
}

}  // namespace tidyfold
