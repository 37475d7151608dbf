#include "stores/imap/mailbox.h"

#include <algorithm>

namespace tidyfold::imap {

std::optional<std::size_t> Mailbox::Place_Of(Uid uid) const {
  const auto found = std::lower_bound(uids.begin(), uids.end(), uid);
  if (found == uids.end() || *found != uid) return std::nullopt;
  return static_cast<std::size_t>(found - uids.begin());
}

void Mailbox::Set_Leaving(Uid uid) {
  const auto place = std::lower_bound(leaving.begin(), leaving.end(), uid);
  if (place == leaving.end() || *place != uid) leaving.insert(place, uid);
}

bool Mailbox::Is_Leaving(Uid uid) const {
  return std::binary_search(leaving.begin(), leaving.end(), uid);
}

std::uint32_t Mailbox::Staying() const {
  const std::size_t known = is_listed ? uids.size() : messages;
  return static_cast<std::uint32_t>(known - std::min(known, leaving.size()));
}

std::optional<Uid> Mailbox::Staying_At(std::size_t place) const {
  // The first message with as many that stay up to and including it.
  std::size_t first = place, last = std::min(uids.size(), place + leaving.size());
  while (first < last) {
    const std::size_t middle = (first + last) / 2;
    const auto leave = std::upper_bound(leaving.begin(), leaving.end(), uids[middle]) - leaving.begin();
    if (middle + 1 - static_cast<std::size_t>(leave) > place) {
      last = middle;
    } else {
      first = middle + 1;
    }
  }
  if (first >= uids.size()) return std::nullopt;
  return uids[first];
}

std::vector<Uid> Mailbox::Remove(std::vector<Uid> gone) {
  std::sort(gone.begin(), gone.end());
  std::vector<Uid> removed;
  if (gone.empty()) return removed;
  auto next = gone.begin();
  auto read = static_cast<std::size_t>(std::lower_bound(uids.begin(), uids.end(), *next) - uids.begin());
  std::size_t write = read;
  for (; read < uids.size(); ++read) {
    while (next != gone.end() && *next < uids[read]) ++next;
    if (next != gone.end() && *next == uids[read]) {
      removed.push_back(uids[read]);
      continue;
    }
    uids[write] = uids[read];
    flags[write] = flags[read];
    ++write;
  }
  uids.resize(write);
  flags.resize(write);
  std::erase_if(leaving, [&](Uid uid) { return std::binary_search(removed.begin(), removed.end(), uid); });
  return removed;
}

void Mailbox::Add(const std::vector<Uid>& sorted) {
  if (sorted.empty()) return;
  const bool at_end = uids.empty() || sorted.front() > uids.back();
  if (at_end) {
    uids.insert(uids.end(), sorted.begin(), sorted.end());
    flags.resize(uids.size(), 0);
    return;
  }
  std::vector<Uid> all;
  std::vector<std::uint8_t> all_flags;
  all.reserve(uids.size() + sorted.size());
  std::size_t at = 0;
  const auto take = [&] {
    all.push_back(uids[at]);
    all_flags.push_back(flags[at++]);
  };
  for (const Uid uid : sorted) {
    while (at < uids.size() && uids[at] < uid) take();
    if (at < uids.size() && uids[at] == uid) continue;
    all.push_back(uid);
    all_flags.push_back(0);
  }
  while (at < uids.size()) take();
  uids = std::move(all);
  flags = std::move(all_flags);
}

void Mailbox::Forget_Messages() {
  uids.clear();
  flags.clear();
  leaving.clear();
  mod_seq = 0;
  is_listed = false;
}

}  // namespace tidyfold::imap
