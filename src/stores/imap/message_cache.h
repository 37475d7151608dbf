// What was read of messages, kept in the user's cache folder: by mailbox, UIDVALIDITY and UID. It may be
// deleted at any time. Used by both threads.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "stores/imap/mailbox.h"
#include "stores/imap/message_data.h"

namespace tidyfold::imap {

class Message_Cache {
 public:
  // A file that cannot be used is replaced; where that fails too, nothing is kept beyond the program's life.
  explicit Message_Cache(const std::filesystem::path& file);
  Message_Cache(const Message_Cache&) = delete;
  Message_Cache& operator=(const Message_Cache&) = delete;
  ~Message_Cache();

  // Fills in what is known of the messages of a mailbox under its UIDVALIDITY.
  void Load(Mailbox& mailbox);
  // What a look at the mailbox told: all of it or nothing.
  void Keep(const Mailbox& mailbox, const std::vector<Uid>& vanished,
            const std::vector<std::pair<Uid, std::uint8_t>>& flags);
  void Keep(const Mailbox& mailbox, const std::vector<Message_Data>& rows);
  // Those that are there of the messages from one UID to another, in order.
  std::vector<Message_Data> Rows(const Mailbox& mailbox, Uid first, Uid last);

 private:
  struct Connection;
  std::int64_t Number_Of(const Mailbox& mailbox);

  std::mutex lock_;
  std::unique_ptr<Connection> connection_;
};

// Where the cache of an account lies: in XDG_CACHE_HOME or ~/.cache.
std::filesystem::path Message_Cache_File(const std::string& account);

}  // namespace tidyfold::imap
