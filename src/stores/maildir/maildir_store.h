// A Maildir as an information store (https://cr.yp.to/proto/maildir.html).
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "mail/mail_summary.h"
#include "outlook/mail_store.h"
#include "stores/header_cache/header_cache.h"
#include "stores/maildir/directory_list.h"
#include "stores/maildir/maildir_tree.h"
#include "stores/maildir/read_ahead.h"

namespace tidyfold {

struct Maildir_Options {
  Store_Mode mode = Store_Mode::Read_Write;
  std::filesystem::path cache_folder = {};  // empty: headers are not kept
  bool make_trash = true;                   // where there is none, on the first use
  bool may_be_empty = false;                // a directory without any Maildir
  Begin_Wait wait = {};                     // as in Store_Opening, when a directory takes long
};

// Other programs deliver, mark and delete at any time; nothing is locked, and every mail is known by the
// unique part of its file's name. A move is a rename, a deletion an unlink, by the very name that was read
// last: when marks have changed since, the call misses, the directory is read again, and mail that became
// unread or flagged stays. Changes are queued and made when their group ends, so that the log is written
// before.
class Maildir_Store : public Mail_Store, public std::enable_shared_from_this<Maildir_Store> {
 public:
  // Throws Store_Open_Error.
  static std::shared_ptr<Maildir_Store> Open(const Store_Address& address, const Maildir_Options& options);
  ~Maildir_Store() override;

  const Store_Address& Address() const override { return address_; }
  bool Is_At(const Store_Address& address) const override;
  Store_Mode Mode() const override { return options_.mode; }
  std::string StoreID() const override { return store_id_; }
  void Set_StoreID(std::string store_id) override { store_id_ = std::move(store_id); }
  MAPIFolder_Ptr Top_Folder() override;
  MAPIFolder_Ptr GetDefaultFolder(std::int32_t folder_type) override;
  Item_Ptr GetItemFromID(const std::string& entry_id) override;
  New_Item Read_Whole_Item(const std::string& entry_id) override;
  void Set_Display(Display_Callback display) override { display_ = std::move(display); }
  void Set_Watcher(std::weak_ptr<Group_Watcher> watcher) override { watcher_ = std::move(watcher); }
  void Commit_Pending() override;

  // For the objects. All throw Automation_Error.
  using Folder = maildir::Folder;
  using Mail = maildir::Mail;
  // Sees to it that the folder is known as it is now, or at least as the times of its directories tell.
  // Throws not_found for one that has gone.
  enum class Look { Closely, By_Times };
  void Look_At(Folder& folder, Look look = Look::Closely);
  void Look_At_Tree();
  static std::string Entry_Id(const Mail& mail) { return maildir::Mail_Index::Entry_Id(mail); }
  // What the mail's file says now. Throws call_failed for a file that is no mail.
  Mail_Summary Summary(Mail& mail, std::int64_t& size);
  // What is kept of the mail from an earlier reading.
  std::optional<Cached_Header> Kept_Header(const Mail& mail);
  void Read_Soon(const std::shared_ptr<maildir::Header_Batch>& batch) { read_ahead_.Begin(batch); }
  std::string Directory_Of(const Folder& folder) const { return tree_.Text_Of(folder); }
  // From what is kept, else from what has been read of the file, else the file is read now.
  Table_Row Row(Mail& mail, std::optional<Cached_Header> header, std::optional<maildir::Read_Header> read);
  // Once what has been read in a row is enough.
  void Keep_Headers() { cache_.Keep(); }
  New_Item Whole(Mail& mail);
  void Move(Mail& mail, const std::string& folder_entry_id);
  void Delete(Mail& mail);
  void Remove(Mail& mail);
  Folder& Add_Folder(Folder& parent, const std::string& name, std::int32_t item_type);
  void Remove_Folder(Folder& folder);
  void Display(Mail& mail);
  [[noreturn]] static void Fail(std::int32_t number, const std::string& text);

 private:
  struct Change {
    Mail* mail = nullptr;
    Folder* from = nullptr;
    Folder* to = nullptr;  // nullptr: for good
  };

  Maildir_Store(const Store_Address& address, const Maildir_Options& options);
  void Check_Place() const;
  std::string Unreachable() const;
  std::string Why_Lost() const;
  void Read(Folder& folder);
  int Scan(Folder& folder, bool is_new, maildir::Patience& patience, std::vector<Mail*>& came);
  Mail& Note(Folder& folder, std::string_view name, bool is_new, std::uint64_t inode,
             std::vector<Mail*>& came);
  bool Is_On_Disk(const Folder& folder, const Mail& mail) const;
  Cached_Header Header(Mail& mail, std::optional<maildir::Read_Header> read);
  std::string Read_File(Mail& mail, std::size_t most, std::int64_t& size);
  Folder* Role(std::int32_t type);
  Folder& Trash();
  void Demand_Writable() const;
  void Demand_There(const Mail& mail) const;
  void Queue(Mail& mail, Folder* to);
  std::string Make(const Change& change);
  std::string Make_Once(const Change& change, int& error);
  void Undo(const Change& change);
  void Make_Directory(Folder& folder);
  void Forget_What_Has_Gone();

  Store_Address address_;
  Maildir_Options options_;
  std::string store_id_;
  maildir::Folder_Tree tree_;
  Header_Cache cache_;
  std::int64_t cached_ = 0;
  std::uint32_t reading_ = 0;  // of a directory, counted
  maildir::Mail_Index mails_;
  std::vector<Change> queue_;
  std::weak_ptr<Group_Watcher> watcher_;
  Display_Callback display_;
  maildir::Read_Ahead read_ahead_;
};

}  // namespace tidyfold
