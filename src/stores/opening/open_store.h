// Opens stores of every kind that this system knows.
#pragma once

#include <memory>

#include "outlook/mail_store.h"

namespace tidyfold {

// A Store_Opener. Throws Store_Open_Error.
std::shared_ptr<Mail_Store> Open_Store(const Store_Address& address, const Store_Opening& opening);

// Whether this system knows stores of this kind.
bool Can_Open(Store_Address::Kind kind);

}  // namespace tidyfold
