#include "app/panes.h"

#include <algorithm>
#include <cmath>

namespace tidyfold {

namespace {

constexpr Twips margin = 120;
constexpr Twips button_gap = 60;
// In a narrow window the tree gives way first, then the options, and at last the grid.
constexpr Twips comfortable_grid_width = 2700, least_grid_width = 1980, least_options_width = 2880;
// The window is never narrower once it is shown.
constexpr Twips least_window_width = 5400;

}  // namespace

void Panes::Wire() {
  window_.picSlider.MouseDown = [this](Twips) { picSlider_MouseDown(); };
  window_.picSlider.MouseMove = [this](Twips x) { picSlider_MouseMove(x); };
  window_.picSlider.MouseUp = [this](Twips) { picSlider_MouseUp(); };
  window_.picSlider2.MouseDown = [this](Twips) { picSlider2_MouseDown(); };
  window_.picSlider2.MouseMove = [this](Twips x) { picSlider2_MouseMove(x); };
  window_.picSlider2.MouseUp = [this](Twips) { picSlider2_MouseUp(); };
  window_.frmRemoveItems.Resize = [this] { Form_Resize(); };
}

void Panes::Set_Up_Bars() {
  tree_bar_.Setup(window_.trvFolders, window_.grdItems, window_.picSlider, 0);
  options_bar_.Setup(window_.grdItems, window_.frmOptions, window_.picSlider2, 0);
  chosen_tree_width_ = window_.trvFolders.Width();
}

void Panes::Align_Lines() {
  for (Line* line : {&window_.linOptions1, &window_.linOptions2}) {
    line->Set_X1(75);
    line->Set_X2(window_.frmOptions.Width() - 75);
  }
}

void Panes::Align_Options_Box() {
  window_.frmOptions.Set_Top(window_.frmOptions.Top() - 85);
  window_.frmOptions.Set_Height(window_.frmOptions.Height() + 85);
}

void Panes::Align_Folder_Box() {
  window_.lblCurrentFolder.Set_Left(window_.grdItems.Left() + 75);
  window_.lblCurrentFolder.Set_Width(window_.grdItems.Width() - 75);
}

void Panes::Align_Command_Button() {
  window_.cmdRun.Set_Left(window_.frmOptions.Left());
  window_.cmdRun.Set_Width(window_.frmOptions.Width());
}

void Panes::Align_Subject_Box() {
  window_.txtSelectSubject.Set_Width(window_.frmOptions.Width() - (window_.txtSelectSubject.Left() + 100));
}

// The label spans the grid, the second bar and the options.
void Panes::Align_Current_Folder_Label() {
  MainWindow& w = window_;
  const Twips width = std::round(w.grdItems.Width() + w.picSlider2.Width() + w.frmOptions.Width() - 75);
  w.lblCurrentFolder.Set_Left(w.grdItems.Left() + 75);
  w.lblCurrentFolder.Set_Width(width >= 1 ? width : 0);
}

void Panes::Apply_Bars_If_Needed() {
  if (tree_bar_.Needs_Applying()) {
    picSlider_MouseUp();
  } else if (options_bar_.Needs_Applying()) {
    picSlider2_MouseUp();
  }
}

void Panes::picSlider_MouseDown() {
  errors_.Run("picSlider_MouseDown", [&] {
    tree_bar_.Mouse_Down();
    grid_width_ = static_cast<std::int32_t>(std::lround(window_.grdItems.Width()));
    options_width_ = static_cast<std::int32_t>(std::lround(window_.frmOptions.Width()));
  });
}

void Panes::picSlider_MouseMove(Twips x) {
  errors_.Run("picSlider_MouseMove", [&] { tree_bar_.Mouse_Move(x); });
}

void Panes::picSlider_MouseUp() {
  errors_.Run("picSlider_MouseUp", [&] {
    tree_bar_.Mouse_Up();
    chosen_tree_width_ = window_.trvFolders.Width();
    Align_Current_Folder_Label();
    columns_.Reset_Column_Widths();
  });
}

void Panes::picSlider2_MouseDown() {
  errors_.Run("picSlider2_MouseDown", [&] { options_bar_.Mouse_Down(); });
}

void Panes::picSlider2_MouseMove(Twips x) {
  errors_.Run("picSlider2_MouseMove", [&] { options_bar_.Mouse_Move(x); });
}

// The options keep their width; the window becomes wider or narrower with the grid.
void Panes::picSlider2_MouseUp() {
  errors_.Run("picSlider2_MouseUp", [&] {
    MainWindow& w = window_;
    const Twips right_space = std::round(w.frmRemoveItems.Width() - w.frmOptions.Left());
    const Twips bar_end = std::round(w.picSlider2.Left() + w.picSlider2.Width());
    w.frmRemoveItems.Set_Width(bar_end + right_space);
    const Twips got = w.frmRemoveItems.Width() - bar_end;
    // The window could not become as wide or narrow as that: the bar gives way.
    if (got != right_space) w.picSlider2.Set_Left(w.picSlider2.Left() - (right_space - got));
    w.grdItems.Set_Width(std::max<Twips>(w.picSlider2.Left() - w.grdItems.Left(), 0));
    w.frmOptions.Set_Left(w.picSlider2.Left() + w.picSlider2.Width());
    w.cmdRun.Set_Left(w.frmOptions.Left());
    options_bar_.ResizingWindows = false;
    Align_Current_Folder_Label();
    columns_.Reset_Column_Widths();
  });
}

void Panes::Form_Resize() {
  errors_.Run("Form_Resize", [&] {
    MainWindow& w = window_;
    const Twips bottom = w.frmRemoveItems.Height() - margin;
    for (Control* pane : {static_cast<Control*>(&w.trvFolders), static_cast<Control*>(&w.picSlider),
                          static_cast<Control*>(&w.grdItems), static_cast<Control*>(&w.picSlider2)})
      pane->Set_Height(std::max<Twips>(bottom - pane->Top(), 0));
    // Clean stands below the options that it acts on, however high the window is.
    const Twips room = std::max<Twips>(bottom - w.cmdRun.Height() - button_gap - w.frmOptions.Top(), 0);
    w.frmOptions.Set_Height(w.options_height > 0 ? std::min(w.options_height, room) : room);
    w.cmdRun.Set_Top(w.frmOptions.Top() + w.frmOptions.Height() + button_gap);
    // The options stay in sight: in a narrow window the tree gives way, down to nothing, and has its width
    // again once there is room.
    const Twips least_left = w.trvFolders.Left() + w.picSlider.Width();
    const Twips room_right = w.frmRemoveItems.Width() - margin - w.picSlider2.Width();
    const Twips options_width = w.frmRemoveItems.Width() < least_window_width
                                    ? designed_options_width_
                                    : std::clamp(room_right - least_left - comfortable_grid_width,
                                                 least_options_width, designed_options_width_);
    w.frmOptions.Set_Width(options_width);
    Align_Command_Button();
    const Twips wanted_left = w.frmRemoveItems.Width() - margin - options_width;
    const Twips farthest_grid = std::max(room_right - options_width - comfortable_grid_width, least_left);
    const Twips chosen_grid = w.trvFolders.Left() + chosen_tree_width_ + w.picSlider.Width();
    if (const Twips grid = std::min(chosen_grid, farthest_grid); w.grdItems.Left() != grid) {
      w.grdItems.Set_Left(grid);
      w.picSlider.Set_Left(grid - w.picSlider.Width());
      w.trvFolders.Set_Width(w.picSlider.Left() - w.trvFolders.Left());
    }
    const Twips options_left =
        std::max(wanted_left, w.grdItems.Left() + least_grid_width + w.picSlider2.Width());
    w.frmOptions.Set_Left(options_left);
    w.cmdRun.Set_Left(options_left);
    w.picSlider2.Set_Left(options_left - w.picSlider2.Width());
    w.grdItems.Set_Width(w.picSlider2.Left() - w.grdItems.Left());
    Align_Current_Folder_Label();
    columns_.Reset_Column_Widths();
  });
}

}  // namespace tidyfold
