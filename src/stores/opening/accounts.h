// Mailboxes on servers, where this system has them.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "outlook/mail_store.h"

namespace tidyfold {

// Nothing where there are none. Throws Store_Open_Error.
std::shared_ptr<Mail_Store> Open_Server(const Store_Address& address, const Store_Opening& opening);

// For Store_Opening::password: the first line that a shell command writes, run at each login; without a
// command the desktop's keyring, or else the terminal, which is asked once.
std::function<std::string(const Store_Address& address, int before)> Account_Passwords(
    const std::string& command);

}  // namespace tidyfold
