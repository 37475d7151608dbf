#include "import/import.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <string_view>

#include "base/text.h"
#include "errors/automation_error.h"
#include "import/import_run.h"
#include "import/mail_files.h"
#include "import/maildir.h"
#include "import/mbox_reader.h"
#include "import/mime_message.h"
#include "import/pst.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t longest_look = std::int64_t{64} * 1024;

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

void Import_Kind(Source_Kind kind, const fs::path& source, Import_Run& run) {
  switch (kind) {
    case Source_Kind::Pst:
      return Import_Pst(source, run);
    case Source_Kind::Mbox:
      return Import_Mbox(source, run);
    case Source_Kind::Maildir:
      return Import_Maildir(source, run);
    case Source_Kind::Eml:
      return Import_Eml(source, run);
  }
}

// A failure to roll back must not hide the failure that caused it.
void Roll_Back(Store_Writer& writer, const std::string& reason) {
  try {
    writer.Roll_Back();
  } catch (const Automation_Error& error) {
    throw Automation_Error(error.Number(),
                           reason + " The import could not be taken back: " + error.Description(),
                           error.Source());
  }
}

}  // namespace

Import_Error::Import_Error(const std::string& text) : text_(Valid_Utf8(text)) {}

bool Can_Import() {
  return true;
}

Source_Kind Detect_Source(const fs::path& source) {
  std::error_code error;
  const fs::file_status status = fs::status(source, error);
  if (status.type() == fs::file_type::not_found) {
    throw Import_Error(source.string() + ": there is no such file or folder. Check the path.");
  }
  if (fs::is_directory(status)) {
    if (Is_Maildir(source)) return Source_Kind::Maildir;
    throw Import_Error(
        source.string() +
        ": the folder is no Maildir, for \"cur\" and \"new\" are missing in it. Name a Maildir, or the "
        "files themselves.");
  }
  if (!fs::is_regular_file(status)) {
    throw Import_Error(source.string() + ": this is neither a file nor a folder. Name a file or a Maildir.");
  }
  Source_File file(source);
  if (file.Size() == 0) {
    throw Import_Error(source.string() +
                       ": the file is empty, so there is nothing to import. If it should not be, copy it "
                       "again from where it "
                       "came from.");
  }
  const std::string begin = file.Read(0, longest_look);
  if (begin.starts_with("!BDN")) return Source_Kind::Pst;
  const std::string_view text = Without_Lead_In(begin);
  if (Begins_With_Separator(text, true)) return Source_Kind::Mbox;
  if (Begins_With_Mail_Headers(text)) return Source_Kind::Eml;
  throw Import_Error(
      source.string() +
      ": the file is none that can be imported. Name an Outlook data file (PST, OST or PAB), an mbox "
      "file, a Maildir or a message (EML).");
}

Import_Report Import_Source(const fs::path& source, Store_Writer& writer, const Import_Options& options) {
  static std::once_flag once;
  std::call_once(once, g_mime_init);

  const Source_Kind kind = Detect_Source(source);
  writer.Begin();
  try {
    Import_Run run(source, writer, options);
    Import_Kind(kind, source, run);
    writer.Commit();
    return run.Report();
  } catch (const Import_Cancelled&) {
    Roll_Back(writer, "The import was cancelled.");
    Import_Report report;
    report.source = Valid_Utf8(source.string());
    report.cancelled = true;
    return report;
  } catch (const std::exception& error) {
    Roll_Back(writer, error.what());
    throw;
  } catch (...) {
    Roll_Back(writer, "The import failed.");
    throw;
  }
}

}  // namespace tidyfold
