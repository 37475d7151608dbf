// Opens mail accounts on servers (IMAP).
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
