#include "import/source_kind.h"

#include <string_view>

#include "base/text.h"
#include "import/mbox_reader.h"
#include "import/source_file.h"
#include "mail/kept_fields.h"
#include "mail/mail_headers.h"

namespace tidyfold {
namespace {

constexpr std::string_view outlook_file = "!BDN";
constexpr std::string_view compound_file = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";

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
  if (Begins_With_Mail_Headers(text) || Begins_With_Kept_Block(text) || Has_Apple_Frame(begin))
    return Source_Kind::Message;
  return std::nullopt;
}

std::optional<Source_Kind> Kind_Of_File(const std::filesystem::path& path) {
  Source_File file(path);
  const auto kind = Kind_Of_Content(file.Read(0, longest_look));
  if (kind != Source_Kind::Mbox || !Same_Name(path.extension().string(), ".eml")) return kind;
  // Some programs save a message with the separator that it had.
  const auto first = Mbox_Reader(file, [] {}).Next();
  return first && first->end == file.Size() ? Source_Kind::Message : Source_Kind::Mbox;
}

}  // namespace tidyfold
