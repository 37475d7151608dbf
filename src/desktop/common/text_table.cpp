#include "desktop/common/text_table.h"

#include <wx/settings.h>

#include <algorithm>
#include <utility>

namespace tidyfold {

namespace {

constexpr long most_measured = 200;         // rows
constexpr int longest_filling_column = 44;  // average characters
constexpr int longest_column = 60;
constexpr int narrowest_filling_column = 14;
constexpr int cell_padding = 2;  // average characters, both sides together

}  // namespace

Text_Table::Text_Table(wxWindow* parent, const wxString& name, const std::vector<Text_Column>& columns,
                       Cell cell)
    : wxListCtrl(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                 wxLC_REPORT | wxLC_VIRTUAL | wxLC_SINGLE_SEL | wxBORDER_THEME),
      cell_(std::move(cell)) {
  SetName(name);
  for (const Text_Column& column : columns) {
    const long index = AppendColumn(column.title, column.numbers ? wxLIST_FORMAT_RIGHT : wxLIST_FORMAT_LEFT);
    if (column.fills) filling_ = static_cast<int>(index);
  }
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    Fill_Width();
  });
}

void Text_Table::Set_Rows(long rows) {
  SetItemCount(rows);
  Refresh();
}

void Text_Table::Fit_Columns() {
  const int character = GetCharWidth();
  for (int column = 0; column < GetColumnCount(); ++column) {
    wxListItem header;
    header.SetMask(wxLIST_MASK_TEXT);
    GetColumn(column, header);
    int width = GetTextExtent(header.GetText()).x;
    for (long row = 0; row < std::min<long>(GetItemCount(), most_measured); ++row)
      width = std::max(width, GetTextExtent(cell_(row, column)).x);
    const int longest = column == filling_ ? longest_filling_column : longest_column;
    SetColumnWidth(column, std::min(width, longest * character) + cell_padding * character);
  }
  least_filling_ = std::min(GetColumnWidth(filling_), narrowest_filling_column * character);
  if (IsShownOnScreen()) Fill_Width();
}

// Shrinks that column as well, down to its smallest width.
void Text_Table::Fill_Width() {
  int others = 0;
  for (int column = 0; column < GetColumnCount(); ++column)
    if (column != filling_) others += GetColumnWidth(column);
  const bool scrolls = GetItemCount() > GetCountPerPage();
  const int scroll_bar = scrolls ? wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, this) : FromDIP(2);
  SetColumnWidth(filling_, std::max(GetClientSize().x - others - scroll_bar, least_filling_));
}

wxSize Text_Table::Size_For(long most_rows) const {
  int width = 0;
  for (int column = 0; column < GetColumnCount(); ++column) width += GetColumnWidth(column);
  wxRect row(0, 0, 0, GetCharHeight() + FromDIP(4));
  if (GetItemCount() > 0) GetItemRect(0, row);
  // The header's height is about one and a half rows.
  const long halves = 3 + 2 * std::min<long>(GetItemCount(), most_rows);
  const int scroll_bar = GetItemCount() > most_rows ? wxSystemSettings::GetMetric(wxSYS_VSCROLL_X, this) : 0;
  return {width + scroll_bar + FromDIP(8), static_cast<int>(halves) * row.height / 2 + FromDIP(6)};
}

void Text_Table::Choose_Row(long row) {
  SetItemState(row, wxLIST_STATE_SELECTED | wxLIST_STATE_FOCUSED,
               wxLIST_STATE_SELECTED | wxLIST_STATE_FOCUSED);
  EnsureVisible(row);
}

wxString Text_Table::OnGetItemText(long row, long column) const {
  return cell_(row, column);
}

}  // namespace tidyfold
