// A mailbox account on a server (IMAP) behind the object model.
//
// A message is known by mailbox, UIDVALIDITY and UID, and by nothing else. What is done to messages waits until
// the group of changes ends, and is then sent together; what the server names as done is done. A moved
// message's new identity is known from then on.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "outlook/mail_store.h"
#include "stores/imap/account.h"

namespace tidyfold::imap {

// What opening needs from whoever may ask the person.
struct Account_Access {
  // A password or token for the account; see Login. Throws Store_Open_Error where there is none.
  std::function<std::string(const Store_Address&)> secret;
  Mechanism mechanism = Mechanism::Password;
  // Called while the program waits for the server; false gives the wait up.
  std::function<bool()> serve;
};

// Throws Store_Open_Error.
std::shared_ptr<Mail_Store> Open_Account(const Store_Address& address, const Store_Opening& opening,
                                         const Account_Access& access);
// For tests: over any transport, with a cache of their own.
std::shared_ptr<Mail_Store> Open_Account(const Store_Address& address, const Store_Opening& opening,
                                         Account_Settings settings, const std::filesystem::path& cache,
                                         std::function<bool()> serve);

}  // namespace tidyfold::imap
