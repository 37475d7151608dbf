#include "stores/maildir/directory_list.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <tuple>

namespace tidyfold::maildir {

namespace {

struct Directory_Closer {
  void operator()(DIR* directory) const { ::closedir(directory); }
};

std::uint64_t Eight_Characters(std::string_view name, std::size_t from) {
  std::uint64_t number = 0;
  for (std::size_t at = from; at < from + sizeof number; ++at)
    number = number << 8 | (at < name.size() ? static_cast<unsigned char>(name[at]) : 0U);
  return number;
}

}  // namespace

bool Patience::Lasts() {
  constexpr std::uint32_t steps_at_once = 256;
  constexpr auto every = std::chrono::milliseconds(20);
  if (++steps_ % steps_at_once != 0 || !begin_ || !lasts_) return lasts_;
  if (std::chrono::steady_clock::now() - asked_ < every) return true;
  if (!goes_on_) goes_on_ = begin_();
  lasts_ = goes_on_();
  asked_ = std::chrono::steady_clock::now();
  return lasts_;
}

int Directory_List::Read(const std::string& path, Patience& patience) {
  const std::unique_ptr<DIR, Directory_Closer> directory(::opendir(path.c_str()));
  if (directory == nullptr) return errno;
  for (;;) {
    if (!patience.Lasts()) return ECANCELED;
    errno = 0;
    const dirent* const entry = ::readdir(directory.get());
    if (entry == nullptr) break;
    const std::string_view name = entry->d_name;
    if (name.starts_with('.') ||
        (entry->d_type != DT_REG && entry->d_type != DT_UNKNOWN && entry->d_type != DT_LNK))
      continue;
    files_.push_back({Eight_Characters(name, 0), Eight_Characters(name, 8), names_.size(), entry->d_ino});
    names_.append(name).push_back('\0');
  }
  if (errno != 0) return errno;
  std::sort(files_.begin(), files_.end(), [&](const File& left, const File& right) {
    const auto one = std::tie(left.first, left.second), other = std::tie(right.first, right.second);
    return one != other ? one < other : Name(left) < Name(right);
  });
  return 0;
}

int Directory_List::For_Each(
    Patience& patience, const std::function<void(std::string_view name, std::uint64_t inode)>& take) const {
  for (const File& file : files_) {
    if (!patience.Lasts()) return ECANCELED;
    take(Name(file), file.inode);
  }
  return 0;
}

}  // namespace tidyfold::maildir
