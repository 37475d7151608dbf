#include "grid/row_selection.h"

#include <algorithm>
#include <map>
#include <utility>

namespace tidyfold {

Row_Selection::Row_Selection(MainWindow& window, Protected_Folders& protection,
                             Deleted_Items_Folders& deleted_items, Grid_Rows& rows, Command_State& commands,
                             Message_Box& message_box, Error_Handler& errors)
    : window_(window),
      grid_(window.grdItems),
      protection_(protection),
      deleted_items_(deleted_items),
      rows_(rows),
      commands_(commands),
      message_box_(message_box),
      errors_(errors) {}

void Row_Selection::Wire() {
  window_.chkSelectByRow.Click = [this] { chkSelectByRow_Click(); };
  grid_.MouseUp = [this](int button, int shift, Twips, Twips) { grdItems_MouseUp(button, shift); };
  window_.mnuSelectRow.Click = [this] { mnuSelectRow_Click(); };
  window_.mnuSelectAllRows.Click = [this] { mnuSelectAllRows_Click(); };
  window_.mnuCopyRows.Click = [this] { mnuCopyRows_Click(); };
}

void Row_Selection::chkSelectByRow_Click() {
  errors_.Run("chkSelectByRow_Click", [&] {
    Set_Anchor(0);
    if (window_.chkSelectByRow.Checked()) {
      if (rows_.Check_Select_By_Row()) {
        window_.chkShowSelectedItems.Set_Value(1);
        window_.chkShowUnselectedItems.Set_Value(1);
        window_.chkTurbo.Set_Value(0);
        window_.chkDeleteFolders.Set_Value(0);
        rows_.Set_Grid_Order();
      } else {
        window_.chkSelectByRow.Set_Value(0);
      }
    }
    if (!window_.chkSelectByRow.Checked()) {
      const No_Redraw no_redraw(grid_);
      rows_.Mark_Or_Unmark_Filtered_Rows();
    }
    commands_.Enable_Check_Boxes();
    rows_.Follow_Choice();
  });
}

void Row_Selection::Set_Anchor(int row) {
  anchor_ = row;
  if (row >= 1 && row < grid_.Rows()) anchor_row_ = grid_.Row_At(row);
}

int Row_Selection::Anchor() const {
  if (anchor_ < 1 || anchor_ >= grid_.Rows()) return 0;
  const GridRow& at = grid_.Row_At(anchor_);
  return at.row_data == anchor_row_.row_data && at.item == anchor_row_.item ? anchor_ : 0;
}

// Items that lie in Deleted Items can only be deleted for good.
Row_Selection::Barrier Row_Selection::Barrier_Of(const GridRow& row) {
  if (protection_.Is_Protected(row.row_data)) return Barrier::Protection;
  return !window_.chkPermanentDelete.Checked() && deleted_items_.Is_Deleted_Items_Folder(row.row_data)
             ? Barrier::Deleted_Items
             : Barrier::None;
}

void Row_Selection::grdItems_MouseUp(int button, int shift) {
  errors_.Run("grdItems_MouseUp", [&] {
    const No_Redraw no_redraw(grid_);
    const int row = grid_.MouseRow();
    const bool on_row = row >= 1 && row < grid_.Rows() && grid_.RowData(row) >= 1;
    if (button == 1 && on_row && window_.chkSelectByRow.Checked() && rows_.Check_Select_By_Row()) {
      const Barrier barrier = Barrier_Of(grid_.Row_At(row));
      if (barrier == Barrier::Protection) {
        protection_.Say_Why(grid_.RowData(row));
      } else if (barrier == Barrier::Deleted_Items) {
        message_box_.Show("Cannot select \"Deleted Items\" items unless Permanent Delete is marked");
      } else if (shift == 2) {
        Select_Or_Unselect(row);
        Set_Anchor(row);
      } else if (const int anchor = Anchor(); shift == 1 && anchor >= 1) {
        Mark_And_Unmark_Selected_Range(std::min(anchor, row), std::max(anchor, row));
      } else if (shift == 0 || shift == 1) {
        Mark_And_Unmark_Selected_Range(row, row);
        Set_Anchor(row);
      }
      rows_.Follow_Choice();
    }
  });
}

void Row_Selection::Mark_And_Unmark_Selected_Range(int first, int last) {
  errors_.Run("Mark_And_Unmark_Selected_Range", [&] {
    bool told = false;
    // A folder is asked once, however many rows it has.
    std::map<std::int32_t, Barrier> folders;
    for (int row = 1; row < grid_.Rows(); ++row) {
      // Nobody picks what the search keeps out of sight.
      if (row < first || row > last || grid_.Row_At(row).hidden) {
        grid_.Set_Mark(row, false);
      } else if (!grid_.Row_At(row).marked) {
        const auto [folder, unknown] = folders.try_emplace(grid_.RowData(row));
        if (unknown) folder->second = Barrier_Of(grid_.Row_At(row));
        if (folder->second == Barrier::None) {
          grid_.Set_Mark(row, true);
        } else if (folder->second == Barrier::Protection) {
          protection_.Say_Why(grid_.RowData(row));
        } else if (!std::exchange(told, true)) {
          message_box_.Show(
              "Cannot select items in \"Deleted Items\" folder unless Permanent delete is marked.");
        }
      }
    }
    rows_.Paint_Entire_Grid();
    rows_.Set_Grid_Order();
  });
}

void Row_Selection::Select_Or_Unselect(int row) {
  errors_.Run("Select_Or_Unselect", [&] {
    grid_.Set_Mark(row, !grid_.Row_At(row).marked);
    rows_.Paint_Row(row);
    rows_.Follow_Choice();
  });
}

void Row_Selection::mnuSelectRow_Click() {
  errors_.Run("mnuSelectRow_Click", [&] {
    grid_.Set_MouseRow(grid_.Row());
    grdItems_MouseUp(1, 2);
  });
}

void Row_Selection::mnuSelectAllRows_Click() {
  errors_.Run("mnuSelectAllRows_Click", [&] {
    if (!window_.chkSelectByRow.Checked() || grid_.Rows() < 2 || !rows_.Check_Select_By_Row()) return;
    const No_Redraw no_redraw(grid_);
    Mark_And_Unmark_Selected_Range(1, grid_.Rows() - 1);
    rows_.Follow_Choice();
  });
}

void Row_Selection::mnuCopyRows_Click() {
  errors_.Run("mnuCopyRows_Click", [&] {
    const bool picked = window_.chkSelectByRow.Checked() && grid_.Marked_Rows() > 0;
    std::string text;
    for (int row = 1; row < grid_.Rows(); ++row) {
      if (picked ? !grid_.Row_At(row).marked : row != grid_.Row()) continue;
      for (int column = FlexGrid::first_item_column; column < grid_.Cols(); ++column) {
        std::string cell = grid_.TextMatrix(row, column);
        // A row is one line, whatever its texts hold.
        std::replace_if(
            cell.begin(), cell.end(), [](unsigned char letter) { return letter < ' '; }, ' ');
        text += (column > FlexGrid::first_item_column ? "\t" : "") + cell;
      }
      text += "\r\n";
    }
    if (!text.empty() && window_.Set_Clipboard_Text) window_.Set_Clipboard_Text(text);
  });
}

}  // namespace tidyfold
