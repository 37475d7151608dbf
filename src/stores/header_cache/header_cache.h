// What live stores have read of their items' headers, kept for the next time in the user's cache folder. It
// is a cache and nothing else: what is missing, damaged or held by another program is read again, and no call
// fails.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/object_model.h"

namespace tidyfold {

struct Cached_Header {
  // By which the store knows that the item is still the one that was read, such as a file's inode; 0 where
  // its identity says that alone.
  std::int64_t stamp = 0;
  std::int32_t item_class = item_class::mail;
  Date received = no_date;
  std::int64_t size = 0;   // bytes of the whole item
  std::int64_t marks = 0;  // the store's own
  bool has_attachments = false;
  std::string subject, sender;
};

// "tidyfold/headers" in $XDG_CACHE_HOME or ~/.cache; empty where the user has no home.
std::filesystem::path Header_Cache_Folder();

// One file for each store. Headers are kept by folder, its generation (such as UIDVALIDITY) and the item's
// unique id, any bytes; they come back in the order of the ids. What was put is on disk after Keep.
class Header_Cache {
 public:
  // `store` names the store, as Store_Address::Lasting_Text does. With an empty folder nothing is kept.
  Header_Cache(const std::filesystem::path& folder, const std::string& store);
  Header_Cache(const Header_Cache&) = delete;
  Header_Cache& operator=(const Header_Cache&) = delete;
  ~Header_Cache();

  // A number for the folder, by which the other calls know it. What was kept under another generation is
  // forgotten, with the state.
  std::int64_t Folder(const std::string& name, std::int64_t generation);
  // A text of the store's own, such as the point up to which the folder was read.
  std::string State(std::int64_t folder);
  void Set_State(std::int64_t folder, const std::string& state);

  // Costs least in the order of the ids, with nothing put or forgotten in between.
  std::optional<Cached_Header> Find(std::int64_t folder, std::string_view id);
  void For_Each(std::int64_t folder,
                const std::function<void(std::string_view id, const Cached_Header& header)>& take);
  std::int64_t Count(std::int64_t folder);
  void Put(std::int64_t folder, std::string_view id, const Cached_Header& header);
  void Forget(std::int64_t folder, std::string_view id);
  // Forgets the headers of items that `stays` says are gone.
  void Forget_Others(std::int64_t folder, const std::function<bool(std::string_view id)>& stays);
  void Keep();

 private:
  struct Closer {
    void operator()(sqlite3* connection) const { sqlite3_close_v2(connection); }
  };
  struct Finaliser {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
  };
  using Statement = std::unique_ptr<sqlite3_stmt, Finaliser>;

  bool Open(const std::string& store);
  bool Run(const char* sql);
  Statement Prepare(const char* sql);
  // SQLITE_ROW or SQLITE_DONE; gives the cache up for anything else.
  int Step(sqlite3_stmt& statement);
  bool Begin();
  void Give_Up();
  // Whether find_ stands on the row now.
  bool Go_To(std::int64_t folder, std::string_view id);
  // Ends what find_ is at.
  void Leave();
  // The same, and writes what waits.
  void Settle();

  std::filesystem::path file_;
  std::unique_ptr<sqlite3, Closer> connection_;  // empty: nothing is kept
  Statement find_, put_, put_many_, forget_;
  bool in_transaction_ = false, damaged_ = false;
  // Where find_ stands: on the row of `row`, or behind the last one. The folder has none between the two ids.
  struct Place {
    std::int64_t folder = 0;
    std::string sought, row;
    bool at_end = false;
  };
  std::optional<Place> place_;
  // What was put and is not yet written: many rows at once cost half as much.
  struct Waiting {
    std::int64_t folder = 0;
    std::string id, row;
  };
  std::vector<Waiting> waiting_;
};

}  // namespace tidyfold
