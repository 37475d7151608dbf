#include "desktop/common/items_pane.h"

#include <algorithm>

#include "desktop/common/accessibility.h"
#include "desktop/common/simple_binders.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/theme.h"

namespace tidyfold {

namespace {

constexpr const char* hint = "Find in list (Ctrl+F)";

// Unscaled pixels.
constexpr int search_padding = 60;
constexpr int text_box_padding = 12;
constexpr int gap = 6;
// A pane that is lower than this has no room for a preview.
constexpr int least_height_with_preview = 320;
constexpr int least_width = 60, least_height = 120;

// Shows a text whose first line is a heading.
class Preview_Binder : public Control_Binder {
 public:
  Preview_Binder(TextBox& model, wxTextCtrl& widget, std::function<void()> shown_or_hidden)
      : Control_Binder(model, widget),
        model_(model),
        widget_(widget),
        shown_or_hidden_(std::move(shown_or_hidden)) {
    Show();
  }

 private:
  void Show_Model() override {
    shown_or_hidden_();
    const wxString text = To_Lines(model_.Text());
    if (text == text_) return;
    text_ = text;
    widget_.ChangeValue(text);
    const wxTextAttr bold(wxNullColour, wxNullColour, widget_.GetFont().Bold());
    widget_.SetStyle(0, static_cast<long>(text.Find('\n') == wxNOT_FOUND ? 0 : text.Find('\n')), bold);
    widget_.SetInsertionPoint(0);
  }

  TextBox& model_;
  wxTextCtrl& widget_;
  std::function<void()> shown_or_hidden_;
  wxString text_;
};

}  // namespace

Items_Pane::Items_Pane(wxWindow* parent, MainWindow& model)
    : wxPanel(parent),
      model_(model),
      search_(new wxTextCtrl(this, wxID_ANY)),
      found_(new wxStaticText(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                              wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE)),
      grid_(new wxGrid(this, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxBORDER_NONE)),
      preview_(new wxTextCtrl(this, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                              wxTE_MULTILINE | wxTE_READONLY | wxTE_RICH2 | wxBORDER_THEME)) {
  SetName("pnlItems");
  search_->SetHint(hint);
  Set_Spoken_Name(*search_, "Find in list; narrows what is shown, never what will go");
  Set_Spoken_Name(*preview_, "Preview of the current row");
  preview_->Hide();
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    Lay_Out();
  });
}

Grid_Binder& Items_Pane::Bind_To_Model(Binders& binders, Repaint_Schedule& schedule, const Scale& scale) {
  auto* const empty = new wxStaticText(grid_->GetGridWindow(), wxID_ANY, wxString(), wxDefaultPosition,
                                       wxDefaultSize, wxALIGN_CENTRE_HORIZONTAL);
  empty->SetForegroundColour(Disabled_Text_Colour(Theme_Background()));
  auto& grid = binders.Add<Grid_Binder>(model_.grdItems, *grid_, *empty, schedule);
  grid.Follow_Position(scale, this);
  binders.Add<Text_Box_Binder>(model_.txtFind, *search_);
  search_->Bind(wxEVT_CHAR_HOOK, &Items_Pane::Search_Key, this);
  binders.Add<Label_Binder>(model_.lblFound, *found_);
  binders.Add<Preview_Binder>(model_.txtPreview, *preview_, [this] { Lay_Out(); });
  return grid;
}

void Items_Pane::Go_To_Search() {
  search_->SetFocus();
  search_->SelectAll();
}

// Esc shows all rows again; Enter and Down go to what was found.
void Items_Pane::Search_Key(wxKeyEvent& event) {
  const int key = event.GetKeyCode();
  if (event.HasAnyModifiers()) return event.Skip();
  if (key == WXK_ESCAPE && !search_->IsEmpty()) return search_->SetValue(wxString());
  if (key == WXK_DOWN || key == WXK_RETURN || key == WXK_NUMPAD_ENTER) {
    if (model_.grdItems.Shown_Rows() > 0 && !model_.grdItems.Has_Row())
      model_.grdItems.Set_Row(model_.grdItems.Row_At_Place(1));
    return Go_To_List();
  }
  event.Skip();
}

// By hand, as the list must never wait for a sizer: its height decides what a person sees of a run.
void Items_Pane::Lay_Out() {
  const wxSize size = GetClientSize();
  // While a bar is dragged the pane may be next to nothing; what is in it is cut off then.
  if (size.x < FromDIP(least_width) || size.y < FromDIP(least_height)) return;
  const int space = FromDIP(gap), line = search_->GetCharHeight() + FromDIP(text_box_padding);
  const int box = std::min(search_->GetTextExtent(hint).x + FromDIP(search_padding), size.x);
  search_->SetSize(0, 0, box, line);
  const int words = found_->GetCharHeight();
  found_->SetSize(box + space, (line - words) / 2, std::max(size.x - box - space, 0), words);
  const int top = line + space, rest = std::max(size.y - top, 0);
  const bool preview = model_.txtPreview.Visible() && size.y >= FromDIP(least_height_with_preview);
  const int below = preview ? rest * 2 / 5 : 0;
  grid_->SetSize(0, top, size.x, rest - below);
  if (preview_->IsShown() != preview) preview_->Show(preview);
  if (preview) preview_->SetSize(0, top + rest - below + space, size.x, std::max(below - space, 0));
}

}  // namespace tidyfold
