#include "app/remembered.h"

#include <cmath>
#include <string>

namespace tidyfold {

namespace {

constexpr const char* key = "Software\\Tidyfold\\Window";
constexpr const char* look = "Look";
// A width that no screen has was not written by this program.
constexpr std::int32_t widest = 200000;

std::string Column_Name(std::size_t field) {
  return "Column" + std::to_string(field);
}

}  // namespace

Remembered::Remembered(MainWindow& window, Grid_Columns& columns, Grid_Rows& rows, Panes& panes,
                       Registry* registry, Error_Handler& errors)
    : window_(window),
      columns_(columns),
      rows_(rows),
      panes_(panes),
      errors_(errors),
      first_tree_width_(window.trvFolders.Width()) {
  if (registry != nullptr) values_.emplace(*registry, key);
}

void Remembered::Wire() {
  window_.mnuResetWindow.Click = [this] { mnuResetWindow_Click(); };
}

void Remembered::Restore() {
  errors_.Run("Restore", [&] {
    if (!values_) return;
    const Kept_Numbers kept(values_->Text(look));
    const auto number = [&](const std::string& name) { return kept.Get(name); };
    if (const auto width = number("Tree"); width && *width >= 0 && *width <= widest)
      Set_Tree_Width(static_cast<Twips>(*width));
    for (std::size_t field = 0; field < window_.mnuSortBy.size(); ++field)
      if (const auto width = number(Column_Name(field)); width && *width > 0 && *width <= widest)
        columns_.Set_Width_By_Hand(static_cast<Grid_Field>(field), static_cast<Twips>(*width));
    if (const auto field = number("SortField");
        field && *field >= 0 && *field < static_cast<std::int32_t>(window_.mnuSortBy.size()))
      rows_.SortField = static_cast<Grid_Field>(*field);
    if (const auto ascending = number("SortAscending")) rows_.SortAscending = *ascending != 0;
    for (MenuItem* const column : {&window_.mnuShowSize, &window_.mnuShowWillGo, &window_.mnuShowAttachments})
      if (const auto shown = number(column->Name())) column->Set_Checked(*shown != 0);
    for (CheckBox* const option : {&window_.chkShowAllFolders, &window_.chkShowSelectedItems,
                                   &window_.chkShowUnselectedItems, &window_.chkCollapseFolders})
      if (const auto value = number(option->Name())) option->Set_Value(*value != 0 ? 1 : 0);
    if (const auto preview = number(window_.mnuPreview.Name()); preview && *preview != 0)
      Raise(window_.mnuPreview.Click);
  });
}

void Remembered::Keep() {
  errors_.Run("Keep", [&] {
    if (!values_) return;
    Kept_Numbers kept;
    kept.Set("Tree", static_cast<std::int32_t>(std::lround(window_.trvFolders.Width())));
    for (std::size_t field = 0; field < window_.mnuSortBy.size(); ++field)
      kept.Set(Column_Name(field), static_cast<std::int32_t>(
                                       std::lround(columns_.Width_By_Hand(static_cast<Grid_Field>(field)))));
    kept.Set("SortField", static_cast<std::int32_t>(rows_.SortField));
    kept.Set("SortAscending", rows_.SortAscending ? 1 : 0);
    for (const MenuItem* const entry :
         {&window_.mnuShowSize, &window_.mnuShowWillGo, &window_.mnuShowAttachments, &window_.mnuPreview})
      kept.Set(entry->Name(), entry->Checked() ? 1 : 0);
    for (const CheckBox* const option : {&window_.chkShowAllFolders, &window_.chkShowSelectedItems,
                                         &window_.chkShowUnselectedItems, &window_.chkCollapseFolders})
      kept.Set(option->Name(), option->Value());
    values_->Set_Text(look, kept.Text());
  });
}

void Remembered::Set_Tree_Width(Twips width) {
  window_.picSlider.Set_Left(window_.trvFolders.Left() + width);
  panes_.picSlider_MouseUp();
  panes_.Form_Resize();
}

void Remembered::mnuResetWindow_Click() {
  errors_.Run("mnuResetWindow_Click", [&] {
    Set_Tree_Width(first_tree_width_);
    const No_Redraw no_redraw(window_.grdItems);
    for (std::size_t field = 0; field < window_.mnuSortBy.size(); ++field)
      columns_.Set_Width_By_Hand(static_cast<Grid_Field>(field), 0);
    for (MenuItem* const column : {&window_.mnuShowSize, &window_.mnuShowWillGo}) column->Set_Checked(true);
    window_.mnuShowAttachments.Set_Checked(false);
    columns_.Set_Grid_Columns();
    rows_.SortField = Grid_Field::Item_Date;
    rows_.SortAscending = false;
    rows_.Set_Grid_Order();
    rows_.Display_Sort_Menu();
    if (window_.mnuPreview.Checked()) Raise(window_.mnuPreview.Click);
  });
}

}  // namespace tidyfold
