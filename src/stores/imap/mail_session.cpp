#include "stores/imap/mail_session.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <iterator>
#include <set>
#include <thread>
#include <utility>

#include "outlook/object_model.h"

namespace tidyfold::imap {

namespace {

constexpr int most_listings = 5;
constexpr std::size_t most_mailboxes = 100'000;

// RFC 6154, section 2.
std::int32_t Role_Of(const Value& attribute) {
  if (attribute.Is("\\TRASH")) return default_folder_deleted_items;
  if (attribute.Is("\\SENT")) return default_folder_sent;
  if (attribute.Is("\\DRAFTS")) return default_folder_drafts;
  if (attribute.Is("\\JUNK")) return default_folder_junk;
  return 0;
}

// Whoever tells the password may take as long as they like; a wait for them ends like one for the server.
std::string Wait_For_Secret(const std::function<std::string()>& secret, const Interruption& interruption) {
  constexpr auto looking_every = std::chrono::milliseconds(20);
  std::packaged_task<std::string()> task(secret);
  auto told = task.get_future();
  std::thread(std::move(task)).detach();
  while (told.wait_for(looking_every) != std::future_status::ready)
    if (interruption.Is_Set()) throw Interrupted();
  return told.get();
}

}  // namespace

Mail_Session::Mail_Session(const Account_Settings& settings, const Interruption& interruption,
                           std::mutex& lock)
    : lock_(lock) {
  auto transport = settings.connect ? settings.connect(interruption) : Connect(settings.server, interruption);
  client_ = std::make_unique<imap::Client>(std::move(transport), interruption, settings.patience);
  client_->on_untagged = [this](const Response& response) { Take(response); };
  if (!client_->Greet()) {
    Login login = settings.login;
    login.secret = [&] { return Wait_For_Secret(settings.login.secret, interruption); };
    Log_In(*client_, login, settings.server);
  }
  Enable();
}

// Servers that want to know who we are before they do everything are told (RFC 2971).
void Mail_Session::Enable() {
  if (client_->Has("ID")) client_->Finish(client_->Send(Command("ID (\"name\" \"Tidyfold\")")));
  if (!client_->Has("ENABLE") || !client_->Has("QRESYNC")) return;
  has_qresync_ = client_->Finish(client_->Send(Command("ENABLE QRESYNC")))->Name() == "OK";
}

std::vector<Listed_Mailbox> Mail_Session::List(bool with_status) {
  const bool special = client_->Has("SPECIAL-USE") && client_->Has("LIST-EXTENDED");
  const bool status = with_status && client_->Has("LIST-STATUS");
  std::string options = special ? "SPECIAL-USE" : "";
  if (status) options += std::string(special ? " " : "") + "STATUS (MESSAGES UIDVALIDITY)";
  std::vector<Listed_Mailbox> mailboxes;
  const auto find = [&](std::string_view name) {
    // The status follows its mailbox.
    return std::find_if(mailboxes.rbegin(), mailboxes.rend(),
                        [&](const Listed_Mailbox& mailbox) { return mailbox.wire_name == name; });
  };
  client_->Run(Command("LIST \"\" \"*\"" + (options.empty() ? "" : " RETURN (" + options + ")")),
               [&](const Response& response) {
                 const auto arguments = response.Arguments();
                 if (response.Name() == "LIST" && arguments.size() >= 3) {
                   Listed_Mailbox mailbox;
                   mailbox.wire_name = arguments[2].Text();
                   if (arguments[1].Text().size() == 1) mailbox.delimiter = arguments[1].Text().front();
                   for (const Value& attribute : arguments[0].List()) {
                     if (attribute.Is("\\NOSELECT") || attribute.Is("\\NONEXISTENT"))
                       mailbox.can_be_selected = false;
                     if (const std::int32_t role = Role_Of(attribute); role != 0) mailbox.role = role;
                   }
                   if (Same_Ascii(mailbox.wire_name, "INBOX")) mailbox.role = default_folder_inbox;
                   const bool bad = mailbox.wire_name.find('\0') != std::string::npos;
                   if (bad || mailboxes.size() >= most_mailboxes)
                     throw Protocol_Error("The server named mailboxes that cannot be.");
                   mailboxes.push_back(std::move(mailbox));
                 } else if (response.Name() == "STATUS" && arguments.size() >= 2) {
                   const auto found = find(arguments[0].Text());
                   if (found == mailboxes.rend()) return;
                   found->has_status = true;
                   const auto values = arguments[1].List();
                   for (std::size_t at = 0; at + 1 < values.size(); at += 2) {
                     if (values[at].Is("MESSAGES")) found->messages = values[at + 1].Number_32().value_or(0);
                     if (values[at].Is("UIDVALIDITY"))
                       found->uid_validity = values[at + 1].Number_32().value_or(0);
                   }
                 }
               });
  return mailboxes;
}

void Mail_Session::Ask_Status(Mailbox& mailbox) {
  client_->Run(Command("STATUS ").String(mailbox.wire_name).Raw(" (MESSAGES UIDVALIDITY)"),
               [&](const Response& response) {
                 const auto arguments = response.Arguments();
                 if (response.Name() != "STATUS" || arguments.size() < 2) return;
                 const auto values = arguments[1].List();
                 const std::lock_guard guard(lock_);
                 for (std::size_t at = 0; at + 1 < values.size(); at += 2) {
                   const auto number = values[at + 1].Number_32();
                   if (values[at].Is("MESSAGES")) mailbox.messages = number.value_or(mailbox.messages);
                   if (!values[at].Is("UIDVALIDITY") || !number || *number == mailbox.uid_validity) continue;
                   mailbox.uid_validity = *number;
                   mailbox.Forget_Messages();
                 }
                 mailbox.looked_at = std::chrono::steady_clock::now();
               });
}

void Mail_Session::Unselect() {
  selected_ = nullptr;
}

void Mail_Session::Look(Mailbox& mailbox) {
  if (selected_ == &mailbox) {
    client_->Run(Command("NOOP"));
  } else {
    vanished_.clear();
    changed_flags_.clear();
    rows_.clear();
    const bool has_condstore = client_->Has("CONDSTORE");
    Uid last = 0;
    Command select("SELECT ");
    select.String(mailbox.wire_name);
    {
      const std::lock_guard guard(lock_);
      mailbox.is_listed = false;
      last = mailbox.uids.empty() ? 0 : mailbox.uids.back();
      if (has_qresync_ && mailbox.mod_seq > 0 && mailbox.uid_validity > 0 && last > 0)
        select.Raw(" (QRESYNC (" + std::to_string(mailbox.uid_validity) + " " +
                   std::to_string(mailbox.mod_seq) + "))");
      else if (has_condstore)
        select.Raw(" (CONDSTORE)");
    }
    // What still comes of the mailbox before ends with [CLOSED], where the server has promised that.
    closing_ = has_qresync_ && selected_ != nullptr;
    selected_ = &mailbox;
    exists_ = 0;
    highest_ = 0;
    try {
      auto answer = client_->Run(select);
      if (std::exchange(closing_, false)) answer = client_->Run(select);
      const std::lock_guard guard(lock_);
      mailbox.is_read_only = answer->Code() == "READ-ONLY";
    } catch (const Refused&) {
      selected_ = nullptr;
      throw;
    }
    std::uint64_t known = 0;
    {
      const std::lock_guard guard(lock_);
      known = mailbox.mod_seq;
    }
    // Without QRESYNC nobody has told what changed and what went.
    if (last > 0 && !(has_qresync_ && known > 0)) {
      Learn_Flags(last);
      List_Messages();
    }
  }
  for (int listing = 1;; ++listing) {
    std::size_t have = 0;
    Uid last = 0;
    {
      const std::lock_guard guard(lock_);
      have = mailbox.uids.size();
      last = mailbox.uids.empty() ? 0 : mailbox.uids.back();
    }
    if (have == exists_) break;
    if (listing > most_listings) throw Connection_Error("The mailbox changes faster than it can be read.");
    if (have < exists_ && listing == 1 && last > 0 && last < UINT32_MAX) {
      const std::vector<Uid> found = Search("UID " + std::to_string(last + 1) + ":*");
      std::vector<Uid> come;
      std::copy_if(found.begin(), found.end(), std::back_inserter(come), [&](Uid uid) { return uid > last; });
      const std::lock_guard guard(lock_);
      mailbox.Add(come);
    } else {
      List_Messages();
    }
  }
  const std::lock_guard guard(lock_);
  mailbox.is_listed = true;
  mailbox.messages = exists_;
  mailbox.mod_seq = std::max(mailbox.mod_seq, highest_);
  mailbox.looked_at = std::chrono::steady_clock::now();
}

// All UIDs there are; what is not among them has gone.
void Mail_Session::List_Messages() {
  const std::vector<Uid> all = Search("ALL");
  std::vector<Uid> gone;
  const std::lock_guard guard(lock_);
  std::set_difference(selected_->uids.begin(), selected_->uids.end(), all.begin(), all.end(),
                      std::back_inserter(gone));
  selected_->Remove(gone);
  vanished_.insert(vanished_.end(), gone.begin(), gone.end());
  selected_->Add(all);
}

// The flags of messages that are known already.
void Mail_Session::Learn_Flags(Uid last) {
  std::string text = "UID FETCH 1:" + std::to_string(last) + " (UID FLAGS)";
  if (client_->Has("CONDSTORE")) {
    const std::lock_guard guard(lock_);
    if (selected_->mod_seq > 0) text += " (CHANGEDSINCE " + std::to_string(selected_->mod_seq) + ")";
  }
  client_->Run(Command(text));
}

std::vector<Uid> Mail_Session::Search(const std::string& what) {
  std::vector<Uid> found;
  const bool extended = client_->Has("ESEARCH");
  client_->Run(Command((extended ? "UID SEARCH RETURN (ALL) " : "UID SEARCH ") + what),
               [&](const Response& response) {
                 const auto arguments = response.Arguments();
                 if (response.Name() == "SEARCH") {
                   for (const Value& value : arguments)
                     if (const auto uid = value.Number_32()) found.push_back(*uid);
                 } else if (response.Name() == "ESEARCH") {
                   for (std::size_t at = 0; at + 1 < arguments.size(); ++at)
                     if (arguments[at].Is("ALL")) found = Parse_Uid_Set(arguments[at + 1].Text());
                 }
               });
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

void Mail_Session::Take(const Response& response) {
  if (selected_ == nullptr) return;
  if (response.Code() == "CLOSED") closing_ = false;
  if (closing_) return;
  if (response.Name() == "EXISTS") {
    exists_ = response.Number();
  } else if (response.Name() == "FETCH") {
    Took_Messages(response);
  } else if (response.Name() == "EXPUNGE") {
    if (exists_ > 0) --exists_;
    Uid uid = 0;
    {
      const std::lock_guard guard(lock_);
      const std::size_t number = response.Number();
      if (number > 0 && number <= selected_->uids.size()) uid = selected_->uids[number - 1];
    }
    if (uid != 0) Removed({uid});
  } else if (response.Name() == "VANISHED") {
    const auto arguments = response.Arguments();
    if (arguments.empty()) return;
    const bool earlier = arguments.front().Is_List();
    const std::vector<Uid> gone = Parse_Uid_Set(arguments.back().Text());
    if (!earlier) exists_ -= std::min(exists_, static_cast<std::uint32_t>(gone.size()));
    Removed(gone);
  } else if (response.Code() == "UIDVALIDITY") {
    const auto arguments = response.Arguments();
    const auto validity = arguments.empty() ? std::nullopt : arguments.front().Number_32();
    if (!validity) return;
    const std::lock_guard guard(lock_);
    if (selected_->uid_validity != *validity) selected_->Forget_Messages();
    selected_->uid_validity = *validity;
  } else if (response.Code() == "HIGHESTMODSEQ") {
    const auto arguments = response.Arguments();
    if (!arguments.empty()) highest_ = std::max(highest_, arguments.front().Number().value_or(0));
  } else if (response.Code() == "NOMODSEQ") {
    const std::lock_guard guard(lock_);
    selected_->mod_seq = 0;
  }
}

void Mail_Session::Removed(const std::vector<Uid>& gone) {
  const std::lock_guard guard(lock_);
  const std::vector<Uid> removed = selected_->Remove(gone);
  vanished_.insert(vanished_.end(), removed.begin(), removed.end());
}

void Mail_Session::Took_Messages(const Response& fetch) {
  Message_Data data = Read_Message_Data(fetch);
  {
    const std::lock_guard guard(lock_);
    if (data.uid == 0 && fetch.Number() > 0 && fetch.Number() <= selected_->uids.size())
      data.uid = selected_->uids[fetch.Number() - 1];
    const auto place = selected_->Place_Of(data.uid);
    if (place && data.flags)
      selected_->flags[*place] =
          static_cast<std::uint8_t>((selected_->flags[*place] & Mailbox::has_row) | *data.flags);
    if (place && data.flags && !data.has_row) changed_flags_.emplace_back(data.uid, *data.flags);
  }
  data.body = {};
  if (data.has_row) rows_.push_back(std::move(data));
}

Mail_Session::Fetch Mail_Session::Begin_Fetch(const std::vector<std::pair<Uid, Uid>>& ranges) {
  std::string set;
  for (const auto& [first, last] : ranges)
    set += (set.empty() ? "" : ",") + std::to_string(first) + ":" + std::to_string(last);
  Fetch fetch;
  fetch.rows = client_->Send(Command("UID FETCH " + set + " " + row_items));
  fetch.look = client_->Send(Command("NOOP"));
  return fetch;
}

void Mail_Session::Finish_Fetch(const Fetch& fetch) {
  const auto answer = client_->Finish(fetch.rows, {}, true);
  client_->Finish(fetch.look);
  Demand_Ok(*answer);
  const std::lock_guard guard(lock_);
  if (selected_->is_listed && selected_->uids.size() == exists_)
    selected_->looked_at = std::chrono::steady_clock::now();
}

std::string Mail_Session::Fetch_Body(Uid uid, const std::string& part) {
  std::string body;
  client_->Run(Command("UID FETCH " + std::to_string(uid) + " (UID BODY.PEEK[" + part + "])"),
               [&](const Response& response) {
                 if (response.Name() != "FETCH") return;
                 const Message_Data data = Read_Message_Data(response);
                 if (data.uid == uid && data.body.data() != nullptr) body = data.body;
               });
  return body;
}

namespace {

// RFC 4315.
void Take_Copied(const Response& response, std::vector<Moved_Message>& moved) {
  if (response.Code() != "COPYUID") return;
  const auto arguments = response.Arguments();
  if (arguments.size() < 3) return;
  const auto validity = arguments[0].Number_32();
  const std::vector<Uid> from = Parse_Uid_Set(arguments[1].Text()), to = Parse_Uid_Set(arguments[2].Text());
  if (!validity || from.size() != to.size()) return;
  for (std::size_t at = 0; at < from.size(); ++at) moved.push_back({from[at], to[at], *validity});
}

void Take_Refusal(const Response& answer, Refusal& refusal) {
  if (answer.Name() == "OK" || Is_Passing(refusal.code)) return;
  refusal = {answer.Text().empty() ? "The mail server refused." : answer.Text(), answer.Code()};
}

}  // namespace

// One behind the other, without waiting in between.
std::vector<std::unique_ptr<Response>> Mail_Session::Run_All(const std::vector<Command>& commands,
                                                             const imap::Client::Handler& handler) {
  std::vector<std::string> tags;
  tags.reserve(commands.size());
  for (const Command& command : commands) tags.push_back(client_->Send(command));
  std::vector<std::unique_ptr<Response>> answers;
  answers.reserve(tags.size());
  for (const std::string& tag : tags) answers.push_back(client_->Finish(tag, handler));
  return answers;
}

Refusal Mail_Session::Transfer(const char* command, const std::vector<Uid>& uids, const Mailbox& target,
                               std::vector<Moved_Message>& moved) {
  std::vector<Command> commands;
  for (const auto& portion : Portions_For_Commands(uids))
    commands.push_back(
        Command(std::string(command) + " " + Format_Uid_Set(portion) + " ").String(target.wire_name));
  Refusal refusal;
  for (const auto& answer : Run_All(commands, [&](const Response& told) { Take_Copied(told, moved); })) {
    Take_Copied(*answer, moved);
    Take_Refusal(*answer, refusal);
  }
  return refusal;
}

Refusal Mail_Session::Move(const std::vector<Uid>& uids, const Mailbox& target,
                           std::vector<Moved_Message>& moved) {
  return Transfer("UID MOVE", uids, target, moved);
}

Refusal Mail_Session::Copy(const std::vector<Uid>& uids, const Mailbox& target,
                           std::vector<Moved_Message>& copied) {
  return Transfer("UID COPY", uids, target, copied);
}

Refusal Mail_Session::Expunge(const std::vector<Uid>& uids, std::uint64_t mod_seq, std::vector<Uid>& marked) {
  const auto portions = Portions_For_Commands(uids);
  std::vector<Command> commands;
  for (const auto& portion : portions) {
    Command& store = commands.emplace_back("UID STORE " + Format_Uid_Set(portion) + " ");
    if (mod_seq > 0) store.Raw("(UNCHANGEDSINCE " + std::to_string(mod_seq) + ") ");
    store.Raw("+FLAGS.SILENT (\\Deleted)");
  }
  const auto answers = Run_All(commands);
  Refusal refusal;
  std::vector<Uid> left;
  for (std::size_t at = 0; at < portions.size(); ++at) {
    std::set<Uid> modified;
    if (answers[at]->Code() == "MODIFIED") {
      // It names messages that have changed since, and are not marked.
      const auto arguments = answers[at]->Arguments();
      const auto changed = arguments.empty() ? portions[at] : Parse_Uid_Set(arguments.front().Text());
      modified.insert(changed.begin(), changed.end());
      if (refusal.text.empty()) refusal.text = "It was changed since it was shown.";
    } else if (answers[at]->Name() != "OK") {
      Take_Refusal(*answers[at], refusal);
      continue;
    }
    std::copy_if(portions[at].begin(), portions[at].end(), std::back_inserter(left),
                 [&](Uid uid) { return !modified.contains(uid); });
  }
  if (left.empty()) return refusal;
  marked.insert(marked.end(), left.begin(), left.end());
  const Refusal refused = Expunge_Marked(left);
  return refused.text.empty() ? refusal : refused;
}

Refusal Mail_Session::Expunge_Marked(const std::vector<Uid>& uids) {
  std::vector<Command> commands;
  for (const auto& portion : Portions_For_Commands(uids))
    commands.emplace_back("UID EXPUNGE " + Format_Uid_Set(portion));
  Refusal refusal;
  for (const auto& answer : Run_All(commands)) Take_Refusal(*answer, refusal);
  return refusal;
}

void Mail_Session::Unmark(const std::vector<Uid>& uids) {
  std::vector<Command> commands;
  for (const auto& portion : Portions_For_Commands(uids))
    commands.emplace_back("UID STORE " + Format_Uid_Set(portion) + " -FLAGS.SILENT (\\Deleted)");
  Run_All(commands);
}

}  // namespace tidyfold::imap
