// Operations of the tree's binder on the native tree.
#pragma once

#include <wx/dataview.h>

#include <cstdint>

#include "controls/tree_view.h"

namespace tidyfold {

// The item that stands for a node in the widget, and back; 0 for none.
inline wxDataViewItem Item_Of(int node) {
  return wxDataViewItem(reinterpret_cast<void*>(static_cast<std::intptr_t>(node)));
}
inline int Node_Of(const wxDataViewItem& item) {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(item.GetID()));
}

// Each system has its own implementation. All calls name nodes that exist and whose ancestors are all
// expanded in the widget.
class Tree_Widget {
 public:
  Tree_Widget(wxDataViewCtrl& widget, const TreeView& model) : widget_(widget), model_(model) {}

  void Expand(int node);
  void Collapse(int node);
  bool Is_Expanded(int node) const;
  // Moves the selection and the keyboard focus.
  void Make_Current(int node);
  void Scroll_To(int node);

  // Measures and paints every row again.
  void Show_All_Anew();

  double Scroll_Position() const;
  void Set_Scroll_Position(double position);
  // Typing finds nodes by the first letters of their texts, where the system does not do that by itself.
  void Search_By_Typing();

 private:
  wxDataViewCtrl& widget_;
  const TreeView& model_;
};

}  // namespace tidyfold
