#include "cli/chosen_stores.h"

#include "cli/failure.h"
#include "errors/automation_error.h"
#include "stores/opening/accounts.h"

namespace tidyfold::cli {

Store_Opening Opening_For(const Arguments& arguments, Store_Mode mode, Terminal& terminal) {
  Store_Opening opening(mode, Told_On(terminal, "Bringing the store up to date"));
  opening.wait = [&terminal] { return [&terminal] { return !terminal.Interrupted(); }; };
  opening.password = Account_Passwords(
      {.command = [command = arguments.password_command](const Store_Address&) { return command; },
       .given = {},
       .ask = Password_From_Terminal,
       .wait = opening.wait});
  return opening;
}

Chosen_Stores::Chosen_Stores(const Arguments& arguments) {
  if (!arguments.outlook) return;
  outlook_ = Make_Outlook();
  if (outlook_ == nullptr)
    throw Failure(Exit_Status::Bad_Input,
                  "--outlook works on Windows only. Name a store with --store FILE instead.");
  source_ = outlook_.get();
}

void Chosen_Stores::Open(const std::vector<Store_Address>& stores, const Store_Opening& opening) {
  if (outlook_ == nullptr) stores_.Open(stores, opening);
}

std::shared_ptr<NameSpace> Chosen_Stores::Name_Space() {
  constexpr const char* program = "Outlook.Application";
  try {
    std::shared_ptr<Application> application;
    try {
      application = Source().GetObject("", program);
    } catch (const Automation_Error&) {
      application = Source().CreateObject(program);
    }
    return application->GetNamespace("MAPI");
  } catch (const Automation_Error& error) {
    const std::string why = Source().Why_Not_Reached();
    throw Failure(Exit_Status::Bad_Input,
                  "Outlook cannot be reached. " + (why.empty() ? error.Description() : why));
  }
}

void Chosen_Stores::Commit() {
  if (Change_Groups* const groups = Source().Groups()) groups->Commit_Pending();
}

void Chosen_Stores::Commit_Due() {
  if (Change_Groups* const groups = Source().Groups()) groups->Commit_Due();
}

}  // namespace tidyfold::cli
