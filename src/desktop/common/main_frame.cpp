#include "desktop/common/main_frame.h"

#include <wx/button.h>
#include <wx/clipbrd.h>
#include <wx/display.h>
#include <wx/dnd.h>
#include <wx/menu.h>
#include <wx/settings.h>

#include <algorithm>
#include <utility>

#include "base/file_path.h"
#include "desktop/common/application_icon.h"
#include "desktop/common/items_pane.h"
#include "desktop/common/options_panel.h"
#include "desktop/common/simple_binders.h"
#include "desktop/common/splitter_bar.h"
#include "desktop/common/status_bar_binder.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/theme.h"
#include "desktop/common/tree_binder.h"

namespace tidyfold {

namespace {

// Unscaled pixels. Title, menu and status bar of common desktops take less than this of the screen's height.
constexpr int reserved_height = 90;
constexpr int smallest_width = 480, smallest_height = 320;
// The panes at their narrowest, without the tree; counts where the text is large.
constexpr Twips smallest_panes = 5400;
// Where the screen has room, the window opens larger than designed; start-up lays the panes out.
constexpr Twips comfortable_width = 19800, comfortable_height = 11100;

// Takes files that are dropped on a window.
class Dropped_Files : public wxFileDropTarget {
 public:
  Dropped_Files(wxWindow& window, std::function<void(const std::vector<std::filesystem::path>&)> take)
      : window_(window), take_(std::move(take)) {}
  bool OnDropFiles(wxCoord, wxCoord, const wxArrayString& names) override {
    std::vector<std::filesystem::path> files;
    for (const wxString& name : names) files.push_back(File_Path(From_Wx(name)));
    // Later: the program that they come from waits for the end of this.
    window_.CallAfter([take = take_, files] { take(files); });
    return true;
  }

 private:
  wxWindow& window_;
  std::function<void(const std::vector<std::filesystem::path>&)> take_;
};

}  // namespace

Main_Frame::Main_Frame(MainWindow& model, Repaint_Schedule& schedule, File_Commands commands,
                       std::function<void()> unloaded)
    : wxFrame(nullptr, wxID_ANY, To_Wx(model.frmRemoveItems.Caption())),
      model_(model),
      schedule_(schedule),
      commands_(std::move(commands)),
      unloaded_(std::move(unloaded)),
      scale_(*this),
      surface_(new wxPanel(this)) {
  SetName(To_Wx(model_.frmRemoveItems.Name()));
  SetIcons(Application_Icons());
  Build_Menus();
  Build_Panes();
  Set_Tab_Order();
  wxSize smallest = FromDIP(wxSize(smallest_width, smallest_height));
  smallest.IncTo(wxSize(scale_.Pixels(smallest_panes), 0));
  SetMinClientSize(smallest);

  Take_First_Size();

  model_.frmRemoveItems.changed = [this] { Show_Form(); };
  Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
    event.Skip();
    Take_Size();
  });
  if (commands_.Take_In) {
    SetDropTarget(new Dropped_Files(*this, [this](const auto& files) {
      // Stores must not be exchanged during a run.
      if (model_.mnuRefresh.Enabled()) commands_.Take_In(files);
    }));
  }
  Bind(wxEVT_CLOSE_WINDOW, &Main_Frame::Closed_By_User, this);
  Bind(wxEVT_CHAR_HOOK, &Main_Frame::Key_Pressed, this);
  Bind(wxEVT_CHILD_FOCUS, [this](wxChildFocusEvent& event) {
    event.Skip();
    // When a focused widget is disabled, Windows moves the focus to the next one, which may be a splitter
    // bar.
    const bool lost = keyboard_home_ != nullptr && !keyboard_home_->IsEnabled();
    handed_on_ = lost ? dynamic_cast<Splitter_Bar*>(event.GetWindow()) : nullptr;
  });
  Bind(wxEVT_IDLE, &Main_Frame::Idle, this);
}

void Main_Frame::Take_First_Size() {
  const wxRect screen =
      wxDisplay(static_cast<unsigned>(std::max(0, wxDisplay::GetFromPoint(wxPoint(0, 0))))).GetClientArea();
  wxSize size(scale_.Pixels(comfortable_width), scale_.Pixels(comfortable_height));
  size.DecTo(wxSize(screen.width, screen.height - FromDIP(reserved_height)));
  if (IsMaximized()) Maximize(false);
  SetClientSize(size);
  Centre();
  Tell_Size(size);
}

Main_Frame::~Main_Frame() {
  model_.frmRemoveItems.changed = nullptr;
  menu_binders_.clear();
  binders_.Clear();
}

// --- Building -------------------------------------------------------------------------------------------

void Main_Frame::Build_Panes() {
  auto* const label = new wxStaticText(surface_, wxID_ANY, wxString(), wxDefaultPosition, wxDefaultSize,
                                       wxST_ELLIPSIZE_END | wxST_NO_AUTORESIZE);
  label->SetFont(label->GetFont().Bold());
  binders_.Add<Label_Binder>(model_.lblCurrentFolder, *label).Follow_Position(scale_);

  auto* const tree = new wxDataViewCtrl(surface_, wxID_ANY, wxDefaultPosition, wxDefaultSize,
                                        wxDV_SINGLE | wxDV_NO_HEADER | wxBORDER_NONE);
  auto& tree_binder = binders_.Add<Tree_Binder>(model_.trvFolders, *tree, schedule_);
  tree_binder.Follow_Position(scale_);
  tree_binder.context_menu =
      Entries({&model_.mnuMark, &model_.mnuUnmarkFolder, &model_.mnuMarkBranch, nullptr, &model_.mnuProtect,
               &model_.mnuExportFolder, nullptr, &model_.mnuRefreshCurrent, &model_.mnuRefresh});

  items_ = new Items_Pane(surface_, model_);
  auto& grid_binder = items_->Bind_To_Model(binders_, schedule_, scale_);
  grid_binder.context_menu =
      Entries({&model_.mnuOpenItem, nullptr, &model_.mnuSelectRow, &model_.mnuSelectAllRows, nullptr,
               &model_.mnuCopyRows, &model_.mnuPutBack});
  // The window was moved to another screen. Its widgets have followed; the panes' places follow the models.
  Bind(wxEVT_DPI_CHANGED, [this, &grid_binder](wxDPIChangedEvent& event) {
    event.Skip();
    scale_.Follow_Density(event.GetNewDPI().x);
    grid_binder.Follow_Density(event.GetNewDPI().x);
    binders_.Show();
  });
  for (const MenuItem& field : model_.mnuSortBy) grid_binder.header_menu.push_back(Entries({&field}).front());
  for (const auto& entry :
       Entries({nullptr, &model_.mnuSortReverse, nullptr, &model_.mnuShowWillGo, &model_.mnuShowSize,
                &model_.mnuShowAttachments, &model_.mnuResetColumns}))
    grid_binder.header_menu.push_back(entry);
  model_.Set_Clipboard_Text = [](const std::string& text) {
    const wxClipboardLocker lock;
    if (!lock) return;
    wxTheClipboard->SetData(new wxTextDataObject(To_Lines(text)));
    // Keeps the text on the clipboard after the program has ended.
    wxTheClipboard->Flush();
  };

  options_ = new Options_Panel(surface_, model_, commands_.exports);
  options_->Bind_To_Model(binders_);
  binders_.Add<Control_Binder>(model_.frmOptions, *options_).Follow_Position(scale_);

  auto* const run = new wxButton(surface_, wxID_ANY, To_Wx(model_.cmdRun.Caption()));
  run->SetFont(run->GetFont().Bold());
  binders_.Add<Button_Binder>(model_.cmdRun, *run, [this] { return Settle(); }).Follow_Position(scale_);

  for (PictureBox* const bar : {&model_.picSlider, &model_.picSlider2})
    binders_.Add<Splitter_Bar_Binder>(*bar, *new Splitter_Bar(surface_), scale_).Follow_Position(scale_);

  binders_.Add<Status_Bar_Binder>(model_.sbStatusBar, *CreateStatusBar(StatusBar::panel_count), schedule_);
}

// Cycles through folders, first bar, items, second bar, options.
void Main_Frame::Go_To_Pane(int step) {
  const Control* const panes[] = {&model_.trvFolders, &model_.picSlider, &model_.grdItems, &model_.picSlider2,
                                  &model_.frmOptions};
  constexpr int count = std::size(panes);
  const auto widget = [&](int pane) {
    return FindWindowByName(To_Wx(panes[static_cast<std::size_t>(pane)]->Name()), surface_);
  };
  int at = step > 0 ? count - 1 : 0;
  for (int pane = 0; pane < count; ++pane)
    if (const wxWindow* const window = widget(pane); window != nullptr && window->IsDescendant(FindFocus()))
      at = pane;
  for (int tried = 0; tried < count; ++tried) {
    at = (at + step + count) % count;
    wxWindow* const window = widget(at);
    if (window == nullptr || !window->IsShown() || !window->IsEnabled()) continue;
    if (auto* const grid = dynamic_cast<wxGrid*>(window)) {
      grid->GetGridWindow()->SetFocus();
    } else {
      window->SetFocus();
    }
    return;
  }
}

// The tab order is that of the model's list, not the order in which the panes were created.
void Main_Frame::Set_Tab_Order() {
  wxWindow* before = nullptr;
  for (const Control* const control : model_.controls) {
    wxWindow* widget = FindWindowByName(To_Wx(control->Name()), surface_);
    while (widget != nullptr && widget->GetParent() != surface_) widget = widget->GetParent();
    if (widget == nullptr || widget == before) continue;
    if (before != nullptr) widget->MoveAfterInTabOrder(before);
    before = widget;
  }
}

// --- The form -------------------------------------------------------------------------------------------

wxSize Main_Frame::Client_Size_Of_Model() const {
  return {scale_.Pixels(model_.frmRemoveItems.Width()), scale_.Pixels(model_.frmRemoveItems.Height())};
}

void Main_Frame::Show_Form() {
  const Form& form = model_.frmRemoveItems;
  if (!form.Loaded()) {
    if (was_loaded_) {
      if (leaving) leaving();
      Hide();
      unloaded_();
    }
    return;
  }
  was_loaded_ = true;
  if (const wxString title = To_Wx(form.Caption()); title != GetTitle()) SetTitle(title);
  if (!taking_size_ && Client_Size_Of_Model() != GetClientSize()) Resize_Like_Model();
  if (form.Visible() != IsShown()) Show(form.Visible());
}

// A size that does not fit the screen is cut down at once. The model gets the real size, because the caller
// reads it back.
void Main_Frame::Resize_Like_Model() {
  const wxSize bars_and_frame = GetSize() - GetClientSize();
  wxSize size = Client_Size_Of_Model();
  size.DecTo(wxDisplay(this).GetClientArea().GetSize() - bars_and_frame);
  size.IncTo(GetMinClientSize());
  // The caller lays the panes out; a Resize event now would move them twice.
  const bool outer = std::exchange(taking_size_, true);
  SetClientSize(size);
  taking_size_ = outer;
  if (size != Client_Size_Of_Model()) Tell_Size(size);
}

void Main_Frame::Tell_Size(const wxSize& client) {
  const bool outer = std::exchange(taking_size_, true);
  model_.frmRemoveItems.Set_Width(scale_.To_Twips(client.x));
  model_.frmRemoveItems.Set_Height(scale_.To_Twips(client.y));
  taking_size_ = outer;
}

void Main_Frame::Take_Size() {
  // Without a Resize handler nobody would lay the panes out.
  if (!model_.frmRemoveItems.Resize || IsIconized() || taking_size_) return;
  const wxSize client = GetClientSize();
  if (client == Client_Size_Of_Model()) return;
  Tell_Size(client);
  model_.frmRemoveItems.Resize();
}

void Main_Frame::Closed_By_User(wxCloseEvent& event) {
  // Not destroyed here: handlers may still be running on its models.
  if (event.CanVeto()) event.Veto();
  if (model_.frmRemoveItems.Close) {
    model_.frmRemoveItems.Close();
  } else {
    model_.frmRemoveItems.Unload();
  }
}

void Main_Frame::Key_Pressed(wxKeyEvent& event) {
  // During a run the button is Cancel.
  const bool running = !model_.mnuClean.Enabled() && model_.cmdRun.Enabled();
  if (event.GetKeyCode() != WXK_ESCAPE) {
    if (!Do_Menu_Key(event)) event.Skip();
  } else if (running) {
    tidyfold::Raise(model_.cmdRun.Click);
  } else if (model_.mnuStopLoading.Enabled()) {
    tidyfold::Raise(model_.mnuStopLoading.Click);
  } else {
    event.Skip();
  }
}

// Every pane has keys of its own, some of which are also the menu's: the menu's come first. A text box keeps
// those of editing.
bool Main_Frame::Do_Menu_Key(const wxKeyEvent& event) {
  const int code = event.GetKeyCode() == WXK_NUMPAD_ENTER ? static_cast<int>(WXK_RETURN) : event.GetKeyCode();
  const bool edits = event.GetModifiers() == wxMOD_CONTROL && (code == 'A' || code == 'C');
  if (edits && dynamic_cast<wxTextCtrl*>(FindFocus()) != nullptr) return false;
  const auto has_key = [&](const wxMenuItem& item) {
    const std::unique_ptr<wxAcceleratorEntry> key(item.GetAccel());
    if (key == nullptr || key->GetKeyCode() != code) return false;
    int modifiers = wxMOD_NONE;
    if ((key->GetFlags() & wxACCEL_CTRL) != 0) modifiers |= wxMOD_CONTROL;
    if ((key->GetFlags() & wxACCEL_SHIFT) != 0) modifiers |= wxMOD_SHIFT;
    if ((key->GetFlags() & wxACCEL_ALT) != 0) modifiers |= wxMOD_ALT;
    return modifiers == event.GetModifiers();
  };
  const std::function<const wxMenuItem*(const wxMenu&)> find = [&](const wxMenu& menu) -> const wxMenuItem* {
    for (const wxMenuItem* const item : menu.GetMenuItems()) {
      if (!item->IsSubMenu() && has_key(*item)) return item;
      if (!item->IsSubMenu()) continue;
      if (const wxMenuItem* const below = find(*item->GetSubMenu())) return below;
    }
    return nullptr;
  };
  for (std::size_t at = 0; at < GetMenuBar()->GetMenuCount(); ++at) {
    const wxMenuItem* const item = find(*GetMenuBar()->GetMenu(at));
    if (item == nullptr) continue;
    if (item->IsEnabled()) {
      wxCommandEvent command(wxEVT_MENU, item->GetId());
      command.SetEventObject(this);
      HandleWindowEvent(command);
    }
    return true;
  }
  return false;
}

// A widget that is disabled, or has no room in a narrow window, loses the focus, and then no key would reach
// the window. Moves the focus to Cancel, the tree or the list, and back when the widget is enabled again.
void Main_Frame::Keep_Keyboard() {
  if (!IsActive()) return;
  wxWindow* const focus = FindFocus();
  // Another window takes the focus shortly before this one learns that it is no longer active.
  if (focus != nullptr && wxGetTopLevelParent(focus) != this) return;
  const auto usable = [](const wxWindow* window) {
    return window != nullptr && window->IsEnabled() && window->IsShownOnScreen();
  };
  if (usable(focus) && focus != stand_in_ && focus != handed_on_) {
    keyboard_home_ = focus;
    stand_in_ = nullptr;
  } else if (usable(keyboard_home_)) {
    if (focus != keyboard_home_) keyboard_home_->SetFocus();
  } else if (!usable(focus) || focus == handed_on_) {
    wxWindow* const run = FindWindowByName(To_Wx(model_.cmdRun.Name()), surface_);
    wxWindow* const tree = FindWindowByName(To_Wx(model_.trvFolders.Name()), surface_);
    // Clean is to be pressed by those alone who go to it.
    const bool has_room = keyboard_home_ == nullptr || keyboard_home_->IsShownOnScreen();
    if (has_room && usable(run)) {
      stand_in_ = run;
      run->SetFocus();
    } else if (usable(tree)) {
      tree->SetFocus();
    } else if (usable(items_)) {
      items_->Go_To_List();
    }
  }
}

void Main_Frame::Idle(wxIdleEvent& event) {
  event.Skip();
  if (!model_.frmRemoveItems.Loaded()) return;
  Take_Size();
  Keep_Keyboard();
  // Stores must not be exchanged during a run.
  for (const int entry : file_entries_) {
    if (GetMenuBar()->IsEnabled(entry) != model_.mnuRefresh.Enabled())
      GetMenuBar()->Enable(entry, model_.mnuRefresh.Enabled());
  }
}

// While a run goes on, the button is Cancel, and nothing may be in its way.
bool Main_Frame::Settle() {
  return options_->Settle() || !model_.mnuClean.Enabled();
}

}  // namespace tidyfold
