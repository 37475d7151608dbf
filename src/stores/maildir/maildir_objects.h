// The object model's folders and items on a Maildir.
#pragma once

#include <memory>

#include "outlook/object_model.h"
#include "stores/maildir/maildir_store.h"

namespace tidyfold::maildir {

MAPIFolder_Ptr Make_Folder(std::shared_ptr<Maildir_Store> store, Folder& folder);
Item_Ptr Make_Item(std::shared_ptr<Maildir_Store> store, Mail& mail);

}  // namespace tidyfold::maildir
