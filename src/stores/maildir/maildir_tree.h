// The folders of a Maildir: Maildir++ (".Lists.Dev" beside each other,
// https://www.courier-mta.org/imap/README.maildirquota.html), directories in directories, or both, with or
// without mail in the directory itself.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "stores/maildir/mail_list.h"

namespace tidyfold::maildir {

// A folder. It stays when the tree is read again, as long as its directory is there.
struct Folder {
  // Of the top folder "T", of all others "F" and the directory below the top's.
  std::string entry_id;
  std::string name;
  std::string directory;    // below the top's; empty for the top folder, and for what holds mail beside cur/
  bool dotted = false;      // its name is its path, with dots
  bool has_mail = false;    // it is a Maildir, not only a directory around some
  bool to_be_made = false;  // there is no such directory yet
  bool gone = false;
  Folder* parent = nullptr;
  std::vector<Folder*> children;  // by name
  std::unique_ptr<Mail_List> mail;
};

class Folder_Tree {
 public:
  explicit Folder_Tree(std::filesystem::path top) : top_path_(std::move(top)) {}

  // Reads the directories if that is due. Throws std::filesystem::filesystem_error if the top cannot be read.
  void Look();
  void Forget_What_Was_Seen() { seen_.clear(); }

  Folder& Top() const { return *top_; }
  // nullptr if there is none.
  Folder* Find(const std::string& entry_id) const;
  const std::filesystem::path& Path() const { return top_path_; }
  std::filesystem::path Path_Of(const Folder& folder) const { return top_path_ / folder.directory; }
  // The same as text, which costs less.
  std::string Text_Of(const Folder& folder) const {
    return folder.directory.empty() ? top_path_.native() : top_path_.native() + "/" + folder.directory;
  }
  // Where a new folder lies. Throws Automation_Error for a name that no such folder can have.
  std::string Directory_For(const Folder& parent, const std::string& name) const;
  // Adds a folder that has no directory yet.
  Folder& Add_Unmade(Folder& parent, const std::string& name);
  void Remove(Folder& folder);
  // All of them, the top one first.
  const std::map<std::string, std::unique_ptr<Folder>>& All() const { return folders_; }

 private:
  struct Seen {
    std::int64_t changed = 0;  // nanoseconds
    std::int64_t looked = 0;
  };
  bool Is_Due() const;
  void Read_Directory(Folder& parent, const std::string& directory, int depth);
  bool Leads_To_Mail(const std::filesystem::path& directory, int depth);
  bool Is_Listed_First(const std::filesystem::path& directory);
  void Add_Dotted(const std::string& directory);
  Folder& Put(Folder& parent, const std::string& entry_id, const std::string& name);
  void Make_Maildir(Folder& folder, const std::string& directory, bool dotted);
  static void Sort(Folder& folder);

  std::filesystem::path top_path_;
  Folder* top_ = nullptr;
  std::map<std::string, std::unique_ptr<Folder>> folders_;  // by EntryID, without those that have gone
  std::vector<std::unique_ptr<Folder>> gone_;
  std::map<std::string, Seen> seen_;  // the directories that were listed
  // Of one look: links may form cycles, and whoever names a home directory has many that hold no mail.
  std::set<std::pair<std::uint64_t, std::uint64_t>> listed_;  // device and inode
  int searches_left_ = 0;
  bool has_dotted_ = false, has_nested_ = false;
};

// When a directory was last changed, in nanoseconds since 1970; 0 where there is none.
std::int64_t Changed(const std::string& directory);
std::int64_t Now();
// A change may share its moment with one that came after the look.
constexpr std::int64_t moment = 50'000'000;

}  // namespace tidyfold::maildir
