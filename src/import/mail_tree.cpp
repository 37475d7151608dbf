#include "import/mail_tree.h"

#include <algorithm>
#include <array>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "import/calendar_file.h"
#include "import/contact_file.h"
#include "import/folder_note.h"
#include "import/mail_files.h"
#include "import/msg_file.h"
#include "import/pst.h"
#include "import/source_kind.h"
#include "mail/charset.h"
#include "mail/maildir.h"
#include "mail/mime_message.h"
#include "outlook/default_folders.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view below_mbox = ".sbd", apple_mailbox = ".mbox", below_kmail_folder = ".directory";

// Files that mail programs keep beside the mail, and directories of what is not mail.
constexpr std::array<std::string_view, 10> index_suffixes = {".msf",
                                                             ".dat",
                                                             ".cmeta",
                                                             ".ibex.index",
                                                             ".ibex.index.data",
                                                             ".ev-summary",
                                                             ".ev-summary-meta",
                                                             ".plist",
                                                             ".emlxpart",
                                                             "table_of_contents"};

bool Ends_With_Any(std::string_view name) {
  return std::any_of(index_suffixes.begin(), index_suffixes.end(),
                     [&](std::string_view suffix) { return name.ends_with(suffix); });
}

std::string Without_Suffix(std::string name, std::string_view suffix) {
  if (name.size() > suffix.size() && name.ends_with(suffix)) name.resize(name.size() - suffix.size());
  return name;
}

struct Entry {
  std::string name;
  bool is_directory;
};

// By name. Sets the error if the directory cannot be listed to its end.
std::vector<Entry> List(const fs::path& directory, std::error_code& error) {
  std::vector<Entry> entries;
  fs::directory_iterator entry(directory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code dangling;
    entries.push_back({entry->path().filename().string(), entry->is_directory(dangling)});
  }
  std::sort(entries.begin(), entries.end(),
            [](const Entry& left, const Entry& right) { return left.name < right.name; });
  return entries;
}

using Names = std::vector<std::string>;

// A directory on the way down.
struct Stop {
  fs::path directory;
  Names names;                 // of the folder that its mail goes into
  bool apple_mailbox = false;  // directories in it are no folders of their own
  std::optional<Folder_Note> note = {};
};

// Where a directory's mail goes; nothing for directories that hold none.
std::optional<Stop> Below(const Stop& stop, const std::string& name) {
  Stop below{stop.directory / name, stop.names, false};
  if (name.starts_with('.')) {
    if (name.ends_with(below_kmail_folder)) {
      below.names.push_back(Without_Suffix(name.substr(1), below_kmail_folder));
      return below;
    }
    if (!Is_Maildir(below.directory)) {
      std::error_code error;
      const auto entries = List(below.directory, error);
      const bool holds_maildirs = std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
        return entry.is_directory && Is_Maildir(below.directory / entry.name);
      });
      if (!holds_maildirs) return std::nullopt;
    }
    for (std::string& part : Names_Of_Maildir(name)) below.names.push_back(std::move(part));
    return below;
  }
  below.apple_mailbox = name.ends_with(apple_mailbox);
  if (stop.apple_mailbox && !below.apple_mailbox && !Is_Maildir(below.directory)) {
    if (name == "Attachments") return std::nullopt;
    below.apple_mailbox = true;
    return below;
  }
  below.names.push_back(
      Without_Suffix(below.apple_mailbox ? Without_Suffix(name, apple_mailbox) : name, below_mbox));
  return below;
}

bool Is_Mail_File(const fs::path& file) {
  std::error_code error;
  if (!fs::is_regular_file(file, error) || fs::file_size(file, error) == 0 || error) return false;
  try {
    return Kind_Of_File(file).has_value();
  } catch (const Import_Error&) {
    return false;
  }
}

bool Holds_Anything(const Stop& stop, std::set<fs::path>& seen) {
  std::error_code error;
  if (!seen.insert(fs::canonical(stop.directory, error)).second) return false;
  if (Is_Maildir(stop.directory)) return true;
  const std::vector<Entry> entries = List(stop.directory, error);
  for (const Entry& entry : entries) {
    if (!entry.is_directory && !entry.name.starts_with('.') && Is_Mail_File(stop.directory / entry.name))
      return true;
  }
  return std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
    if (!entry.is_directory) return false;
    const auto below = Below(stop, entry.name);
    return below && Holds_Anything(*below, seen);
  });
}

class Tree_Importer {
 public:
  Tree_Importer(Import_Run& run, bool with_sub_folders) : run_(run), with_sub_folders_(with_sub_folders) {}

  void Import(Stop stop) {
    // Links may form cycles.
    std::error_code error;
    if (!seen_.insert(fs::canonical(stop.directory, error)).second) return;
    const std::vector<Entry> entries = List_Or_Fail(stop.directory);
    stop.note = Read_Folder_Note(stop.directory);
    if (stop.note && !stop.names.empty()) {
      stop.names.pop_back();
      if (!stop.note->is_top) stop.names.push_back(stop.note->name);
    }
    if (stop.note) Place_At(stop);
    const bool is_maildir = Is_Maildir(stop.directory);
    Import_Content(stop, entries, is_maildir);
    if (!with_sub_folders_) return;
    for (const Entry& entry : entries) {
      if (!entry.is_directory) continue;
      if (is_maildir && (entry.name == "cur" || entry.name == "new" || entry.name == "tmp")) continue;
      if (const auto below = Below(stop, entry.name)) Import(*below);
    }
  }

 private:
  void Import_Content(const Stop& stop, const std::vector<Entry>& entries, bool is_maildir) {
    if (is_maildir) Import_Maildir(stop);
    for (const Entry& entry : entries) {
      run_.Tick();
      if (!entry.is_directory && !entry.name.starts_with('.'))
        Import_File(stop, entry.name, entries, is_maildir);
    }
  }

  std::vector<Entry> List_Or_Fail(const fs::path& directory) {
    std::error_code error;
    std::vector<Entry> entries = List(directory, error);
    if (error) run_.Fail(directory.string(), "the folder cannot be listed (" + error.message() + ")");
    return entries;
  }

  MAPIFolder_Ptr Place(const Names& names, std::int32_t type = item_type::mail) {
    MAPIFolder_Ptr place = run_.Tree_Folder();
    for (std::size_t i = 0; i < names.size(); ++i)
      place = run_.Folder(place, names[i], i + 1 == names.size() ? type : item_type::mail);
    return place;
  }
  // Where the items of a directory go; the type is that of a folder that has to be made for them.
  MAPIFolder_Ptr Place_At(const Stop& stop, std::int32_t type = item_type::mail) {
    return Place(stop.names, stop.note ? stop.note->default_item_type : type);
  }

  void Import_Maildir(const Stop& stop) {
    // The outermost Maildir is the inbox of a mail server.
    const bool inbox = run_.Merges() && stop.names.empty() && !stop.note;
    const MAPIFolder_Ptr place =
        Place(inbox ? Names{Find_Default_Folder(default_folder_inbox)->name} : stop.names);
    std::vector<Maildir_Message> messages;
    for (const bool is_new : {false, true}) {
      const fs::path part = stop.directory / (is_new ? "new" : "cur");
      std::error_code error;
      if (!fs::exists(part, error) && !error) continue;
      for (Entry& entry : List_Or_Fail(part)) {
        if (!entry.name.starts_with('.'))
          messages.push_back(Read_Maildir_Name(std::move(entry.name), is_new));
        run_.Tick();
      }
    }
    // Names begin with the time of delivery.
    std::stable_sort(
        messages.begin(), messages.end(),
        [](const Maildir_Message& left, const Maildir_Message& right) { return left.name < right.name; });
    for (const Maildir_Message& message : messages) {
      const fs::path file = message.Path(stop.directory);
      run_.Set_File(file.string());
      if (message.trashed) {
        run_.Leave_Out("", deleted_mail);
        continue;
      }
      try {
        Add_Message_File(file, *place, run_, [&](New_Item& item) { Set_Maildir_Marks(message, item); });
      } catch (const Message_Error& error) {
        run_.Fail("", error.what());
      }
    }
    run_.Set_File({});
  }

  void Import_File(const Stop& stop, const std::string& name, const std::vector<Entry>& entries,
                   bool is_maildir) {
    if (Ends_With_Any(name)) return;
    const fs::path file = stop.directory / name;
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (error) return run_.Fail(file.string(), "it cannot be opened (" + error.message() + ")");
    if (!fs::is_regular_file(status)) return;
    if (fs::file_size(file, error) == 0 && !error) return Add_Empty_Mbox(stop, name, entries);
    run_.Set_File(file.string());
    try {
      const auto kind = Kind_Of_File(file);
      if (kind) {
        Import_Kind(*kind, stop, name);
      } else if (!is_maildir) {
        run_.Leave_Out("", "the file is none that can be imported");
      }
    } catch (const Message_Error& unreadable) {
      run_.Fail("", unreadable.what());
    } catch (const Import_Error& unreadable) {
      // It begins with the file's name.
      const std::string_view text = unreadable.what();
      const std::string named = One_Line(file.string()) + ": ";
      run_.Fail("", text.starts_with(named) ? text.substr(named.size()) : text);
    }
    run_.Set_File({});
  }

  // An mbox without mail is an empty file; what lies beside it tells that it is one.
  void Add_Empty_Mbox(const Stop& stop, const std::string& name, const std::vector<Entry>& entries) {
    const bool has_companion = std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
      return entry.name == name + ".msf" || entry.name == name + std::string(below_mbox);
    });
    if (has_companion) Place(With(stop.names, name));
  }

  static Names With(Names names, std::string name) {
    names.push_back(std::move(name));
    return names;
  }

  void Import_Kind(Source_Kind kind, const Stop& stop, const std::string& name) {
    const fs::path file = stop.directory / name;
    switch (kind) {
      case Source_Kind::Mbox: {
        const bool mailbox_itself = (stop.apple_mailbox && name == "mbox") || stop.note;
        return Import_Mbox(
            file, Place(mailbox_itself ? stop.names : With(stop.names, Without_Suffix(name, apple_mailbox))),
            run_);
      }
      case Source_Kind::Pst:
        return Import_Pst(file, Place(With(stop.names, fs::path(name).stem().string())), run_);
      case Source_Kind::Message:
        return Add_Message_File(file, *Place_At(stop), run_);
      case Source_Kind::Msg:
        return Add_Msg_File(file, *Place_At(stop), run_);
      case Source_Kind::Calendar:
        return Add_Calendar_File(file, Place_At(stop, item_type::appointment), run_);
      case Source_Kind::Contacts:
        return Add_Contact_File(file, Place_At(stop, item_type::contact), run_);
      case Source_Kind::Tree:
        break;
    }
  }

  Import_Run& run_;
  bool with_sub_folders_;
  std::set<fs::path> seen_;
};

Stop Root(const fs::path& source) {
  // "mail/" and "." have no file name.
  fs::path whole = fs::absolute(source).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  return {source, {}, whole.filename().string().ends_with(apple_mailbox) && !Is_Maildir(source)};
}

}  // namespace

bool Is_Tree(const fs::path& directory) {
  std::set<fs::path> seen;
  return Holds_Anything(Root(directory), seen);
}

void Import_Tree(const fs::path& source, Import_Run& run) {
  Tree_Importer(run, true).Import(Root(source));
}

void Import_Directory(const fs::path& directory, Import_Run& run) {
  Tree_Importer(run, false).Import({directory, {}});
}

}  // namespace tidyfold
