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
#include "import/mail_headers.h"
#include "import/maildir.h"
#include "import/mbox_reader.h"
#include "import/mime_message.h"
#include "import/pst.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t longest_look = std::int64_t{64} * 1024;

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
