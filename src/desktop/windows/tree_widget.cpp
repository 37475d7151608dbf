#include "desktop/common/tree_widget.h"

namespace tidyfold {

void Tree_Widget::Expand(int node) {
  widget_.Expand(Item_Of(node));
}
void Tree_Widget::Collapse(int node) {
  widget_.Collapse(Item_Of(node));
}
bool Tree_Widget::Is_Expanded(int node) const {
  return widget_.IsExpanded(Item_Of(node));
}
void Tree_Widget::Make_Current(int node) {
  widget_.Select(Item_Of(node));
  widget_.SetCurrentItem(Item_Of(node));
}
void Tree_Widget::Scroll_To(int node) {
  widget_.EnsureVisible(Item_Of(node));
}
void Tree_Widget::Show_All_Anew() {
  widget_.Refresh();
}
double Tree_Widget::Scroll_Position() const {
  return widget_.GetScrollPos(wxVERTICAL);
}
void Tree_Widget::Set_Scroll_Position(double position) {
  widget_.SetScrollPos(wxVERTICAL, static_cast<int>(position));
}
void Tree_Widget::Search_By_Typing() {}

}  // namespace tidyfold
