// How the floors below the grid have the window brought up to date. Everything here must be wired, so these
// are interfaces that constructors ask for.
#pragma once

namespace tidyfold {

// What shows the cached items.
class Item_View {
 public:
  virtual ~Item_View() = default;
  // Whether the list shows a folder's items.
  virtual bool In_View(int folder) const = 0;
  // Appends the rows of the records that the list has not been given yet.
  virtual void Add_New_Records(int folder) = 0;
  virtual void Remove_Folder_Rows(int folder) = 0;
  virtual void Set_Grid_Order() = 0;
  // A filter has changed.
  virtual void Change_Filtered_Rows() = 0;
  // Writes the selected total to the status bar.
  virtual void Display_Selected_Items_Total() = 0;
  // Brings all that follows rows, marks and filters up to date: total, hint, sort menu, commands.
  virtual void Follow_Choice() = 0;
};

// Which controls can be used.
class Command_State {
 public:
  virtual ~Command_State() = default;
  virtual void Enable_Check_Boxes() = 0;
  virtual void Enable_Command_Buttons() = 0;
};

}  // namespace tidyfold
