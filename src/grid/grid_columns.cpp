#include "grid/grid_columns.h"

#include <algorithm>
#include <span>

#include "base/dates.h"

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

// The longest name of a type, and a date, in bold.
constexpr Twips type_width = 2250;
constexpr Twips date_width = 1500;
constexpr Twips least_width = 1200;

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

std::span<const Column> View(bool all_folders, std::int32_t item_type) {
  if (all_folders) return all_folders_view;
  if (item_type == item_type::mail) return mail_view;
  if (item_type == item_type::journal) return journal_view;
  return other_view;
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
    const auto view = View(window_.chkShowAllFolders.Checked(), CurrentGridItemType);
    grid_.Set_Cols(FlexGrid::first_item_column + static_cast<int>(view.size()));
    grid_.Set_Header(FlexGrid::key_column, "");
    grid_.Set_Header(FlexGrid::mark_column, "TYPE");
    for (std::size_t i = 0; i < view.size(); ++i)
      grid_.Set_Header(FlexGrid::first_item_column + static_cast<int>(i), view[i].header);
    Set_Column_Widths();
  });
}

void Grid_Columns::Set_Column_Widths() {
  errors_.Run("Set_Column_Widths", [&] {
    const auto view = View(window_.chkShowAllFolders.Checked(), CurrentGridItemType);
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
                             by_hand(column) > 0 ? by_hand(column) : std::max(fair, least_width));
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

int Grid_Columns::Get_Sort_Column(Grid_Field field) const {
  const auto view = View(window_.chkShowAllFolders.Checked(), CurrentGridItemType);
  const auto found =
      std::find_if(view.begin(), view.end(), [&](const Column& column) { return column.field == field; });
  if (found == view.end()) return grid_.Cols();
  return FlexGrid::first_item_column + static_cast<int>(found - view.begin());
}

Grid_Field Grid_Columns::Get_Sort_Field(int column) const {
  const auto view = View(window_.chkShowAllFolders.Checked(), CurrentGridItemType);
  const int at = column - FlexGrid::first_item_column;
  if (at < 0 || at >= static_cast<int>(view.size())) return Grid_Field::Type_Name;
  return view[static_cast<std::size_t>(at)].field;
}

std::string Grid_Columns::Cell_Text(const GridRow& row, int column) const {
  return Field_Text(row, Get_Sort_Field(column));
}

std::string Grid_Columns::Field_Text(const GridRow& row, Grid_Field field) const {
  const FolderData& record = records_[row.row_data];
  if (field == Grid_Field::Folder) return record.FolderName;
  if (row.item < 1 || row.item > record.Cache_Bound()) return {};
  const ItemData& item = record.Cached(row.item);
  // While a run goes, the row of an item that it has deleted stands empty.
  if (item.ItemClass == ItemData::deleted) return {};
  switch (field) {
    case Grid_Field::Type_Name:
      return Type_Name(item.ItemClass);
    case Grid_Field::Subject:
      return item.Subject;
    case Grid_Field::Item_Date:
      return item.ItemDate == no_date ? std::string{} : Format_Date(item.ItemDate);
    default:
      return item.SenderOrText;
  }
}

std::string_view Grid_Columns::Sort_Text(const GridRow& row, int column, std::string& room) const {
  const FolderData& record = records_[row.row_data];
  const Grid_Field field = Get_Sort_Field(column);
  if (field == Grid_Field::Folder) return record.FolderName;
  if (row.item < 1 || row.item > record.Cache_Bound()) return {};
  if (const ItemData& item = record.Cached(row.item); item.ItemClass != ItemData::deleted) {
    if (field == Grid_Field::Subject) return item.Subject;
    if (field == Grid_Field::Sender || field == Grid_Field::Entry) return item.SenderOrText;
    if (field == Grid_Field::Type_Name)
      if (const char* name = Fixed_Type_Name(item.ItemClass)) return name;
  }
  room = Field_Text(row, field);
  return room;
}

}  // namespace tidyfold
