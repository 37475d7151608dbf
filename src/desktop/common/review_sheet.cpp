#include "desktop/common/review_sheet.h"

#include <wx/button.h>
#include <wx/display.h>
#include <wx/sizer.h>

#include <algorithm>

#include "desktop/common/accessibility.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/text_table.h"

namespace tidyfold {

namespace {

constexpr int gap = 12;  // unscaled pixels
constexpr long most_rows = 14, fewest_rows = 3;
constexpr int fewest_note_lines = 2;
constexpr int narrowest = 52;  // average characters

wxString Joined(const std::vector<std::string>& lines) {
  wxString text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "\n") + To_Lines(line);
  return text;
}

// Numbers and sizes, but not dates, whose parts are joined by "-".
bool Is_Quantity(const std::string& text) {
  return text.empty() || (text.front() >= '0' && text.front() <= '9' && text.find('-') == std::string::npos);
}

std::vector<Text_Column> Columns(const Review& review) {
  std::vector<Text_Column> columns;
  for (std::size_t column = 0; column < review.headers.size(); ++column)
    columns.push_back(
        {To_Wx(review.headers[column]),
         column > 0 && std::all_of(review.rows.begin(), review.rows.end(),
                                   [&](const auto& row) { return Is_Quantity(row.at(column)); })});
  return columns;
}

// Proportional to the wanted height: each part gets it if there is room for all, and scrolls otherwise.
wxSizerFlags Share(int height) {
  return wxSizerFlags(std::max(height, 1)).Expand();
}

}  // namespace

Review_Sheet::Review_Sheet(wxWindow* parent, const Review& review)
    : wxDialog(parent, wxID_ANY, application_title, wxDefaultPosition, wxDefaultSize,
               wxDEFAULT_DIALOG_STYLE | wxRESIZE_BORDER),
      sentence_(To_Lines(review.sentence)),
      note_lines_(Joined(review.notes)),
      sentence_text_(new wxStaticText(this, wxID_ANY, wxString())) {
  Speak_As_Dialog(*this);
  SetName("shtReview");
  sentence_text_->SetFont(sentence_text_->GetFont().Bold());
  const int border = FromDIP(gap);
  const wxSize screen = wxDisplay(parent == nullptr ? this : parent).GetClientArea().GetSize();
  int width = narrowest * GetCharWidth();
  auto* const column = new wxBoxSizer(wxVERTICAL);
  column->Add(sentence_text_, wxSizerFlags().Expand().Border(wxALL, border));
  if (!review.rows.empty()) {
    table_ = new Text_Table(this, "grdReview", Columns(review), [&review](long row, long cell) {
      return To_One_Line(review.rows.at(static_cast<std::size_t>(row)).at(static_cast<std::size_t>(cell)));
    });
    table_->Set_Rows(static_cast<long>(review.rows.size()));
    table_->Fit_Columns();
    const wxSize wanted = table_->Size_For(most_rows);
    width = std::clamp(wanted.x, width, std::max(width, screen.x * 9 / 10 - 2 * border));
    table_->SetMinSize(wxSize(-1, wanted.y));
    column->Add(table_, Share(wanted.y).Border(wxLEFT | wxRIGHT, border));
  }
  if (!review.notes.empty()) {
    notes_ = new wxScrolledWindow(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxVSCROLL);
    notes_->SetScrollRate(0, notes_->GetCharHeight());
    notes_text_ = new wxStaticText(notes_, wxID_ANY, wxString());
  }
  Wrap(width);
  if (notes_ != nullptr) {
    const int height = notes_text_->GetBestSize().y;
    notes_->SetMinSize(wxSize(-1, height));
    column->Add(notes_, Share(height + border).Border(wxLEFT | wxRIGHT | wxTOP, border));
  }
  column->Add(CreateStdDialogButtonSizer(wxOK | wxCANCEL), wxSizerFlags().Expand().Border(wxALL, border));
  SetSizer(column);

  wxSize wanted(width + 2 * border, column->ComputeFittingClientSize(this).y);
  const wxSize decorations = FromDIP(wxSize(8, 40));  // not known before the sheet is shown
  wanted.DecTo(screen - decorations);
  if (table_ != nullptr) table_->SetMinSize(wxSize(-1, table_->Size_For(fewest_rows).y));
  if (notes_ != nullptr) notes_->SetMinSize(wxSize(-1, fewest_note_lines * notes_->GetCharHeight()));
  wxSize smallest = column->ComputeFittingClientSize(this);
  smallest.x = narrowest * GetCharWidth() / 2;
  smallest.DecTo(wanted);
  SetMinClientSize(smallest);
  SetClientSize(wanted);
  Centre();

  FindWindow(wxID_OK)->SetFocus();
  Bind(wxEVT_SIZE, [this, border](wxSizeEvent& event) {
    event.Skip();
    Layout();
    Wrap(GetClientSize().x - 2 * border);
  });
  // The table and the notes would consume Enter.
  Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    const bool enter = event.GetKeyCode() == WXK_RETURN || event.GetKeyCode() == WXK_NUMPAD_ENTER;
    enter && !FindWindow(wxID_CANCEL)->HasFocus() ? EndModal(wxID_OK) : event.Skip();
  });
}

void Review_Sheet::Wrap(int width) {
  sentence_text_->SetLabelText(sentence_);
  sentence_text_->Wrap(width);
  if (notes_ == nullptr) return;
  notes_text_->SetLabelText(note_lines_);
  notes_text_->Wrap(std::min(width, IsShown() ? notes_->GetClientSize().x : width));
  notes_->SetVirtualSize(notes_text_->GetBestSize());
}

}  // namespace tidyfold
