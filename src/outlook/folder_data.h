// What the window keeps of every folder and every item that it has read.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

// One item as it was read. Its place in the folder's cache, from 1, is its place in the folder's table or,
// where that has the same order or is refused, in the folder's Items.
struct ItemData {
  static constexpr std::int32_t deleted = -1;

  std::int32_t ItemClass = 0;  // 0: not read yet; `deleted`: a hole until the cache is packed
  std::string SenderOrText;    // the sender of mail, the first 20 characters of the text of anything else
  std::string Subject;
  Date ItemDate = 0;  // whole days
  bool Unread = false;
  bool Flagged = false;  // of mail: marked for follow-up, and not done
  std::string EntryID;
  std::int64_t Size = 0;        // bytes; 0 where the store does not say
  bool HasAttachments = false;  // false where the store does not say
};

// Numbers about items. Oldest and newest are of those that have a date; no_date when none has.
struct Tally {
  std::int64_t items = 0, bytes = 0;
  Date oldest = no_date, newest = no_date;

  void Add(const ItemData& item) {
    ++items;
    bytes += item.Size;
    if (item.ItemDate == no_date) return;
    if (oldest == no_date || item.ItemDate < oldest) oldest = item.ItemDate;
    if (newest == no_date || item.ItemDate > newest) newest = item.ItemDate;
  }
  void Add(const Tally& other) {
    items += other.items;
    bytes += other.bytes;
    if (other.oldest != no_date && (oldest == no_date || other.oldest < oldest)) oldest = other.oldest;
    if (other.newest != no_date && (newest == no_date || other.newest > newest)) newest = other.newest;
  }
  bool operator==(const Tally&) const = default;
};

// Which of a folder's cached items pass the filter, whether the folder is marked or not, as far as they have
// been looked at. An empty one is brought up to date when it is asked for.
struct Verdicts {
  std::uint32_t filter_version = 0;  // which filter was asked
  std::vector<char> passes;          // of the leading elements of ItemCache; element 0 is item 1
  Tally tally;                       // of those that pass
};

// Tells, without a look at them all, that among a folder's items some have come or gone.
struct Folder_Extent {
  std::int32_t count = 0;
  std::string last_id;
  bool operator==(const Folder_Extent&) const = default;
};

// A folder that is being read through its table, also while the reading rests. Rows that a batch has brought
// and that have not been taken over yet wait here.
struct Table_Reading {
  Table_Ptr table;       // empty: the store has refused it, and the folder is read item by item
  Folder_Extent extent;  // as it was when the rows taken over were last known to be the folder's
  std::vector<Table_Row> rows;
  std::size_t next = 0;  // of the rows
};

struct FolderData {
  std::int32_t DeletedFromFolder = 0;  // items that the run under way has removed
  MAPIFolder_Ptr Folder;               // empty for a node that stands for no real folder
  std::string FolderName;              // as it was when the node's caption was last made
  std::int32_t ItemCount = 0;          // items in the folder itself, as it was then
  std::int32_t Role = 0;               // which of its store's default folders it is; 0: none
  std::int32_t DeletedItemsIndex = 0;  // record of the same store's Deleted Items folder, 0 if none
  std::int32_t CachedCount = 0;        // leading elements of ItemCache that have been read
  std::int32_t RowCount = 0;           // leading elements of ItemCache that the grid has been given
  bool ProtectedItself = false;        // a person has protected this folder
  bool Protected = false;              // this one or one above it: never marked, emptied or removed
  bool MayChangeProtection = false;    // the folder's store lets its mark be changed
  bool Loaded = false;
  bool Reload = false;       // to be reset and read again
  bool LoadError = false;    // reading it failed and was reported; left alone until the next loading run
  std::uint32_t Resets = 0;  // how often the record was reset; who reads the folder notices by it
  Verdicts Judged;
  std::vector<ItemData> ItemCache;         // element 0 is item 1
  std::shared_ptr<Table_Reading> Reading;  // empty before reading has begun, and when it has ended

  // The cache's upper bound.
  std::int32_t Cache_Bound() const { return static_cast<std::int32_t>(ItemCache.size()); }
  // Throws std::out_of_range for an item that the cache has no element for.
  ItemData& Cached(std::int32_t item) { return ItemCache.at(static_cast<std::size_t>(item - 1)); }
  const ItemData& Cached(std::int32_t item) const { return ItemCache.at(static_cast<std::size_t>(item - 1)); }
};

// One record per tree node, from 1; a record's number is its node's index and the number in the node's tag.
class FolderData_Array {
 public:
  // One empty record.
  void Recreate() { records_.assign(1, FolderData{}); }
  // Keeps what is there.
  void Grow(std::int32_t upper_bound) { records_.resize(static_cast<std::size_t>(upper_bound)); }
  std::int32_t Upper_Bound() const { return static_cast<std::int32_t>(records_.size()); }
  bool Has(std::int32_t index) const { return index >= 1 && index <= Upper_Bound(); }
  // Throw std::out_of_range for a record that does not exist. References do not outlive a yield.
  FolderData& operator[](std::int32_t index) { return records_.at(static_cast<std::size_t>(index - 1)); }
  const FolderData& operator[](std::int32_t index) const {
    return records_.at(static_cast<std::size_t>(index - 1));
  }

 private:
  std::vector<FolderData> records_;
};

}  // namespace tidyfold
