// The main window's life: start-up, loading, quitting. Builds every flow of the program and wires them.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "base/clock.h"
#include "controls/interaction.h"
#include "controls/main_window.h"
#include "outlook/object_model.h"

namespace tidyfold {

class FolderData_Array;
struct Help_Environment;
struct Run_State;

// Everything that the program does to one main window. All calls come from one thread; every handler may run
// inside a yield of a longer one. The object must outlive the last of them: a front end destroys it only
// after its event loop has unwound.
class App {
 public:
  // Front ends without help give no environment for it.
  App(MainWindow& window, Automation& automation, Message_Box& message_box, Events& events, Clock& clock,
      Help_Environment* help_environment = nullptr);
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
  // The checks and questions that a run begins with, without the run: whether it would go on.
  bool Check_Screen();
  // What a run over the marked folders would take with the options as they are. Positions in a folder's
  // cache, from 1, in order.
  std::vector<std::int32_t> Items_To_Take(int folder) const;
  // Whether a run would remove the folder itself, and not only items.
  bool Takes_Folder(int folder) const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace tidyfold
