// Ties a menu entry to its model.
#pragma once

#include <wx/frame.h>
#include <wx/menu.h>

#include <functional>

#include "controls/widgets.h"

namespace tidyfold {

class Menu_Binder {
 public:
  // Appends the entry to `menu`, which belongs to `frame`. `key` is an accelerator in wxWidgets' notation
  // ("Ctrl+F5"); `settle` runs before every click; where it says no, the
  // click does nothing. An entry that shows a state is a check or radio item.
  Menu_Binder(MenuItem& model, wxMenu& menu, wxFrame& frame, const wxString& key, const wxString& help,
              std::function<bool()> settle, wxItemKind kind = wxITEM_NORMAL);
  Menu_Binder(const Menu_Binder&) = delete;
  Menu_Binder& operator=(const Menu_Binder&) = delete;
  ~Menu_Binder();

  // Appends the entry to another menu of the frame, in its current state.
  void Append_To(wxMenu& menu) const;
  const MenuItem& Model() const { return model_; }

 private:
  void Show();
  wxString Label() const;

  MenuItem& model_;
  wxString key_;
  wxMenuItem* item_;  // owned by the menu
  std::function<bool()> settle_;
};

}  // namespace tidyfold
