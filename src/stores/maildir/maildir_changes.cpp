// What a Maildir store changes on the disk.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include "errors/automation_error.h"
#include "mail/maildir.h"
#include "stores/maildir/maildir_store.h"

namespace tidyfold {

namespace {

namespace fs = std::filesystem;

// A group of this size ends before the next change.
constexpr std::size_t changes_per_group = 200;
constexpr int most_attempts = 4;

std::string Message(int error) {
  return std::generic_category().message(error);
}

std::string Why(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
      return "The disk is full. Make room on it and try again.";
    case EACCES:
    case EPERM:
    case EROFS:
      return "The Maildir cannot be written (" + Message(error) +
             "). Change the permissions of its directories, or ask their owner to.";
    case EEXIST:
      return "Another mail of the same name lies in the folder that it would go to.";
    case EXDEV:
      return "The folder that it would go to lies on another disk. Move the mail with a mail program.";
    default:
      return "The Maildir could not be changed (" + Message(error) + ").";
  }
}

// Never in place of another file.
int Rename(const fs::path& from, const fs::path& to) {
#ifdef RENAME_NOREPLACE
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
  if (errno != EINVAL && errno != ENOSYS) return errno;
#endif
  // For file systems that cannot do it in one.
  if (::link(from.c_str(), to.c_str()) == 0) {
    if (::unlink(from.c_str()) == 0) return 0;
    const int error = errno;
    ::unlink(to.c_str());
    return error;
  }
  if (errno != EPERM && errno != ENOTSUP && errno != EMLINK) return errno;
  struct stat about = {};
  if (::lstat(to.c_str(), &about) == 0) return EEXIST;
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

void Maildir_Store::Demand_Writable() const {
  if (options_.mode == Store_Mode::Read_Only)
    Fail(automation_error::no_access, "The Maildir is open for reading only.");
}

maildir::Folder& Maildir_Store::Trash() {
  Folder* const trash = Role(default_folder_deleted_items);
  if (trash == nullptr)
    Fail(automation_error::not_found,
         "The Maildir has no folder for deleted items. Make one called \"Trash\".");
  return *trash;
}

void Maildir_Store::Queue(Mail& mail, Folder* to) {
  Demand_Writable();
  Demand_There(mail);
  if (queue_.size() >= changes_per_group) Commit_Pending();
  Demand_There(mail);
  queue_.push_back({&mail, mail.folder, to});
  mail.folder->mail->Remove(mail);
  mail.pending = true;
  if (to == nullptr) {
    mail.gone = true;
  } else {
    mail.folder = to;
    to->mail->Append(mail);
  }
}

void Maildir_Store::Move(Mail& mail, const std::string& folder_entry_id) {
  Demand_There(mail);
  Folder* const to = tree_.Find(folder_entry_id);
  if (to == nullptr || to->gone) Fail(automation_error::not_found, "The folder is no longer there.");
  if (to == &tree_.Top()) Fail(automation_error::not_supported, "The top folder of a Maildir holds no mail.");
  // What lies there already is known before more comes.
  if (to->mail->looked == 0) Look_At(*to);
  Queue(mail, to);
}

void Maildir_Store::Delete(Mail& mail) {
  Demand_There(mail);
  Folder& trash = Trash();
  if (mail.folder == &trash) return Queue(mail, nullptr);
  if (trash.mail->looked == 0) Look_At(trash);
  Queue(mail, &trash);
}

void Maildir_Store::Remove(Mail& mail) {
  Queue(mail, nullptr);
}

// Makes one change on the disk. Empty if it has been made, otherwise why not; then the mail is where it was.
std::string Maildir_Store::Make(const Change& change) {
  Mail& mail = *change.mail;
  const bool was_unread = !mail.Has('S'), was_flagged = mail.Has('F');
  int error = 0;
  for (int attempt = 0; attempt < most_attempts; ++attempt) {
    std::string failure = Make_Once(change, error);
    if (error != ENOENT) return failure;
    // Other marks, moved by its mail program, or gone.
    bool found = false;
    for (const bool is_new : {false, true}) {
      const fs::path path = tree_.Path_Of(*change.from) / (is_new ? "new" : "cur");
      std::error_code ignored;
      for (fs::directory_iterator entry(path, ignored); !ignored && entry != fs::directory_iterator();
           entry.increment(ignored)) {
        std::string name = entry->path().filename().string();
        if (Split_Maildir_Name(name).unique != mail.Unique()) continue;
        mail.name = std::move(name);
        mail.is_new = is_new;
        found = true;
        break;
      }
      if (found) break;
    }
    if (!found && !Is_Maildir(tree_.Path_Of(*change.from))) return Why_Lost();
    if (!found) return "It was moved or deleted by another program.";
    if ((!was_unread && !mail.Has('S')) || (!was_flagged && mail.Has('F')))
      return "It has become unread or flagged while it was deleted.";
  }
  return "Other programs change it all the time.";
}

std::string Maildir_Store::Make_Once(const Change& change, int& error) {
  Mail& mail = *change.mail;
  const fs::path file = tree_.Path_Of(*change.from) / mail.File();
  error = 0;
  if (change.to == nullptr) {
    if (::unlink(file.c_str()) != 0) error = errno;
    return error == 0 ? "" : Why(error);
  }
  if (change.to == change.from) return {};
  // A disk that has gone leaves an empty directory behind, and nothing is made there.
  if (change.to->to_be_made && !Is_Maildir(tree_.Path_Of(*change.from))) return error = EIO, Why_Lost();
  try {
    Make_Directory(*change.to);
  } catch (const fs::filesystem_error& failed) {
    error = failed.code().value();
    if (error == ENOENT) error = EIO;
    return Why(error);
  }
  // What lies in cur/ has been seen by a mail program; whether it was read, its marks say.
  std::string name = mail.name;
  if (Split_Maildir_Name(name).unique.size() == name.size()) name += ":2,";
  error = Rename(file, tree_.Path_Of(*change.to) / "cur" / name);
  if (error == ENOENT) {
    std::error_code ignored;
    if (!fs::is_directory(tree_.Path_Of(*change.to) / "cur", ignored)) {
      error = EIO;
      return Is_Maildir(tree_.Path_Of(*change.from))
                 ? "The folder that it would go to is no longer there. Choose Refresh."
                 : Why_Lost();
    }
  }
  if (error != 0) return Why(error);
  mail.name = std::move(name);
  mail.is_new = false;
  return {};
}

// Of a folder whose directory cannot be found.
std::string Maildir_Store::Why_Lost() const {
  std::error_code ignored;
  return fs::is_directory(tree_.Path(), ignored)
             ? "The folder that it lies in is no longer there. Choose Refresh."
             : Unreachable();
}

// With the mark by which mail servers know a folder beside others.
void Maildir_Store::Make_Directory(Folder& folder) {
  if (!folder.to_be_made && folder.has_mail) return;
  const fs::path path = tree_.Path_Of(folder);
  std::vector<fs::path> made;
  for (const fs::path& part : {path, path / "cur", path / "new", path / "tmp"}) {
    std::error_code error;
    if (fs::create_directories(part, error)) {
      made.push_back(part);
      fs::permissions(part, fs::perms::owner_all, error);
    }
    if (!error) continue;
    // Half a Maildir would be worse than none.
    std::error_code ignored;
    for (auto each = made.rbegin(); each != made.rend(); ++each) fs::remove(*each, ignored);
    throw fs::filesystem_error("", part, error);
  }
  if (folder.dotted) {
    const int mark = ::open((path / "maildirfolder").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    if (mark >= 0) ::close(mark);
  }
  folder.to_be_made = false;
  folder.has_mail = true;
}

// A later change of the same mail has not been made either.
void Maildir_Store::Undo(const Change& change) {
  Mail& mail = *change.mail;
  if (!mail.gone) mail.folder->mail->Remove(mail);
  mail.gone = false;
  mail.folder = change.from;
  change.from->mail->Append(mail);
}

void Maildir_Store::Commit_Pending() {
  if (queue_.empty()) return;
  const auto watcher = watcher_.lock();
  if (watcher != nullptr) watcher->Group_Ending();
  const std::vector<Change> changes = std::exchange(queue_, {});
  // A mail that only passes through goes straight to where it ends.
  std::unordered_map<Mail*, Change> last;
  std::vector<Mail*> order;
  for (const Change& change : changes) {
    const auto [found, is_first] = last.emplace(change.mail, change);
    if (is_first) order.push_back(change.mail);
    found->second.to = change.to;
  }
  std::string first_failure;
  for (Mail* const mail : order) {
    const Change& change = last.at(mail);
    mail->pending = false;
    const std::string failure = Make(change);
    if (failure.empty()) continue;
    if (first_failure.empty()) first_failure = failure;
    Undo(change);
    if (watcher != nullptr) watcher->Not_Kept(store_id_, Entry_Id(*mail), failure);
    // Where it is now is found out with the next look.
    change.from->mail->looked = 0;
  }
  if (watcher != nullptr) watcher->Group_Ended(store_id_, true);
  if (!first_failure.empty() && watcher == nullptr) Fail(automation_error::call_failed, first_failure);
}

maildir::Folder& Maildir_Store::Add_Folder(Folder& parent, const std::string& name, std::int32_t item_type) {
  Demand_Writable();
  if (parent.gone) Fail(automation_error::not_found, "The folder is no longer there.");
  if (item_type != item_type::mail)
    Fail(automation_error::not_supported, "A Maildir holds mail only. Choose a folder for mail.");
  Look_At_Tree();
  const std::string directory = tree_.Directory_For(parent, name);
  if (tree_.Find("F" + directory) != nullptr)
    Fail(automation_error::call_failed, "There is a folder \"" + name + "\" already. Choose another name.");
  Folder& folder = tree_.Add_Unmade(parent, name);
  try {
    Make_Directory(folder);
  } catch (const fs::filesystem_error& failed) {
    tree_.Remove(folder);
    Fail(automation_error::call_failed, Why(failed.code().value()));
  }
  return folder;
}

// Put aside whole, under a name that no program takes for a folder, and then cleared away.
void Maildir_Store::Remove_Folder(Folder& folder) {
  Demand_Writable();
  if (folder.gone) Fail(automation_error::not_found, "The folder is no longer there.");
  if (folder.directory.empty())
    Fail(automation_error::no_access, "The inbox of a Maildir cannot be removed. Its mail can be deleted.");
  Commit_Pending();
  Look_At_Tree();
  if (folder.gone) return;
  const auto watcher = watcher_.lock();
  if (watcher != nullptr) watcher->Group_Ending();
  std::vector<Folder*> all{&folder};
  for (std::size_t at = 0; at < all.size(); ++at)
    all.insert(all.end(), all[at]->children.begin(), all[at]->children.end());
  // Those below first: each of them is whole until it has gone.
  std::string failure;
  for (auto each = all.rbegin(); each != all.rend() && failure.empty(); ++each) {
    Folder& going = **each;
    const fs::path path = tree_.Path_Of(going);
    fs::path aside = tree_.Path() / ("..tidyfold-removed-" + std::to_string(::getpid()) + "-" +
                                     std::to_string(maildir::Now()));
    struct stat about = {};
    if (::lstat(path.c_str(), &about) == 0) {
      if (const int error = Rename(path, aside); error != 0) {
        failure = Why(error);
        break;
      }
      std::error_code left;
      fs::remove_all(aside, left);
    }
    for (Mail* const mail : going.mail->Slots())
      if (mail != nullptr) mail->gone = true;
    tree_.Remove(going);
  }
  if (watcher != nullptr) {
    if (!failure.empty()) watcher->Not_Kept(store_id_, folder.entry_id, failure);
    watcher->Group_Ended(store_id_, true);
  }
  if (!failure.empty()) Fail(automation_error::call_failed, failure);
}

}  // namespace tidyfold
