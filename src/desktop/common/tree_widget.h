// What the tree's binder asks of the native tree beyond showing rows.
#pragma once

#include <wx/dataview.h>

#include "controls/tree_view.h"

namespace tidyfold {

// The item that stands for a node in the widget, and back; 0 for none.
wxDataViewItem Item_Of(int node);
int Node_Of(const wxDataViewItem& item);

// All calls name nodes that exist and whose ancestors are all expanded in the widget. On GTK they go to the
// toolkit's own tree by paths: by wxWidgets' way, which looks up every ancestor of every ancestor, a tree of
// a thousand levels would not open in a minute.
class Tree_Widget {
 public:
  Tree_Widget(wxDataViewCtrl& widget, const TreeView& model) : widget_(widget), model_(model) {}

  void Expand(int node);
  void Collapse(int node);
  bool Is_Expanded(int node) const;
  // Moves selection and keyboard.
  void Make_Current(int node);
  void Scroll_To(int node);

  // Measures and paints every row again.
  void Show_All_Anew();

  double Scroll_Position() const;
  void Set_Scroll_Position(double position);
  // Lets typing find nodes by the beginnings of their texts.
  void Search_By_Typing();

 private:
  wxDataViewCtrl& widget_;
  const TreeView& model_;
};

}  // namespace tidyfold
