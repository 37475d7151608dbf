#include "stores/imap/account.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "base/flag_scope.h"
#include "mail/meeting.h"
#include "mail/transfer_encoding.h"

namespace tidyfold::imap {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int most_attempts = 3;
constexpr std::size_t most_ranges = 300;  // in a command
constexpr auto error_source = "Tidyfold mail account";

}  // namespace

void Fail(std::int32_t number, const std::string& text) {
  throw Automation_Error(number, text, error_source);
}

void Fail_Folder_Gone() {
  Fail(automation_error::not_found, "The folder is no longer there.");
}

void Fail_Item_Gone() {
  Fail(automation_error::not_found, "The item is no longer there.");
}

Account::Account(Account_Settings settings, const std::filesystem::path& cache)
    : settings_(std::move(settings)), cache_(cache) {
  mailboxes_.push_back(std::make_unique<Mailbox>());
}

Account::~Account() {
  // The session belongs to the network's thread, which is about to end.
  try {
    network_.Call(
        [this] {
          if (session_ != nullptr) session_->Client().Send(Command("LOGOUT"));
          session_.reset();
        },
        [] { return [] { return false; }; });
  } catch (...) {
  }
}

void Account::With_Session(const std::function<void(Mail_Session&)>& work) {
  for (int attempt = 1;; ++attempt) {
    const bool was_connected = session_ != nullptr;
    try {
      if (!was_connected)
        session_ = std::make_unique<Mail_Session>(settings_, network_.Interrupted_By(), lock_);
      work(*session_);
      const std::lock_guard guard(lock_);
      auto& alerts = session_->Client().alerts;
      alerts_.insert(alerts_.end(), alerts.begin(), alerts.end());
      alerts.clear();
      return;
    } catch (const Connection_Error&) {
      // A connection that has dropped is made again; one that cannot be made is not.
      session_.reset();
      if (!was_connected || attempt >= most_attempts) throw;
    } catch (const Protocol_Error&) {
      session_.reset();
      throw;
    } catch (const Interrupted&) {
      session_.reset();
      throw;
    }
  }
}

// Handlers that run while the question is open may call the account; these ask nothing.
bool Account::Goes_On(const std::string& words) {
  if (!go_on_ || asking_) return false;
  const Flag_Scope asking(asking_);
  return go_on_(words);
}

void Account::Do(const std::function<void(Mail_Session&)>& work) {
  std::string words;
  try {
    network_.Call([&] { With_Session(work); }, wait_);
    return;
  } catch (const Connection_Error& error) {
    Fail(automation_error::unavailable, error.what());
  } catch (const Protocol_Error& error) {
    Fail(automation_error::unavailable, std::string("The mail server cannot be understood. ") + error.what());
  } catch (const Interrupted& error) {
    Fail(automation_error::unavailable, error.what());
  } catch (const Refused& error) {
    words = std::string("The mail server says: ") + error.what();
    const bool passing = Is_Passing(error.Code());
    const bool gone = error.Code() == "NONEXISTENT" || error.Code() == "TRYCREATE";
    const bool denied = error.Code() == "NOPERM";
    if (!passing)
      Fail(gone     ? automation_error::not_found
           : denied ? automation_error::no_access
                    : automation_error::call_failed,
           std::string("The mail server refused: ") + error.what());
  }
  if (!Goes_On(words)) Fail(automation_error::unavailable, words);
  Do(work);
}

void Account::Open() {
  network_.Call([this] { With_Session([this](Mail_Session& session) { List_Mailboxes(session, true); }); },
                wait_);
}

std::vector<std::string> Account::Take_Alerts() {
  const std::lock_guard guard(lock_);
  return std::exchange(alerts_, {});
}

std::size_t Account::Count() const {
  const std::lock_guard guard(lock_);
  return mailboxes_.size();
}

Mailbox& Account::Box(std::size_t mailbox) const {
  return *mailboxes_.at(mailbox);
}

Mailbox& Account::Existing_Box(std::size_t mailbox) const {
  const std::lock_guard guard(lock_);
  Mailbox& box = Box(mailbox);
  if (box.is_gone) Fail_Folder_Gone();
  return box;
}

// What was told is written down before anyone relies on it.
void Account::Look_And_Keep(Mail_Session& session, Mailbox& mailbox) {
  bool load = false;
  {
    const std::lock_guard guard(lock_);
    load = !mailbox.is_listed && mailbox.uids.empty() && mailbox.uid_validity != 0;
  }
  if (load) {
    Mailbox loaded;
    loaded.wire_name = mailbox.wire_name;
    loaded.uid_validity = mailbox.uid_validity;
    cache_.Load(loaded);
    const std::lock_guard guard(lock_);
    mailbox.uids = std::move(loaded.uids);
    mailbox.flags = std::move(loaded.flags);
    mailbox.mod_seq = loaded.mod_seq;
  }
  session.Look(mailbox);
  Take_Marks_Off(session, mailbox);
  cache_.Keep(mailbox, session.Take_Vanished(), session.Take_Changed_Flags());
}

std::uint32_t Account::Messages(std::size_t mailbox) {
  Mailbox& box = Existing_Box(mailbox);
  {
    const std::lock_guard guard(lock_);
    if (!box.can_be_selected) return 0;
    if (Clock::now() - box.looked_at < settings_.trust) return box.Staying();
  }
  bool listed = false;
  {
    const std::lock_guard guard(lock_);
    listed = box.is_listed;
  }
  Do([&](Mail_Session& session) {
    if (listed) {
      Look_And_Keep(session, box);
    } else {
      session.Ask_Status(box);
    }
  });
  const std::lock_guard guard(lock_);
  return box.Staying();
}

void Account::Look(std::size_t mailbox) {
  Mailbox& box = Existing_Box(mailbox);
  {
    const std::lock_guard guard(lock_);
    if (!box.can_be_selected) return;
    if (box.is_listed && Clock::now() - box.looked_at < settings_.trust) return;
  }
  Do([&](Mail_Session& session) { Look_And_Keep(session, box); });
}

std::optional<std::pair<std::uint32_t, Uid>> Account::Message_At(std::size_t mailbox,
                                                                 std::int32_t index) const {
  const std::lock_guard guard(lock_);
  const Mailbox& box = Box(mailbox);
  const auto uid = index < 1 ? std::nullopt : box.Staying_At(static_cast<std::size_t>(index - 1));
  if (!uid) return std::nullopt;
  return std::pair(box.uid_validity, *uid);
}

bool Account::Has_Message(std::size_t mailbox, std::uint32_t uid_validity, Uid uid) const {
  const std::lock_guard guard(lock_);
  const Mailbox& box = Box(mailbox);
  return !box.is_gone && box.uid_validity == uid_validity && box.Place_Of(uid).has_value() &&
         !box.Is_Leaving(uid);
}

std::uint8_t Account::Flags(std::size_t mailbox, Uid uid) const {
  const std::lock_guard guard(lock_);
  const Mailbox& box = Box(mailbox);
  const auto place = box.Place_Of(uid);
  return place ? static_cast<std::uint8_t>(box.flags[*place] & ~Mailbox::has_row) : std::uint8_t{0};
}

// What an answer to an invitation answers stands in its text alone. Rows are written down while the next
// ones come.
std::future<void> Account::Keep_Rows(Mail_Session& session, Mailbox& mailbox, Uid ahead_to) {
  std::vector<Message_Data> rows = session.Take_Rows();
  for (Message_Data& row : rows) {
    if (row.answer_part.empty()) continue;
    const std::string text = session.Fetch_Body(row.uid, row.answer_part);
    row.item_class = Meeting_Class(Decode_Transfer(text, row.answer_encoding), "");
  }
  Mailbox known;
  {
    const std::lock_guard guard(lock_);
    known.wire_name = mailbox.wire_name;
    known.uid_validity = mailbox.uid_validity;
  }
  return std::async([this, &mailbox, known, ahead_to, rows = std::move(rows)] {
    cache_.Keep(known, rows);
    const std::lock_guard guard(lock_);
    if (mailbox.uid_validity != known.uid_validity) return;
    for (const Message_Data& row : rows)
      if (const auto place = mailbox.Place_Of(row.uid)) mailbox.flags[*place] |= Mailbox::has_row;
    ahead_.done = std::max(ahead_.done, ahead_to);
    rows_came_.notify_all();
  });
}

// Fetches rows behind a UID; the first portion or, until others wait, all. Two portions are under way at a
// time, so that neither the server nor we wait.
void Account::Fetch_Missing(Mail_Session& session, Mailbox& mailbox, Uid after, bool only_first) {
  struct Portion {
    Mail_Session::Fetch fetch;
    std::size_t count = 0;
    std::vector<std::pair<Uid, Uid>> ranges;  // neighbours in the mailbox, whatever numbers lie between
  };
  const auto next = [&](Uid behind) {
    Portion portion;
    const std::lock_guard guard(lock_);
    const auto begin = std::upper_bound(mailbox.uids.begin(), mailbox.uids.end(), behind);
    bool goes_on = false;
    for (auto at = static_cast<std::size_t>(begin - mailbox.uids.begin());
         at < mailbox.uids.size() && portion.count < fetch_size_.Now() && portion.ranges.size() < most_ranges;
         ++at) {
      const Uid uid = mailbox.uids[at];
      const bool is_missing = (mailbox.flags[at] & Mailbox::has_row) == 0;
      if (is_missing && !goes_on) portion.ranges.emplace_back(uid, uid);
      if (is_missing) portion.ranges.back().second = uid;
      if (is_missing) ++portion.count;
      goes_on = is_missing;
    }
    return portion;
  };
  std::deque<Portion> under_way;
  std::future<void> keeping;
  Uid begun = after;
  auto start = Clock::now();
  bool stop = false;
  for (;;) {
    while (!stop && under_way.size() < 2) {
      Portion portion = next(begun);
      if (portion.count == 0) break;
      begun = portion.ranges.back().second;
      portion.fetch = session.Begin_Fetch(portion.ranges);
      under_way.push_back(std::move(portion));
      if (only_first) stop = true;
    }
    if (under_way.empty()) break;
    const Portion portion = std::move(under_way.front());
    under_way.pop_front();
    session.Finish_Fetch(portion.fetch);
    if (keeping.valid()) keeping.get();
    keeping = Keep_Rows(session, mailbox, only_first ? 0 : portion.ranges.back().second);
    const auto now = Clock::now();
    fetch_size_.Took(portion.count, now - std::exchange(start, now));
    if (network_.Others_Wait()) stop = true;
  }
  if (keeping.valid()) keeping.get();
}

void Account::Go_On_Fetching(std::size_t mailbox, Uid after) {
  std::uint64_t number = 0;
  {
    const std::lock_guard guard(lock_);
    number = ahead_.number + 1;
    ahead_ = {number, &Box(mailbox), after};
  }
  network_.Post_Last([this, mailbox, after, number] {
    Mailbox& box = Box(mailbox);
    {
      const std::lock_guard guard(lock_);
      if (number != ahead_.number) return;
    }
    try {
      With_Session([&](Mail_Session& session) {
        Look_And_Keep(session, box);
        Fetch_Missing(session, box, after, false);
      });
    } catch (...) {
      // Whoever needs the rows asks for them, and is told.
    }
    const std::lock_guard guard(lock_);
    ahead_.mailbox = nullptr;
    rows_came_.notify_all();
  });
}

// Waits for the row behind a UID where it is being fetched ahead; false where it is not.
bool Account::Await_Row(const Mailbox& mailbox, Uid after) {
  std::unique_lock guard(lock_);
  const auto comes = [&] {
    const auto next = std::upper_bound(mailbox.uids.begin(), mailbox.uids.end(), after);
    return ahead_.mailbox == &mailbox && next != mailbox.uids.end() && *next > ahead_.done;
  };
  if (!comes()) return false;
  try {
    network_.Await(
        guard, rows_came_, [&] { return !comes(); }, wait_);
  } catch (const Interrupted& error) {
    Fail(automation_error::unavailable, error.what());
  }
  return true;
}

std::vector<Message_Data> Account::Rows_Behind(std::size_t mailbox, Uid after, std::size_t most) {
  Mailbox& box = Existing_Box(mailbox);
  if (!Describe(mailbox).can_be_selected) return {};
  for (int attempt = 1;;) {
    Uid first = 0, last = 0;
    bool missing = false;
    {
      const std::lock_guard guard(lock_);
      auto at = static_cast<std::size_t>(std::upper_bound(box.uids.begin(), box.uids.end(), after) -
                                         box.uids.begin());
      for (std::size_t count = 0; at < box.uids.size() && count < most; ++at, ++count) {
        if ((box.flags[at] & Mailbox::has_row) == 0) {
          missing = count == 0;
          break;
        }
        if (first == 0) first = box.uids[at];
        last = box.uids[at];
      }
    }
    if (!missing) {
      if (first == 0) return {};
      std::vector<Message_Data> rows = cache_.Rows(box, first, last);
      const std::lock_guard guard(lock_);
      std::erase_if(rows, [&](Message_Data& row) {
        const auto place = box.Place_Of(row.uid);
        if (place) row.flags = static_cast<std::uint8_t>(box.flags[*place] & ~Mailbox::has_row);
        return !place;
      });
      return rows;
    }
    if (Await_Row(box, after)) continue;
    // A message that the server does not describe would be asked for for ever.
    if (attempt++ > most_attempts)
      Fail(automation_error::call_failed, "The mail server does not describe all messages of the folder.");
    Do([&](Mail_Session& session) {
      Look_And_Keep(session, box);
      Fetch_Missing(session, box, after, true);
    });
    Go_On_Fetching(mailbox, after);
  }
}

Message_Data Account::Row(std::size_t mailbox, Uid uid) {
  if (uid == 0) Fail_Item_Gone();
  Mailbox& box = Existing_Box(mailbox);
  std::vector<Message_Data> rows = cache_.Rows(box, uid, uid);
  if (rows.empty()) {
    // With others: those in front, for whoever goes backwards, and where these are known, those behind.
    Do([&](Mail_Session& session) {
      Look_And_Keep(session, box);
      Uid after = 0;
      {
        const std::lock_guard guard(lock_);
        const auto place = static_cast<std::size_t>(std::lower_bound(box.uids.begin(), box.uids.end(), uid) -
                                                    box.uids.begin());
        if (place > fetch_size_.Now()) after = box.uids[place - fetch_size_.Now()];
      }
      Fetch_Missing(session, box, after, true);
    });
    rows = cache_.Rows(box, uid, uid);
  }
  if (rows.empty()) Fail_Item_Gone();
  return std::move(rows.front());
}

std::string Account::Body(std::size_t mailbox, Uid uid) {
  Mailbox& box = Existing_Box(mailbox);
  std::string body;
  Do([&](Mail_Session& session) {
    Look_And_Keep(session, box);
    body = session.Fetch_Body(uid, "");
  });
  if (body.empty()) Fail(automation_error::not_found, "The item is no longer there.");
  return body;
}

}  // namespace tidyfold::imap
