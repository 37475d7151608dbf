// One connection, logged in, with one mailbox selected at a time; on the network's thread.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "stores/imap/authentication.h"
#include "stores/imap/client.h"
#include "stores/imap/mailbox.h"
#include "stores/imap/message_data.h"

namespace tidyfold::imap {

struct Account_Settings {
  Server_Address server;
  Login login;
  // How the server is reached, if not by its address.
  std::function<std::unique_ptr<Transport>(const Interruption&)> connect;
  // A server that is silent for longer has gone.
  std::chrono::seconds patience{120};
  // What is known of a mailbox is asked for again when it is older.
  std::chrono::milliseconds trust{2000};
};

// A mailbox as it is listed.
struct Listed_Mailbox {
  std::string wire_name;
  char delimiter = '\0';  // none: no hierarchy
  bool can_be_selected = true;
  std::int32_t role = 0;
  bool has_status = false;
  std::uint32_t messages = 0, uid_validity = 0;
};

// A message that was moved, and what it is there; 0 where the server did not say.
struct Moved_Message {
  Uid uid = 0, new_uid = 0;
  std::uint32_t new_validity = 0;
};

// What a server said that did not do all that it was asked for, and its code; both empty where it did.
struct Refusal {
  std::string text, code;
};

class Mail_Session {
 public:
  // Connects and logs in. `lock` guards the mailboxes.
  Mail_Session(const Account_Settings& settings, const Interruption& interruption, std::mutex& lock);

  // All throw Connection_Error, Protocol_Error, Interrupted and Refused.

  // With the status of each where the server gives it along.
  std::vector<Listed_Mailbox> List(bool with_status);
  // Asks for the number of messages and UIDVALIDITY, without selecting.
  void Ask_Status(Mailbox& mailbox);
  // Selects it where it is not, and looks what has come, gone and changed. Afterwards it is listed. Where its
  // UIDVALIDITY is another, all that was known of its messages is forgotten.
  void Look(Mailbox& mailbox);
  bool Has_Selected(const Mailbox& mailbox) const { return selected_ == &mailbox; }

  // What the server has told of messages of the selected mailbox since it was last asked for; rows only as
  // far as they were fetched.
  std::vector<Message_Data> Take_Rows() { return std::exchange(rows_, {}); }
  std::vector<Uid> Take_Vanished() { return std::exchange(vanished_, {}); }
  std::vector<std::pair<Uid, std::uint8_t>> Take_Changed_Flags() { return std::exchange(changed_flags_, {}); }

  // Fetch rows of messages of the mailbox that was looked at last, and look at it again; up to two at a time
  // may be under way.
  struct Fetch {
    std::string rows, look;  // tags
  };
  Fetch Begin_Fetch(const std::vector<std::pair<Uid, Uid>>& ranges);
  void Finish_Fetch(const Fetch& fetch);
  // One message, or a part of it. Empty where it has gone.
  std::string Fetch_Body(Uid uid, const std::string& part);

  bool Can_Move() { return client_->Has("MOVE"); }
  bool Can_Expunge() { return client_->Has("UIDPLUS"); }
  // These say why messages stay where they are, where the server has said so. What was moved or copied is
  // what the server names.
  Refusal Move(const std::vector<Uid>& uids, const Mailbox& target, std::vector<Moved_Message>& moved);
  Refusal Copy(const std::vector<Uid>& uids, const Mailbox& target, std::vector<Moved_Message>& copied);
  // Marks messages as deleted and expunges them; only those that have not changed since `mod_seq`, if that is
  // not 0. `marked` is added to as soon as the server has marked them.
  Refusal Expunge(const std::vector<Uid>& uids, std::uint64_t mod_seq, std::vector<Uid>& marked);
  Refusal Expunge_Marked(const std::vector<Uid>& uids);
  void Unmark(const std::vector<Uid>& uids);

  imap::Client& Client() { return *client_; }
  // The mailbox was renamed or deleted.
  void Unselect();

 private:
  void Enable();
  void Take(const Response& response);
  void Took_Messages(const Response& fetch);
  void Removed(const std::vector<Uid>& gone);
  void List_Messages();
  void Learn_Flags(Uid after);
  std::vector<Uid> Search(const std::string& what);
  Refusal Transfer(const char* command, const std::vector<Uid>& uids, const Mailbox& target,
                   std::vector<Moved_Message>& moved);
  std::vector<std::unique_ptr<Response>> Run_All(const std::vector<Command>& commands,
                                                 const imap::Client::Handler& handler = {});

  std::mutex& lock_;
  std::unique_ptr<imap::Client> client_;
  Mailbox* selected_ = nullptr;
  std::uint32_t exists_ = 0;
  std::uint64_t highest_ = 0;  // HIGHESTMODSEQ as told last
  bool has_qresync_ = false;
  std::vector<Message_Data> rows_;
  std::vector<Uid> vanished_;
  std::vector<std::pair<Uid, std::uint8_t>> changed_flags_;
  bool closing_ = false;
};

}  // namespace tidyfold::imap
