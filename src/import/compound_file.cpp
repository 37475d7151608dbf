#include "import/compound_file.h"

#include <cstdint>
#include <optional>
#include <vector>

#include "import/mapi.h"

namespace tidyfold {
namespace {

constexpr std::size_t most_entries = 20'000;
constexpr std::size_t entry_size = 128, kind_in_entry = 66, left_in_entry = 68, right_in_entry = 72;
constexpr std::size_t lists_in_header = 109;
constexpr std::uint32_t none = UINT32_MAX;
constexpr std::uint32_t root_kind = 5;
constexpr std::size_t sector_shift_at = 30, directory_at = 48, more_lists_at = 68, lists_at = 76;

// The file is cut into sectors; for each of them, lists tell the one that follows it.
class Sectors {
 public:
  explicit Sectors(std::string_view bytes) : bytes_(bytes) {
    const std::uint64_t shift = bytes.size() < 512 ? 0 : Little_Endian(bytes.substr(sector_shift_at, 2));
    if (shift < 7 || shift > 16) return;
    size_ = std::size_t{1} << shift;
    for (std::size_t i = 0; i < lists_in_header; ++i) lists_.push_back(Number_At(lists_at + 4 * i));
    // More lists are named in sectors of their own, the last number of each being the next.
    std::uint32_t more = Number_At(more_lists_at);
    for (std::size_t left = Count(); left > 0 && more < Count(); --left) {
      for (std::size_t i = 0; i + 1 < size_ / 4; ++i) lists_.push_back(Number_At(Place_Of(more) + 4 * i));
      more = Number_At(Place_Of(more) + size_ - 4);
    }
  }

  std::size_t Size() const { return size_; }
  std::size_t Count() const { return size_ == 0 ? 0 : bytes_.size() / size_; }
  std::uint32_t First_Of_Directory() const { return Number_At(directory_at); }
  bool Has_Root() const {
    const std::size_t root = Place_Of(First_Of_Directory());
    return (Number_At(root + kind_in_entry) & 0xFF) == root_kind && Number_At(root + left_in_entry) == none &&
           Number_At(root + right_in_entry) == none;
  }
  std::optional<std::uint32_t> Behind(std::uint32_t sector) const {
    const std::size_t list = sector / (size_ / 4);
    if (list >= lists_.size() || lists_[list] >= Count()) return std::nullopt;
    return Number_At(Place_Of(lists_[list]) + 4 * (sector % (size_ / 4)));
  }

 private:
  std::size_t Place_Of(std::uint32_t sector) const { return (std::size_t{sector} + 1) * size_; }
  std::uint32_t Number_At(std::size_t at) const {
    return at + 4 > bytes_.size() ? UINT32_MAX
                                  : static_cast<std::uint32_t>(Little_Endian(bytes_.substr(at, 4)));
  }

  std::string_view bytes_;
  std::size_t size_ = 0;
  std::vector<std::uint32_t> lists_;
};

}  // namespace

std::string Problem_Of_Compound_File(std::string_view bytes) {
  const Sectors sectors(bytes);
  if (sectors.Size() == 0 || !sectors.Has_Root()) return "it is damaged (its directory has no root)";
  std::size_t entries = 0;
  std::optional<std::uint32_t> sector = sectors.First_Of_Directory();
  while (sector && *sector < sectors.Count() && entries <= most_entries) {
    entries += sectors.Size() / entry_size;
    sector = sectors.Behind(*sector);
  }
  return entries > most_entries ? "it has too many parts for an item" : std::string();
}

}  // namespace tidyfold
