#include "desktop/common/mail_accounts.h"

#include <wx/msgdlg.h>

#include "base/size_text.h"
#include "controls/interaction.h"
#include "desktop/common/error_box.h"
#include "desktop/common/text_conversion.h"
#include "errors/automation_error.h"
#include "settings/last_stores.h"
#include "settings/user_values.h"
#include "stores/opening/accounts.h"
#include "stores/opening/open_store.h"

namespace tidyfold {

namespace {

using Reason = Store_Open_Error::Reason;

std::int64_t Count_Folders(const MAPIFolder_Ptr& folder) {
  std::int64_t count = 0;
  const Folders_Ptr below = folder->Folders();
  for (std::int32_t index = 1; index <= below->Count(); ++index)
    count += 1 + Count_Folders(below->Item(index));
  return count;
}

bool Has_Trash(Mail_Store& store) {
  try {
    return store.GetDefaultFolder(default_folder_deleted_items) != nullptr;
  } catch (const Automation_Error& error) {
    return error.Number() != automation_error::not_found;
  }
}

}  // namespace

std::string Mail_Accounts::Command_Of(const Store_Address& address) const {
  const auto said = said_.find(address.Text());
  if (said == said_.end()) return Password_Command(registry_, address);
  return said->second.command;
}

std::optional<std::string> Mail_Accounts::Ask(const Store_Address& address, wxWindow* parent) {
  const auto given = Ask_For_Password(
      parent, "The mail server \"" + address.host + "\" asks for the password of " + address.user + ".");
  if (!given)
    throw Store_Open_Error(Reason::Cancelled, address.Text(),
                           "Opening \"" + address.Text() + "\" was cancelled.");
  Account_Choice& said = said_[address.Text()];
  said.keeps_password = given->is_to_be_kept;
  return said.password = given->password;
}

void Mail_Accounts::Complete(Store_Opening& opening, wxWindow* parent) {
  opening.wait = [this] { return waits_.Begin(); };
  opening.password =
      Account_Passwords({.command = [this](const Store_Address& address) { return Command_Of(address); },
                         .given =
                             [this](const Store_Address& address) {
                               const auto said = said_.find(address.Text());
                               return said == said_.end() ? std::string() : said->second.password;
                             },
                         .ask = [this, parent](const Store_Address& address) { return Ask(address, parent); },
                         .wait = opening.wait});
}

Account_Dialog::Answer Mail_Accounts::Test(const Account_Choice& choice, wxWindow* parent) {
  Learn(choice);
  try {
    Store_Opening opening(Store_Mode::Read_Only);
    Complete(opening, parent);
    const auto store = Open_Store(choice.address, opening);
    std::string text = "Connected: " + Format_Count(Count_Folders(store->Top_Folder())) + " folders. ";
    text += Has_Trash(*store) ? "What is deleted goes to \"" +
                                    store->GetDefaultFolder(default_folder_deleted_items)->Name() + "\"."
                              : "It has no folder for deleted mail (Trash).";
    return {true, text};
  } catch (const std::exception& error) {
    return {false, error.what()};
  }
}

void Mail_Accounts::Learn(const Account_Choice& choice) {
  said_[choice.address.Text()] = choice;
}

bool Mail_Accounts::Can_Ask_Again(const Store_Open_Error& error) const {
  if (error.Why() != Reason::Not_Let_In) return false;
  return Command_Of(Read_Store_Address(error.File().string())).empty();
}

bool Mail_Accounts::Ask_Again(const Store_Open_Error& error, wxWindow* parent) {
  const auto given = Ask_For_Password(parent, error.what());
  if (!given) return false;
  Account_Choice& said = said_[error.File().string()];
  said.password = given->password;
  said.keeps_password = given->is_to_be_kept;
  return true;
}

void Mail_Accounts::Keep(const std::vector<Store_Address>& accounts, wxWindow* parent) {
  for (const Store_Address& address : accounts) {
    const auto found = said_.find(address.Text());
    if (found == said_.end()) continue;
    const Account_Choice said = found->second;
    said_.erase(found);
    if (said.command != Password_Command(registry_, address))
      Keep_Password_Command(registry_, address, said.command);
    if (!said.keeps_password) continue;
    try {
      if (!Keep_In_Keyring(address, said.password, [this] { return waits_.Begin(); }))
        Show_Error(parent,
                   "The password could not be put into the keyring. It will be asked for the next time.");
    } catch (const Store_Open_Error&) {
      continue;  // the person did not want to wait
    }
  }
}

void Mail_Accounts::Offer_Trash(Mail_Store& store, wxWindow* parent) {
  User_Values asked(registry_, "Software\\Tidyfold\\Accounts Without Trash");
  const std::string account = store.Address().Lasting_Text();
  if (!store.Address().Is_Server() || Has_Trash(store) || !asked.Text(account).empty()) return;
  asked.Set_Text(account, "asked");
  wxMessageDialog question(
      parent,
      To_Wx("The mail account has no folder for what is deleted. Without one, nothing can "
            "be deleted but for good.\n\nMake a folder called Trash on the server now?"),
      application_title, wxYES_NO | wxCENTRE);
  if (question.ShowModal() != wxID_YES) return;
  try {
    store.Top_Folder()->Folders()->Add("Trash", item_type::mail);
  } catch (const Automation_Error& error) {
    Show_Error(parent, error.Description());
  }
}

}  // namespace tidyfold
