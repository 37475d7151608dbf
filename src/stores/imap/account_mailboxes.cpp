// The mailboxes of an account: how they are listed, found, made and removed.
#include <algorithm>
#include <utility>

#include "base/text.h"
#include "outlook/folder_roles.h"
#include "stores/imap/account.h"
#include "stores/imap/mailbox_name.h"

namespace tidyfold::imap {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* inbox_name = "INBOX";

// Names by which mail programs know the wastebasket where the server does not.
std::int32_t Role_By_Name(const std::string& name) {
  for (const char* trash : {"Trash", "Deleted Messages", "Deleted"})
    if (name == trash) return default_folder_deleted_items;
  return Role_Of_Name(name);
}

}  // namespace

void Account::Look_At_Mailboxes() {
  {
    const std::lock_guard guard(lock_);
    if (Clock::now() - listed_at_ < settings_.trust) return;
  }
  Do([this](Mail_Session& session) { List_Mailboxes(session, false); });
}

// What is not listed any more has gone.
void Account::List_Mailboxes(Mail_Session& session, bool with_status) {
  const std::vector<Listed_Mailbox> listed = session.List(with_status);
  std::vector<Mailbox*> without_status;
  {
    const std::lock_guard guard(lock_);
    std::vector<bool> is_listed(mailboxes_.size());
    for (const Listed_Mailbox& mailbox : listed) {
      const std::size_t known = mailboxes_.size(), number = Add_To_Tree(mailbox);
      is_listed.resize(mailboxes_.size());
      for (std::size_t above = number; above != 0; above = mailboxes_[above]->parent) is_listed[above] = true;
      Mailbox& box = *mailboxes_[number];
      if (box.can_be_selected && !mailbox.has_status && (with_status || number >= known))
        without_status.push_back(&box);
    }
    for (std::size_t number = 1; number < mailboxes_.size(); ++number)
      if (!is_listed[number] && !mailboxes_[number]->is_gone) Forget_Mailbox(number);
    for (const auto& mailbox : mailboxes_)
      if (mailbox != mailboxes_.front()) Take_Role(*mailbox);
    listed_at_ = Clock::now();
  }
  for (Mailbox* const box : without_status) {
    try {
      session.Ask_Status(*box);
    } catch (const Refused&) {
      const std::lock_guard guard(lock_);
      box->can_be_selected = false;
    }
  }
}

void Account::Forget_Mailbox(std::size_t mailbox) {
  Mailbox& gone = Box(mailbox);
  gone.is_gone = true;
  gone.Forget_Messages();
  by_name_.erase(gone.wire_name);
  std::erase(Box(gone.parent).children, mailbox);
}

// A server that tells no roles leaves them to the names.
void Account::Take_Role(Mailbox& mailbox) const {
  const bool may_have = mailbox.role == 0 && mailbox.parent == 0 && !mailbox.is_gone;
  const std::int32_t role = may_have ? Role_By_Name(mailbox.name) : 0;
  const bool taken = std::any_of(mailboxes_.begin(), mailboxes_.end(),
                                 [&](const auto& other) { return other->role == role && !other->is_gone; });
  if (role != 0 && role != default_folder_inbox && !taken) mailbox.role = role;
}

// Those above a mailbox may come after it, or not at all.
std::size_t Account::Add_To_Tree(const Listed_Mailbox& listed) {
  if (listed.delimiter != '\0') delimiter_ = listed.delimiter;
  std::size_t parent = 0, number = 0;
  std::size_t begin = 0;
  for (;;) {
    const std::size_t end =
        listed.delimiter == '\0' ? std::string::npos : listed.wire_name.find(listed.delimiter, begin);
    const std::string path = listed.wire_name.substr(0, end);
    const auto [place, is_new] = by_name_.try_emplace(path, mailboxes_.size());
    number = place->second;
    if (is_new) {
      auto box = std::make_unique<Mailbox>();
      box->wire_name = path;
      box->name = Decode_Mailbox_Name(path.substr(begin));
      if (parent == 0 && Same_Ascii(path, inbox_name)) box->name = "Inbox";
      box->parent = parent;
      mailboxes_.push_back(std::move(box));
      auto& siblings = mailboxes_[parent]->children;
      const auto stands_before = [this](std::size_t left, std::size_t right) {
        const Mailbox &one = *mailboxes_[left], &other = *mailboxes_[right];
        const bool inbox = Same_Ascii(one.wire_name, inbox_name);
        if (inbox != Same_Ascii(other.wire_name, inbox_name)) return inbox;
        return Compare_Ignoring_Case(one.name, other.name) < 0;
      };
      siblings.insert(std::upper_bound(siblings.begin(), siblings.end(), number, stands_before), number);
    }
    if (end == std::string::npos || end + 1 >= listed.wire_name.size()) break;
    parent = number;
    begin = end + 1;
  }
  Mailbox& box = *mailboxes_[number];
  box.can_be_selected = listed.can_be_selected;
  box.role = listed.role;
  if (!listed.has_status) return number;
  box.messages = listed.messages;
  box.uid_validity = listed.uid_validity;
  box.looked_at = Clock::now();
  return number;
}

Mailbox Account::Describe(std::size_t mailbox) const {
  const std::lock_guard guard(lock_);
  const Mailbox& box = Box(mailbox);
  Mailbox copy;
  copy.wire_name = box.wire_name;
  copy.name = box.name;
  copy.parent = box.parent;
  copy.children = box.children;
  copy.can_be_selected = box.can_be_selected;
  copy.is_gone = box.is_gone;
  copy.role = box.role;
  copy.uid_validity = box.uid_validity;
  copy.is_read_only = box.is_read_only;
  return copy;
}

std::size_t Account::Find(const std::string& wire_name) const {
  const std::lock_guard guard(lock_);
  const auto found = by_name_.find(wire_name);
  return found == by_name_.end() ? 0 : found->second;
}

std::size_t Account::Find_Role(std::int32_t role) const {
  const std::lock_guard guard(lock_);
  for (std::size_t number = 1; number < mailboxes_.size(); ++number)
    if (!mailboxes_[number]->is_gone && mailboxes_[number]->role == role) return number;
  return 0;
}

std::optional<std::size_t> Account::Find(std::uint32_t uid_validity, const std::string& wire_name) const {
  const std::size_t number = wire_name.empty() ? 0 : Find(wire_name);
  if (number == 0 || Describe(number).uid_validity != uid_validity) return std::nullopt;
  return number;
}

std::size_t Account::Add_Mailbox(std::size_t parent, const std::string& name) {
  const Mailbox above = Describe(parent);
  if (above.is_gone) Fail_Folder_Gone();
  const std::string last = Encode_Mailbox_Name(name);
  if (last.empty() || last.find(delimiter_) != std::string::npos)
    Fail(automation_error::call_failed, "A mail folder cannot be called \"" + name + "\".");
  Listed_Mailbox added;
  added.delimiter = delimiter_;
  added.wire_name = parent == 0 ? last : above.wire_name + delimiter_ + last;
  std::size_t number = 0;
  Do([&](Mail_Session& session) {
    session.Client().Run(Command("CREATE ").String(added.wire_name));
    {
      const std::lock_guard guard(lock_);
      number = Add_To_Tree(added);
      Take_Role(*mailboxes_[number]);
    }
    session.Ask_Status(*mailboxes_[number]);
  });
  return number;
}

void Account::Remove_Mailbox(std::size_t mailbox) {
  Existing_Box(mailbox);
  std::vector<std::size_t> below{mailbox};
  {
    const std::lock_guard guard(lock_);
    for (std::size_t at = 0; at < below.size(); ++at) {
      const auto& children = Box(below[at]).children;
      below.insert(below.end(), children.begin(), children.end());
    }
  }
  // The lowest first: a server keeps the name of a folder that holds others.
  Do([&](Mail_Session& session) {
    session.Unselect();
    if (session.Client().Has("UNSELECT")) session.Client().Finish(session.Client().Send(Command("UNSELECT")));
    for (auto number = below.rbegin(); number != below.rend(); ++number) {
      Mailbox& gone = Box(*number);
      if (gone.is_gone) continue;
      if (gone.can_be_selected) session.Client().Run(Command("DELETE ").String(gone.wire_name));
      const std::lock_guard guard(lock_);
      Forget_Mailbox(*number);
    }
  });
}

}  // namespace tidyfold::imap
