// What is known of a mailbox. The network's thread writes it and the program's reads it, both under the
// account's lock.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "stores/imap/uid_set.h"

namespace tidyfold::imap {

struct Mailbox {
  std::string wire_name;  // as commands have it; empty for the top of the account
  std::string name;       // its last part, for people
  std::size_t parent = 0;
  std::vector<std::size_t> children;
  bool can_be_selected = false;
  bool is_gone = false;
  std::int32_t role = 0;  // an OlDefaultFolders number

  std::uint32_t uid_validity = 0;  // 0: not told
  std::uint64_t mod_seq = 0;       // everything up to here is known (RFC 7162); 0: not told
  std::uint32_t messages = 0;      // as told last
  bool is_read_only = false;
  std::chrono::steady_clock::time_point looked_at;  // when `messages` was told

  // Messages in the server's order, by UID; complete when `is_listed`.
  bool is_listed = false;
  std::vector<Uid> uids;
  std::vector<std::uint8_t> flags;  // message_flag bits of each, and `has_row`
  // Those of them that the next batch of changes takes away, in order.
  std::vector<Uid> leaving;
  static constexpr std::uint8_t has_row = 0x80;

  std::optional<std::size_t> Place_Of(Uid uid) const;
  void Set_Leaving(Uid uid);
  bool Is_Leaving(Uid uid) const;
  // How many messages do not leave.
  std::uint32_t Staying() const;
  // The message in this place, counted from 0, among those that do not leave.
  std::optional<Uid> Staying_At(std::size_t place) const;
  // Those of them that were there, in order.
  std::vector<Uid> Remove(std::vector<Uid> gone);
  // In ascending order; those that are there stay as they are.
  void Add(const std::vector<Uid>& sorted);
  // Another UIDVALIDITY: nothing that is known of messages holds any more.
  void Forget_Messages();
};

}  // namespace tidyfold::imap
