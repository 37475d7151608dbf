// clang-format off
#include <gtk/gtk.h>
// clang-format on

#include <wx/evtloop.h>
#include <wx/menu.h>
#include <wx/utils.h>

#include "desktop/common/whats_this_pointer.h"

namespace tidyfold {

namespace {

// Filters every event before GTK handles it, because disabled widgets get none. Menus open as usual, so that
// their entries can be chosen.
class Event_Watch {
 public:
  Event_Watch(wxFrame& frame, const Control_Finder& finder) : frame_(frame), finder_(finder) {
    gdk_event_handler_set(&Event_Watch::Take, this, nullptr);
  }
  Event_Watch(const Event_Watch&) = delete;
  Event_Watch& operator=(const Event_Watch&) = delete;
  ~Event_Watch() {
    gdk_event_handler_set([](GdkEvent* event, gpointer) { gtk_main_do_event(event); }, nullptr, nullptr);
  }

  const Control* Run() {
    loop_.Run();
    return chosen_;
  }

 private:
  static void Take(GdkEvent* event, gpointer watch) {
    if (!static_cast<Event_Watch*>(watch)->Swallow(*event)) gtk_main_do_event(event);
  }

  bool Swallow(GdkEvent& event) {
    if (left_) return false;
    switch (event.type) {
      case GDK_BUTTON_PRESS:
      case GDK_2BUTTON_PRESS:
      case GDK_3BUTTON_PRESS:
        return Pressed(event);
      case GDK_BUTTON_RELEASE:
        return Released(event);
      case GDK_KEY_PRESS:
        return Key_Pressed(event.key);
      case GDK_KEY_RELEASE:
        return gtk_grab_get_current() == nullptr;
      case GDK_DELETE:
        Leave(nullptr);
        return false;
      default:
        return false;
    }
  }

  bool Pressed(GdkEvent& event) {
    GtkWidget* const widget = gtk_get_event_widget(&event);
    if (widget == nullptr || gtk_widget_get_ancestor(widget, GTK_TYPE_MENU_BAR) != nullptr) return false;
    if (gtk_widget_get_ancestor(widget, GTK_TYPE_MENU) != nullptr) return true;
    if (gtk_grab_get_current() != nullptr) return false;  // a click beside an open menu closes it
    if (gtk_widget_get_toplevel(widget) != frame_.GetHandle()) {
      Leave(nullptr);
      return false;
    }
    pressed_ = true;
    return true;
  }

  // The mode ends with the release, so that neither half of the click reaches a widget.
  bool Released(GdkEvent& event) {
    if (pressed_) {
      Leave(
          finder_.At(wxPoint(static_cast<int>(event.button.x_root), static_cast<int>(event.button.y_root))));
      return true;
    }
    GtkWidget* const widget = gtk_get_event_widget(&event);
    if (widget == nullptr || gtk_widget_get_ancestor(widget, GTK_TYPE_MENU) == nullptr) return false;
    GtkWidget* const entry = gtk_widget_get_ancestor(widget, GTK_TYPE_MENU_ITEM);
    if (entry == nullptr || gtk_menu_item_get_submenu(GTK_MENU_ITEM(entry)) != nullptr) return true;
    const Control* const control = finder_.Of_Menu_Entry(Label_Of(entry));
    gtk_menu_shell_cancel(GTK_MENU_SHELL(gtk_widget_get_ancestor(widget, GTK_TYPE_MENU)));
    Leave(control);
    return true;
  }

  bool Key_Pressed(const GdkEventKey& key) {
    const bool menu_open = gtk_grab_get_current() != nullptr;
    if (key.keyval == GDK_KEY_Escape) {
      if (!menu_open) Leave(nullptr);
      return !menu_open;
    }
    const bool enter =
        key.keyval == GDK_KEY_Return || key.keyval == GDK_KEY_KP_Enter || key.keyval == GDK_KEY_F1;
    if (enter && !menu_open) Leave(finder_.Of_Widget(wxWindow::FindFocus()));
    return true;
  }

  wxString Label_Of(GtkWidget* entry) const {
    const wxMenuBar& bar = *frame_.GetMenuBar();
    for (std::size_t menu = 0; menu < bar.GetMenuCount(); ++menu)
      for (const wxMenuItem* const item : bar.GetMenu(menu)->GetMenuItems())
        if (item->GetMenuItem() == entry) return item->GetItemLabelText();
    return {};
  }

  void Leave(const Control* chosen) {
    chosen_ = chosen;
    left_ = true;
    loop_.ScheduleExit();
  }

  wxFrame& frame_;
  const Control_Finder& finder_;
  wxGUIEventLoop loop_;
  const Control* chosen_ = nullptr;
  bool pressed_ = false;
  bool left_ = false;
};

}  // namespace

const Control* Whats_This_Pointer::Choose() {
  if (choosing_) return nullptr;
  choosing_ = true;
  const wxCursor question(wxCURSOR_QUESTION_ARROW);
  const wxBusyCursor pointer(&question);
  const Control* const chosen = Event_Watch(frame_, finder_).Run();
  choosing_ = false;
  return chosen;
}

}  // namespace tidyfold
