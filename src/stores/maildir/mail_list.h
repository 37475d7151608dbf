// The mails of one Maildir, in an order that only grows.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace tidyfold::maildir {

struct Folder;

// A mail, known by its unique name. It is never freed while the store is open.
struct Mail {
  std::string name;  // of its file, with its marks
  std::uint64_t inode = 0;
  Folder* folder = nullptr;
  std::uint32_t twin = 0;  // several files have the unique name
  std::uint32_t slot = 0;  // in its folder's list
  std::uint32_t seen = 0;  // in the reading of this number
  bool is_new = false;     // lies in new/
  bool gone = false;       // deleted, here or by others
  bool coming = false;     // found, and not yet in its folder's list
  bool pending = false;    // moved or deleted here, not yet on disk

  std::string_view Unique() const;
  std::string_view Marks() const;
  bool Has(char mark) const { return !is_new && Marks().find(mark) != std::string_view::npos; }
  // "cur/NAME" or "new/NAME".
  std::string File() const { return (is_new ? "new/" : "cur/") + name; }
};

// All that are known, by unique name and twin.
class Mail_Index {
 public:
  // nullptr if there is none.
  Mail* Find(std::string_view unique, std::uint32_t twin) const;
  // By EntryID: "M", the unique name, and of the second file of that name "/2".
  Mail* Find(std::string_view entry_id) const;
  // The mail of this name's unique part, made if there is none.
  Mail& Find_Or_Add(std::string_view name, std::uint32_t twin, bool& added);
  // So many more will come.
  void Expect(std::size_t count) {
    if (known_.size() + count > known_.bucket_count()) known_.reserve(known_.size() + count);
  }
  static std::string Entry_Id(const Mail& mail);

 private:
  struct Identity {
    std::string_view unique;
    std::uint32_t twin = 0;
  };
  static Identity Of(const Mail* mail) { return {mail->Unique(), mail->twin}; }
  static Identity Of(const Identity& identity) { return identity; }
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(const auto& key) const {
      return std::hash<std::string_view>()(Of(key).unique) + Of(key).twin;
    }
  };
  struct Same {
    using is_transparent = void;
    bool operator()(const auto& left, const auto& right) const {
      return Of(left).twin == Of(right).twin && Of(left).unique == Of(right).unique;
    }
  };

  std::deque<Mail> mails_;
  std::unordered_set<Mail*, Hash, Same> known_;
};

// Places count from 1, slots from 0; a slot is never used again.
class Mail_List {
 public:
  std::int32_t Count() const { return count_; }
  Mail& At(std::int32_t place) const;
  void Append(Mail& mail);
  void Remove(Mail& mail);
  // The first mail in this slot or behind it; nullptr if there is none.
  Mail* From(std::uint32_t slot) const;
  const std::vector<Mail*>& Slots() const { return slots_; }

  // What the directories looked like when they were last read.
  std::int64_t cur_changed = -1, new_changed = -1, looked = 0, took = 0;

 private:
  void Add(std::size_t slot, std::int32_t number);

  std::vector<Mail*> slots_;        // nullptr where one has gone
  std::vector<std::int32_t> sums_;  // a Fenwick tree over the slots in use
  std::int32_t count_ = 0;
};

}  // namespace tidyfold::maildir
