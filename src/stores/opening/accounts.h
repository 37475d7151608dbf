// Mailboxes on servers, where this system has them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "outlook/mail_store.h"

namespace tidyfold {

// Nothing where there are none. Throws Store_Open_Error.
std::shared_ptr<Mail_Store> Open_Server(const Store_Address& address, const Store_Opening& opening);

// Where the passwords of accounts come from, in this order. All are called by the thread that opens them.
struct Password_Sources {
  // A shell command whose first line is the password, run at each login; empty: none.
  std::function<std::string(const Store_Address& address)> command;
  // What the person has said already; empty: nothing. May be missing.
  std::function<std::string(const Store_Address& address)> given;
  // Then the desktop's keyring; then the person is asked. Nothing where nobody can be asked.
  std::function<std::optional<std::string>(const Store_Address& address)> ask;
  Begin_Wait wait;  // as in Store_Opening
};

// For Store_Opening::password.
std::function<std::string(const Store_Address& address, int before)> Account_Passwords(
    Password_Sources sources);

// A line that the terminal does not show.
std::optional<std::string> Password_From_Terminal(const Store_Address& address);

// Puts a password into the desktop's keyring. False where there is none, or where it refuses.
bool Keep_In_Keyring(const Store_Address& address, const std::string& password, const Begin_Wait& wait);

}  // namespace tidyfold
