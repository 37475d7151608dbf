#include "stores/sqlite/embedded_outlook.h"

#include "base/file_path.h"

namespace tidyfold {

std::shared_ptr<Mail_Store> Open_Embedded_Store(const Store_Address& address, const Store_Opening& opening) {
  if (!address.Is_File())
    throw Store_Open_Error(Store_Open_Error::Reason::Not_Supported, File_Path(address.Text()),
                           "\"" + address.Text() + "\" is no store file. Name a file that Tidyfold wrote.");
  return Embedded_Store::Open(address.path, opening.mode, opening.progress);
}

}  // namespace tidyfold
