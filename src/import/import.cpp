#include "import/import.h"

#include "base/text.h"
#include "errors/automation_error.h"
#include "import/calendar_file.h"
#include "import/contact_file.h"
#include "import/import_run.h"
#include "import/mail_files.h"
#include "import/mail_tree.h"
#include "import/msg_file.h"
#include "import/pst.h"
#include "import/source_file.h"
#include "import/source_kind.h"
#include "mail/gmime_ptr.h"
#include "mail/item_identity.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

void Import_Kind(Source_Kind kind, const fs::path& source, Import_Run& run) {
  switch (kind) {
    case Source_Kind::Pst:
      return Import_Pst(source, run.Tree_Folder(), run);
    case Source_Kind::Mbox:
      return Import_Mbox(source, run.Target_Folder(), run);
    case Source_Kind::Message:
      return Import_Message(source, run);
    case Source_Kind::Msg:
      return Import_Msg(source, run);
    case Source_Kind::Calendar:
      return Import_Calendar(source, run);
    case Source_Kind::Contacts:
      return Import_Contacts(source, run);
    case Source_Kind::Tree:
      return Import_Tree(source, run);
  }
}

// What an item's identity is when it is imported today.
std::int64_t Identity_Today(const New_Item& item) {
  if (item.raw_message.empty() || !Is_Message_Class(item.item_class)) return Item_Identity(item);
  try {
    New_Item today = Read_Mime_Message(item.raw_message);
    today.received = item.received;
    return Item_Identity(today);
  } catch (const Message_Error&) {
    return Item_Identity(item);
  }
}

// Items of an older version's store are not found as there already until they have their identities.
void Fill_Identities(Store_Writer& writer, Import_Run& run) {
  constexpr std::int32_t portion = 500;
  const auto identity_of = [&](const New_Item& item) {
    run.Tick();
    return Identity_Today(item);
  };
  for (std::string last; !(last = writer.Fill_Identities(last, portion, identity_of)).empty();) {
    writer.Commit();
    writer.Begin();
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
    if (Is_Tree(source)) return Source_Kind::Tree;
    throw Import_Error(
        source.string() +
        ": nothing in the folder can be imported. Name a folder that holds mail, a Maildir for "
        "instance, or the files themselves.");
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
  if (const auto kind = Kind_Of_File(source)) return *kind;
  throw Import_Error(
      source.string() +
      ": the file is none that can be imported. Name an Outlook data file (PST, OST or PAB), an mbox file, a "
      "folder of mail, a message (EML, EMLX or MSG), a calendar (iCalendar) or an address book (vCard).");
}

Import_Report Import_Source(const fs::path& source, Store_Writer& writer, const Import_Options& options) {
  Start_Gmime();

  const Source_Kind kind = Detect_Source(source);
  Import_Run run(source, writer, options);
  writer.Begin();
  try {
    if (!options.again) Fill_Identities(writer, run);
    Import_Kind(kind, source, run);
    writer.Commit();
    return run.Report();
  } catch (const Import_Cancelled&) {
    writer.Commit();
    Import_Report report = run.Report();
    report.cancelled = true;
    return report;
  } catch (const std::exception& error) {
    Roll_Back(writer, error.what());
    if (!run.Has_Committed()) throw;
    Import_Report report = run.Report_Of_Committed();
    report.ended_by = error.what();
    return report;
  } catch (...) {
    Roll_Back(writer, "The import failed.");
    throw;
  }
}

}  // namespace tidyfold
