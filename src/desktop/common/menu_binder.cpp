#include "desktop/common/menu_binder.h"

#include "desktop/common/text_conversion.h"

namespace tidyfold {

Menu_Binder::Menu_Binder(MenuItem& model, wxMenu& menu, wxFrame& frame, const wxString& key,
                         const wxString& help, std::function<bool()> settle, wxItemKind kind)
    : model_(model),
      key_(key),
      item_(menu.Append(wxID_ANY, Label(), help, kind)),
      settle_(std::move(settle)) {
  frame.Bind(
      wxEVT_MENU,
      [this](wxCommandEvent&) {
        // An accelerator may arrive before the entry has been greyed.
        if (!model_.Enabled()) return;
        if (settle_()) Raise(model_.Click);
        // wxWidgets has toggled the check mark itself.
        Show();
      },
      item_->GetId());
  model_.changed = [this] { Show(); };
  Show();
}

Menu_Binder::~Menu_Binder() {
  model_.changed = nullptr;
}

void Menu_Binder::Append_To(wxMenu& menu) const {
  wxMenuItem& entry = *menu.Append(item_->GetId(), Label(), item_->GetHelp(), item_->GetKind());
  entry.Enable(model_.Enabled());
  if (entry.IsCheckable()) entry.Check(model_.Checked());
}

wxString Menu_Binder::Label() const {
  const wxString caption = To_Wx(model_.Caption());
  return key_.empty() ? caption : caption + "\t" + key_;
}

void Menu_Binder::Show() {
  if (item_->IsEnabled() != model_.Enabled()) item_->Enable(model_.Enabled());
  // wxWidgets unchecks the other radio items.
  if (item_->IsCheckable() && item_->IsChecked() != model_.Checked() &&
      (item_->GetKind() != wxITEM_RADIO || model_.Checked()))
    item_->Check(model_.Checked());
  if (const wxString label = Label(); label != item_->GetItemLabel()) item_->SetItemLabel(label);
}

}  // namespace tidyfold
