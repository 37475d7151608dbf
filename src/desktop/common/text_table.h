// A table that asks for its cells' texts when it paints them, so that rows cost no memory.
#pragma once

#include <wx/listctrl.h>

#include <functional>
#include <vector>

namespace tidyfold {

struct Text_Column {
  wxString title;
  bool numbers = false;  // right aligned
  bool fills = false;    // one column takes the width that the others leave; without such a one, the first
};

class Text_Table : public wxListCtrl {
 public:
  using Cell = std::function<wxString(long row, long column)>;

  Text_Table(wxWindow* parent, const wxString& name, const std::vector<Text_Column>& columns, Cell cell);

  // Sets the number of rows and repaints them all.
  void Set_Rows(long rows);
  // Gives the columns the width of their texts, measured over the first rows.
  void Fit_Columns();
  // The size that shows this many rows, or all if there are fewer, with the header and without scrolling.
  wxSize Size_For(long most_rows) const;
  // -1: none.
  long Chosen_Row() const { return GetNextItem(-1, wxLIST_NEXT_ALL, wxLIST_STATE_SELECTED); }
  void Choose_Row(long row);

 private:
  void Fill_Width();
  wxString OnGetItemText(long row, long column) const override;

  Cell cell_;
  int filling_ = 0;        // the column
  int least_filling_ = 0;  // its smallest width
};

}  // namespace tidyfold
