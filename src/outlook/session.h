// The session with Outlook, or with what stands behind the object model in its place.
#pragma once

#include <memory>

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "outlook/object_model.h"

namespace tidyfold {

class Outlook_Session {
 public:
  Outlook_Session(Automation& automation, MainWindow& window, Message_Box& message_box, Error_Handler& errors)
      : automation_(automation), window_(window), message_box_(message_box), errors_(errors) {}

  // Attaches to a running Outlook or starts it, and opens the "MAPI" namespace. False, after a message, when
  // either cannot be had; it is not tried again.
  bool Start_Outlook();

  // Throws Automation_Error when the companion cannot be created.
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils() {
    return automation_.Create_Mapi_Utils("TidyDll.TidyMAPIUtils");
  }

  // See Automation.
  std::string Place_Of_Store(const std::string& store_id) const {
    return automation_.Place_Of_Store(store_id);
  }
  bool Asking_Costs_Calls() const { return automation_.Asking_Costs_Calls(); }
  // Whether two EntryIDs, both of one store, name the same folder. Only texts that differ cost a call. Throws
  // Automation_Error.
  bool Same_Folder(const std::string& one, const std::string& other) const {
    return one == other || name_space->CompareEntryIDs(one, other);
  }

  // Empty until Start_Outlook has succeeded.
  std::shared_ptr<Application> application;
  std::shared_ptr<NameSpace> name_space;
  // Shows the diagnostic messages too.
  bool debug = false;

 private:
  Automation& automation_;
  MainWindow& window_;
  Message_Box& message_box_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
