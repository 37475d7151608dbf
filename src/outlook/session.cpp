#include "outlook/session.h"

namespace tidyfold {

bool Outlook_Session::Start_Outlook() {
  return errors_.Run("Start_Outlook", [&] {
    window_.lblMessage.Set_Caption("Initializing Outlook.\r\n\r\nPlease wait ...");
    application.reset();
    name_space.reset();
    errors_.Try_To_Reach([&] { application = automation_.GetObject("", "Outlook.Application"); });
    if (application == nullptr) {
      if (debug) message_box_.Show("GetObject() Did Not Work");
      errors_.Try_To_Reach([&] { application = automation_.CreateObject("Outlook.Application"); });
    }
    if (application == nullptr) {
      const std::string why = automation_.Why_Not_Reached();
      message_box_.Show("Unable to initialize Outlook.  Please try again." +
                        (why.empty() ? "" : "\r\n\r\n" + why));
      return false;
    }
    errors_.Try_To_Reach([&] { name_space = application->GetNamespace("MAPI"); });
    if (name_space == nullptr) {
      errors_.error.Clear();
      message_box_.Show("Unable to initialize Outlook Namespace.  Please try again.");
      window_.frmMessageBox.Unload();
      return false;
    }
    return true;
  });
}

}  // namespace tidyfold
