#include "desktop/common/tree_binder.h"

#include <wx/utils.h>

#include <algorithm>

#include "controls/widgets.h"
#include "desktop/common/check_text_renderer.h"
#include "desktop/common/lock_picture.h"
#include "desktop/common/text_conversion.h"
#include "desktop/common/theme.h"

namespace tidyfold {

namespace {

// Above this number of changes, painting all rows costs less than looking each one up.
constexpr std::size_t most_single_changes = 100;

}  // namespace

// The widget's data source. An item is a node's index. The widget may ask for removed nodes until it is
// notified; they have no content.
class Folder_Tree_Rows : public wxDataViewModel {
 public:
  Folder_Tree_Rows(TreeView& tree, Tick_Handler ticked) : tree_(tree), ticked_(std::move(ticked)) {}

  bool IsContainer(const wxDataViewItem& item) const override {
    return !item.IsOk() || (Has(item) && tree_.Children(Node_Of(item)) > 0);
  }
  bool HasContainerColumns(const wxDataViewItem&) const override { return true; }

  wxDataViewItem GetParent(const wxDataViewItem& item) const override {
    return Has(item) ? Item_Of(tree_.Parent(Node_Of(item))) : wxDataViewItem();
  }

  unsigned GetChildren(const wxDataViewItem& item, wxDataViewItemArray& children) const override {
    if (!item.IsOk()) {
      for (int node = 1; node <= tree_.Upper_Bound(); ++node) {
        if (tree_.Exists(node) && tree_.Parent(node) == 0) children.Add(Item_Of(node));
      }
    } else if (Has(item)) {
      for (int node = tree_.Child(Node_Of(item)); node != 0; node = tree_.Next(node))
        children.Add(Item_Of(node));
    }
    return static_cast<unsigned>(children.GetCount());
  }

  void GetValue(wxVariant& value, const wxDataViewItem& item, unsigned) const override {
    const int node = Node_Of(item);
    value << (Has(item) ? wxDataViewCheckIconText(To_One_Line(tree_.Text(node)), Lock_Of(node),
                                                  tree_.Checked(node) ? wxCHK_CHECKED : wxCHK_UNCHECKED)
                        : wxDataViewCheckIconText());
  }

  // Called only by wxWidgets' own renderer, when a check box is clicked. The model decides whether it
  // changes.
  bool SetValue(const wxVariant&, const wxDataViewItem& item, unsigned) override {
    ticked_(item);
    return true;
  }

  bool GetAttr(const wxDataViewItem& item, unsigned, wxDataViewItemAttr& attr) const override {
    if (!Has(item)) return false;
    const int node = Node_Of(item);
    const Colour colour = tree_.Fore_Colour(node);
    if (!tree_.Bold(node) && colour == 0) return false;
    attr.SetBold(tree_.Bold(node));
    if (colour != 0) attr.SetColour(Text_Colour(colour, Theme_Background()));
    return true;
  }

 private:
  bool Has(const wxDataViewItem& item) const { return item.IsOk() && tree_.Exists(Node_Of(item)); }

  // Drawn anew when the theme has changed.
  wxBitmapBundle Lock_Of(int node) const {
    if (tree_.Lock(node) == Node_Lock::None) return {};
    const wxColour text = Theme_Text();
    if (text != lock_colour_) {
      lock_colour_ = text;
      lock_ = Lock_Picture(text);
      pale_lock_ = Lock_Picture(Disabled_Text_Colour(Theme_Background()));
    }
    return tree_.Lock(node) == Node_Lock::Own ? lock_ : pale_lock_;
  }

  TreeView& tree_;
  mutable wxColour lock_colour_;
  mutable wxBitmapBundle lock_, pale_lock_;
  Tick_Handler ticked_;
};

Tree_Binder::Tree_Binder(TreeView& model, wxDataViewCtrl& widget, Repaint_Schedule& schedule)
    : Control_Binder(model, widget),
      model_(model),
      widget_(widget),
      tree_(widget, model),
      schedule_(schedule) {
  const Tick_Handler ticked = [this](const wxDataViewItem& item) { Ticked(Node_Of(item)); };
  const Tick_Handler asked = [this](const wxDataViewItem& item) { Tick_By_Key(Node_Of(item)); };
  rows_ = wxObjectDataPtr<Folder_Tree_Rows>(new Folder_Tree_Rows(model_, ticked));
  auto* const column = new wxDataViewColumn(wxString(), New_Check_Text_Renderer(ticked, asked), 0,
                                            wxCOL_WIDTH_AUTOSIZE, wxALIGN_LEFT, 0);
  widget_.AppendColumn(column);
  widget_.SetExpanderColumn(column);
  widget_.AssociateModel(rows_.get());
  tree_.Search_By_Typing();

  widget_.Bind(wxEVT_DATAVIEW_SELECTION_CHANGED,
               [this](wxDataViewEvent& event) { Selection_Moved(Node_Of(event.GetItem())); });
  widget_.Bind(wxEVT_DATAVIEW_ITEM_EXPANDED,
               [this](wxDataViewEvent& event) { Expansion_Turned(Node_Of(event.GetItem()), true); });
  widget_.Bind(wxEVT_DATAVIEW_ITEM_COLLAPSED,
               [this](wxDataViewEvent& event) { Expansion_Turned(Node_Of(event.GetItem()), false); });
  widget_.Bind(wxEVT_DATAVIEW_ITEM_ACTIVATED, [this](wxDataViewEvent& event) {
    // Two quick clicks on the check box are not a double click on the name.
    if (const int node = Node_Of(event.GetItem()); model_.Exists(node) && !press_ticked_)
      model_.Set_Expanded(node, !model_.Expanded(node));
  });
  widget_.Bind(wxEVT_DATAVIEW_ITEM_CONTEXT_MENU, [this](wxDataViewEvent& event) {
    // After wxWidgets has handled the click. GTK tells of the press, and a menu that opens then closes with
    // the release.
    menu_due_ = [this, node = Node_Of(event.GetItem()),
                 place = widget_.ScreenToClient(wxGetMousePosition())] { Menu_Asked_For(node, place); };
    if (!wxGetMouseState().RightIsDown()) widget_.CallAfter([this] { Open_Menu_That_Is_Due(); });
  });
  wxWindow& area = *widget_.GetMainWindow();
  area.Bind(wxEVT_RIGHT_UP, [this](wxMouseEvent& event) {
    event.Skip();
    widget_.CallAfter([this] { Open_Menu_That_Is_Due(); });
  });
  area.Bind(wxEVT_LEFT_DOWN, [this](wxMouseEvent& event) {
    press_told_ = press_ticked_ = false;
    event.Skip();
  });
  area.Bind(wxEVT_LEFT_UP, &Tree_Binder::Mouse_Released, this);
  area.Bind(wxEVT_MOTION, [this](wxMouseEvent& event) {
    event.Skip();
    Show_Tip(event.GetPosition());
  });
  area.Bind(wxEVT_KEY_DOWN, &Tree_Binder::Key_Pressed, this);
  area.Bind(wxEVT_KEY_UP, [this](wxKeyEvent& event) {
    event.Skip();
    if (event.GetKeyCode() == WXK_SPACE) {
      space_held_ = false;
    } else {
      Do_After_Event([this] { Raise(model_.KeyUp); });
    }
  });
  area.Bind(wxEVT_SET_FOCUS, [this](wxFocusEvent& event) {
    event.Skip();
    // The key may have been released in a message box that the tick opened.
    if (space_held_) space_held_ = wxGetKeyState(WXK_SPACE);
  });
  model_.observer = this;
  wxEvtHandler::AddFilter(this);
  Show();
  schedule_.Mark(*this);
}

Tree_Binder::~Tree_Binder() {
  wxEvtHandler::RemoveFilter(this);
  model_.observer = nullptr;
  schedule_.Forget(*this);
}

void Tree_Binder::Show_Model() {
  if (model_.Visible()) schedule_.Mark(*this);
}

// --- What the program does to the model -----------------------------------------------------------------

void Tree_Binder::Node_Added(int) {
  stale_ = true;
  schedule_.Mark(*this);
}
void Tree_Binder::Node_Removed(int) {
  stale_ = true;
  schedule_.Mark(*this);
}
void Tree_Binder::Cleared() {
  stale_ = true;
  visible_due_ = 0;
  schedule_.Mark(*this);
}

void Tree_Binder::Node_Changed(int index) {
  if (changed_nodes_.empty() || changed_nodes_.back() != index) changed_nodes_.push_back(index);
  schedule_.Mark(*this);
}

void Tree_Binder::Selection_Changed(int) {
  selection_due_ = true;
  schedule_.Mark(*this);
}

void Tree_Binder::Made_Visible(int index) {
  visible_due_ = index;
  schedule_.Mark(*this);
}

void Tree_Binder::Catch_Up() {
  if (!model_.Visible()) return;
  From_Program([&] {
    if (stale_) {
      Rebuild();
    } else {
      Show_Changed_Nodes();
    }
    changed_nodes_.clear();
    if (std::exchange(selection_due_, false)) Show_Selection();
    if (const int node = std::exchange(visible_due_, 0); node != 0 && model_.Exists(node) && In_View(node))
      tree_.Scroll_To(node);
  });
}

void Tree_Binder::Show_Selection() {
  const int selected = model_.Selected_Item();
  if (selected == 0) {
    widget_.UnselectAll();
  } else if (In_View(selected) && widget_.GetSelection() != Item_Of(selected)) {
    tree_.Make_Current(selected);
  }
}

void Tree_Binder::Rebuild() {
  stale_ = false;
  const double position = tree_.Scroll_Position();
  rows_->Cleared();
  for (int node = 1; node <= model_.Upper_Bound(); ++node) {
    if (model_.Exists(node) && model_.Parent(node) == 0) Expand_Like_Model(node);
  }
  selection_due_ = true;
  tree_.Set_Scroll_Position(position);
}

void Tree_Binder::Show_Changed_Nodes() {
  std::sort(changed_nodes_.begin(), changed_nodes_.end());
  changed_nodes_.erase(std::unique(changed_nodes_.begin(), changed_nodes_.end()), changed_nodes_.end());
  const bool many = changed_nodes_.size() > most_single_changes;
  for (const int node : changed_nodes_) {
    // The widget has no rows for closed branches; it asks for them when a branch opens.
    if (!model_.Exists(node) || (many && model_.Children(node) == 0) || !In_View(node)) continue;
    if (tree_.Is_Expanded(node) != model_.Expanded(node)) {
      if (model_.Expanded(node)) {
        Expand_Like_Model(node);
      } else {
        tree_.Collapse(node);
      }
    }
    if (!many) rows_->ItemChanged(Item_Of(node));
  }
  if (many) tree_.Show_All_Anew();
}

// Expands a visible node and all expanded nodes below it. Not recursive: trees may be very deep.
void Tree_Binder::Expand_Like_Model(int index) {
  std::vector<int> open{index};
  while (!open.empty()) {
    const int node = open.back();
    open.pop_back();
    if (!model_.Expanded(node) || model_.Children(node) == 0) continue;
    tree_.Expand(node);
    for (int child = model_.Child(node); child != 0; child = model_.Next(child)) open.push_back(child);
  }
}

bool Tree_Binder::In_View(int index) const {
  for (int above = model_.Parent(index); above != 0; above = model_.Parent(above)) {
    if (!model_.Expanded(above)) return false;
  }
  return true;
}

// --- What the user does to the widget -------------------------------------------------------------------

void Tree_Binder::Ticked(int index) {
  From_User([&] {
    if (!model_.Enabled() || !model_.Exists(index)) return;
    press_told_ = press_ticked_ = true;
    model_.Tick(index, !model_.Checked(index));
  });
}

void Tree_Binder::Selection_Moved(int index) {
  From_User([&] {
    if (!model_.Exists(index)) return;
    press_told_ = true;
    model_.Click_Node(index);
  });
}

void Tree_Binder::Expansion_Turned(int index, bool expanded) {
  From_User([&] {
    press_told_ = true;
    if (!model_.Exists(index)) return;
    model_.Set_Expanded(index, expanded);
    if (expanded) changed_nodes_.push_back(index);
    // The widget forgets which nodes were expanded inside a closed branch.
    for (int child = model_.Child(index); expanded && child != 0; child = model_.Next(child))
      changed_nodes_.push_back(child);
    schedule_.Mark(*this);
  });
}

void Tree_Binder::Do_After_Event(std::function<void()> action) {
  Do_What_Is_Due();
  due_ = std::move(action);
  widget_.CallAfter([this] { Do_What_Is_Due(); });
}

void Tree_Binder::Do_What_Is_Due() {
  if (const auto action = std::exchange(due_, nullptr)) action();
}

// A pending action runs before the next input event, which might change the state that the action depends on.
int Tree_Binder::FilterEvent(wxEvent& event) {
  const wxEventType type = event.GetEventType();
  for (const wxEventType caused :
       {wxEventType(wxEVT_LEFT_DOWN), wxEventType(wxEVT_RIGHT_DOWN), wxEventType(wxEVT_CHAR_HOOK),
        wxEventType(wxEVT_KEY_DOWN), wxEventType(wxEVT_CHECKBOX), wxEventType(wxEVT_BUTTON),
        wxEventType(wxEVT_MENU), wxEventType(wxEVT_CLOSE_WINDOW)})
    if (due_ && type == caused) Do_What_Is_Due();
  return Event_Skip;
}

void Tree_Binder::Mouse_Released(wxMouseEvent& event) {
  event.Skip();
  wxDataViewItem item;
  wxDataViewColumn* column = nullptr;
  widget_.HitTest(event.GetPosition(), item, column);
  const int node = Node_Of(item);
  // wxWidgets toggles a check box only after this event.
  Do_After_Event([this, node] {
    if (!press_told_ && node != 0 && node == model_.Selected_Item()) model_.Click_Node(node);
    Raise(model_.MouseUp);
  });
}

// Of the node under the pointer, where it has one.
void Tree_Binder::Show_Tip(const wxPoint& place) {
  wxDataViewItem item;
  wxDataViewColumn* column = nullptr;
  widget_.HitTest(place, item, column);
  const int node = Node_Of(item);
  if (node == std::exchange(tip_node_, node)) return;
  const bool own = node != 0 && model_.Exists(node) && !model_.Node_Tip(node).empty();
  Tip_Area().SetToolTip(To_Lines(own ? model_.Node_Tip(node) : model_.Tool_Tip_Text()));
}

void Tree_Binder::Open_Menu_That_Is_Due() {
  if (const auto open = std::exchange(menu_due_, nullptr)) open();
}

void Tree_Binder::Menu_Asked_For(int index, const wxPoint& place) {
  if (!model_.Enabled() || !model_.Exists(index)) return;
  // Selects the menu's folder, as a click would.
  model_.Click_Node(index);
  Raise(model_.MouseUp);
  Show_Context_Menu(widget_, context_menu, place);
}

void Tree_Binder::Key_Pressed(wxKeyEvent& event) {
  const int node = model_.Selected_Item();
  if (Asks_For_Context_Menu(event) && node != 0)
    return Menu_Asked_For(node, widget_.GetItemRect(Item_Of(node)).GetBottomLeft() + wxPoint(40, 0));
  if (node == 0 || event.HasAnyModifiers() || !model_.Enabled()) return event.Skip();
  switch (event.GetKeyCode()) {
    case WXK_SPACE:
      // Ignores auto-repeat.
      return std::exchange(space_held_, true) ? void() : Tick_By_Key(node);
    case WXK_RIGHT:
      return Move_Sideways(node, true);
    case WXK_LEFT:
      return Move_Sideways(node, false);
    default:
      return event.Skip();
  }
}

// The marking rules accept or refuse the tick now, not on key-up: a click made while the key is down must not
// find an unchecked tick. A screen reader's ticks have no key that comes up.
void Tree_Binder::Tick_By_Key(int index) {
  Do_What_Is_Due();
  Ticked(index);
  Raise(model_.KeyUp);
}

// Right expands a branch, then enters it; left collapses it, then moves to the parent.
void Tree_Binder::Move_Sideways(int index, bool in) {
  if (model_.Children(index) > 0 && model_.Expanded(index) != in) {
    model_.Set_Expanded(index, in);
  } else if (const int target = in ? model_.Child(index) : model_.Parent(index); target != 0) {
    model_.Click_Node(target);
    model_.Ensure_Visible(target);
  }
}

}  // namespace tidyfold
