#include "stores/opening/open_store.h"

#include "base/file_path.h"
#include "stores/opening/accounts.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

std::shared_ptr<Mail_Store> Open_Store(const Store_Address& address, const Store_Opening& opening) {
  if (address.Is_File()) return Embedded_Store::Open(address.path, opening.mode, opening.progress);
  if (address.Is_Server()) {
    if (auto account = Open_Server(address, opening)) return account;
  }
  throw Store_Open_Error(
      Store_Open_Error::Reason::Not_Supported, File_Path(address.Text()),
      "Stores like \"" + address.Text() + "\" cannot be opened on this system. Name a store file.");
}

}  // namespace tidyfold
