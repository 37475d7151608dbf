// Where passwords come from. They are never written anywhere but into the keyring.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>

#include "base/store_address.h"

namespace tidyfold::imap {

class Secret_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The first line that a shell command writes. Throws Secret_Error where it fails or writes none; what it
// writes to its standard error goes to ours.
std::string Secret_From_Command(const std::string& command);

// The desktop's keyring; nothing where there is no keyring, or no password of this account in it.
std::optional<std::string> Secret_From_Keyring(const Store_Address& address);

// Puts it there; false where there is no keyring, or where it refuses.
bool Keep_Secret_In_Keyring(const Store_Address& address, const std::string& secret);

// A line from the terminal, which does not show it; nothing where there is no terminal.
std::optional<std::string> Secret_From_Terminal(const std::string& question);

}  // namespace tidyfold::imap
