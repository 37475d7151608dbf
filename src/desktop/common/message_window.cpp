#include "desktop/common/message_window.h"

#include <wx/panel.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>

#include "desktop/common/application_icon.h"
#include "desktop/common/simple_binders.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// What follows keeps the program busy, and a paint event would be handled only afterwards.
void Paint_Now(wxWindow& window) {
  window.Update();
  for (wxWindow* const child : window.GetChildren()) Paint_Now(*child);
}

}  // namespace

Message_Window::Message_Window(MainWindow& model)
    : wxFrame(nullptr, wxID_ANY, To_Wx(model.frmMessageBox.Caption()), wxDefaultPosition, wxDefaultSize,
              wxBORDER_SIMPLE | wxFRAME_NO_TASKBAR),
      model_(model) {
  SetName(To_Wx(model_.frmMessageBox.Name()));
  SetIcons(Application_Icons());
  auto* const surface = new wxPanel(this);
  const int gap = FromDIP(24);
  auto* const line = new wxBoxSizer(wxHORIZONTAL);
  line->Add(new wxStaticBitmap(surface, wxID_ANY, Application_Picture(FromDIP(wxSize(64, 64)))),
            wxSizerFlags().CentreVertical().Border(wxALL, gap));
  auto* const text = new wxStaticText(surface, wxID_ANY, wxString(), wxDefaultPosition,
                                      FromDIP(wxSize(240, 80)), wxST_NO_AUTORESIZE);
  binders_.Add<Label_Binder>(model_.lblMessage, *text);
  line->Add(text, wxSizerFlags(1).CentreVertical().Border(wxTOP | wxRIGHT | wxBOTTOM, gap));
  surface->SetSizer(line);
  auto* const frame = new wxBoxSizer(wxVERTICAL);
  frame->Add(surface, wxSizerFlags(1).Expand());
  SetSizerAndFit(frame);
  Centre();
  model_.frmMessageBox.changed = [this] { Show_Form(); };
  // GTK tells of a window that was shown when it may be hidden again, and wxWidgets then takes it for shown.
  Bind(wxEVT_SHOW, [this](wxShowEvent& event) {
    event.Skip();
    if (event.IsShown() && !model_.frmMessageBox.Visible()) CallAfter([this] { Show_Form(); });
  });
}

Message_Window::~Message_Window() {
  model_.frmMessageBox.changed = nullptr;
  binders_.Clear();
}

void Message_Window::Show_Form() {
  const bool visible = model_.frmMessageBox.Visible();
  if (visible == IsShown()) return;
  Show(visible);
  if (visible) Paint_Now(*this);
}

}  // namespace tidyfold
