#include "grid/grid_columns.h"

#include <algorithm>
#include <cstdio>
#include <span>
#include <vector>

#include "base/dates.h"
#include "base/size_text.h"

namespace tidyfold {

namespace {

// Room that the rows' scroll bar takes from the grid's width.
constexpr Twips scroll_bar_width = 270;

struct Column {
  Grid_Field field;
  const char* header;
  Twips fixed;  // room that its texts need at least
  Twips share;  // of what the fixed rooms leave, in proportion to the others
};

// The longest name of a type has a picture in front of it.
constexpr Twips type_width = 2550;
constexpr Twips date_width = 1500;
constexpr Twips size_width = 1200;
constexpr Twips attachments_width = 1300;
constexpr Twips picture_width = 720;
constexpr Twips least_width = 1200, least_subject_width = 2100;

constexpr Column all_folders_view[] = {{Grid_Field::Folder, "Folder", 0, 23},
                                       {Grid_Field::Type_Name, "Type", type_width, 0},
                                       {Grid_Field::Sender, "Sender", 0, 26},
                                       {Grid_Field::Subject, "Subject", 0, 44},
                                       {Grid_Field::Item_Date, "Date", date_width, 0}};
constexpr Column mail_view[] = {{Grid_Field::Type_Name, "Type", type_width, 0},
                                {Grid_Field::Sender, "Sender", 0, 33},
                                {Grid_Field::Subject, "Subject", 0, 60},
                                {Grid_Field::Item_Date, "Date", date_width, 0}};
constexpr Column journal_view[] = {{Grid_Field::Type_Name, "Type", type_width, 0},
                                   {Grid_Field::Subject, "Subject", 0, 60},
                                   {Grid_Field::Entry, "Entry", 0, 40},
                                   {Grid_Field::Item_Date, "Date", date_width, 0}};
constexpr Column other_view[] = {{Grid_Field::Type_Name, "Type", type_width, 0},
                                 {Grid_Field::Subject, "Subject", 0, 100},
                                 {Grid_Field::Item_Date, "Date", date_width, 0}};

// Behind those of the view, so that a view's columns have the same numbers with and without them.
constexpr Column size_column = {Grid_Field::Size, "Size", size_width, 0};
constexpr Column attachments_column = {Grid_Field::Attachments, "Attached", attachments_width, 0};
constexpr Column will_go_column = {Grid_Field::Will_Go, "Goes", picture_width, 0};

Twips Least_Width(const Column& column) {
  if (column.field == Grid_Field::Will_Go) return picture_width;
  return column.field == Grid_Field::Subject ? least_subject_width : least_width;
}

// Those behind the view's that are shown; null behind the last.
std::array<const Column*, 3> Columns_Behind(const MainWindow& window) {
  std::array<const Column*, 3> shown{};
  std::size_t count = 0;
  if (window.mnuShowSize.Checked()) shown[count++] = &size_column;
  if (window.mnuShowAttachments.Checked()) shown[count++] = &attachments_column;
  if (window.mnuShowWillGo.Checked()) shown[count++] = &will_go_column;
  return shown;
}

std::span<const Column> View(bool all_folders, std::int32_t item_type) {
  if (all_folders) return all_folders_view;
  if (item_type == item_type::mail) return mail_view;
  if (item_type == item_type::journal) return journal_view;
  return other_view;
}

std::vector<Column> Shown_Columns(const MainWindow& window, std::int32_t item_type) {
  const auto view = View(window.chkShowAllFolders.Checked(), item_type);
  std::vector<Column> shown(view.begin(), view.end());
  for (const Column* const column : Columns_Behind(window))
    if (column != nullptr) shown.push_back(*column);
  return shown;
}

// The names that many rows share, so that sorting need not make them anew.
const char* Fixed_Type_Name(std::int32_t item_class) {
  switch (item_class) {
    case item_class::mail:
      return "Mail";
    case item_class::appointment:
      return "Appointment";
    case item_class::contact:
      return "Contact";
    case item_class::task:
      return "Task";
    case item_class::distribution_list:
      return "Distribution List";
    case item_class::journal:
      return "Journal Entry";
    case item_class::note:
      return "Note";
    default:
      break;
  }
  if (item_class >= 49 && item_class <= 52) return "Task Request";
  if (item_class == 53 || item_class == 54) return "Meeting Notice";
  if (item_class >= 55 && item_class <= 57) return "Meeting Response";
  return nullptr;
}

}  // namespace

std::string Type_Name(std::int32_t item_class) {
  if (const char* name = Fixed_Type_Name(item_class)) return name;
  return "Undefined - " + std::to_string(item_class);
}

void Grid_Columns::Set_Grid_Columns() {
  errors_.Run("Set_Grid_Columns", [&] {
    const std::vector<Column> shown = Shown_Columns(window_, CurrentGridItemType);
    grid_.Set_Cols(FlexGrid::first_item_column + static_cast<int>(shown.size()));
    grid_.Set_Header(FlexGrid::key_column, "");
    grid_.Set_Header(FlexGrid::mark_column, "TYPE");
    for (std::size_t i = 0; i < shown.size(); ++i)
      grid_.Set_Header(FlexGrid::first_item_column + static_cast<int>(i), shown[i].header);
    if (window_.mnuShowWillGo.Checked()) grid_.Set_Picture_Column(grid_.Cols() - 1);
    Set_Column_Widths();
  });
}

void Grid_Columns::Set_Column_Widths() {
  errors_.Run("Set_Column_Widths", [&] {
    const std::vector<Column> view = Shown_Columns(window_, CurrentGridItemType);
    if (grid_.Cols() != FlexGrid::first_item_column + static_cast<int>(view.size())) return;
    Twips shared = grid_.Width() - scroll_bar_width, shares = 0;
    const auto by_hand = [&](const Column& column) {
      return by_hand_.at(static_cast<std::size_t>(column.field));
    };
    for (const Column& column : view) {
      shared -= by_hand(column) > 0 ? by_hand(column) : column.fixed;
      if (by_hand(column) == 0) shares += column.share;
    }
    shared = std::max<Twips>(shared, 0);
    grid_.Set_Column_Width(FlexGrid::key_column, 0);
    grid_.Set_Column_Width(FlexGrid::mark_column, 0);
    for (std::size_t i = 0; i < view.size(); ++i) {
      const Column& column = view[i];
      const Twips fair = column.fixed + (shares > 0 ? shared * column.share / shares : 0);
      grid_.Set_Column_Width(FlexGrid::first_item_column + static_cast<int>(i),
                             by_hand(column) > 0 ? by_hand(column) : std::max(fair, Least_Width(column)));
    }
  });
}

void Grid_Columns::mnuResetColumns_Click() {
  errors_.Run("mnuResetColumns_Click", [&] {
    by_hand_.fill(0);
    Set_Column_Widths();
  });
}

void Grid_Columns::Reset_Column_Widths() {
  errors_.Run("Reset_Column_Widths", [&] { Set_Column_Widths(); });
}

void Grid_Columns::Show_Or_Hide(MenuItem& column) {
  errors_.Run("mnuShowColumn_Click", [&] {
    column.Set_Checked(!column.Checked());
    Set_Grid_Columns();
    Raise(Columns_Exchanged);
  });
}

int Grid_Columns::Get_Sort_Column(Grid_Field field) const {
  const auto view = View(window_.chkShowAllFolders.Checked(), CurrentGridItemType);
  const auto found =
      std::find_if(view.begin(), view.end(), [&](const Column& column) { return column.field == field; });
  if (found != view.end()) return FlexGrid::first_item_column + static_cast<int>(found - view.begin());
  int behind = FlexGrid::first_item_column + static_cast<int>(view.size());
  for (const Column* const column : Columns_Behind(window_)) {
    if (column == nullptr) break;
    if (column->field == field) return behind;
    ++behind;
  }
  return grid_.Cols();
}

Grid_Field Grid_Columns::Get_Sort_Field(int column) const {
  const auto view = View(window_.chkShowAllFolders.Checked(), CurrentGridItemType);
  if (column < FlexGrid::first_item_column) return Grid_Field::Type_Name;
  const auto at = static_cast<std::size_t>(column - FlexGrid::first_item_column);
  if (at < view.size()) return view[at].field;
  const auto behind = Columns_Behind(window_);
  const Column* const found = at - view.size() < behind.size() ? behind[at - view.size()] : nullptr;
  return found != nullptr ? found->field : Grid_Field::Type_Name;
}

std::string Grid_Columns::Cell_Text(const GridRow& row, int column) const {
  return Field_Text(row, Get_Sort_Field(column));
}

const ItemData* Grid_Columns::Item_Of(const GridRow& row) const {
  const FolderData& record = records_[row.row_data];
  if (row.item < 1 || row.item > record.Cache_Bound()) return nullptr;
  // While a run goes, the row of an item that it has deleted stands empty.
  const ItemData& item = record.Cached(row.item);
  return item.ItemClass == ItemData::deleted ? nullptr : &item;
}

std::string Grid_Columns::Field_Text(const GridRow& row, Grid_Field field) const {
  if (field == Grid_Field::Folder) return records_[row.row_data].FolderName;
  const ItemData* const item = Item_Of(row);
  if (item == nullptr) return {};
  switch (field) {
    case Grid_Field::Type_Name:
      return Type_Name(item->ItemClass);
    case Grid_Field::Subject:
      return item->Subject;
    case Grid_Field::Item_Date:
      return item->ItemDate == no_date ? std::string{} : Format_Date(item->ItemDate);
    case Grid_Field::Size:
      return item->Size > 0 ? Format_Size(item->Size) : std::string{};
    case Grid_Field::Attachments:
      return item->HasAttachments ? "attachment" : "";
    case Grid_Field::Will_Go:
      return row.marked ? "will go" : "stays";
    default:
      return item->SenderOrText;
  }
}

std::string_view Grid_Columns::Sort_Text(const GridRow& row, int column, std::string& room) const {
  const Grid_Field field = Get_Sort_Field(column);
  if (field == Grid_Field::Folder) return records_[row.row_data].FolderName;
  if (const ItemData* const item = Item_Of(row)) {
    if (field == Grid_Field::Subject) return item->Subject;
    if (field == Grid_Field::Sender || field == Grid_Field::Entry) return item->SenderOrText;
    if (field == Grid_Field::Type_Name)
      if (const char* name = Fixed_Type_Name(item->ItemClass)) return name;
    if (field == Grid_Field::Size) {
      // In the order of numbers.
      char digits[24];
      std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(item->Size));
      return room = digits;
    }
  }
  room = Field_Text(row, field);
  return room;
}

Cell_Picture Grid_Columns::Picture(const GridRow& row, int column) const {
  const Grid_Field field = Get_Sort_Field(column);
  const bool has_picture =
      field == Grid_Field::Type_Name || field == Grid_Field::Will_Go || field == Grid_Field::Attachments;
  const ItemData* const item = has_picture ? Item_Of(row) : nullptr;
  if (item == nullptr) return Cell_Picture::None;
  if (field == Grid_Field::Attachments)
    return item->HasAttachments ? Cell_Picture::Attachment : Cell_Picture::None;
  if (field == Grid_Field::Will_Go) return row.marked ? Cell_Picture::Goes : Cell_Picture::None;
  switch (item->ItemClass) {
    case item_class::mail:
      return Cell_Picture::Mail;
    case item_class::contact:
    case item_class::distribution_list:
      return Cell_Picture::Contact;
    case item_class::journal:
      return Cell_Picture::Journal;
    case item_class::note:
      return Cell_Picture::Note;
    default:
      break;
  }
  if (item->ItemClass >= item_class::task && item->ItemClass <= item_class::task_request_decline)
    return Cell_Picture::Task;
  const bool meeting = item->ItemClass >= item_class::meeting_request &&
                       item->ItemClass <= item_class::meeting_response_tentative;
  return meeting || item->ItemClass == item_class::appointment ? Cell_Picture::Appointment
                                                               : Cell_Picture::Other;
}

}  // namespace tidyfold
