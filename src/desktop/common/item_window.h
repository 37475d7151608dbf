// One item in a window of its own.
#pragma once

#include <wx/frame.h>

#include "stores/sqlite/displayed_item.h"

namespace tidyfold {

// Who, when, subject, folder, the attachments' names and sizes, and the text. Several may be open; each
// closes with Esc and keeps what it shows, whatever becomes of the item.
class Item_Window : public wxFrame {
 public:
  Item_Window(wxWindow* parent, const Displayed_Item& item);

 private:
  void Save_As_Eml();
  Displayed_Item item_;
};

}  // namespace tidyfold
