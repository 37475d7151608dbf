#include "stores/opening/open_store.h"

#include "base/file_path.h"
#include "stores/opening/accounts.h"
#include "stores/sqlite/embedded_store.h"
#ifndef _WIN32
#include "stores/header_cache/header_cache.h"
#include "stores/maildir/maildir_store.h"
#endif

namespace tidyfold {

std::shared_ptr<Mail_Store> Open_Store(const Store_Address& address, const Store_Opening& opening) {
  if (address.Is_File()) return Embedded_Store::Open(address.path, opening.mode, opening.progress);
#ifndef _WIN32
  if (address.kind == Store_Address::Kind::Maildir) {
    Maildir_Options options;
    options.mode = opening.mode;
    options.cache_folder = Header_Cache_Folder();
    options.wait = opening.wait;
    return Maildir_Store::Open(address, options);
  }
#endif
  if (address.Is_Server()) {
    if (auto account = Open_Server(address, opening)) return account;
  }
  throw Store_Open_Error(
      Store_Open_Error::Reason::Not_Supported, File_Path(address.Text()),
      "Stores like \"" + address.Text() + "\" cannot be opened on this system. Name a store file.");
}

bool Can_Open(Store_Address::Kind kind) {
#ifndef _WIN32
  static_cast<void>(kind);
  return true;
#else
  return kind == Store_Address::Kind::File;
#endif
}

}  // namespace tidyfold
