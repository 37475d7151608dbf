#include "desktop/common/runs_window.h"

#include <wx/display.h>
#include <wx/filedlg.h>
#include <wx/panel.h>
#include <wx/settings.h>
#include <wx/sizer.h>
#include <wx/splitter.h>
#include <wx/stdpaths.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <memory>
#include <utility>

#include "base/file_path.h"
#include "desktop/common/application_icon.h"
#include "desktop/common/error_box.h"
#include "desktop/common/text_conversion.h"
#include "runs/run_listing.h"

namespace tidyfold {

namespace {

constexpr int wide = 960, high = 640, gap = 12, lowest_pane = 90;  // unscaled pixels

// Ends a visit of the log whose result is no longer wanted.
struct Abandoned {};

// With a capital at the beginning.
wxString Capitalised(std::string text) {
  if (!text.empty()) text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
  return To_One_Line(text);
}

std::string Stores(const Logged_Run& run) {
  std::string names;
  for (const Logged_Store& store : run.header.stores) names += (names.empty() ? "" : ", ") + store.name;
  return names;
}

std::string What(const Logged_Run& run) {
  const std::string kind = Kind_Text(run.header.kind);
  return run.header.undo_of == 0 ? kind : kind + " (run " + std::to_string(run.header.undo_of) + ")";
}

std::string Outcome(const Logged_Run& run) {
  if (run.taken_back != 0) return "taken back by run " + std::to_string(run.taken_back);
  if (run.state != Run_State_In_Log::Ended) return State_Text(run.state);
  if (run.outcome.cancelled) return "cancelled";
  return run.outcome.not_all_deleted ? "not everything could be done" : "done";
}

// Details that the table has no room for.
std::string About(const Logged_Run& run) {
  std::string text = Run_Text(run) + ", " + Counted(run.outcome.processed, "item", "items") + " processed";
  if (run.uncertain > 0) text += "; of " + std::to_string(run.uncertain) + " more that is not known";
  text += ".";
  for (const std::string& store : Store_Texts(run)) text += "\r\n" + store;
  return run.header.options.empty() ? text : text + "\r\n" + run.header.options;
}

bool Can_Be_Taken_Back(const Logged_Run& run) {
  return run.header.kind == Run_Kind::Cleaning && run.taken_back == 0 &&
         run.state != Run_State_In_Log::Under_Way && run.outcome.processed + run.uncertain > 0;
}

bool Write_Csv(const std::filesystem::path& log, const Logged_Run& run, const std::filesystem::path& file,
               const std::stop_token& stop) {
  std::ofstream stream(file, std::ios::binary | std::ios::trunc);
  stream << Csv_Line(Run_Item_Headers()) << "\r\n";
  Run_Log(log).Items(run.run, [&](const Logged_Item& item) {
    if (stop.stop_requested()) throw Abandoned();
    stream << Csv_Line(Run_Item_Cells(run, item)) << "\r\n";
  });
  stream.close();
  return static_cast<bool>(stream);
}

}  // namespace

Runs_Window::Runs_Window(wxWindow* parent, MainWindow& window, std::filesystem::path log)
    : wxFrame(parent, wxID_ANY, "Runs", wxDefaultPosition, wxDefaultSize,
              wxDEFAULT_FRAME_STYLE | wxFRAME_NO_TASKBAR),
      window_(window),
      log_(std::move(log)) {
  SetName("frmRuns");
  SetIcons(Application_Icons());
  Build();
  wxSize size = FromDIP(wxSize(wide, high));
  size.IncTo(wxSize(100 * GetCharWidth(), 26 * GetCharHeight()));
  size.DecTo(wxDisplay(parent).GetClientArea().GetSize());
  SetSize(size);
  CentreOnParent();

  Bind(wxEVT_ACTIVATE, [this](wxActivateEvent& event) {
    event.Skip();
    if (event.GetActive()) Read_Runs();
  });
  Bind(wxEVT_IDLE, [this](wxIdleEvent& event) {
    event.Skip();
    Enable_Buttons();
  });
  Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
    event.GetKeyCode() == WXK_ESCAPE ? static_cast<void>(Close()) : event.Skip();
  });
  Read_Runs();
}

void Runs_Window::Build() {
  auto* const surface = new wxPanel(this);
  const int border = FromDIP(gap);
  auto* const panes = new wxSplitterWindow(surface, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                           wxSP_LIVE_UPDATE | wxSP_NOBORDER);
  run_table_ = new Text_Table(
      panes, "grdRuns",
      {{.title = "Run", .numbers = true},
       {.title = "When"},
       {.title = "What"},
       {.title = "Stores"},
       {.title = "Options", .fills = true},
       {.title = "Items", .numbers = true},
       {.title = "Result"}},
      [this](long row, long column) { return Run_Cell(runs_.at(static_cast<std::size_t>(row)), column); });
  run_table_->Bind(wxEVT_LIST_ITEM_SELECTED, [this](wxListEvent& event) {
    Choose(runs_.at(static_cast<std::size_t>(event.GetIndex())).run);
  });
  panes->SetMinimumPaneSize(FromDIP(lowest_pane));
  panes->SetSashGravity(0.4);
  panes->SplitHorizontally(run_table_, New_Lower_Pane(panes));

  save_ = new wxButton(surface, wxID_SAVEAS, "&Save as CSV...");
  save_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Save_As_Csv(); });
  take_back_ = new wxButton(surface, wxID_ANY, "&Take Back");
  take_back_->SetName("cmdTakeBack");
  take_back_->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Take_Back(); });
  auto* const close = new wxButton(surface, wxID_CLOSE);
  close->Bind(wxEVT_BUTTON, [this](wxCommandEvent&) { Close(); });
  auto* const buttons = new wxBoxSizer(wxHORIZONTAL);
  buttons->Add(save_);
  buttons->Add(take_back_, wxSizerFlags().Border(wxLEFT, border / 2));
  buttons->AddStretchSpacer();
  buttons->Add(close);

  auto* const column = new wxBoxSizer(wxVERTICAL);
  column->Add(panes, wxSizerFlags(1).Expand().Border(wxLEFT | wxRIGHT | wxTOP, border));
  column->Add(buttons, wxSizerFlags().Expand().Border(wxALL, border));
  surface->SetSizer(column);
  Enable_Buttons();
  run_table_->SetFocus();
}

wxWindow* Runs_Window::New_Lower_Pane(wxWindow* parent) {
  auto* const pane = new wxPanel(parent);
  about_run_ = new wxStaticText(pane, wxID_ANY, wxString());
  about_run_->SetName("lblRun");
  item_table_ = new Text_Table(
      pane, "grdRunItems",
      {{.title = "Folder"},
       {.title = "Subject", .fills = true},
       {.title = "Date"},
       {.title = "Done"},
       {.title = "Result"}},
      [this](long row, long column) { return Item_Cell(items_.at(static_cast<std::size_t>(row)), column); });
  auto* const column = new wxBoxSizer(wxVERTICAL);
  column->Add(about_run_, wxSizerFlags().Expand().Border(wxTOP | wxBOTTOM, FromDIP(gap) / 2));
  column->Add(item_table_, wxSizerFlags(1).Expand());
  pane->SetSizer(column);
  return pane;
}

// --- Reading --------------------------------------------------------------------------------------------

void Runs_Window::Read_Runs() {
  runs_task_.Start([this, log = log_](const std::stop_token&) -> Background_Task::Finish {
    try {
      return [this, runs = Run_Log(log).Runs()] { Show_Runs(runs); };
    } catch (const Run_Log_Error& error) {
      return [this, text = std::string(error.what())] {
        Show_Runs({});
        Say(text);
      };
    }
  });
}

void Runs_Window::Show_Runs(std::vector<Logged_Run> runs) {
  const std::int64_t chosen = shown_run_;
  const Logged_Run* const before = Chosen();
  const std::vector<std::string> was = before == nullptr ? std::vector<std::string>() : Run_Cells(*before);
  runs_ = std::move(runs);
  run_table_->Set_Rows(static_cast<long>(runs_.size()));
  run_table_->Fit_Columns();
  if (runs_.empty()) {
    shown_run_ = 0;
    Say("No run has been logged yet.");
    items_task_.Start([](const std::stop_token&) { return [] {}; });
    items_.clear();
    item_table_->Set_Rows(0);
    return;
  }
  const auto same =
      std::find_if(runs_.begin(), runs_.end(), [&](const Logged_Run& run) { return run.run == chosen; });
  const Logged_Run& now = same == runs_.end() ? runs_.front() : *same;
  // Reads its items again if they may have changed.
  if (now.run != chosen || Run_Cells(now) != was) shown_run_ = 0;
  run_table_->Choose_Row(static_cast<long>(&now - runs_.data()));
  Choose(now.run);
}

void Runs_Window::Say(const std::string& text) {
  about_run_->SetLabelText(To_Lines(text));
  about_run_->Wrap(about_run_->GetParent()->GetClientSize().x);
  about_run_->GetParent()->Layout();
}

void Runs_Window::Choose(std::int64_t run) {
  if (run == std::exchange(shown_run_, run)) return;
  const Logged_Run* const chosen = Chosen();
  if (chosen == nullptr) return;
  Say(About(*chosen));
  Read_Items(*chosen);
  Enable_Buttons();
}

void Runs_Window::Read_Items(const Logged_Run& run) {
  items_.clear();
  item_table_->Set_Rows(0);
  items_task_.Start([this, log = log_, run](const std::stop_token& stop) -> Background_Task::Finish {
    const auto rows = std::make_shared<std::vector<Item_Row>>();
    std::string failure;
    try {
      Run_Log(log).Items(run.run, [&](const Logged_Item& item) {
        if (stop.stop_requested()) throw Abandoned();
        const std::string result = Result_Text(item.result);
        rows->push_back({Folder_Text(run, item.folder), item.subject, Date_Text(item),
                         Action_Text(item.action),
                         item.reason.empty() ? result : result + ": " + item.reason});
      });
    } catch (const Abandoned&) {
      return [] {};
    } catch (const Run_Log_Error& error) {
      failure = error.what();
    }
    return [this, rows, failure] {
      items_ = std::move(*rows);
      item_table_->Set_Rows(static_cast<long>(items_.size()));
      item_table_->Fit_Columns();
      if (!failure.empty()) Say(failure);
    };
  });
}

const Logged_Run* Runs_Window::Chosen() const {
  const auto found = std::find_if(runs_.begin(), runs_.end(),
                                  [this](const Logged_Run& run) { return run.run == shown_run_; });
  return found == runs_.end() ? nullptr : &*found;
}

wxString Runs_Window::Run_Cell(const Logged_Run& run, long column) const {
  switch (column) {
    case 0:
      return wxString::Format("%lld", static_cast<long long>(run.run));
    case 1: {
      wxString began = To_One_Line(run.began.substr(0, 16));
      began.Replace("T", "  ");
      return began;
    }
    case 2:
      return Capitalised(What(run));
    case 3:
      return To_One_Line(Stores(run));
    case 4:
      return To_One_Line(run.header.options);
    case 5:
      return wxString::Format("%lld", static_cast<long long>(run.outcome.processed));
    default:
      return Capitalised(Outcome(run));
  }
}

wxString Runs_Window::Item_Cell(const Item_Row& item, long column) const {
  const std::string* const cells[] = {&item.folder, &item.subject, &item.date, &item.done, &item.result};
  const std::string& cell = *cells[column];
  return column < 3 ? To_One_Line(cell) : Capitalised(cell);
}

// --- What can be done with a run ------------------------------------------------------------------------

void Runs_Window::Enable_Buttons() {
  const Logged_Run* const run = Chosen();
  save_->Enable(run != nullptr && !saving_);
  // Not in the middle of another run.
  take_back_->Enable(run != nullptr && Can_Be_Taken_Back(*run) && window_.Take_Back_Run &&
                     window_.mnuRefresh.Enabled());
}

void Runs_Window::Save_As_Csv() {
  const Logged_Run* const chosen = Chosen();
  if (chosen == nullptr) return;
  const Logged_Run run = *chosen;
  wxFileDialog dialog(this, "Save as CSV", wxStandardPaths::Get().GetDocumentsDir(),
                      wxString::Format("run-%lld.csv", static_cast<long long>(run.run)),
                      "Comma-separated values (*.csv)|*.csv|All files|*", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  const bool named = dialog.ShowModal() == wxID_OK;
  wxFrame::Raise();  // some window managers give the keyboard to the main window
  if (!named) return;
  saving_ = true;
  save_task_.Start([this, log = log_, run,
                    path = dialog.GetPath()](const std::stop_token& stop) -> Background_Task::Finish {
    bool written = false;
    std::string failure;
    try {
      written = Write_Csv(log, run, File_Path(From_Wx(path)), stop);
    } catch (const Abandoned&) {
    } catch (const Run_Log_Error& error) {
      failure = error.what();
    }
    return [this, written, failure, path] {
      saving_ = false;
      if (!failure.empty()) {
        Show_Error(this, failure);
      } else if (!written) {
        Show_Not_Written(this, path);
      }
    };
  });
}

void Runs_Window::Take_Back() {
  if (const Logged_Run* const run = Chosen(); run != nullptr && Can_Be_Taken_Back(*run))
    window_.Take_Back_Run(run->run);
}

}  // namespace tidyfold
