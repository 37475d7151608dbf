// Asks where an export goes and in which form.
#pragma once

#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/filepicker.h>

#include <string>

#include "export/export.h"

namespace tidyfold {

class Export_Dialog : public wxDialog {
 public:
  // The folder's name; empty for everything.
  Export_Dialog(wxWindow* parent, const std::string& folder);

  wxString Directory() const { return directory_->GetPath(); }
  Export_Form Form() const;

 private:
  wxDirPickerCtrl* directory_;
  wxChoice* form_;
};

}  // namespace tidyfold
