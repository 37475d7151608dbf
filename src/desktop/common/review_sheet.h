// What a run is about to do, as a sheet that is confirmed or not.
#pragma once

#include <wx/dialog.h>
#include <wx/stattext.h>

#include "controls/interaction.h"

namespace tidyfold {

class Text_Table;

// The sentence, the table, the notes. ShowModal gives wxID_OK, which is also Enter, or wxID_CANCEL, which is
// also Esc and closing the sheet. As large as its content, within the screen; the table and the notes scroll.
class Review_Sheet : public wxDialog {
 public:
  Review_Sheet(wxWindow* parent, const Review& review);

 private:
  wxWindow* New_Notes(const Review& review, int width);

  const wxString sentence_;
  wxStaticText* sentence_text_;
  Text_Table* table_ = nullptr;
  wxWindow* notes_ = nullptr;
};

}  // namespace tidyfold
