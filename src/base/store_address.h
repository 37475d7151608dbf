// How a person names a store: a file, "maildir:DIRECTORY", or a mailbox on a server,
// "imaps://USER@HOST[:PORT]/" or "imap://..." (https://www.rfc-editor.org/rfc/rfc5092, without what follows
// the server).
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace tidyfold {

// A text that looks like an address and is none. Says what is wrong and what it should look like.
class Store_Address_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Store_Address {
  enum class Kind { File, Maildir, Imap_Tls, Imap };

  Store_Address() = default;
  // A store file.
  Store_Address(const std::filesystem::path& file);  // NOLINT(google-explicit-constructor)

  bool Is_File() const { return kind == Kind::File; }
  bool Is_Server() const { return kind == Kind::Imap_Tls || kind == Kind::Imap; }
  // Of a server: nobody else can listen to what is said to it.
  bool Is_On_This_Machine() const;
  // For people: a path as it was given, "maildir:" with it, or the address of the mailbox.
  std::string Text() const;
  // What opens the store again from anywhere; Read_Store_Address understands it.
  std::string Lasting_Text() const;

  Kind kind = Kind::File;
  std::filesystem::path path;  // of a file or Maildir, as it was given
  std::string user, host;      // of a mailbox; without escapes, the host in small letters
  std::uint16_t port = 0;      // never 0 for a mailbox
};

// Any text without one of the three beginnings is a file; "./maildir:x" is one, too. Throws
// Store_Address_Error.
Store_Address Read_Store_Address(const std::string& text);

}  // namespace tidyfold
