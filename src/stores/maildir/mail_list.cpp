#include "stores/maildir/mail_list.h"

#include "mail/maildir.h"

namespace tidyfold::maildir {

std::string_view Mail::Unique() const {
  return Split_Maildir_Name(name).unique;
}

std::string_view Mail::Marks() const {
  return Split_Maildir_Name(name).marks;
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
