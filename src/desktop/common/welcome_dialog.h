// What a person sees who has no store yet.
#pragma once

#include <wx/dialog.h>

namespace tidyfold {

class Store_Files;

// Offers a sample store, a store to open and files to import, until one of them has worked. ShowModal gives
// wxID_OK when a store is open.
class Welcome_Dialog : public wxDialog {
 public:
  explicit Welcome_Dialog(Store_Files& files);
};

}  // namespace tidyfold
