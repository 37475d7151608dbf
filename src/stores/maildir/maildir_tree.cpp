#include "stores/maildir/maildir_tree.h"

#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <system_error>

#include "base/text.h"
#include "controls/interaction.h"
#include "errors/automation_error.h"
#include "mail/mail_headers.h"
#include "mail/maildir.h"

namespace tidyfold::maildir {

namespace {

namespace fs = std::filesystem;

// Deeper than any tree that a path can name.
constexpr int deepest = 200;
constexpr int most_searches = 5000;
constexpr const char* inbox_name = "Inbox";
constexpr const char* top_id = "T";
// What is being removed, here or by mail servers.
constexpr std::string_view being_removed = "..";

std::string Below(const std::string& directory, const std::string& name) {
  return directory.empty() ? name : directory + "/" + name;
}

bool Is_Part(const std::string& name) {
  return name == "cur" || name == "new" || name == "tmp";
}

std::vector<std::string> Directories_In(const fs::path& directory, std::error_code& error) {
  std::vector<std::string> names;
  fs::directory_iterator entry(directory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    std::error_code dangling;
    if (entry->is_directory(dangling)) names.push_back(entry->path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace

std::int64_t Changed(const std::string& directory) {
  struct stat about = {};
  if (::stat(directory.c_str(), &about) != 0) return 0;
  return std::int64_t{about.st_mtim.tv_sec} * 1'000'000'000 + about.st_mtim.tv_nsec;
}

std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

bool Folder_Tree::Is_Due() const {
  return seen_.empty() || std::any_of(seen_.begin(), seen_.end(), [&](const auto& seen) {
           const std::int64_t changed = Changed((top_path_ / seen.first).native());
           return changed != seen.second.changed || changed + moment >= seen.second.looked;
         });
}

void Folder_Tree::Look() {
  if (!Is_Due()) return;
  // What cannot be read has not gone.
  std::error_code unreadable;
  const fs::directory_iterator readable(top_path_, unreadable);
  if (unreadable) throw fs::filesystem_error("", top_path_, unreadable);
  seen_.clear();
  listed_.clear();
  searches_left_ = most_searches;
  has_dotted_ = has_nested_ = false;
  for (const auto& [id, folder] : folders_) {
    folder->children.clear();
    folder->gone = !folder->to_be_made;
  }
  if (top_ == nullptr) {
    std::unique_ptr<Folder>& top = folders_[top_id];
    top = std::make_unique<Folder>();
    top->entry_id = top_id;
    top->name = top_path_.filename().string();
    top->mail = std::make_unique<Mail_List>();
    top_ = top.get();
  }
  top_->gone = false;
  if (Is_Maildir(top_path_)) Make_Maildir(Put(*top_, "F", inbox_name), "", false);
  Read_Directory(*top_, "", 0);
  for (auto folder = folders_.begin(); folder != folders_.end();) {
    Folder& each = *folder->second;
    if (each.to_be_made && each.parent->gone) each.gone = true;
    if (each.to_be_made && !each.gone) {
      if (std::find(each.parent->children.begin(), each.parent->children.end(), &each) ==
          each.parent->children.end())
        each.parent->children.push_back(&each);
    }
    if (each.gone) {
      gone_.push_back(std::move(folder->second));
      folder = folders_.erase(folder);
    } else {
      ++folder;
    }
  }
  for (const auto& [id, folder] : folders_) Sort(*folder);
}

void Folder_Tree::Sort(Folder& folder) {
  std::sort(folder.children.begin(), folder.children.end(), [](const Folder* left, const Folder* right) {
    const int order = Compare_Ignoring_Case(left->name, right->name);
    return order != 0 ? order < 0 : left->entry_id < right->entry_id;
  });
}

Folder& Folder_Tree::Put(Folder& parent, const std::string& entry_id, const std::string& name) {
  std::unique_ptr<Folder>& folder = folders_[entry_id];
  if (folder == nullptr) {
    folder = std::make_unique<Folder>();
    folder->entry_id = entry_id;
    folder->mail = std::make_unique<Mail_List>();
  }
  const bool known = !folder->gone && std::find(parent.children.begin(), parent.children.end(),
                                                folder.get()) != parent.children.end();
  if (!known) {
    if (folder->gone || folder->parent == nullptr) folder->has_mail = false;
    folder->parent = &parent;
    parent.children.push_back(folder.get());
  }
  folder->name = name;
  folder->gone = false;
  return *folder;
}

void Folder_Tree::Make_Maildir(Folder& folder, const std::string& directory, bool dotted) {
  folder.directory = directory;
  folder.dotted = dotted;
  folder.has_mail = true;
  folder.to_be_made = false;
}

// A Maildir, or a directory with one somewhere below.
bool Folder_Tree::Leads_To_Mail(const fs::path& directory, int depth) {
  if (Is_Maildir(directory)) return true;
  if (depth >= deepest || --searches_left_ < 0) return false;
  std::error_code error;
  for (const std::string& name : Directories_In(directory, error))
    if (!name.starts_with('.') && Leads_To_Mail(directory / name, depth + 1)) return true;
  return false;
}

bool Folder_Tree::Is_Listed_First(const fs::path& directory) {
  struct stat about = {};
  return ::stat(directory.c_str(), &about) == 0 && listed_.emplace(about.st_dev, about.st_ino).second;
}

void Folder_Tree::Read_Directory(Folder& parent, const std::string& directory, int depth) {
  const fs::path path = top_path_ / directory;
  if (!Is_Listed_First(path)) return;
  const std::int64_t changed = Changed(path.native());
  std::error_code error;
  const std::vector<std::string> names = Directories_In(path, error);
  seen_[directory] = {changed, Now()};
  for (const std::string& name : names) {
    if (Is_Part(name) || name.starts_with(being_removed)) continue;
    const std::string below = Below(directory, name);
    if (name.starts_with('.')) {
      if (directory.empty() && Is_Maildir(path / name)) Add_Dotted(name);
      continue;
    }
    if (depth >= deepest || !Leads_To_Mail(path / name, depth)) continue;
    struct stat about = {};
    if (::stat((path / name).c_str(), &about) != 0 || listed_.contains({about.st_dev, about.st_ino}))
      continue;
    has_nested_ = true;
    Folder& folder = Put(parent, "F" + below, From_Maildir_Name(name));
    folder.directory = below;
    if (Is_Maildir(path / name)) Make_Maildir(folder, below, false);
    Read_Directory(folder, below, depth + 1);
  }
}

// With those above it, of which there may be no directories.
void Folder_Tree::Add_Dotted(const std::string& directory) {
  has_dotted_ = true;
  Folder* folder = top_;
  for (std::size_t at = 1; at < directory.size();) {
    const std::size_t end = std::min(directory.find('.', at), directory.size());
    const std::string_view first = std::string_view(directory).substr(1, end - 1);
    Folder* const inbox =
        at == 1 && end < directory.size() && Same_Name(first, inbox_name) ? Find("F") : nullptr;
    if (inbox != nullptr) {
      folder = inbox;
    } else if (end > at) {
      folder =
          &Put(*folder, "F" + directory.substr(0, end), From_Maildir_Name(directory.substr(at, end - at)));
      if (!folder->has_mail) folder->directory = directory.substr(0, end);
      folder->dotted = true;
    }
    at = end + 1;
  }
  if (folder != top_) Make_Maildir(*folder, directory, true);
}

Folder* Folder_Tree::Find(const std::string& entry_id) const {
  const auto found = folders_.find(entry_id);
  return found == folders_.end() ? nullptr : found->second.get();
}

std::string Folder_Tree::Directory_For(const Folder& parent, const std::string& name) const {
  const bool below_top = parent.parent == nullptr;
  // As the folders beside it; a Maildir without folders gets dotted ones, as mail servers make them.
  const bool inbox = !below_top && parent.directory.empty();
  const bool dotted =
      below_top ? has_dotted_ || (!has_nested_ && Is_Maildir(top_path_)) : parent.dotted || inbox;
  const std::string written = To_Maildir_Name(name);
  const auto fail = [&](const std::string& why) {
    throw Automation_Error(automation_error::call_failed,
                           "A Maildir can have no folder \"" + name + "\": " + why + " Choose another name.",
                           application_title);
  };
  if (written.empty()) fail("the name is empty.");
  if (name.find('/') != std::string::npos || name.find('\0') != std::string::npos)
    fail("the name holds a character that no directory's name can hold.");
  if (dotted && name.find('.') != std::string::npos) fail("there a dot stands between folders.");
  if (!dotted && (name.starts_with('.') || Is_Part(name))) fail("there this name means something else.");
  std::string directory = dotted ? (below_top ? ""
                                    : inbox   ? ".INBOX"
                                              : parent.directory) +
                                       "." + written
                                 : Below(parent.directory, written);
  constexpr std::size_t longest = 250;
  if ((dotted ? directory : written).size() > longest) fail("the name is too long.");
  return directory;
}

Folder& Folder_Tree::Add_Unmade(Folder& parent, const std::string& name) {
  const std::string directory = Directory_For(parent, name);
  Folder& folder = Put(parent, "F" + directory, name);
  folder.directory = directory;
  folder.dotted = directory.starts_with('.');
  folder.to_be_made = folder.has_mail = true;
  Sort(parent);
  return folder;
}

void Folder_Tree::Remove(Folder& folder) {
  const std::vector<Folder*> children = folder.children;
  for (Folder* child : children) Remove(*child);
  std::erase(folder.parent->children, &folder);
  folder.gone = true;
  const auto found = folders_.find(folder.entry_id);
  gone_.push_back(std::move(found->second));
  folders_.erase(found);
}

}  // namespace tidyfold::maildir
