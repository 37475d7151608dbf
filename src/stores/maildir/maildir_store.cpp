#include "stores/maildir/maildir_store.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>

#include "controls/interaction.h"
#include "errors/automation_error.h"
#include "mail/gmime_ptr.h"
#include "mail/maildir.h"
#include "outlook/folder_roles.h"
#include "stores/maildir/directory_list.h"
#include "stores/maildir/maildir_objects.h"

namespace tidyfold {

namespace {

namespace fs = std::filesystem;
using maildir::Mail_List;
using Reason = Store_Open_Error::Reason;

// A large directory that changes all the time is not read all the time: reading takes one part of it in so
// many.
constexpr std::int64_t share_of_reading = 20;
constexpr std::int32_t large_directory = 10'000;  // mails
constexpr int most_readings = 4;

// Names of wastebaskets and the like, the usual first: of Dovecot, Courier and mail programs.
struct Role_Names {
  std::int32_t role;
  std::array<std::string_view, 6> names;
};
constexpr Role_Names role_names[] = {
    {default_folder_deleted_items,
     {"Trash", "Deleted Items", "Deleted Messages", "trash", "Deleted", "wastebasket"}},
    {default_folder_inbox, {"Inbox", "INBOX", "inbox", "", "", ""}},
    {default_folder_sent, {"Sent", "Sent Items", "Sent Messages", "sent", "sent-mail", "Sent Mail"}},
    {default_folder_drafts, {"Drafts", "drafts", "Draft", "", "", ""}},
    {default_folder_junk, {"Junk", "Spam", "Junk Email", "Junk E-mail", "spam", "junk"}},
    {default_folder_outbox, {"Outbox", "outbox", "", "", "", ""}}};
constexpr const char* new_trash_name = "Trash";

std::string Message(int error) {
  return std::generic_category().message(error);
}

[[noreturn]] void Fail_Open(Reason reason, const Store_Address& address, const std::string& what) {
  const std::string named = "The Maildir \"" + address.path.string() + "\" ";
  throw Store_Open_Error(reason, address.path, named + what);
}

fs::path Whole_Path(const fs::path& path) {
  std::error_code error;
  fs::path whole = fs::weakly_canonical(path, error);
  if (error) whole = fs::absolute(path).lexically_normal();
  return whole.has_filename() ? whole : whole.parent_path();
}

}  // namespace

void Maildir_Store::Fail(std::int32_t number, const std::string& text) {
  throw Automation_Error(number, text, application_title);
}

Maildir_Store::Maildir_Store(const Store_Address& address, const Maildir_Options& options)
    : address_(address),
      options_(options),
      store_id_("maildir:" + Whole_Path(address.path).string()),
      tree_(Whole_Path(address.path)),
      cache_(options.cache_folder, store_id_),
      cached_(cache_.Folder("", 0)) {}

std::shared_ptr<Maildir_Store> Maildir_Store::Open(const Store_Address& address,
                                                   const Maildir_Options& options) {
  Start_Gmime();
  std::error_code error;
  const fs::file_status status = fs::status(address.path, error);
  if (status.type() == fs::file_type::not_found)
    Fail_Open(Reason::Missing, address, "does not exist. Check its name and the directory that it lies in.");
  if (error && !fs::status_known(status))
    Fail_Open(Reason::No_Permission, address,
              "cannot be reached (" + error.message() + "). Change the permissions, or ask the owner to.");
  if (!fs::is_directory(status))
    Fail_Open(Reason::Not_A_Store, address,
              "is no directory. Name the directory that holds cur, new and tmp.");
  const auto may = [&](int how) { return ::access(address.path.c_str(), how) == 0; };
  if (!may(R_OK | X_OK))
    Fail_Open(Reason::No_Permission, address,
              "may not be read by you. Change the permissions of its directories, or ask the owner to.");
  std::shared_ptr<Maildir_Store> store(new Maildir_Store(address, options));
  try {
    store->tree_.Look();
  } catch (const fs::filesystem_error& failed) {
    Fail_Open(Reason::Cannot_Read, address,
              "could not be read (" + failed.code().message() + "). Check the disk that it lies on.");
  }
  if (store->tree_.All().size() == 1 && !options.may_be_empty)
    Fail_Open(
        Reason::Not_A_Store, address,
        "holds no mail: neither cur and new, nor directories with them. Name the directory of a Maildir.");
  if (options.mode == Store_Mode::Read_Write && (!may(W_OK) || [&] {
        const fs::path cur = address.path / "cur";
        return fs::exists(cur) && ::access(cur.c_str(), W_OK) != 0;
      }()))
    Fail_Open(
        Reason::Read_Only, address,
        "can only be read, but it must be written. Change the permissions of its directories, or ask the "
        "owner to.");
  return store;
}

Maildir_Store::~Maildir_Store() {
  try {
    Commit_Pending();
  } catch (...) {
    // Nobody is left to report to.
  }
  Forget_What_Has_Gone();
}

// Only where every folder was read, and it is worth while.
void Maildir_Store::Forget_What_Has_Gone() {
  constexpr std::int64_t worth_while = 1000;
  std::int64_t there = 0;
  for (const auto& [id, folder] : tree_.All()) {
    if (folder->has_mail && !folder->to_be_made && folder->mail->looked == 0) return;
    there += folder->mail->Count();
  }
  if (cache_.Count(cached_) < there + there / 4 + worth_while) return;
  cache_.Forget_Others(cached_, [&](std::string_view id) {
    const Mail* const mail = mails_.Find(id);
    return mail != nullptr && !mail->gone;
  });
}

bool Maildir_Store::Is_At(const Store_Address& address) const {
  return address.kind == Store_Address::Kind::Maildir && Whole_Path(address.path) == tree_.Path();
}

std::string Maildir_Store::Unreachable() const {
  return "The Maildir \"" + tree_.Path().string() +
         "\" can no longer be reached. Check the disk or the network share that it lies on, and open it "
         "again.";
}

// A directory that cannot be read is not one without mail.
void Maildir_Store::Check_Place() const {
  std::error_code error;
  if (!fs::is_directory(tree_.Path(), error)) Fail(automation_error::unavailable, Unreachable());
}

void Maildir_Store::Look_At_Tree() {
  try {
    tree_.Look();
  } catch (const fs::filesystem_error& failed) {
    Check_Place();
    Fail(automation_error::call_failed, "The Maildir \"" + tree_.Path().string() + "\" could not be read (" +
                                            failed.code().message() +
                                            "). Check its permissions and the disk that it lies on.");
  }
  // One that does not exist yet is shown all the same, so that there is somewhere to delete to.
  if (options_.make_trash && options_.mode == Store_Mode::Read_Write &&
      Role(default_folder_deleted_items) == nullptr)
    tree_.Add_Unmade(tree_.Top(), new_trash_name);
}

void Maildir_Store::Look_At(Folder& folder, Look look) {
  if (folder.gone) Fail(automation_error::not_found, "The folder is no longer there.");
  if (!folder.has_mail || folder.to_be_made) return;
  Mail_List& list = *folder.mail;
  const std::string path = tree_.Text_Of(folder);
  const std::int64_t cur = maildir::Changed(path + "/cur"), fresh = maildir::Changed(path + "/new");
  if (cur == 0 && fresh == 0) {
    Check_Place();
    Look_At_Tree();
    if (folder.gone) Fail(automation_error::not_found, "The folder is no longer there.");
  }
  const bool same = cur == list.cur_changed && fresh == list.new_changed;
  if (same && (look == Look::By_Times || std::max(cur, fresh) + maildir::moment < list.looked)) return;
  if (list.looked != 0 && list.Count() > large_directory &&
      maildir::Now() - list.looked < share_of_reading * list.took)
    return;
  Read(folder);
}

void Maildir_Store::Read(Folder& folder) {
  Mail_List& list = *folder.mail;
  const std::string path = tree_.Text_Of(folder);
  const std::int64_t began = maildir::Now();
  std::vector<Mail*> came;
  maildir::Patience patience(options_.wait);
  // A file that gets other marks meanwhile may be missed.
  for (int reading = 0; reading < most_readings; ++reading) {
    list.cur_changed = maildir::Changed(path + "/cur");
    list.new_changed = maildir::Changed(path + "/new");
    ++reading_;
    // What leaves new/ meanwhile is met again in cur/.
    int error = Scan(folder, true, patience, came);
    if (error == 0) error = Scan(folder, false, patience, came);
    if (error != 0) {
      for (Mail* const mail : came) mail->coming = false;
      list.cur_changed = list.new_changed = 0;
      if (error == ECANCELED)
        Fail(automation_error::unavailable,
             "Reading the folder \"" + folder.name + "\" was cancelled. Choose Refresh to read it again.");
      Check_Place();
      Fail(automation_error::call_failed, "The folder \"" + folder.name + "\" could not be read (" +
                                              Message(error) + "). Check the permissions of \"" + path +
                                              "\" and the disk that it lies on.");
    }
    if (maildir::Changed(path + "/cur") == list.cur_changed &&
        maildir::Changed(path + "/new") == list.new_changed)
      break;
  }
  for (Mail* const mail : std::vector<Mail*>(list.Slots())) {
    if (mail == nullptr || mail->pending || mail->seen == reading_) continue;
    list.Remove(*mail);
    mail->gone = true;
  }
  for (Mail* const mail : came) mail->coming = false;
  std::erase_if(came, [&](const Mail* mail) { return mail->seen != reading_; });
  // Those of new/ and of cur/ come in order.
  const auto by_name = [](const Mail* left, const Mail* right) { return left->name < right->name; };
  if (!std::is_sorted(came.begin(), came.end(), by_name)) std::sort(came.begin(), came.end(), by_name);
  for (Mail* const mail : came) {
    mail->gone = false;
    mail->folder = &folder;
    list.Append(*mail);
  }
  list.looked = began;
  list.took = maildir::Now() - began;
}

// 0, or the error number of the system, ECANCELED where the person has given up.
int Maildir_Store::Scan(Folder& folder, bool is_new, maildir::Patience& patience, std::vector<Mail*>& came) {
  const std::string path = tree_.Text_Of(folder) + (is_new ? "/new" : "/cur");
  maildir::Directory_List list;
  if (const int error = list.Read(path, patience); error != 0) return error == ENOENT ? 0 : error;
  if (folder.mail->looked == 0) mails_.Expect(list.Count());
  return list.For_Each(patience, [&](std::string_view name, std::uint64_t inode) {
    // Marked as deleted by its mail program, which has only to clear up.
    if (!is_new && Split_Maildir_Name(name).marks.find('T') != std::string_view::npos) return;
    Note(folder, name, is_new, inode, came).seen = reading_;
  });
}

// The mail that a file is. Those that are not in the folder's list yet are added to `came`.
maildir::Mail& Maildir_Store::Note(Folder& folder, std::string_view name, bool is_new, std::uint64_t inode,
                                   std::vector<Mail*>& came) {
  for (std::uint32_t twin = 0;; ++twin) {
    bool added = false;
    Mail* const mail = &mails_.Find_Or_Add(name, twin, added);
    const bool is_here = !added && !mail->gone && mail->folder == &folder;
    if (added) {
      // its folder is set below
    } else if (mail->pending) {
      return *mail;  // lies where it was until its group ends, and counts no more
    } else if (!mail->gone && !is_here) {
      // Moved by another program, or a copy.
      if (Is_On_Disk(*mail->folder, *mail)) continue;
      mail->folder->mail->Remove(*mail);
    } else if ((is_here || mail->coming) && mail->name != name && mail->inode != inode &&
               Is_On_Disk(folder, *mail)) {
      continue;  // two files of one unique name
    }
    if (mail->name != name) mail->name = name;
    mail->is_new = is_new;
    mail->inode = inode;
    if (!is_here && !std::exchange(mail->coming, true)) {
      mail->folder = &folder;
      mail->gone = true;  // until it is in the list
      came.push_back(mail);
    }
    return *mail;
  }
}

bool Maildir_Store::Is_On_Disk(const Folder& folder, const Mail& mail) const {
  struct stat about = {};
  return ::lstat((tree_.Text_Of(folder) + "/" + mail.File()).c_str(), &about) == 0;
}

void Maildir_Store::Demand_There(const Mail& mail) const {
  if (mail.gone || mail.folder->gone) Fail(automation_error::not_found, "The item is no longer there.");
}

MAPIFolder_Ptr Maildir_Store::Top_Folder() {
  Look_At_Tree();
  return maildir::Make_Folder(shared_from_this(), tree_.Top());
}

// By names on the top level, or below an inbox that the server puts all folders into.
maildir::Folder* Maildir_Store::Role(std::int32_t type) {
  if (type == default_folder_inbox)
    if (Folder* const inbox = tree_.Find("F")) return inbox;
  for (const Role_Names& role : role_names) {
    if (role.role != type) continue;
    std::vector<Folder*> levels{&tree_.Top()};
    for (Folder* const child : tree_.Top().children)
      if (child->entry_id == "F" || child->name == "INBOX") levels.push_back(child);
    for (Folder* const level : levels)
      for (const std::string_view name : role.names)
        for (Folder* const child : level->children)
          if (!name.empty() && child->name == name) return child;
    for (Folder* const child : tree_.Top().children)
      if (Role_Of_Name(child->name) == type) return child;
  }
  return nullptr;
}

MAPIFolder_Ptr Maildir_Store::GetDefaultFolder(std::int32_t folder_type) {
  Look_At_Tree();
  Folder* const folder = Role(folder_type);
  if (folder == nullptr) Fail(automation_error::not_found, "The Maildir has no such folder.");
  return maildir::Make_Folder(shared_from_this(), *folder);
}

Item_Ptr Maildir_Store::GetItemFromID(const std::string& entry_id) {
  Mail* mail = mails_.Find(entry_id);
  if (mail == nullptr || mail->gone) {
    // It may have come since, or lie in a folder that nobody has looked at.
    Look_At_Tree();
    for (const auto& [id, folder] : tree_.All()) Look_At(*folder);
    mail = mails_.Find(entry_id);
  } else {
    // Who changes it goes by its name, and misses if that is another by now.
    Look_At(*mail->folder, Look::By_Times);
  }
  if (mail == nullptr || mail->gone) Fail(automation_error::not_found, "The item is no longer there.");
  return maildir::Make_Item(shared_from_this(), *mail);
}

}  // namespace tidyfold
