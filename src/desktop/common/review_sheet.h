// The dialog that shows what a run is about to do and asks for confirmation.
#pragma once

#include <wx/dialog.h>
#include <wx/stattext.h>

#include "controls/interaction.h"

namespace tidyfold {

class Text_Table;

// Shows the sentence, the table and the notes. ShowModal returns wxID_OK for OK and Enter, wxID_CANCEL for
// Cancel, Esc and closing. Sized to its content, within the screen; the table and the notes scroll.
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
