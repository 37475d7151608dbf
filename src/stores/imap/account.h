// A mailbox account as the program's thread sees it; the network's thread works for it.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "errors/automation_error.h"
#include "stores/imap/mail_session.h"
#include "stores/imap/mailbox.h"
#include "stores/imap/message_cache.h"
#include "stores/imap/network_thread.h"

namespace tidyfold::imap {

// All errors from here are thrown by these, as Automation_Error.
[[noreturn]] void Fail(std::int32_t number, const std::string& text);
[[noreturn]] void Fail_Folder_Gone();
[[noreturn]] void Fail_Item_Gone();

// What is to happen to one message.
struct Change {
  std::size_t mailbox = 0;
  std::uint32_t uid_validity = 0;
  Uid uid = 0;
  std::size_t target = 0;  // where it is moved; 0: it goes for good
  // What was known of it when this was decided. It stays where it is when that has changed.
  std::uint8_t flags = 0;
  bool are_flags_known = false;
  std::uint64_t mod_seq = 0;
  // How far it has got, so that it can be gone on with when the connection has dropped.
  bool is_sent = false, is_copied = false;
  // What became of it.
  bool is_done = false;
  std::string reason;  // why it is not done
  Uid new_uid = 0;     // 0: not told
  std::uint32_t new_validity = 0;
};

// How many messages the next command is for. A command is meant to take about 0.3 s; longer where the server
// needs most of that for any command, however small, as the work would never end otherwise.
class Portion_Size {
 public:
  using Duration = std::chrono::steady_clock::duration;
  std::size_t Now() const { return now_; }
  Duration Last_Took() const { return last_took_; }
  void Took(std::size_t done, Duration took);

 private:
  std::size_t now_ = 100, before_ = 0;
  Duration took_before_{}, last_took_{}, for_any_{};
  bool is_first_ = true;
};

// All calls come from one thread, wait for the server, and throw Automation_Error: unavailable where the
// connection is lost, cannot be made again or was given up, not_found for what the server no longer has, and
// call_failed with the server's words where it refuses.
class Account {
 public:
  Account(Account_Settings settings, const std::filesystem::path& cache);
  Account(const Account&) = delete;
  Account& operator=(const Account&) = delete;
  ~Account();

  // As in Store_Opening.
  void Set_Wait(Begin_Wait wait) { wait_ = std::move(wait); }
  // As in Automation; asked in the middle of a call, which then goes on or fails as unavailable.
  void Ask_When_Busy(std::function<bool(const std::string& words)> go_on) { go_on_ = std::move(go_on); }

  // Logs in and lists the mailboxes. Throws what Mail_Session throws, as no Automation_Error says why.
  void Open();
  // What the server wants a person to read; each is told once.
  std::vector<std::string> Take_Alerts();

  // Sees to it that the list of mailboxes is not older than the settings allow.
  void Look_At_Mailboxes();
  // Mailboxes by number; 0 is the top of the account. Numbers never change; a mailbox may be gone.
  std::size_t Count() const;
  // A copy of what is known, without the messages.
  Mailbox Describe(std::size_t mailbox) const;
  std::size_t Find(const std::string& wire_name) const;  // 0: none
  std::size_t Find_Role(std::int32_t role) const;        // 0: none
  std::optional<std::size_t> Find(std::uint32_t uid_validity, const std::string& wire_name) const;
  // Returns the number of the new mailbox.
  std::size_t Add_Mailbox(std::size_t parent, const std::string& name);
  void Remove_Mailbox(std::size_t mailbox);

  // How many messages there are; asks the server where the last answer is old.
  std::uint32_t Messages(std::size_t mailbox);
  // Sees to it that the list of messages is not older than the settings allow.
  void Look(std::size_t mailbox);
  // UIDVALIDITY and UID of the message in this place, counted from 1.
  std::optional<std::pair<std::uint32_t, Uid>> Message_At(std::size_t mailbox, std::int32_t index) const;
  bool Has_Message(std::size_t mailbox, std::uint32_t uid_validity, Uid uid) const;
  std::uint8_t Flags(std::size_t mailbox, Uid uid) const;
  // With what is known of the message now. Until it has been carried out, the message is taken for gone.
  Change Plan_Change(std::size_t mailbox, std::uint32_t uid_validity, Uid uid, std::size_t target);
  // How many changes are worth one batch.
  std::size_t Batch_Size() const { return move_size_.Now(); }
  std::chrono::steady_clock::duration Last_Batch_Took() const { return move_size_.Last_Took(); }
  // The rows of the next messages behind a UID, no more than `most`. Rows that were not fetched yet are
  // waited for, and those behind them fetched meanwhile.
  std::vector<Message_Data> Rows_Behind(std::size_t mailbox, Uid after, std::size_t most);
  // Throws not_found.
  Message_Data Row(std::size_t mailbox, Uid uid);
  // The whole message. Throws not_found.
  std::string Body(std::size_t mailbox, Uid uid);

  // Carries changes out, as far as that goes, and says of each what became of it. Throws only where nothing
  // more can be done with the account; what is not known is then not done, and its reason says so.
  void Carry_Out(std::vector<Change>& changes);

 private:
  // On the network's thread.
  void With_Session(const std::function<void(Mail_Session&)>& work);
  void List_Mailboxes(Mail_Session& session, bool with_status);
  void Look_And_Keep(Mail_Session& session, Mailbox& mailbox);
  void Fetch_Missing(Mail_Session& session, Mailbox& mailbox, Uid after, bool only_first);
  std::future<void> Keep_Rows(Mail_Session& session, Mailbox& mailbox, Uid ahead_to);
  void Carry_Out_Batch(Mail_Session& session, std::vector<Change*>& batch);
  struct Steps;
  Steps Sort_Out(const Mailbox& mailbox, std::vector<Change*>& batch) const;
  void Take_Marks_Off(Mail_Session& session, Mailbox& mailbox);
  void Go_On_Fetching(std::size_t mailbox, Uid after);

  // On the program's thread.
  void Do(const std::function<void(Mail_Session&)>& work);
  bool Await_Row(const Mailbox& mailbox, Uid after);
  bool Goes_On(const std::string& words);
  Mailbox& Box(std::size_t mailbox) const;
  Mailbox& Existing_Box(std::size_t mailbox) const;
  std::size_t Add_To_Tree(const Listed_Mailbox& listed);
  void Take_Role(Mailbox& mailbox) const;
  void Forget_Mailbox(std::size_t mailbox);

  Account_Settings settings_;
  Message_Cache cache_;
  Begin_Wait wait_;
  std::function<bool(const std::string& words)> go_on_;
  bool asking_ = false;

  mutable std::mutex lock_;  // of what both threads know
  std::vector<std::unique_ptr<Mailbox>> mailboxes_;
  std::unordered_map<std::string, std::size_t> by_name_;  // those that are not gone
  std::chrono::steady_clock::time_point listed_at_;
  std::vector<std::string> alerts_;
  // Messages that we have marked as deleted, and that are to stay after all.
  std::map<const Mailbox*, std::vector<Uid>> marked_;
  // What is fetched ahead; the latest alone goes on.
  struct Fetch_Ahead {
    std::uint64_t number = 0;
    const Mailbox* mailbox = nullptr;  // none: it has ended
    Uid done = 0;                      // up to here
  };
  Fetch_Ahead ahead_;
  std::condition_variable rows_came_;

  char delimiter_ = '/';
  Portion_Size fetch_size_, move_size_;
  std::unique_ptr<Mail_Session> session_;  // the network's thread's
  Network_Thread network_;                 // ends first
};

}  // namespace tidyfold::imap
