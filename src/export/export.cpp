#include "export/export.h"

#include <chrono>
#include <optional>
#include <set>
#include <utility>

#include "base/text.h"
#include "errors/automation_error.h"
#include "export/export_files.h"
#include "export/item_form.h"
#include "export/reading_back.h"
#include "export/safe_name.h"
#include "import/folder_note.h"
#include "mail/charset.h"
#include "mail/mail_flags.h"
#include "mail/maildir.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

struct Export_Cancelled {};

Mail_Flags Flags_Of(const New_Item& item) {
  return {!item.unread, item.answered, item.flagged, false};
}

// Writes one folder.
class Folder_Writer {
 public:
  Folder_Writer(const Export_Folder& folder, fs::path directory, Export_Form form)
      : directory_(std::move(directory)), form_(form) {
    const std::string& name = folder.names.back();
    const bool mail = folder.default_item_type == item_type::mail;
    if (form == Export_Form::Maildir && mail) Make_Maildir();
    const bool tells_itself = form == Export_Form::Maildir && mail && directory_.filename().string() == name;
    if (!tells_itself || folder.is_top)
      Write_New_File(directory_ / folder_note_file,
                     Folder_Note_Text({name, folder.default_item_type, folder.is_top}), 0);
  }

  // Returns what was written. Throws Export_Error, Message_Error.
  Item_Form Write(const New_Item& item) {
    switch (Kind_Of_Item(item)) {
      case Item_Kind::Calendar:
        return Write_File(item, Calendar_Form(item), ".ics");
      case Item_Kind::Card:
        return Write_File(item, Card_Form(item), ".vcf");
      case Item_Kind::Text:
        return Write_File(item, Text_Form(item), ".txt");
      case Item_Kind::Message:
        break;
    }
    switch (form_) {
      case Export_Form::Maildir:
        return Write_To_Maildir(item);
      case Export_Form::Mbox:
        return Write_To_Mbox(item);
      case Export_Form::Eml:
        break;
    }
    const std::string end = Flagged_File_Name_End(Flags_Of(item));
    // Whether the name tells the marks depends on there being any.
    const auto set_marks = [&](New_Item& read) {
      const auto flags = Flags_In_File_Name("message" + end);
      if (!flags) return;
      read.unread = !flags->read;
      read.answered = flags->answered;
      read.flagged = flags->flagged;
    };
    return Write_File(item, Message_Form(item, set_marks, true), end);
  }

 private:
  void Make_Maildir() {
    for (const char* part : {"cur", "new", "tmp"}) {
      std::error_code error;
      fs::create_directory(directory_ / part, error);
      if (error) throw Export_Error((directory_ / part).string() + ": this folder cannot be made.");
    }
    has_maildir_ = true;
  }

  // "2014-03-05 Dinner on Friday.ics"
  Item_Form Write_File(const New_Item& item, Item_Form form, const std::string& end) {
    const Date date = Date_Of_File(item);
    std::string name = date == no_date ? std::string() : Format_Date(date);
    if (!item.subject.empty()) name += (name.empty() ? "" : " ") + item.subject;
    constexpr std::size_t longest = 100;
    const std::string free = Free_Name(Safe_Name(name, longest), end, [&](const std::string& candidate) {
      return taken_.contains(Upper_Case(candidate));
    });
    taken_.insert(Upper_Case(free));
    Write_New_File(directory_ / free, form.bytes, Unix_Seconds(date));
    return form;
  }

  // "1394011800.T1.tidyfold:2,S"
  Item_Form Write_To_Maildir(const New_Item& item) {
    if (!has_maildir_) Make_Maildir();
    const std::int64_t seconds = Unix_Seconds(item.received);
    std::string name = std::to_string(seconds) + ".T" + std::to_string(++number_) + ".tidyfold:2,";
    if (item.flagged) name += 'F';
    if (item.answered) name += 'R';
    if (!item.unread) name += 'S';
    const Maildir_Message message = Read_Maildir_Name(name, false);
    Item_Form form = Message_Form(
        item, [&](New_Item& read) { Set_Maildir_Marks(message, read); }, false);
    // Whoever watches the folder never meets half a message.
    const fs::path draft = directory_ / "tmp" / name;
    Write_New_File(draft, form.bytes, seconds);
    std::error_code error;
    fs::rename(draft, directory_ / "cur" / name, error);
    if (error)
      throw Export_Error(draft.string() + ": this cannot be moved to \"cur\". Choose another folder.");
    return form;
  }

  Item_Form Write_To_Mbox(const New_Item& item) {
    Item_Form form = Mbox_Form(item);
    if (!mbox_) mbox_.emplace(directory_ / (directory_.filename().string() + ".mbox"));
    mbox_->Append(form.bytes);
    return form;
  }

  fs::path directory_;
  Export_Form form_;
  std::set<std::string> taken_;  // names of files, in upper case
  std::int64_t number_ = 0;
  bool has_maildir_ = false;
  std::optional<Growing_File> mbox_;
};

class Export_Run {
 public:
  Export_Run(const fs::path& directory, const Export_Options& options)
      : directory_(directory), options_(options), tree_(directory) {
    report_.directory = Valid_Utf8(directory.string());
  }

  Export_Report Run(const std::vector<Export_Folder>& folders) {
    try {
      for (const Export_Folder& folder : folders) Write(folder);
      if (options_.lasting) Wait_For_Disk(directory_);
    } catch (const Export_Cancelled&) {
      report_.cancelled = true;
    } catch (const Export_Error& error) {
      report_.ended_by = error.what();
    } catch (const Automation_Error& error) {
      report_.ended_by = error.Description();
    }
    return std::move(report_);
  }

 private:
  void Write(const Export_Folder& folder) {
    const fs::path directory = tree_.Add(folder.names);
    std::vector<Written_Item> written;
    {
      Folder_Writer writer(folder, directory, options_.form);
      for (const std::string& entry_id : folder.items()) Write_Item(folder, entry_id, writer, written);
    }
    const auto count = static_cast<std::int64_t>(written.size());
    std::vector<Written_Item> missing = Missing_In(directory, std::move(written), [this] { return Go_On(); });
    if (cancelled_) throw Export_Cancelled{};
    report_.found += count;
    report_.exported += count - static_cast<std::int64_t>(missing.size());
    for (Written_Item& item : missing)
      Fail(std::move(item.where), "it was written, but does not read back as it was");
    report_.found -= static_cast<std::int64_t>(missing.size());
  }

  void Write_Item(const Export_Folder& folder, const std::string& entry_id, Folder_Writer& writer,
                  std::vector<Written_Item>& written) {
    ++done_;
    if (!Go_On()) throw Export_Cancelled{};
    std::string where = folder.names.back();
    try {
      const New_Item item = folder.read(entry_id);
      where += ", \"" + One_Line(item.subject) + "\"";
      const Item_Form form = writer.Write(item);
      if (form.losses.empty()) {
        written.push_back({form.fingerprint, std::move(where)});
        return;
      }
      std::string losses;
      for (const std::string& loss : form.losses) losses += (losses.empty() ? "" : ", ") + loss;
      Fail(std::move(where), "it was written, but not all of it comes back: " + losses);
    } catch (const Message_Error& error) {
      Fail(std::move(where), error.what());
    } catch (const Automation_Error& error) {
      Fail(std::move(where), error.Description());
    }
  }

  void Fail(std::string where, std::string why) {
    ++report_.found;
    ++report_.failed;
    report_.failures.push_back({std::move(where), std::move(why)});
  }

  // Tells how far it is when that is due.
  bool Go_On() {
    constexpr std::chrono::milliseconds period{12};
    const auto now = std::chrono::steady_clock::now();
    if (cancelled_ || !options_.progress || now - last_told_ < period) return !cancelled_;
    cancelled_ = !options_.progress(done_, options_.total);
    last_told_ = std::chrono::steady_clock::now();
    return !cancelled_;
  }

  fs::path directory_;
  const Export_Options& options_;
  Export_Tree tree_;
  Export_Report report_;
  std::int64_t done_ = 0;
  bool cancelled_ = false;
  std::chrono::steady_clock::time_point last_told_ = std::chrono::steady_clock::now();
};

}  // namespace

bool Can_Export() {
  return true;
}

std::vector<std::string> Entry_Ids_Of(MAPIFolder& folder) {
  std::vector<std::string> ids;
  const Items_Ptr items = folder.Items();
  const std::int32_t count = items->Count();
  for (std::int32_t i = 1; i <= count; ++i) ids.push_back(items->Item(i)->EntryID());
  return ids;
}

std::vector<Export_Folder> Folders_To_Export(const MAPIFolder_Ptr& folder, std::vector<std::string> above,
                                             const Read_Item& read) {
  std::vector<Export_Folder> folders;
  if (folder->Parent() != nullptr || folder->Items()->Count() > 0) {
    std::vector<std::string> names = above;
    names.push_back(folder->Name());
    folders.push_back({std::move(names), folder->DefaultItemType(), folder->Parent() == nullptr,
                       [folder] { return Entry_Ids_Of(*folder); }, read});
  }
  if (folder->Parent() != nullptr) above.push_back(folder->Name());
  const Folders_Ptr children = folder->Folders();
  for (std::int32_t i = 1; i <= children->Count(); ++i) {
    for (Export_Folder& below : Folders_To_Export(children->Item(i), above, read))
      folders.push_back(std::move(below));
  }
  return folders;
}

std::int64_t Items_In(MAPIFolder& folder) {
  std::int64_t count = folder.Items()->Count();
  const Folders_Ptr children = folder.Folders();
  for (std::int32_t i = 1; i <= children->Count(); ++i) count += Items_In(*children->Item(i));
  return count;
}

Export_Report Export_Folders(const std::vector<Export_Folder>& folders, const fs::path& directory,
                             const Export_Options& options) {
  return Export_Run(directory, options).Run(folders);
}

}  // namespace tidyfold
