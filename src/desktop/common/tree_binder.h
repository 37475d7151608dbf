// The folder tree: a native tree with check boxes over the model's nodes.
#pragma once

#include <wx/dataview.h>
#include <wx/eventfilter.h>

#include <functional>
#include <vector>

#include "controls/tree_view.h"
#include "desktop/common/context_menu.h"
#include "desktop/common/control_binder.h"
#include "desktop/common/repaint_schedule.h"
#include "desktop/common/tree_widget.h"

namespace tidyfold {

class Folder_Tree_Rows;

class Tree_Binder : public Control_Binder,
                    public Late_Widget,
                    private wxEventFilter,
                    private TreeView_Observer {
 public:
  Tree_Binder(TreeView& model, wxDataViewCtrl& widget, Repaint_Schedule& schedule);
  ~Tree_Binder() override;

  void Catch_Up() override;
  // Opened by a right click, the menu key and Shift+F10; acts on the selected node.
  Context_Menu context_menu;

 private:
  void Show_Model() override;
  wxWindow& Tip_Area() override { return *widget_.GetMainWindow(); }

  void Node_Added(int index) override;
  void Node_Changed(int index) override;
  void Node_Removed(int index) override;
  void Cleared() override;
  void Selection_Changed(int index) override;
  void Made_Visible(int index) override;

  void Rebuild();
  void Show_Changed_Nodes();
  void Show_Selection();
  void Expand_Like_Model(int index);
  bool In_View(int index) const;

  void Ticked(int index);
  void Selection_Moved(int index);
  void Expansion_Turned(int index, bool expanded);
  int FilterEvent(wxEvent& event) override;
  // Runs the action after wxWidgets has handled the current event, and before the next event that a person
  // causes.
  void Do_After_Event(std::function<void()> action);
  void Do_What_Is_Due();
  void Mouse_Released(wxMouseEvent& event);
  void Show_Tip(const wxPoint& place);
  void Open_Menu_That_Is_Due();
  void Menu_Asked_For(int index, const wxPoint& place);
  void Key_Pressed(wxKeyEvent& event);
  void Tick_By_Key(int index);
  void Move_Sideways(int index, bool in);

  TreeView& model_;
  wxDataViewCtrl& widget_;
  Tree_Widget tree_;
  Repaint_Schedule& schedule_;
  wxObjectDataPtr<Folder_Tree_Rows> rows_;

  // Changes of the model that the widget does not show yet.
  bool stale_ = true;
  std::vector<int> changed_nodes_;
  bool selection_due_ = false;
  int visible_due_ = 0;
  // Whether the current press has already raised an event of the model or turned a branch; whether it ticked
  // a node.
  bool press_told_ = false;
  bool press_ticked_ = false;
  int tip_node_ = 0;  // whose tooltip the widget has
  // See Do_After_Event.
  std::function<void()> due_;
  bool space_held_ = false;
  std::function<void()> menu_due_;
};

}  // namespace tidyfold
