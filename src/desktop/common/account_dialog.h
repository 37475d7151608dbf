// Asks for a mail account, and for its password.
#pragma once

#include <wx/checkbox.h>
#include <wx/choice.h>
#include <wx/dialog.h>
#include <wx/stattext.h>
#include <wx/textctrl.h>

#include <functional>
#include <optional>
#include <string>

#include "base/store_address.h"

namespace tidyfold {

struct Account_Choice {
  Store_Address address;
  std::string password;  // empty: from the keyring, or asked for
  std::string command;   // writes the password; empty: none
  bool keeps_password = false;
};

class Account_Dialog : public wxDialog {
 public:
  // Tries an account and says in a sentence what came of it, with whether it can be used.
  struct Answer {
    bool is_usable = false;
    std::string text;
  };
  using Test = std::function<Answer(const Account_Choice& choice)>;

  Account_Dialog(wxWindow* parent, Test test);

  Account_Choice Choice() const;

 private:
  wxTextCtrl* Add_Text(wxSizer& fields, const wxString& label, const wxString& name, const wxString& hint,
                       long style = 0);
  bool Is_Whole() const;
  void Follow_Server();
  void Follow_Encryption();
  void Try(const Test& test);
  void Say(const wxString& text, const wxColour& colour);

  wxTextCtrl *server_, *user_, *port_, *password_, *command_;
  wxChoice* encryption_;
  wxCheckBox* keep_;
  wxStaticText* answer_;
};

// A password alone. Nothing where the person would rather not.
struct Given_Password {
  std::string password;
  bool is_to_be_kept = false;
};
std::optional<Given_Password> Ask_For_Password(wxWindow* parent, const std::string& question);

}  // namespace tidyfold
