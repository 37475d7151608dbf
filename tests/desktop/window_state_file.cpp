#include "desktop/window_state_file.h"

#include <wx/checkbox.h>
#include <wx/dataview.h>
#include <wx/dialog.h>
#include <wx/grid.h>
#include <wx/listctrl.h>
#include <wx/menu.h>
#include <wx/textctrl.h>
#include <wx/utils.h>

#ifdef __WXGTK__
#include <gtk/gtk.h>
#elif defined(__WXMSW__)
#include <windows.h>
// After it.
#include <commctrl.h>
#endif

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>

#include "desktop/common/text_conversion.h"
#include "desktop/common/tree_widget.h"

namespace tidyfold {

namespace {

constexpr int pace = 30;       // milliseconds
constexpr int most_rows = 40;  // of the grid
constexpr std::size_t most_nodes = 100;
constexpr std::size_t most_characters = 500;  // of a text box

using nlohmann::json;

json Rectangle(const wxWindow& window, const wxRect& inside) {
  const wxPoint corner = window.ClientToScreen(inside.GetPosition());
  return {corner.x, corner.y, inside.width, inside.height};
}

void Describe_Widgets(const wxWindow& window, json& widgets) {
  for (const wxWindow* const child : window.GetChildren()) {
    if (!child->IsShownOnScreen()) continue;
    json& widget = widgets[From_Wx(child->GetName())];
    widget["rectangle"] = Rectangle(*child, child->GetClientRect());
    widget["enabled"] = child->IsEnabled();
    widget["label"] = From_Wx(child->GetLabel());
    widget["text_width"] = child->GetTextExtent(wxControl::RemoveMnemonics(child->GetLabel())).x;
    if (const auto* const box = dynamic_cast<const wxCheckBox*>(child)) widget["checked"] = box->GetValue();
    if (const auto* const box = dynamic_cast<const wxTextCtrl*>(child))
      widget["text"] = From_Wx(box->GetValue().Left(most_characters));
    if (const auto* const list = dynamic_cast<const wxListCtrl*>(child))
      widget["rows"] = list->GetItemCount();
    Describe_Widgets(*child, widgets);
  }
}

// Which window the keyboard writes to.
std::string Keyboard_Owner(const wxFrame* frame) {
  std::string owner;
#ifdef __WXGTK__
  if (GtkWidget* const grabbing = gtk_grab_get_current(); grabbing != nullptr && GTK_IS_MENU_SHELL(grabbing))
    return "menu";
  GList* const windows = gtk_window_list_toplevels();
  for (const GList* at = windows; at != nullptr; at = at->next) {
    if (!gtk_window_is_active(GTK_WINDOW(at->data))) continue;
    const bool is_dialog =
        std::any_of(wxTopLevelWindows.begin(), wxTopLevelWindows.end(), [&](wxWindow* window) {
          const auto* const dialog = dynamic_cast<const wxDialog*>(window);
          return dialog != nullptr && dialog->IsModal() && dialog->GetHandle() == at->data;
        });
    const bool is_box = GTK_IS_MESSAGE_DIALOG(at->data) || is_dialog;
    owner = GTK_IS_FILE_CHOOSER(at->data)                        ? "files"
            : is_box                                             ? "box"
            : frame != nullptr && at->data == frame->GetHandle() ? "window"
                                                                 : "other";
  }
  g_list_free(windows);
#elif defined(__WXMSW__)
  const HWND foreground = ::GetForegroundWindow();
  std::array<wchar_t, 16> name{};
  ::GetClassNameW(foreground, name.data(), static_cast<int>(name.size()));
  if (foreground != nullptr)
    owner = std::wstring(name.data()) == L"#32770"                 ? "box"
            : frame != nullptr && foreground == frame->GetHandle() ? "window"
                                                                   : "other";
#endif
  return owner;
}

#ifdef __WXMSW__
// The tooltip on the screen.
std::string Tooltip() {
  for (HWND tip = nullptr; (tip = FindWindowExW(nullptr, tip, TOOLTIPS_CLASSW, nullptr)) != nullptr;) {
    DWORD process = 0;
    GetWindowThreadProcessId(tip, &process);
    if (process != GetCurrentProcessId() || !IsWindowVisible(tip)) continue;
    std::array<wchar_t, 200> text{};
    TOOLINFOW tool{};
    tool.cbSize = sizeof tool;
    tool.lpszText = text.data();
    if (SendMessageW(tip, TTM_GETCURRENTTOOLW, 0, reinterpret_cast<LPARAM>(&tool)) != 0)
      return From_Wx(text.data());
  }
  return {};
}
#endif

#ifdef __WXMSW__
// As when the window is moved to a monitor of another density, which a file tells in dots per inch. What the
// toolkit does for the system's message: it heeds that only where windows may scale per monitor, and Wine
// says that none may.
void Follow_Density(wxFrame& frame, const std::filesystem::path& told) {
  int density = 0;
  if (!(std::ifstream(told) >> density)) return;
  std::filesystem::remove(told);
  static int density_now = frame.GetDPI().x;
  const wxRect place = frame.GetRect();
  frame.MSWUpdateOnDPIChange(wxSize(density_now, density_now), wxSize(density, density));
  frame.SetSize(place.x, place.y, place.width * density / density_now, place.height * density / density_now);
  density_now = density;
}
#endif

// The named widget that has the keyboard; of a compound one, as a whole.
std::string Focus(const wxFrame& frame) {
  const wxWindow* widget = wxWindow::FindFocus();
  // Some have a child that takes the keyboard for them.
  const wxWindow* const whole = widget != nullptr ? widget->GetParent() : nullptr;
  if (dynamic_cast<const wxGrid*>(whole) != nullptr || dynamic_cast<const wxDataViewCtrl*>(whole) != nullptr)
    widget = whole;
  return widget != nullptr && wxGetTopLevelParent(const_cast<wxWindow*>(widget)) == &frame
             ? From_Wx(widget->GetName())
             : std::string();
}

// The windows beside the main one, by name.
json Describe_Windows(const wxFrame* frame) {
  json windows = json::object();
  for (const wxWindow* const window : wxTopLevelWindows) {
    if (window == frame || !window->IsShown()) continue;
    json& described = windows[From_Wx(window->GetName())];
    described["title"] = From_Wx(window->GetLabel());
    described["rectangle"] = Rectangle(*window, window->GetClientRect());
    described["widgets"] = json::object();
    Describe_Widgets(*window, described["widgets"]);
  }
  return windows;
}

// Every entry that has a key: what is written on it, the key, and whether it can be used.
json Describe_Menus(const wxMenuBar& bar) {
  json entries = json::array();
  const std::function<void(const wxMenu&)> describe = [&](const wxMenu& menu) {
    for (const wxMenuItem* const item : menu.GetMenuItems()) {
      if (item->IsSubMenu()) {
        describe(*item->GetSubMenu());
      } else if (const wxString label = item->GetItemLabel(); label.Contains('\t')) {
        entries.push_back({{"label", From_Wx(item->GetItemLabelText())},
                           {"key", From_Wx(label.AfterLast('\t'))},
                           {"enabled", item->IsEnabled()},
                           {"checked", item->IsCheckable() && item->IsChecked()}});
      }
    }
  };
  for (std::size_t at = 0; at < bar.GetMenuCount(); ++at) describe(*bar.GetMenu(at));
  return entries;
}

// Rows have places only where there is a window for them, which a pane that was closed at first has not.
bool Has_Places([[maybe_unused]] const wxDataViewCtrl& widget) {
#ifdef __WXGTK__
  return gtk_widget_get_realized(const_cast<wxDataViewCtrl&>(widget).GtkGetTreeView()) != FALSE;
#else
  return true;
#endif
}

json Describe_Tree(const TreeView& tree, const wxDataViewCtrl& widget) {
  json nodes = json::array();
  if (!Has_Places(widget)) return nodes;
  for (int node = 1; node <= tree.Upper_Bound() && nodes.size() < most_nodes; ++node) {
    if (!tree.Exists(node)) continue;
    bool in_view = true;
    for (int above = tree.Parent(node); above != 0; above = tree.Parent(above))
      in_view &= tree.Expanded(above);
    if (!in_view) continue;
    nodes.push_back(
        {{"text", tree.Text(node)},
         {"checked", tree.Checked(node)},
         {"lock", tree.Lock(node) == Node_Lock::None  ? ""
                  : tree.Lock(node) == Node_Lock::Own ? "own"
                                                      : "above"},
         {"rectangle", Rectangle(widget, widget.GetItemRect(Item_Of(node), widget.GetColumn(0)))}});
  }
  return nodes;
}

json Describe_Grid(const FlexGrid& grid, const wxGrid& widget) {
  json rows = json::array();
  for (int row = 1; row < std::min(grid.Rows(), most_rows + 1) && row <= widget.GetNumberRows(); ++row) {
    json texts = json::array();
    for (int column = 0; column < grid.Cols(); ++column) texts.push_back(grid.TextMatrix(row, column));
    rows.push_back(
        {{"texts", texts}, {"rectangle", Rectangle(*widget.GetGridWindow(), widget.CellToRect(row - 1, 0))}});
  }
  return rows;
}

}  // namespace

void Window_State_File::Window_Built(wxFrame& frame, const MainWindow& window) {
  frame_ = &frame;
  window_ = &window;
  // Bound last, it is asked first.
  frame.Bind(wxEVT_MENU, [this](wxCommandEvent& event) {
    // Passed on from here, so that the end of the command is known too.
    if (std::exchange(passing_on_, false)) return event.Skip();
    if (const wxMenuItem* const item = frame_->GetMenuBar()->FindItem(event.GetId()))
      commands_.push_back(From_Wx(item->GetItemLabelText()));
    ++under_way_;
    passing_on_ = true;
    frame_->ProcessWindowEvent(event);
    --under_way_;
  });
}

void Window_State_File::Program_Started() {
  if (wxString path; wxGetEnv("TIDYFOLD_WINDOW_STATE", &path)) path_ = From_Wx(path);
  timer_ = std::make_unique<wxTimer>();
  timer_->Bind(wxEVT_TIMER, [this](wxTimerEvent&) {
#ifdef __WXMSW__
    Follow_Density(*frame_, path_ + ".density");
#endif
    Write();
    // Not periodic: where writing takes longer than the pace, a yield of the program would never end.
    timer_->StartOnce(pace);
  });
  timer_->StartOnce(pace);
}

void Window_State_File::Box_Closed() {
  boxes_.pop_back();
  ++boxes_closed_;
}

std::string Window_State_File::Describe() const {
  json state;
  state["boxes"] = boxes_;
  state["boxes_closed"] = boxes_closed_;
  state["keyboard"] = Keyboard_Owner(frame_);
  state["beside"] = Describe_Windows(frame_);
  if (frame_ == nullptr) return state.dump(1, ' ', false, json::error_handler_t::replace);
  state["menus"] = Describe_Menus(*frame_->GetMenuBar());
  state["commands"] = commands_;
  state["commands_under_way"] = under_way_;
  state["shown"] = frame_->IsShown();
  state["title"] = From_Wx(frame_->GetTitle());
  state["focus"] = Focus(*frame_);
  // A menu that has been closed leaves a text of one zero.
  if (const wxStatusBar* const bar = frame_->GetStatusBar())
    state["said"] = From_Wx(bar->GetStatusText(0).BeforeFirst('\0'));
  // The pointer that asks What's This is the only one that the program changes.
  state["pointer_asks"] = wxIsBusy();
#ifdef __WXMSW__
  state["tooltip"] = Tooltip();
#endif
  state["captured"] = wxWindow::GetCapture() != nullptr;
  json widgets = json::object();
  Describe_Widgets(*frame_, widgets);
  state["widgets"] = std::move(widgets);
  json panels = json::array();
  for (int panel = 1; panel <= StatusBar::panel_count; ++panel)
    panels.push_back(window_->sbStatusBar.Panel_Text(panel));
  state["panels"] = std::move(panels);
  state["done"] = window_->sbStatusBar.Gauge_Done();
  state["to_do"] = window_->sbStatusBar.Gauge_Total();
  if (const auto* const tree =
          dynamic_cast<wxDataViewCtrl*>(wxWindow::FindWindowByName("trvFolders", frame_)))
    state["tree"] = Describe_Tree(window_->trvFolders, *tree);
  state["rows"] = window_->grdItems.Rows() - 1;
  state["row"] = window_->grdItems.Row();
  if (const auto* const grid = dynamic_cast<wxGrid*>(wxWindow::FindWindowByName("grdItems", frame_)))
    state["grid"] = Describe_Grid(window_->grdItems, *grid);
  return state.dump(1, ' ', false, json::error_handler_t::replace);
}

void Window_State_File::Write() {
  std::string state = Describe();
  if (state == written_) return;
  const std::filesystem::path draft = path_ + ".new";
  std::ofstream(draft, std::ios::binary) << state;
  std::error_code ignored;
  std::filesystem::rename(draft, path_, ignored);
  if (!ignored) written_ = std::move(state);
}

}  // namespace tidyfold
