#include "mail/mime_message.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "mail/charset.h"
#include "mail/gmime_ptr.h"
#include "mail/header_parameters.h"
#include "mail/header_text.h"
#include "mail/html_text.h"
#include "mail/kept_fields.h"
#include "mail/local_date.h"
#include "mail/mail_addresses.h"
#include "mail/mail_flags.h"
#include "mail/mail_headers.h"
#include "mail/mail_summary.h"
#include "mail/meeting.h"
#include "mail/mime_parts.h"
#include "mail/tnef.h"
#include "mail/transfer_encoding.h"

namespace tidyfold {
namespace {

std::string Charset(const Mime_Part& part) {
  return Header_Parameter(part.headers[Mail_Field::Content_Type], "charset");
}

std::string Encoding(const Mime_Part& part) {
  return Header_Word(part.headers[Mail_Field::Content_Transfer_Encoding]);
}

std::string Decoded(const Mime_Part& part) {
  return Decode_Transfer(part.body, Encoding(part));
}

bool Is_Text(const Mime_Part& part) {
  return part.type.starts_with("text/");
}

bool Is_Attached_Message(const Mime_Part& part) {
  return part.type == "message/rfc822" || part.type == "message/global";
}

std::string File_Name(const Mime_Part& part, std::string_view raw_charset) {
  const std::string name =
      Header_Parameter(part.headers[Mail_Field::Content_Disposition], "filename", raw_charset);
  return name.empty() ? Header_Parameter(part.headers[Mail_Field::Content_Type], "name", raw_charset) : name;
}

// Raw 8-bit text in headers is in the charset of the body, as far as anything says.
std::string Body_Charset(const std::vector<Mime_Part>& parts) {
  for (const Mime_Part& part : parts) {
    std::string charset = Is_Text(part) ? Charset(part) : std::string();
    if (!charset.empty()) return charset;
  }
  return {};
}

std::string Display_Name(const Mail_Address& address) {
  return address.name.empty() ? address.address : address.name;
}

std::string Display_Names(const std::vector<Mail_Address>& addresses) {
  std::string names;
  for (const Mail_Address& address : addresses) {
    if (!names.empty()) names += "; ";
    names += Display_Name(address);
  }
  return names;
}

struct Body {
  std::string text;
  bool plain = false;
};

class Body_Reader {
 public:
  Body_Reader(const std::vector<Mime_Part>& parts, std::string_view raw_charset, bool with_contents)
      : parts_(parts), raw_charset_(raw_charset), with_contents_(with_contents) {}

  // Fills body and attachments.
  void Read(New_Item& item) {
    item.body = Read(0).text;
    for (std::size_t index = 0; index < parts_.size(); ++index) Add_Attachments(index, item);
    for (Uuencoded_File& file : uuencoded_)
      item.attachments.push_back({Header_Text(file.name, raw_charset_), file.size});
  }

  // The class from the calendar part; mail if there is none.
  std::int32_t Meeting() const {
    for (const Mime_Part& part : parts_) {
      if (part.type != "text/calendar" || Is_Attached(part)) continue;
      const std::int32_t found =
          Meeting_Class(Decoded(part), Header_Parameter(part.headers[Mail_Field::Content_Type], "method"));
      if (found != item_class::mail) return found;
    }
    return item_class::mail;
  }

 private:
  bool Is_Root(const Mime_Part& part) const { return &part == &parts_.front(); }

  bool Is_Attached(const Mime_Part& part) const {
    return Header_Word(part.headers[Mail_Field::Content_Disposition]) == "attachment";
  }
  // A text with a file name is a file, unless it is all that there is.
  bool Is_File(const Mime_Part& part) const {
    return Is_Attached(part) || (!Is_Root(part) && !File_Name(part, raw_charset_).empty());
  }

  Body Read(std::size_t index) {
    const Mime_Part& part = parts_[index];
    if (part.Is_Multipart() && part.first_child != Mime_Part::none) return Read_Multipart(part);
    // What has no parts is all text.
    if (part.Is_Multipart()) return {To_Utf8(part.body, {}), true};
    if (!Is_Text(part) || Is_File(part)) return {};
    if (part.type == "text/calendar" || part.type == "text/rfc822-headers") return {};
    std::string bytes = Decoded(part);
    std::string charset = Charset(part);
    if (part.type == "text/richtext" || part.type == "text/enriched")
      return {Html_To_Text(To_Utf8(bytes, charset)), false};
    if (part.type == "text/html") {
      if (charset.empty()) charset = Html_Charset(bytes);
      return {Html_To_Text(To_Utf8(bytes, charset)), false};
    }
    for (Uuencoded_File& file : Take_Uuencoded(bytes)) uuencoded_.push_back(std::move(file));
    return {To_Utf8(bytes, charset), true};
  }

  // Nested no deeper than the splitter allows.
  Body Read_Multipart(const Mime_Part& multipart) {
    if (multipart.type == "multipart/related") return Read(Start_Of(multipart));
    if (multipart.type == "multipart/signed") return Read(multipart.first_child);
    const bool alternative = multipart.type == "multipart/alternative";
    Body whole;
    for (std::size_t child = multipart.first_child; child != Mime_Part::none; child = parts_[child].next) {
      Body body = Read(child);
      if (body.text.empty()) continue;
      if (alternative) {
        if (whole.text.empty() || (body.plain && !whole.plain)) whole = std::move(body);
        continue;
      }
      if (!whole.text.empty() && whole.text.back() != '\n') whole.text += '\n';
      whole.text += body.text;
      whole.plain = whole.plain || body.plain;
    }
    return whole;
  }

  // The part that the others belong to.
  std::size_t Start_Of(const Mime_Part& related) const {
    const std::string start =
        Header_Identity(Header_Parameter(related.headers[Mail_Field::Content_Type], "start"));
    for (std::size_t child = related.first_child; !start.empty() && child != Mime_Part::none;
         child = parts_[child].next) {
      if (Header_Identity(parts_[child].headers[Mail_Field::Content_Id]) == start) return child;
    }
    return related.first_child;
  }

  void Add_Attachments(std::size_t index, New_Item& item) const {
    const Mime_Part& part = parts_[index];
    if (part.Is_Multipart() || (Is_Text(part) && !Is_File(part))) return;
    const std::string name = File_Name(part, raw_charset_);
    if (part.type == "application/ms-tnef" || part.type == "application/vnd.ms-tnef" ||
        Same_Name(name, "winmail.dat")) {
      std::optional<Tnef_Content> content = Read_Tnef(Decoded(part));
      if (content && item.body.find_first_not_of(" \t\r\n") == std::string::npos)
        item.body = std::move(content->body);
      if (content && !content->attachments.empty()) {
        std::move(content->attachments.begin(), content->attachments.end(),
                  std::back_inserter(item.attachments));
        return;
      }
    }
    item.attachments.push_back({name.empty() && Is_Attached_Message(part) ? Inner_Subject(part) : name,
                                Decoded_Transfer_Size(part.body, Encoding(part))});
    if (with_contents_) item.attachments.back().content = Decoded(part);
  }

  std::string Inner_Subject(const Mime_Part& part) const {
    const std::string text = Decoded(part);
    Mail_Headers headers;
    headers.Read(Without_Lead_In(text));
    return Header_Text(headers[Mail_Field::Subject], raw_charset_);
  }

  const std::vector<Mime_Part>& parts_;
  std::string_view raw_charset_;
  bool with_contents_;  // of attachments
  std::vector<Uuencoded_File> uuencoded_;
};

// "Tue, 14 Nov 2023 12:00:00 +0100", as nearly all mail has it, in seconds since 1970; nothing for any other
// form.
std::optional<std::int64_t> Plain_Mail_Date(std::string_view text) {
  constexpr std::string_view months = "JanFebMarAprMayJunJulAugSepOctNovDec",
                             usual = "Mon, 01 Jan 2000 00:00:00 +0000";
  text = text.substr(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
  std::string padded;
  if (text.size() > 6 && text[3] == ',' && text[6] == ' ') {  // a day of one digit
    padded = std::string(text.substr(0, 5)) + "0" + std::string(text.substr(5, usual.size() - 6));
    text = padded;
  }
  if (text.size() < usual.size() ||
      (text.size() > usual.size() && text[usual.size()] != ' ' && text[usual.size()] != '\r'))
    return std::nullopt;
  text = text.substr(0, usual.size());
  for (std::size_t at = 0; at < usual.size(); ++at) {
    const bool digit = text[at] >= '0' && text[at] <= '9', wanted = usual[at] >= '0' && usual[at] <= '9';
    const bool sign = usual[at] == '+' && (text[at] == '+' || text[at] == '-');
    const bool letter = at < 3 || (at >= 8 && at < 11);
    if (wanted ? !digit : !letter && !sign && text[at] != usual[at]) return std::nullopt;
  }
  const auto number = [&](std::size_t at, std::size_t length) {
    int value = 0;
    for (const char digit : text.substr(at, length)) value = value * 10 + (digit - '0');
    return value;
  };
  const std::size_t month = months.find(text.substr(8, 3));
  if (month == std::string_view::npos || month % 3 != 0) return std::nullopt;
  const std::chrono::year_month_day day{std::chrono::year(number(12, 4)),
                                        std::chrono::month(static_cast<unsigned>(month / 3 + 1)),
                                        std::chrono::day(static_cast<unsigned>(number(5, 2)))};
  if (!day.ok() || number(12, 4) < 1970 || number(17, 2) > 23 || number(20, 2) > 59 || number(23, 2) > 59 ||
      number(27, 2) > 14 || number(29, 2) > 59)
    return std::nullopt;
  const std::int64_t days = std::chrono::sys_days(day).time_since_epoch().count();
  const std::int64_t zone = (number(27, 2) * 60 + number(29, 2)) * (text[26] == '-' ? -60LL : 60LL);
  const std::int64_t minutes = (days * 24 + number(17, 2)) * 60 + number(20, 2);
  return minutes * 60 + number(23, 2) - zone;
}

}  // namespace

Date Parse_Mail_Date(std::string_view text, bool as_written) {
  if (!as_written)
    if (const auto seconds = Plain_Mail_Date(text)) return Local_Date(*seconds);
  constexpr std::size_t longest = 256;
  const std::string terminated(text.substr(0, longest));
  const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
      g_mime_utils_header_decode_date(terminated.c_str()), g_date_time_unref);
  if (!date) return no_date;
  if (!as_written) return Local_Date(g_date_time_to_unix(date.get()));
  return Date_From_Calendar(g_date_time_get_year(date.get()), g_date_time_get_month(date.get()),
                            g_date_time_get_day_of_month(date.get()), g_date_time_get_hour(date.get()),
                            g_date_time_get_minute(date.get()), g_date_time_get_second(date.get()));
}

New_Item Read_Mime_Message(std::string raw) {
  New_Item item;
  const std::vector<Kept_Field> kept = Take_Kept_Fields_At_Top(raw);
  const bool has_own_form = !Has_No_Own_Form(kept);
  {
    const std::vector<Mime_Part> parts = Split_Message(Without_Lead_In(raw));
    const Mail_Headers& headers = parts.front().headers;
    const bool empty_header = raw.starts_with('\n') || raw.starts_with("\r\n");
    if (headers.Empty() && !empty_header) throw Message_Error("it has no message headers");
    const std::string raw_charset = Body_Charset(parts);
    Mail_Summary summary = Summarize(headers, raw_charset);
    item.sender = std::move(summary.sender);
    item.sender_address = std::move(summary.sender_address);
    item.subject = std::move(summary.subject);
    item.received = item.last_modified = summary.received;
    item.recipients = Display_Names(Header_Addresses(headers[Mail_Field::To], raw_charset));
    item.message_id = Header_Identity(headers[Mail_Field::Message_Id]);
    item.list_id = Header_Identity(headers[Mail_Field::List_Id]);
    const Mail_Flags flags = Flags_In(headers);
    item.unread = !flags.read;
    item.answered = flags.answered;
    item.flagged = flags.flagged;
    Body_Reader body(parts, raw_charset, !has_own_form);
    body.Read(item);
    item.item_class = parts.front().type == "multipart/report" ? item_class::report : body.Meeting();
  }
  Set_Kept_Fields(kept, item);
  item.size = static_cast<std::int64_t>(raw.size());
  if (has_own_form) item.raw_message = std::move(raw);
  return item;
}

bool Lacks_Last_Part(std::string_view text) {
  Mail_Headers headers;
  headers.Read(Without_Lead_In(text));
  const std::string_view type = headers[Mail_Field::Content_Type];
  if (!Header_Word(type).starts_with("multipart/")) return false;
  const std::string boundary = Header_Parameter(type, "boundary");
  return !boundary.empty() && text.find("\n--" + boundary + "--") == std::string_view::npos;
}

}  // namespace tidyfold
