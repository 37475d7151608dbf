#include "desktop/common/options_panel.h"

#include <wx/statline.h>

#include "desktop/common/accessibility.h"
#include "desktop/common/scale.h"
#include "desktop/common/system_look.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// Unscaled pixels.
constexpr int margin = 10;
constexpr int indent = 22;
constexpr int group_gap = 4;
constexpr int least_width = 100;
constexpr int text_box_padding = 10;

}  // namespace

Options_Panel::Options_Panel(wxWindow* parent, MainWindow& model, bool keeps_copies)
    : wxScrolledWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, wxTAB_TRAVERSAL | wxVSCROLL),
      model_(model),
      keeps_copies_(keeps_copies) {
  SetScrollRate(0, FromDIP(10));
}

void Options_Panel::Bind_To_Model(Binders& binders) {
  binders_ = &binders;
  column_ = new wxBoxSizer(wxVERTICAL);

  wxBoxSizer& screen = *Start_Group(model_.lblScreenOptions);
  for (CheckBox* const option :
       {&model_.chkMarkSubFolders, &model_.chkCollapseFolders, &model_.chkShowAllFolders,
        &model_.chkShowSelectedItems, &model_.chkShowUnselectedItems, &model_.chkSelectByRow})
    Add_Option(screen, *option);
  Separate(model_.linOptions1);

  wxBoxSizer& processing = *Start_Group(model_.lblProcessingOptions);
  for (CheckBox* const option : {&model_.chkTurbo, &model_.chkPermanentDelete, &model_.chkConfirmFolders,
                                 &model_.chkConfirmItems, &model_.chkDeleteFolders})
    Add_Option(processing, *option);
  if (keeps_copies_) Add_Option(processing, model_.chkKeepCopy);
  Separate(model_.linOptions2);

  Add_Filters(*Start_Group(model_.lblFilterOptions));

  auto* const frame = new wxBoxSizer(wxVERTICAL);
  frame->Add(column_, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT, FromDIP(margin)));
  SetSizer(frame);
  FitInside();
  width_of_pairs_ = frame->GetMinSize().x - FromDIP(margin);
  model_.options_height = Scale(*this).To_Twips(frame->GetMinSize().y);
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    // Later: this size may be one of several that the panel is just given.
    CallAfter(&Options_Panel::Fold_If_Narrow);
  });
}

wxFlexGridSizer* Options_Panel::New_Pairs() {
  auto* const pairs = new wxFlexGridSizer(2, FromDIP(wxSize(8, Check_Box_Gap())));
  pairs->AddGrowableCol(0);
  pairs_.push_back(pairs);
  return pairs;
}

void Options_Panel::Fold_If_Narrow() {
  // Before the panes are laid out the first time the panel is next to nothing.
  if (GetClientSize().x < FromDIP(least_width)) return;
  const int columns = GetClientSize().x < width_of_pairs_ ? 1 : 2;
  if (pairs_.front()->GetCols() == columns) return;
  for (wxFlexGridSizer* const pairs : pairs_) pairs->SetCols(columns);
  FitInside();
  model_.options_height = Scale(*this).To_Twips(GetSizer()->GetMinSize().y);
  tidyfold::Raise(model_.frmRemoveItems.Resize);
}

bool Options_Panel::Settle() {
  subject_->Settle();
  return cutoff_date_->Settle_Or_Complain();
}

wxBoxSizer* Options_Panel::Start_Group(Label& heading) {
  auto* const text = new wxStaticText(this, wxID_ANY, To_Wx(heading.Caption()));
  text->SetFont(text->GetFont().Bold());
  binders_->Add<Label_Binder>(heading, *text);
  auto* const group = new wxBoxSizer(wxVERTICAL);
  group->Add(text, wxSizerFlags().Expand().Border(wxBOTTOM, FromDIP(2)));
  column_->Add(group, wxSizerFlags().Expand());
  return group;
}

void Options_Panel::Separate(Line& line) {
  auto* const widget = new wxStaticLine(this);
  binders_->Add<Control_Binder>(line, *widget);
  column_->Add(widget, wxSizerFlags().Expand().Border(wxTOP | wxBOTTOM, FromDIP(group_gap)));
}

wxCheckBox* Options_Panel::New_Check_Box(CheckBox& model) {
  auto* const box = new wxCheckBox(this, wxID_ANY, To_Wx(model.Caption()));
  binders_->Add<Check_Box_Binder>(model, *box);
  return box;
}

void Options_Panel::Add_Option(wxBoxSizer& group, CheckBox& model) {
  group.Add(New_Check_Box(model), wxSizerFlags().Border(wxBOTTOM, FromDIP(Check_Box_Gap())));
}

void Options_Panel::Add_Filters(wxBoxSizer& group) {
  const wxSizerFlags below_option = wxSizerFlags().Expand().Border(wxLEFT, FromDIP(indent));
  Add_Option(group, model_.chkSelectUnread);
  Add_Option(group, model_.chkSelectFlagged);

  Add_Option(group, model_.chkSelectDate);
  auto* const date_box = new wxBoxSizer(wxHORIZONTAL);
  auto* const date = new wxTextCtrl(this, wxID_ANY);
  const int height = date->GetCharHeight() + FromDIP(text_box_padding);
  const int width = date->GetSizeFromTextSize(date->GetTextExtent("0000-00-00").x).x;
  date->SetMinSize(wxSize(width + FromDIP(text_box_padding), height));
  auto* const opener = new wxButton(this, wxID_ANY, wxString::FromUTF8("\u25BE"), wxDefaultPosition,
                                    wxDefaultSize, wxBU_EXACTFIT);
  opener->SetMinSize(wxSize(height, height));
  auto* const complaint = new wxStaticText(this, wxID_ANY, wxString());
  cutoff_date_ = &binders_->Add<Date_Box_Binder>(model_.dtpCutoffDate, *date, *opener, *complaint);
  Set_Spoken_Name(*date, "Cut-off date");
  Set_Spoken_Name(*opener, "Calendar");
  date_box->Add(date, wxSizerFlags().CentreVertical());
  date_box->Add(opener, wxSizerFlags().CentreVertical());
  group.Add(date_box, below_option);
  group.Add(complaint, below_option);

  Add_Option(group, model_.chkSelectSubject);
  auto* const how = new wxStaticText(this, wxID_ANY, wxString());
  how->SetName("lblHow");
  auto* const subject = new wxTextCtrl(this, wxID_ANY);
  subject->SetMinSize(wxSize(-1, subject->GetCharHeight() + FromDIP(text_box_padding)));
  subject_ = &binders_->Add<Text_Box_Binder>(model_.txtSelectSubject, *subject);
  how->Bind(wxEVT_UPDATE_UI,
            [this, how, subject](wxUpdateUIEvent&) { Say_How_Subjects_Match(*how, *subject); });
  Say_How_Subjects_Match(*how, *subject);
  auto* const subject_line = new wxBoxSizer(wxHORIZONTAL);
  subject_line->Add(how, wxSizerFlags().CentreVertical().Border(wxRIGHT, FromDIP(6)));
  subject_line->Add(subject, wxSizerFlags(1).CentreVertical());
  group.Add(subject_line, below_option);
  group.AddSpacer(FromDIP(Check_Box_Gap()));
  wxFlexGridSizer* const match = New_Pairs();
  match->AddGrowableCol(1);
  for (CheckBox* const option : {&model_.chkMatchCase, &model_.chkMatchWord})
    match->Add(New_Check_Box(*option));
  group.Add(match, below_option);
  group.AddSpacer(FromDIP(Check_Box_Gap()));

  Add_Option(group, model_.chkSelectType);
  wxFlexGridSizer* const types = New_Pairs();
  types->AddGrowableCol(1);
  for (TypeBox& type : model_.chkType) {
    wxCheckBox* const box = New_Check_Box(type.box);
    // The members of the control array share one name.
    box->SetName(box->GetName() + wxString::Format("(%d)", type.index));
    types->Add(box);
  }
  group.Add(types, below_option);
}

// The text stands at the beginning of a subject or, with Match Word, is all of it.
void Options_Panel::Say_How_Subjects_Match(wxStaticText& how, wxTextCtrl& subject) {
  const wxString words = model_.chkMatchWord.Checked() ? "is exactly" : "begins with";
  if (how.GetLabelText() == words && how.IsThisEnabled() == model_.chkSelectSubject.Checked()) return;
  how.SetLabelText(words);
  how.Enable(model_.chkSelectSubject.Checked());
  Set_Spoken_Name(subject, "Subject " + words);
  Layout();
}

}  // namespace tidyfold
