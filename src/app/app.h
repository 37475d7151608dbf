// The main window's life: start-up, loading, quitting. Builds every flow of the program and wires them.
#pragma once

#include <memory>

#include "controls/interaction.h"
#include "controls/main_window.h"
#include "outlook/object_model.h"

namespace tidyfold {

class FolderData_Array;
struct Run_State;

// Everything that the program does to one main window. All calls come from one thread; every handler may run
// inside a yield of a longer one. The object must outlive the last of them: a front end destroys it only
// after its event loop has unwound.
class App {
 public:
  App(MainWindow& window, Automation& automation, Message_Box& message_box, Events& events, Clock& clock);
  ~App();

  // Start-up: reaches Outlook, lays the window out, builds the tree and loads the items. Returns when
  // everything is loaded or the window was closed meanwhile (window.frmRemoveItems.Loaded() then is false).
  void Form_Load();
  // Rebuilds the tree and loads the items, again and again while a refresh is asked for on the way.
  void Load_Interface();

  // For front ends that have no widgets: the records behind the tree (record numbers are node indexes), and
  // what the last run did.
  const FolderData_Array& Folder_Data() const;
  const Run_State& Run() const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace tidyfold
