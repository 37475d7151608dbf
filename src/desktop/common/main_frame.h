// The main window.
#pragma once

#include <wx/frame.h>
#include <wx/panel.h>
#include <wx/weakref.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <vector>

#include "controls/main_window.h"
#include "desktop/common/binders.h"
#include "desktop/common/context_menu.h"
#include "desktop/common/menu_binder.h"
#include "desktop/common/repaint_schedule.h"
#include "desktop/common/scale.h"

namespace tidyfold {

class Items_Pane;
class Options_Panel;

// Commands on store files, which the model does not know. Empty ones get no menu entry.
struct File_Commands {
  std::function<void()> Open_Store, Open_Maildir, Open_Account, New_Sample, Import_Files, Import_Folder,
      Compact, Close_Store;
  // What opens stores that were open before, the last ones first, and what does so.
  std::function<std::vector<std::string>()> Recent_Stores;
  std::function<void(const std::string&)> Open_Recent;
  // Opens or imports files that are dropped on the window.
  std::function<void(const std::vector<std::filesystem::path>&)> Take_In;
  bool exports = false;  // whether what is in the stores can be exported
};

// Shows the model frmRemoveItems, whose size is that of the client area, with all its controls. When the
// model is unloaded, hides and calls `unloaded`. The owner destroys the frame once no handler runs any more.
class Main_Frame : public wxFrame {
 public:
  Main_Frame(MainWindow& model, Repaint_Schedule& schedule, File_Commands commands,
             std::function<void()> unloaded);
  ~Main_Frame() override;

  // The window has got another size from outside before it is shown.
  void Take_Over_Size() { Tell_Size(GetClientSize()); }
  // The size and place that it has when nothing is remembered.
  void Take_First_Size();
  // Runs before the window is hidden for good.
  std::function<void()> leaving;

 private:
  void Build_Panes();
  void Build_Menus();
  void Set_Tab_Order();
  void Add_Entry(wxMenu& menu, MenuItem& model, const wxString& key, const wxString& help,
                 wxItemKind kind = wxITEM_NORMAL);
  wxMenu* New_File_Menu();
  wxMenu* New_Folders_Menu();
  wxMenu* New_Options_Menu();
  wxMenu* New_View_Menu();
  // An option's entry, with the key of its check box.
  void Add_Option(wxMenu& menu, CheckBox& model);
  void Fill_Recent_Stores(wxMenuEvent& event);
  void Open_Recent(wxCommandEvent& event);
  // The menu bar's entries for these models, as far as it has them; null stands for a separator.
  Context_Menu Entries(std::initializer_list<const MenuItem*> models) const;
  void Go_To_Pane(int step);
  void Add_File_Entry(wxMenu& menu, const wxString& label, const wxString& help,
                      std::function<void()>& command);

  void Show_Form();
  void Resize_Like_Model();
  void Tell_Size(const wxSize& client);
  void Take_Size();
  void Closed_By_User(wxCloseEvent& event);
  void Key_Pressed(wxKeyEvent& event);
  bool Do_Menu_Key(const wxKeyEvent& event);
  void Keep_Keyboard();
  void Idle(wxIdleEvent& event);
  // False where what is typed must be mended before anything is cleaned.
  bool Settle();
  wxSize Client_Size_Of_Model() const;

  MainWindow& model_;
  Repaint_Schedule& schedule_;
  File_Commands commands_;
  std::function<void()> unloaded_;
  Scale scale_;
  bool taking_size_ = false;
  bool was_loaded_ = false;

  // The widget that had the focus before it was disabled, and the one that has it instead.
  wxWeakRef<wxWindow> keyboard_home_, stand_in_, handed_on_;

  wxPanel* surface_;
  Options_Panel* options_ = nullptr;
  Items_Pane* items_ = nullptr;
  wxMenu* recent_ = nullptr;
  std::vector<std::string> recent_stores_;
  std::vector<int> file_entries_;
  Binders binders_;
  std::vector<std::unique_ptr<Menu_Binder>> menu_binders_;
};

}  // namespace tidyfold
