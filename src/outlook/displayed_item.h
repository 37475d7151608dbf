// An item for a window that shows it.
#pragma once

#include <functional>
#include <string>

#include "outlook/store_writer.h"

namespace tidyfold {

struct Displayed_Item : New_Item {
  std::string entry_id, store_id;
  std::string folder_name;
};

using Display_Callback = std::function<void(const Displayed_Item&)>;

}  // namespace tidyfold
