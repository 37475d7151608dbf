// The object model's folders and items on a store file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "outlook/object_model.h"
#include "outlook/store_writer.h"
#include "stores/sqlite/store.h"

namespace tidyfold::sqlite {

MAPIFolder_Ptr Make_Folder(std::shared_ptr<Store> store, std::int64_t id);
// By its OlDefaultFolders number. Throws Automation_Error (not_found).
MAPIFolder_Ptr Find_Default_Folder(const std::shared_ptr<Store>& store, std::int32_t type);
// Throws Automation_Error (not_found), also for text that is not an EntryID.
Item_Ptr Find_Item(const std::shared_ptr<Store>& store, const std::string& entry_id);
// The store must outlive the writer.
std::unique_ptr<Store_Writer> Make_Writer(Store& store);

}  // namespace tidyfold::sqlite
