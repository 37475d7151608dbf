// The dialog that shows what a run is about to do and asks for confirmation.
#pragma once

#include <wx/dialog.h>
#include <wx/scrolwin.h>
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
  void Wrap(int width);

  const wxString sentence_, note_lines_;
  wxStaticText* sentence_text_;
  Text_Table* table_ = nullptr;
  wxScrolledWindow* notes_ = nullptr;
  wxStaticText* notes_text_ = nullptr;
};

}  // namespace tidyfold
