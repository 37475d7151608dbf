// The window's part in opening mail accounts: waits, passwords, and what is kept of them.
#pragma once

#include <wx/window.h>

#include <map>
#include <string>
#include <vector>

#include "desktop/common/account_dialog.h"
#include "desktop/common/server_waits.h"
#include "outlook/mail_store.h"
#include "settings/registry.h"

namespace tidyfold {

class Mail_Accounts {
 public:
  Mail_Accounts(Registry& registry, Server_Waits& waits) : registry_(registry), waits_(waits) {}

  // Adds what accounts need.
  void Complete(Store_Opening& opening, wxWindow* parent);
  // Tries an account, changes nothing, and says what came of it.
  Account_Dialog::Answer Test(const Account_Choice& choice, wxWindow* parent);

  // What a person has said of an account that is to be opened.
  void Learn(const Account_Choice& choice);
  // Whether another password may help, and whether the person gave one.
  bool Can_Ask_Again(const Store_Open_Error& error) const;
  bool Ask_Again(const Store_Open_Error& error, wxWindow* parent);
  // They are open: keeps commands, and passwords that are to be kept, and forgets the others.
  void Keep(const std::vector<Store_Address>& accounts, wxWindow* parent);
  // An account without a folder for what is deleted: asks once whether to make one.
  void Offer_Trash(Mail_Store& store, wxWindow* parent);

 private:
  std::string Command_Of(const Store_Address& address) const;
  std::optional<std::string> Ask(const Store_Address& address, wxWindow* parent);

  Registry& registry_;
  Server_Waits& waits_;
  std::map<std::string, Account_Choice> said_;  // by Store_Address::Text
};

}  // namespace tidyfold
