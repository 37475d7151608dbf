#include "stores/maildir/mail_list.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>

#include "mail/maildir.h"

namespace tidyfold::maildir {

std::string_view Mail::Unique() const {
  return Split_Maildir_Name(name).unique;
}

std::string_view Mail::Marks() const {
  return Split_Maildir_Name(name).marks;
}

Mail* Mail_Index::Find(std::string_view unique, std::uint32_t twin) const {
  const auto found = known_.find(Identity{unique, twin});
  return found == known_.end() ? nullptr : *found;
}

Mail* Mail_Index::Find(std::string_view entry_id) const {
  if (!entry_id.starts_with('M')) return nullptr;
  const std::string_view name = entry_id.substr(1);
  // No file's name holds a slash.
  const std::size_t slash = std::min(name.find('/'), name.size());
  std::uint32_t number = 1;
  if (slash < name.size()) {
    const char* const end = name.data() + name.size();
    const auto parsed = std::from_chars(name.data() + slash + 1, end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end || number < 2) return nullptr;
  }
  return Find(name.substr(0, slash), number - 1);
}

Mail& Mail_Index::Find_Or_Add(std::string_view name, std::uint32_t twin, bool& added) {
  Mail& mail = mails_.emplace_back();
  mail.name = name;
  mail.twin = twin;
  const auto [known, is_new] = known_.insert(&mail);
  added = is_new;
  if (!is_new) mails_.pop_back();
  return **known;
}

std::string Mail_Index::Entry_Id(const Mail& mail) {
  const std::string_view unique = mail.Unique();
  std::string id;
  id.reserve(unique.size() + 1);
  id += 'M';
  id += unique;
  if (mail.twin > 0) id += "/" + std::to_string(mail.twin + 1);
  return id;
}

void Mail_List::Add(std::size_t slot, std::int32_t number) {
  for (std::size_t at = slot + 1; at <= sums_.size(); at += at & (~at + 1)) sums_[at - 1] += number;
}

Mail& Mail_List::At(std::int32_t place) const {
  std::size_t at = 0, step = 1;
  while (step * 2 <= sums_.size()) step *= 2;
  for (; step > 0; step /= 2) {
    if (at + step > sums_.size() || sums_[at + step - 1] >= place) continue;
    at += step;
    place -= sums_[at - 1];
  }
  return *slots_[at];
}

void Mail_List::Append(Mail& mail) {
  mail.slot = static_cast<std::uint32_t>(slots_.size());
  slots_.push_back(&mail);
  // The new node covers those below it.
  const std::size_t at = slots_.size();
  std::int32_t sum = 1;
  for (std::size_t below = at - 1, end = at - (at & (~at + 1)); below > end; below -= below & (~below + 1))
    sum += sums_[below - 1];
  sums_.push_back(sum);
  ++count_;
}

void Mail_List::Remove(Mail& mail) {
  slots_[mail.slot] = nullptr;
  Add(mail.slot, -1);
  --count_;
}

Mail* Mail_List::From(std::uint32_t slot) const {
  for (std::size_t at = slot; at < slots_.size(); ++at)
    if (slots_[at] != nullptr) return slots_[at];
  return nullptr;
}

}  // namespace tidyfold::maildir
