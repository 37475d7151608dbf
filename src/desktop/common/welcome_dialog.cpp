#include "desktop/common/welcome_dialog.h"

#include <wx/button.h>
#include <wx/sizer.h>
#include <wx/statbmp.h>
#include <wx/stattext.h>

#include <functional>

#include "controls/interaction.h"
#include "desktop/common/accessibility.h"
#include "desktop/common/application_icon.h"
#include "desktop/common/desktop_help.h"
#include "desktop/common/store_files.h"
#include "import/import.h"
#include "stores/opening/open_store.h"

namespace tidyfold {

Welcome_Dialog::Welcome_Dialog(Store_Files& files, Message_Box& message_box)
    : wxDialog(nullptr, wxID_ANY, application_title, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE) {
  Speak_As_Dialog(*this);
  SetName("frmWelcome");
  SetIcons(Application_Icons());
  const int gap = FromDIP(12);

  auto* const heading = new wxStaticText(this, wxID_ANY, "Clear out a mail and calendar store");
  heading->SetFont(heading->GetFont().Bold().Scaled(1.3f));
  auto* const words = new wxStaticText(
      this, wxID_ANY, "Tick folders, narrow down what they hold, look at it, and remove exactly that.");
  auto* const titles = new wxBoxSizer(wxVERTICAL);
  titles->Add(heading, wxSizerFlags().Border(wxBOTTOM, gap / 2));
  titles->Add(words);
  auto* const top = new wxBoxSizer(wxHORIZONTAL);
  top->Add(new wxStaticBitmap(this, wxID_ANY, Application_Picture(FromDIP(wxSize(64, 64)))),
           wxSizerFlags().CentreVertical().Border(wxRIGHT, gap * 3 / 2));
  top->Add(titles, wxSizerFlags(1).CentreVertical());

  auto* const offers = new wxFlexGridSizer(2, FromDIP(wxSize(16, 10)));
  const auto offer = [&](const wxString& name, const wxString& label, const wxString& note,
                         const std::function<bool()>& command) {
    auto* const button = new wxButton(this, wxID_ANY, label);
    button->SetName(name);
    button->SetMinSize(wxSize(-1, FromDIP(40)));
    button->Bind(wxEVT_BUTTON, [this, command](wxCommandEvent&) {
      if (command()) EndModal(wxID_OK);
    });
    offers->Add(button, wxSizerFlags().Expand());
    offers->Add(new wxStaticText(this, wxID_ANY, note), wxSizerFlags().CentreVertical());
  };
  offer("cmdSample", "&Sample Store...", "Invented mail, appointments and contacts, to try everything on.",
        [this, &files] { return files.Make_Sample_Store(this); });
  offer("cmdOpenStore", "&Open Store...", "A store that Tidyfold has made before.",
        [this, &files] { return files.Ask_And_Open(this); });
  if (Can_Open(Store_Address::Kind::Imap_Tls))
    offer("cmdOpenAccount", "Open Mail &Account...", "A mailbox on a server (IMAP), cleaned where it lies.",
          [this, &files] { return files.Ask_And_Open_Account(this); });
  if (Can_Import()) {
    offer("cmdImport", "&Import Files...", "PST, OST, PAB, mbox or EML files. They go into a new store.",
          [this, &files] { return files.Import_Files(this); });
    offer("cmdImportFolder", "Import Fo&lder...",
          "A Maildir, mbox files, messages. They go into a new store.",
          [this, &files] { return files.Import_Folder(this); });
  }

  auto* const column = new wxBoxSizer(wxVERTICAL);
  column->Add(top, wxSizerFlags().Expand().Border(wxALL, gap * 2));
  column->Add(offers, wxSizerFlags().Expand().Border(wxLEFT | wxRIGHT, gap * 2));
  column->Add(new wxButton(this, wxID_CANCEL, "&Quit"), wxSizerFlags().Right().Border(wxALL, gap * 2));
  SetSizerAndFit(column);
  Bind(wxEVT_CHAR_HOOK, [this, &message_box](wxKeyEvent& event) {
    event.GetKeyCode() == WXK_F1 ? Show_Help_Over(*this, message_box) : event.Skip();
  });
  Centre();
}

}  // namespace tidyfold
