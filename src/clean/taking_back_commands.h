// The commands that bring back what a run has moved to Deleted Items, and the one that sets how much may lie
// there.
#pragma once

#include <optional>

#include "cache/refresh.h"
#include "clean/deleted_items_limits.h"
#include "grid/grid_rows.h"
#include "outlook/deleted_items.h"
#include "runs/taking_back.h"

namespace tidyfold {

// Yields that also show how far the taking back has come.
class Taking_Back_Progress : public Events {
 public:
  Taking_Back_Progress(Events& events, StatusBar& bar, const Taking_Back& taking_back)
      : events_(events), bar_(bar), taking_back_(taking_back) {}
  void Do_Events() override;

 private:
  Events& events_;
  StatusBar& bar_;
  const Taking_Back& taking_back_;
};

class Taking_Back_Commands {
 public:
  Taking_Back_Commands(MainWindow& window, FolderData_Array& records, Deleted_Items_Folders& deleted_items,
                       Grid_Rows& rows, Refresh& refresh, Item_Cache& cache, Taking_Back& taking_back,
                       Deleted_Items_Limits& limits, Program_Phase& phase, Message_Box& message_box,
                       Error_Handler& errors);

  // Sets the menu commands' handlers.
  void Wire();
  // Takes back a run; none: the last one that can be.
  void Take_Back_Run(std::optional<std::int64_t> run);
  // Puts the items of the rows that are picked, or of the row that the keyboard is at, back from Deleted
  // Items.
  void mnuPutBack_Click();
  // Asks for the limit of the store that the selected folder lies in.
  void mnuDeletedItemsLimit_Click();

 private:
  template <class Work>
  void Run(Work&& work);
  void Reload(const Taking_Back_Report& report);
  std::vector<Item_Identity> Chosen_Rows();

  MainWindow& window_;
  FlexGrid& grid_;
  FolderData_Array& records_;
  Deleted_Items_Folders& deleted_items_;
  Grid_Rows& rows_;
  Refresh& refresh_;
  Item_Cache& cache_;
  Taking_Back& taking_back_;
  Deleted_Items_Limits& limits_;
  Program_Phase& phase_;
  Message_Box& message_box_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
