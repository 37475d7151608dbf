// Copies of a store's items as an export makes them.
#pragma once

#include <functional>
#include <string>

#include "base/clock.h"
#include "outlook/item_copies.h"
#include "outlook/store_writer.h"

namespace tidyfold {

class Store_Copies : public Item_Copies {
 public:
  // All of an item, by the StoreID and EntryID that it has. Throws Automation_Error.
  using Read = std::function<New_Item(const std::string& store_id, const std::string& entry_id)>;

  Store_Copies(Read read, Clock& clock) : read_(std::move(read)), clock_(clock) {}

  // Into a new directory named after the moment: "Tidyfold 2026-11-22 10.15.00".
  Kept_Copy Keep(const std::vector<Folder_To_Copy>& folders, const std::string& directory,
                 const std::function<bool(std::int64_t done, std::int64_t total)>& go_on) override;

 private:
  Read read_;
  Clock& clock_;
};

}  // namespace tidyfold
