// One item in a window of its own.
#pragma once

#include <wx/frame.h>

#include "outlook/displayed_item.h"

namespace tidyfold {

// Shows sender, dates, subject, folder, names and sizes of the attachments, and the text. Several may be open
// at once; Esc closes one. Each keeps its content, whatever happens to the item.
class Item_Window : public wxFrame {
 public:
  Item_Window(wxWindow* parent, const Displayed_Item& item);

 private:
  void Save_As_Eml();
  Displayed_Item item_;
};

}  // namespace tidyfold
