#include "export/item_form.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "export/form_builders.h"
#include "import/calendar_item.h"
#include "import/mbox_reader.h"
#include "import/source_kind.h"
#include "import/vcard.h"
#include "mail/item_identity.h"
#include "mail/kept_fields.h"
#include "mail/mail_headers.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

constexpr std::string_view quoted_line = "From ";

std::string_view Line_End(std::string_view text) {
  const std::size_t end = text.find('\n');
  return end != std::string_view::npos && end > 0 && text[end - 1] == '\r' ? "\r\n" : "\n";
}

// Where a message's lines of our own go, and the bytes around them.
struct Place {
  std::size_t at = 0;
  std::vector<Kept_Field> always;  // fields that are written whatever the item is
};

// Lines that begin with a blank would continue the line of ours before them.
std::size_t Continuing_Lines(std::string_view text) {
  std::size_t size = 0;
  while (size < text.size() && (text[size] == ' ' || text[size] == '\t'))
    size = std::min(text.find('\n', size), text.size() - 1) + 1;
  return size;
}

std::string With_Block(const std::string& text, std::size_t at, std::vector<Kept_Field> fields) {
  if (fields.empty()) return text;
  const std::size_t continuing = Continuing_Lines(std::string_view(text).substr(at));
  if (continuing > 0) fields.push_back(Kept_Lead_In(std::string_view(text).substr(at, continuing)));
  std::string whole = text.substr(0, at);
  whole += Kept_Block(fields, Line_End(text));
  return whole.append(text, at + continuing);
}

bool Has_Contents_Of(const New_Item& item, const New_Item& back) {
  return std::equal(
      item.attachments.begin(), item.attachments.end(), back.attachments.begin(), back.attachments.end(),
      [](const New_Attachment& left, const New_Attachment& right) { return left.content == right.content; });
}

// Writes the fields that reading `text` does not give, and reads it once more.
template <class Read>
Item_Form Form_Of(const New_Item& item, const std::string& text, Place place, Read read) {
  if (item.raw_message.empty()) place.always.push_back(Built_Form());
  Item_Form form;
  form.bytes = With_Block(text, place.at, place.always);
  New_Item back = read(form.bytes);
  if (const auto missing = Kept_Fields_Of(item, back); !missing.empty()) {
    std::vector<Kept_Field> fields = place.always;
    fields.insert(fields.end(), missing.begin(), missing.end());
    form.bytes = With_Block(text, place.at, fields);
    back = read(form.bytes);
    for (Kept_Field& field : Kept_Fields_Of(item, back)) form.losses.push_back(std::move(field.name));
  }
  if (back.raw_message != item.raw_message) form.losses.emplace_back("bytes");
  if (!Has_Contents_Of(item, back)) form.losses.emplace_back("attachments");
  form.fingerprint = Item_Fingerprint(back);
  return form;
}

// Behind the line that begins an item's component.
std::size_t Behind_Line(std::string_view text, std::initializer_list<std::string_view> begins) {
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view line = First_Line(text.substr(at));
    const std::size_t next = std::min(text.find('\n', at), text.size() - 1) + 1;
    for (const std::string_view begin : begins)
      if (Same_Name(line.substr(0, line.find_last_not_of(" \t") + 1), begin)) return next;
    at = next;
  }
  return 0;
}

Place Behind(const std::string& text, std::initializer_list<std::string_view> begins, const New_Item& item) {
  return {Behind_Line(text, begins), Kept_Files(item.attachments)};
}

// Reversible: a line of any number of ">" and "From " gets one more.
std::string Quoted(std::string_view body) {
  std::string quoted;
  for (std::size_t at = 0; at < body.size();) {
    const std::size_t end = std::min(body.find('\n', at), body.size() - 1) + 1;
    const std::size_t mark = body.find_first_not_of('>', at);
    if (mark != std::string_view::npos && body.substr(mark).starts_with(quoted_line)) quoted += '>';
    quoted.append(body, at, end - at);
    at = end;
  }
  return quoted;
}

// What a message may begin with in a file of its own, and not in an mbox.
std::size_t Lead_In_Size(std::string_view message) {
  const std::string_view begin = Without_Lead_In(message);
  std::size_t size = message.size() - begin.size();
  if (begin.starts_with(quoted_line)) size += std::min(begin.find('\n'), begin.size() - 1) + 1;
  return size + Continuing_Lines(message.substr(size));
}

// Whether an importer that meets the text in a file takes it for one message.
bool Looks_Like_A_Message(std::string_view text) {
  const auto kind = Kind_Of_Content(text.substr(0, longest_look));
  if (kind == Source_Kind::Message) return true;
  return kind == Source_Kind::Mbox && text.find("\nFrom ") == std::string_view::npos;
}

void Check_Header(std::string_view header) {
  for (std::size_t at = 0; at < header.size(); at = std::min(header.find('\n', at), header.size() - 1) + 1) {
    if (header.substr(at).starts_with(quoted_line))
      throw Message_Error(
          "a line of its header would begin another message in an mbox. Export it as Maildir or EML");
  }
}

std::string Separator(const New_Item& item) {
  std::string sender;
  for (const char c : item.sender_address)
    if (c > ' ' && c < 0x7F) sender += c;
  if (sender.empty()) sender = "MAILER-DAEMON";
  const std::time_t seconds = static_cast<std::time_t>(
      std::llround((item.received - Date_Of(std::chrono::year(1970) / std::chrono::January / 1)) * 86400));
  std::tm calendar{};
  std::array<char, 64> date{};
  // The local time, as the item has it; 4501 stands for no date here too.
  gmtime_r(&seconds, &calendar);
  std::strftime(date.data(), date.size(), "%a %b %e %H:%M:%S %Y", &calendar);
  return "From " + sender + " " + date.data() + "\n";
}

}  // namespace

Item_Kind Kind_Of_Item(const New_Item& item) {
  switch (item.item_class) {
    case item_class::appointment:
    case item_class::task:
      return Item_Kind::Calendar;
    case item_class::contact:
    case item_class::distribution_list:
      return Item_Kind::Card;
    case item_class::note:
    case item_class::journal:
      return Item_Kind::Text;
    default:
      return Item_Kind::Message;
  }
}

Item_Form Message_Form(const New_Item& item, const Set_Marks& set_marks, bool is_known_by_content) {
  const std::string text = item.raw_message.empty() ? Build_Message(item) : item.raw_message;
  Place place;
  // Lines of this kind that are the message's own stay in it.
  if (Begins_With_Kept_Block(text) || (is_known_by_content && !Looks_Like_A_Message(text)))
    place.always.push_back(Kept_Lead_In({}));
  return Form_Of(item, text, place, [&](const std::string& bytes) {
    New_Item read = Read_Mime_Message(bytes);
    set_marks(read);
    return read;
  });
}

Item_Form Text_Form(const New_Item& item) {
  return Form_Of(item, Build_Text(item), {},
                 [](const std::string& bytes) { return Read_Mime_Message(bytes); });
}

Item_Form Calendar_Form(const New_Item& item) {
  const std::string text = item.raw_message.empty() ? Build_Calendar(item) : item.raw_message;
  return Form_Of(item, text, Behind(text, {"BEGIN:VEVENT", "BEGIN:VTODO"}, item),
                 [](const std::string& bytes) { return Read_Calendar_Item(bytes); });
}

Item_Form Card_Form(const New_Item& item) {
  const std::string text = item.raw_message.empty() ? Build_Card(item) : item.raw_message;
  Place place = Behind(text, {"BEGIN:VCARD"}, item);
  // The version has to stand first.
  if (Begins_Ignoring_Case(std::string_view(text).substr(place.at), "VERSION:"))
    place.at = std::min(text.find('\n', place.at), text.size() - 1) + 1;
  return Form_Of(item, text, std::move(place), [](const std::string& bytes) { return Read_Vcard(bytes); });
}

Item_Form Mbox_Form(const New_Item& item) {
  const std::string whole = item.raw_message.empty() ? Build_Message(item) : item.raw_message;
  const std::size_t lead_in = Lead_In_Size(whole);
  const std::string text = whole.substr(lead_in);
  const std::size_t header_end = std::min(Mbox_Header_End(text), text.size());
  Check_Header(std::string_view(text).substr(0, header_end));
  const std::string body = Quoted(std::string_view(text).substr(header_end));
  const std::string entry = text.substr(0, header_end) + body;

  Place place;
  place.always = Mbox_Fields(item, whole.size(), body.size());
  if (lead_in > 0) place.always.push_back(Kept_Lead_In(std::string_view(whole).substr(0, lead_in)));
  Item_Form form = Form_Of(item, entry, place, [&](const std::string& bytes) {
    // The body as it is unquoted.
    const std::size_t block = bytes.size() - entry.size();
    New_Item read = Read_Mime_Message(bytes.substr(0, block) + text);
    if (read.received == no_date && item.received != no_date)
      read.received = read.last_modified = item.received;  // the separator's
    return read;
  });
  form.bytes.insert(0, Separator(item));
  if (!form.bytes.ends_with('\n')) form.bytes += '\n';
  form.bytes += '\n';
  return form;
}

std::int64_t Unix_Seconds(Date local) {
  if (local == no_date) return 0;
  const std::string text = Format_Moment(local);
  std::tm calendar{};
  if (std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d", &calendar.tm_year, &calendar.tm_mon, &calendar.tm_mday,
                  &calendar.tm_hour, &calendar.tm_min, &calendar.tm_sec) != 6)
    return 0;
  calendar.tm_year -= 1900;
  calendar.tm_mon -= 1;
  calendar.tm_isdst = -1;
  return static_cast<std::int64_t>(std::mktime(&calendar));
}

Date Date_Of_File(const New_Item& item) {
  for (const Date date : {item.received, item.last_modified, item.end, item.due})
    if (date != no_date) return date;
  return no_date;
}

}  // namespace tidyfold
