// A mailbox account on a server (IMAP) behind the object model.
//
// A message is known by mailbox, UIDVALIDITY and UID, and by nothing else. What is done to messages waits
// until the group of changes ends, and is then sent together; what the server names as done is done. A moved
// message's new identity is known from then on.
#pragma once

#include <memory>

#include "outlook/mail_store.h"
#include "stores/imap/account.h"

namespace tidyfold::imap {

// On an account that is open.
std::shared_ptr<Mail_Store> Store_On(const Store_Address& address, Store_Mode mode,
                                     std::unique_ptr<Account> account);

}  // namespace tidyfold::imap
