// The dialog for a person who has no store yet.
#pragma once

#include <wx/dialog.h>

namespace tidyfold {

class Message_Box;
class Store_Files;

// Offers to make a sample store, to open a store or a mail account and to import files, until one of these
// succeeds. ShowModal returns wxID_OK when a store is open.
class Welcome_Dialog : public wxDialog {
 public:
  Welcome_Dialog(Store_Files& files, Message_Box& message_box);
};

}  // namespace tidyfold
