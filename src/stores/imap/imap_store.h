// A mailbox account on a server (IMAP) behind the object model.
//
// A message is known by mailbox, UIDVALIDITY and UID, and by nothing else. What is done to messages waits
// until the group of changes ends, and is then sent together; what the server names as done is done. A moved
// message's new identity is known from then on.
#pragma once

#include <filesystem>
#include <memory>

#include "outlook/mail_store.h"
#include "stores/imap/account.h"

namespace tidyfold::imap {

// Throws Store_Open_Error.
std::shared_ptr<Mail_Store> Open_Account(const Store_Address& address, const Store_Opening& opening);
// The same over any transport, with a cache in any place.
std::shared_ptr<Mail_Store> Open_Account(const Store_Address& address, const Store_Opening& opening,
                                         Account_Settings settings, const std::filesystem::path& cache);

}  // namespace tidyfold::imap
