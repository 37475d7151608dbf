#include "import/source_kind.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/text.h"
#include "import/mbox_reader.h"
#include "import/mime_message.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

constexpr std::string_view outlook_file = "!BDN";
constexpr std::string_view compound_file = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

// Any text may begin with "Word: ...", but hardly with one of these.
constexpr std::array<std::string_view, 16> mail_fields = {
    "from",       "to",           "subject",        "date",    "received",     "return-path",
    "message-id", "sender",       "reply-to",       "cc",      "mime-version", "content-type",
    "bcc",        "delivered-to", "dkim-signature", "x-mailer"};

// Whether the text begins with header fields, among them one that every mail has.
bool Begins_With_Mail_Headers(std::string_view text) {
  bool mail = false;
  while (!text.empty() && text.front() != '\n' && text.front() != '\r') {
    const bool continued = text.front() == ' ' || text.front() == '\t';
    if (!continued && !Begins_With_Header(text)) return false;
    if (!continued) {
      const std::string name = Upper_Case(Trim(text.substr(0, text.find(':'))));
      mail = mail || std::any_of(mail_fields.begin(), mail_fields.end(),
                                 [&](std::string_view field) { return Upper_Case(field) == name; });
    }
    const std::size_t end = text.find('\n');
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return mail;
}

std::string_view Without_Lead_In(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  text.remove_prefix(std::min(text.find_first_not_of("\r\n"), text.size()));
  return text;
}

bool Begins_With_Line(std::string_view text, std::string_view line) {
  return Begins_Ignoring_Case(text, line) &&
         (text.size() == line.size() || text.find_first_of("\r\n", line.size()) == line.size());
}

}  // namespace

bool Has_Apple_Frame(std::string_view begin) {
  const std::size_t digits = begin.find_first_not_of("0123456789");
  if (digits == 0 || digits > 12 || digits == std::string_view::npos) return false;
  // The length is padded with blanks.
  const std::size_t end = begin.find_first_not_of(" \r", digits);
  return end != std::string_view::npos && begin[end] == '\n' &&
         Begins_With_Mail_Headers(begin.substr(end + 1));
}

std::optional<Source_Kind> Kind_Of_Content(std::string_view begin) {
  if (begin.starts_with(outlook_file)) return Source_Kind::Pst;
  if (begin.starts_with(compound_file)) return Source_Kind::Msg;
  const std::string_view text = Without_Lead_In(begin);
  if (Begins_With_Line(text, "BEGIN:VCALENDAR")) return Source_Kind::Calendar;
  if (Begins_With_Line(text, "BEGIN:VCARD")) return Source_Kind::Contacts;
  if (Begins_With_Separator(text, true)) return Source_Kind::Mbox;
  if (Begins_With_Mail_Headers(text) || Has_Apple_Frame(begin)) return Source_Kind::Message;
  return std::nullopt;
}

std::optional<Source_Kind> Kind_Of_File(const std::filesystem::path& file) {
  return Kind_Of_Content(Source_File(file).Read(0, longest_look));
}

}  // namespace tidyfold
