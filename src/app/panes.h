// Where the main window's panes stand: at start-up, while a bar is dragged, and when the window is resized.
#pragma once

#include "controls/main_window.h"
#include "errors/procedure.h"
#include "grid/grid_columns.h"
#include "layout/slider_bar.h"

namespace tidyfold {

// All positions and sizes are twips; the form's are those of its client area.
class Panes {
 public:
  Panes(MainWindow& window, Grid_Columns& columns, Error_Handler& errors)
      : window_(window), columns_(columns), errors_(errors) {}

  // Sets the handlers of the bars and of the window.
  void Wire();

  void Set_Up_Bars();
  // The steps of start-up that make the designed positions fit one another.
  void Align_Lines();
  void Align_Options_Box();
  void Align_Folder_Box();
  void Align_Command_Button();
  void Align_Subject_Box();
  void Align_Current_Folder_Label();
  // Runs a bar's mouse-up again where a pane no longer meets it.
  void Apply_Bars_If_Needed();

  void picSlider_MouseDown();
  void picSlider_MouseMove(Twips x);
  void picSlider_MouseUp();
  void picSlider2_MouseDown();
  void picSlider2_MouseMove(Twips x);
  void picSlider2_MouseUp();
  // Heights follow the window; of the panes, the grid takes what the width has gained or lost.
  void Form_Resize();

 private:
  MainWindow& window_;
  Grid_Columns& columns_;
  Error_Handler& errors_;
  SliderBar tree_bar_, options_bar_;
  // Of the folder tree, as a person left it; a narrow window shows less of it.
  Twips chosen_tree_width_ = 0;
  const Twips designed_options_width_ = window_.frmOptions.Width();
  // Widths when a drag of the first bar began.
  std::int32_t grid_width_ = 0, options_width_ = 0;
};

}  // namespace tidyfold
