// What an account does to messages.
#include <algorithm>
#include <iterator>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "stores/imap/account.h"

namespace tidyfold::imap {

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto intended = std::chrono::milliseconds(300);
constexpr std::size_t least_at_once = 20, most_at_once = 20'000;

}  // namespace

// From two sizes that differ follows what a command takes for itself. So even a slow first one is followed by
// a larger one.
void Portion_Size::Took(std::size_t done, Duration took) {
  last_took_ = took;
  if (done < now_) return;
  if (before_ != 0 && before_ != done) {
    const double more = static_cast<double>(done) - static_cast<double>(before_);
    const double for_one = static_cast<double>((took - took_before_).count()) / more;
    const double for_any =
        static_cast<double>(took.count()) - std::max(for_one, 0.0) * static_cast<double>(done);
    for_any_ = Duration(static_cast<Duration::rep>(std::max(for_any, 0.0)));
  }
  before_ = done;
  took_before_ = took;
  const Duration meant = std::max<Duration>(intended, 4 * for_any_);
  const bool is_first = std::exchange(is_first_, false);
  if (took < meant / 8) {
    now_ = std::min(now_ * 8, most_at_once);
  } else if (took < meant / 4) {
    now_ = std::min(now_ * 4, most_at_once);
  } else if (took < meant / 2 || is_first) {
    now_ = std::min(now_ * 2, most_at_once);
  } else if (took > meant) {
    now_ = std::max(now_ / 2, least_at_once);
  }
}

Change Account::Plan_Change(std::size_t mailbox, std::uint32_t uid_validity, Uid uid, std::size_t target) {
  Change change;
  change.mailbox = mailbox;
  change.uid_validity = uid_validity;
  change.uid = uid;
  change.target = target;
  change.flags = Flags(mailbox, uid);
  const std::lock_guard guard(lock_);
  Mailbox& box = Box(mailbox);
  const auto place = box.Place_Of(uid);
  change.are_flags_known = place && (box.flags[*place] & Mailbox::has_row) != 0;
  change.mod_seq = box.mod_seq;
  box.Set_Leaving(uid);
  return change;
}

void Account::Carry_Out(std::vector<Change>& changes) {
  std::vector<Change*> all;
  all.reserve(changes.size());
  for (Change& change : changes) all.push_back(&change);
  const auto way = [](const Change* change) {
    return std::tuple(change->mailbox, change->target, change->uid_validity);
  };
  std::stable_sort(all.begin(), all.end(),
                   [&](const Change* left, const Change* right) { return way(left) < way(right); });
  std::exception_ptr failure;
  std::string why;
  for (auto begin = all.begin(); begin != all.end();) {
    std::vector<Change*> batch;
    for (; begin != all.end() && batch.size() < move_size_.Now(); ++begin) {
      if (!batch.empty() && way(*begin) != way(batch.front())) break;
      batch.push_back(*begin);
    }
    const auto start = Clock::now();
    const std::size_t size = batch.size();
    try {
      if (failure == nullptr) Do([&](Mail_Session& session) { Carry_Out_Batch(session, batch); });
    } catch (const Automation_Error& error) {
      why = error.Description();
      if (error.Number() == automation_error::unavailable) failure = std::current_exception();
    }
    const std::lock_guard guard(lock_);
    Mailbox& box = Box(batch.front()->mailbox);
    for (Change* const change : batch) {
      if (change->is_done) continue;
      std::erase(box.leaving, change->uid);
      if (!change->reason.empty()) continue;
      change->reason = why;
      const bool may_be_marked = change->is_sent && (change->target == 0 || change->is_copied) &&
                                 (change->flags & message_flag::deleted) == 0;
      if (may_be_marked) marked_[&box].push_back(change->uid);
    }
    move_size_.Took(size, Clock::now() - start);
  }
  if (failure != nullptr) std::rethrow_exception(failure);
}

// What is still to be done with the messages of a batch.
struct Account::Steps {
  std::vector<Uid> begin;          // nothing was done yet
  std::vector<Uid> copied;         // still to be expunged
  std::vector<Uid> marked;         // likewise, and marked as deleted by us
  std::vector<Uid> marked_before;  // by others
  std::uint64_t mod_seq = 0;
};

// Begun again after a connection that dropped: what is gone by then was done, and what we have marked as
// deleted was left on the way.
Account::Steps Account::Sort_Out(const Mailbox& mailbox, std::vector<Change*>& batch) const {
  constexpr std::uint8_t telling = message_flag::seen | message_flag::flagged;
  Steps steps;
  steps.mod_seq = mailbox.mod_seq;
  const bool same = mailbox.uid_validity == batch.front()->uid_validity;
  for (Change* const change : batch) {
    if (change->is_done || !change->reason.empty()) continue;
    const auto place = mailbox.Place_Of(change->uid);
    if (!same) {
      change->reason = "The server has numbered the folder anew. Refresh it.";
    } else if (mailbox.is_read_only) {
      change->reason = "The mail server lets nothing be changed in this folder.";
    } else if (!place && change->is_sent) {
      change->is_done = true;
    } else if (!place) {
      change->reason = "It is no longer there.";
    } else if (change->are_flags_known && ((mailbox.flags[*place] ^ change->flags) & telling) != 0) {
      change->reason = "It was changed since it was shown.";
    } else {
      const bool is_marked = (mailbox.flags[*place] & message_flag::deleted) != 0;
      const bool by_others = (change->flags & message_flag::deleted) != 0 || !change->is_sent;
      if (is_marked && by_others) steps.marked_before.push_back(change->uid);
      if (is_marked && !by_others && (change->target == 0 || change->is_copied)) {
        steps.marked.push_back(change->uid);
      } else if (change->is_copied) {
        steps.copied.push_back(change->uid);
      } else {
        if (change->mod_seq != 0) steps.mod_seq = std::min(steps.mod_seq, change->mod_seq);
        steps.begin.push_back(change->uid);
      }
    }
  }
  return steps;
}

void Account::Carry_Out_Batch(Mail_Session& session, std::vector<Change*>& batch) {
  const Change& first = *batch.front();
  Mailbox& box = Box(first.mailbox);
  Mailbox& target = Box(first.target);
  bool is_fresh = false;
  {
    const std::lock_guard guard(lock_);
    is_fresh = session.Has_Selected(box) && Clock::now() - box.looked_at < settings_.trust;
  }
  if (!is_fresh) Look_And_Keep(session, box);
  Steps steps;
  std::unordered_map<Uid, Change*> by_uid;
  {
    const std::lock_guard guard(lock_);
    const bool copies = first.target != 0 && !session.Can_Move();
    for (Change* const change : batch) {
      // Whether a copy was made cannot be told; a second one would be too many.
      if (copies && change->is_sent && !change->is_copied && !change->is_done && change->reason.empty())
        change->reason =
            "The connection was lost while it was copied. It is where it was; a copy may lie in \"" +
            target.name + "\".";
      by_uid[change->uid] = change;
    }
    steps = Sort_Out(box, batch);
    for (const Uid uid : steps.begin) by_uid[uid]->is_sent = true;
  }
  Refusal why;
  const auto arrived = [&](const std::vector<Moved_Message>& messages, bool copied) {
    for (const Moved_Message& message : messages) {
      const auto found = by_uid.find(message.uid);
      if (found == by_uid.end()) continue;
      found->second->is_copied = copied;
      found->second->new_uid = message.new_uid;
      found->second->new_validity = message.new_validity;
      if (copied) steps.copied.push_back(message.uid);
    }
  };
  std::vector<Moved_Message> moved;
  if (first.target != 0 && session.Can_Move()) {
    if (!steps.begin.empty()) why = session.Move(steps.begin, target, moved);
    arrived(moved, false);
  } else if (!session.Can_Expunge()) {
    why.text = first.target != 0
                   ? "The mail server can neither move messages (MOVE) nor delete single ones (UIDPLUS)."
                   : "The mail server cannot delete single messages for good (UIDPLUS); nothing was deleted.";
  } else {
    if (first.target != 0) {
      if (!steps.begin.empty()) why = session.Copy(steps.begin, target, moved);
      arrived(moved, true);
      steps.begin = std::move(steps.copied);
      steps.mod_seq = 0;
    }
    const auto keep = [&](const Refusal& refusal) {
      if (!refusal.text.empty() && !Is_Passing(why.code)) why = refusal;
    };
    if (!steps.marked.empty()) keep(session.Expunge_Marked(steps.marked));
    if (!steps.begin.empty()) keep(session.Expunge(steps.begin, steps.mod_seq, steps.marked));
    const std::lock_guard guard(lock_);
    for (const Uid uid : steps.marked) {
      const bool by_us =
          std::find(steps.marked_before.begin(), steps.marked_before.end(), uid) == steps.marked_before.end();
      if (by_us && box.Place_Of(uid)) marked_[&box].push_back(uid);
    }
  }
  Take_Marks_Off(session, box);
  cache_.Keep(box, session.Take_Vanished(), session.Take_Changed_Flags());
  const std::lock_guard guard(lock_);
  target.looked_at = {};
  // A server that is busy for now is asked again, if the person wants that, for what is left.
  const bool passing = Is_Passing(why.code);
  bool all_done = true;
  for (Change* const change : batch) {
    if (change->is_done || !change->reason.empty()) continue;
    change->is_done = !box.Place_Of(change->uid);
    if (change->is_done) continue;
    all_done = false;
    if (!passing) {
      change->reason = why.text.empty() ? "The mail server left it where it was." : why.text;
    } else if (!change->is_copied) {
      change->is_sent = false;
      change->mod_seq = 0;
    }
  }
  if (!passing || all_done) return;
  box.looked_at = {};
  throw Refused(why.text, why.code);
}

// What stays must not go with the next expunge of whoever.
void Account::Take_Marks_Off(Mail_Session& session, Mailbox& mailbox) {
  std::vector<Uid> uids;
  {
    const std::lock_guard guard(lock_);
    const auto found = marked_.find(&mailbox);
    if (found == marked_.end()) return;
    std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(uids),
                 [&](Uid uid) { return mailbox.Place_Of(uid).has_value(); });
  }
  if (!uids.empty()) session.Unmark(uids);
  const std::lock_guard guard(lock_);
  marked_.erase(&mailbox);
}

}  // namespace tidyfold::imap
