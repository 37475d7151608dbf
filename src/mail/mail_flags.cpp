#include "mail/mail_flags.h"

#include <charconv>

#include "mail/mail_headers.h"

namespace tidyfold {
namespace {

constexpr unsigned mozilla_read = 0x1;
constexpr unsigned mozilla_replied = 0x2;
constexpr unsigned mozilla_marked = 0x4;
constexpr unsigned mozilla_expunged = 0x8;

std::string_view Trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

// Some programs write words there instead ("Status: DRAFT"), which hold no flags.
std::string_view Letters(std::string_view value, std::string_view known) {
  constexpr std::size_t most = 4;
  const std::string_view letters = Trimmed(value);
  const bool flags = letters.size() <= most && letters.find_first_not_of(known) == std::string_view::npos;
  return flags ? letters : std::string_view();
}

bool Has(std::string_view letters, char letter) {
  return letters.find(letter) != std::string_view::npos;
}

}  // namespace

Mail_Flags Flags_In(const Mail_Headers& headers) {
  const std::string_view status = Letters(headers[Mail_Field::Status], "RODUNAF");
  const std::string_view x_status = Letters(headers[Mail_Field::X_Status], "ADFT");
  const std::string_view labels = headers[Mail_Field::X_Gmail_Labels];
  const std::string_view digits = Trimmed(headers[Mail_Field::X_Mozilla_Status]);
  unsigned mozilla = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), mozilla, 16);
  if (parsed.ptr != digits.data() + digits.size()) mozilla = 0;

  Mail_Flags flags;
  flags.read =
      Has(status, 'R') || (mozilla & mozilla_read) != 0 || labels.find("Opened") != std::string_view::npos;
  flags.answered = Has(x_status, 'A') || Has(status, 'A') || (mozilla & mozilla_replied) != 0;
  flags.flagged = Has(x_status, 'F') || Has(status, 'F') || (mozilla & mozilla_marked) != 0 ||
                  labels.find("Starred") != std::string_view::npos;
  flags.deleted = Has(x_status, 'D') || Has(status, 'D') || (mozilla & mozilla_expunged) != 0;
  return flags;
}

Mail_Flags Flags_In(std::string_view message) {
  Mail_Headers headers;
  headers.Read(Without_Lead_In(message));
  return Flags_In(headers);
}

std::optional<Mail_Flags> Flags_In_File_Name(std::string_view name) {
  constexpr std::string_view suffix = ".eml";
  if (!name.ends_with(suffix)) return std::nullopt;
  name.remove_suffix(suffix.size());
  const std::size_t comma = name.rfind(',');
  if (comma == std::string_view::npos) return std::nullopt;
  const std::string_view letters = name.substr(comma + 1);
  if (letters.empty() || letters.find_first_not_of("FRS") != std::string_view::npos) return std::nullopt;
  Mail_Flags flags;
  flags.read = Has(letters, 'S');
  flags.answered = Has(letters, 'R');
  flags.flagged = Has(letters, 'F');
  return Flagged_File_Name_End(flags).starts_with("," + std::string(letters)) ? std::optional(flags)
                                                                              : std::nullopt;
}

std::string Flagged_File_Name_End(const Mail_Flags& flags) {
  std::string letters;
  if (flags.flagged) letters += 'F';
  if (flags.answered) letters += 'R';
  if (flags.read) letters += 'S';
  return (letters.empty() ? std::string() : "," + letters) + ".eml";
}

}  // namespace tidyfold
