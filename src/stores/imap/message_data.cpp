#include "stores/imap/message_data.h"

#include <array>
#include <chrono>
#include <utility>
#include <vector>

#include "mail/header_text.h"
#include "mail/mail_addresses.h"
#include "mail/mail_headers.h"
#include "mail/meeting.h"

namespace tidyfold::imap {

namespace {

std::uint8_t Read_Flags(const Value& list) {
  std::uint8_t flags = 0;
  for (const Value& flag : list.List()) {
    if (flag.Is("\\SEEN")) flags |= message_flag::seen;
    if (flag.Is("\\FLAGGED")) flags |= message_flag::flagged;
    if (flag.Is("\\DELETED")) flags |= message_flag::deleted;
    if (flag.Is("\\ANSWERED")) flags |= message_flag::answered;
  }
  return flags;
}

void Read_Header(std::string_view text, Message_Data& data) {
  Mail_Headers headers;
  headers.Read(text);
  data.subject = Header_Text(headers[Mail_Field::Subject]);
  std::string_view from = headers[Mail_Field::From];
  if (from.empty()) from = headers[Mail_Field::Sender];
  const auto addresses = Header_Addresses(from);
  if (addresses.empty()) return;
  data.sender = addresses.front().name.empty() ? addresses.front().address : addresses.front().name;
}

// One part of a structure (RFC 9051, section 7.5.2) and its number.
struct Part {
  Value value;
  std::string number;
  bool root;
};

bool Begins_With(std::string_view text, std::string_view upper_case) {
  return Same_Ascii(text.substr(0, upper_case.size()), upper_case);
}

std::string_view Text_At(const std::vector<Value>& values, std::size_t at) {
  return at < values.size() ? values[at].Text() : std::string_view();
}

std::string Parameter(const std::vector<Value>& values, std::size_t at, std::string_view name) {
  if (at >= values.size()) return {};
  const auto pairs = values[at].List();
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
    if (Same_Ascii(pairs[i].Text(), name)) return std::string(pairs[i + 1].Text());
  return {};
}

bool Is_Attachment(const std::vector<Value>& fields, std::string_view type, std::string_view subtype) {
  for (std::size_t at = 7; at < fields.size(); ++at) {
    const auto disposition = fields[at].List();
    if (disposition.empty() || disposition.front().Is_List()) continue;
    if (Same_Ascii(disposition.front().Text(), "ATTACHMENT")) return true;
  }
  if (Same_Ascii(type, "APPLICATION"))
    return !Same_Ascii(subtype, "PKCS7-SIGNATURE") && !Same_Ascii(subtype, "PGP-SIGNATURE");
  return Same_Ascii(type, "MESSAGE") && Same_Ascii(subtype, "RFC822");
}

// The structure's depth is bounded by the parser; parts are visited from a list, without recursion.
void Read_Structure(const Value& structure, Message_Data& data) {
  std::vector<Part> parts{{structure, "", true}};
  bool meeting = false;
  while (!parts.empty()) {
    const Part part = std::move(parts.back());
    parts.pop_back();
    const auto fields = part.value.List();
    if (fields.empty()) continue;
    if (fields.front().Is_List()) {
      std::vector<Part> below;
      std::size_t at = 0;
      for (; at < fields.size() && fields[at].Is_List(); ++at) {
        const std::string prefix = part.number.empty() ? "" : part.number + ".";
        below.push_back({fields[at], prefix + std::to_string(at + 1), false});
      }
      if (part.root && Same_Ascii(Text_At(fields, at), "REPORT")) data.item_class = item_class::report;
      parts.insert(parts.end(), std::make_move_iterator(below.rbegin()),
                   std::make_move_iterator(below.rend()));
      continue;
    }
    const std::string_view type = Text_At(fields, 0), subtype = Text_At(fields, 1);
    if (Same_Ascii(type, "TEXT") && Same_Ascii(subtype, "CALENDAR") && !std::exchange(meeting, true) &&
        data.item_class == item_class::mail) {
      const std::string method = Upper_Ascii(Parameter(fields, 2, "METHOD"));
      data.item_class = Meeting_Class({}, method);
      if (method == "REPLY" || method.empty()) {
        data.answer_part = part.number.empty() ? "1" : part.number;
        data.answer_encoding = Text_At(fields, 5);
      }
    }
    if (!part.root && Is_Attachment(fields, type, subtype)) data.has_attachments = true;
  }
}

}  // namespace

std::optional<std::int64_t> Read_Internal_Date(std::string_view text) {
  constexpr std::array<std::string_view, 12> months = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                       "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};
  while (text.starts_with(' ')) text.remove_prefix(1);
  if (text.find('-') == 1) return Read_Internal_Date("0" + std::string(text));
  if (text.size() != 26) return std::nullopt;
  const auto number = [&](std::size_t at, std::size_t length) {
    const auto parsed = Parse_Number(text.substr(at, length));
    return parsed ? static_cast<int>(*parsed) : -1;
  };
  unsigned month = 0;
  while (month < 12 && !Same_Ascii(text.substr(3, 3), months[month])) ++month;
  const std::chrono::year_month_day day{std::chrono::year(number(7, 4)), std::chrono::month(month + 1),
                                        std::chrono::day(static_cast<unsigned>(number(0, 2)))};
  const int hour = number(12, 2), minute = number(15, 2), second = number(18, 2), zone = number(22, 4);
  if (!day.ok() || hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60 ||
      zone < 0)
    return std::nullopt;
  const std::int64_t days = std::chrono::sys_days(day).time_since_epoch().count();
  const int east = (text[21] == '-' ? -1 : 1) * (zone / 100 * 60 + zone % 100);
  return ((days * 24 + hour) * 60 + minute - east) * 60 + second;
}

Message_Data Read_Message_Data(const Response& fetch) {
  const auto arguments = fetch.Arguments();
  if (fetch.Name() != "FETCH" || arguments.size() != 1 || !arguments.front().Is_List())
    throw Protocol_Error("The server described a message in a way that is no IMAP.");
  Message_Data data;
  bool has_header = false, has_date = false;
  const auto items = arguments.front().List();
  for (std::size_t at = 0; at + 1 < items.size(); at += 2) {
    const Value& name = items[at];
    const Value& value = items[at + 1];
    if (name.Is("UID")) {
      const auto uid = value.Number_32();
      if (!uid || *uid == 0) throw Protocol_Error("The server named a message by an impossible number.");
      data.uid = *uid;
    } else if (name.Is("FLAGS")) {
      data.flags = Read_Flags(value);
    } else if (name.Is("MODSEQ")) {
      const auto list = value.List();
      if (!list.empty()) data.modseq = list.front().Number().value_or(0);
    } else if (name.Is("INTERNALDATE")) {
      data.received = Read_Internal_Date(value.Text());
      has_date = true;
    } else if (name.Is("RFC822.SIZE")) {
      const auto size = value.Number();
      if (!size || *size > static_cast<std::uint64_t>(INT64_MAX))
        throw Protocol_Error("The server sent an impossible number.");
      data.size = static_cast<std::int64_t>(*size);
    } else if (name.Is("BODYSTRUCTURE")) {
      Read_Structure(value, data);
    } else if (Begins_With(name.Text(), "BODY[HEADER")) {
      Read_Header(value.Text(), data);
      has_header = true;
    } else if (Begins_With(name.Text(), "BODY[")) {
      data.body = value.Text();
    }
  }
  data.has_row = data.uid != 0 && data.flags && has_header && has_date;
  return data;
}

}  // namespace tidyfold::imap
