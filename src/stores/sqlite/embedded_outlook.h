// The session over store files alone.
#pragma once

#include <memory>
#include <vector>

#include "outlook/store_session.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

// Opens a store file. Throws Store_Open_Error, also for any other kind of store.
std::shared_ptr<Mail_Store> Open_Embedded_Store(const Store_Address& address, const Store_Opening& opening);

class Embedded_Outlook : public Store_Session {
 public:
  Embedded_Outlook() : Store_Session(&Open_Embedded_Store) {}
  std::vector<std::shared_ptr<Embedded_Store>> Stores() const { return Stores_Of<Embedded_Store>(); }
};

}  // namespace tidyfold
