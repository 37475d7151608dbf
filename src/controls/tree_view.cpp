#include "controls/tree_view.h"

#include <algorithm>
#include <stdexcept>

#include "base/text.h"
#include "controls/widgets.h"

namespace tidyfold {

void TreeView::Throw_No_Node(int index) {
  throw std::out_of_range("The folder tree has no node " + std::to_string(index) + ".");
}

TreeView::Node& TreeView::At(int index) {
  return const_cast<Node&>(std::as_const(*this).At(index));
}

int TreeView::Find_Key(std::string_view key) const {
  const auto found = std::find_if(nodes_.begin(), nodes_.end(),
                                  [&](const Node& node) { return node.exists && node.key == key; });
  return found == nodes_.end() ? 0 : static_cast<int>(found - nodes_.begin()) + 1;
}

int TreeView::Add(int parent, std::string_view key, std::string_view text) {
  if (parent != 0) At(parent);
  Node& node = nodes_.emplace_back();
  node.key = key;
  node.text = node.sort_text = text;
  const int index = Upper_Bound();
  Link(index, parent);
  ++count_;
  if (observer != nullptr) observer->Node_Added(index);
  return index;
}

void TreeView::Link(int index, int parent) {
  Node& node = At(index);
  node.parent = parent;
  if (parent == 0) return;
  Node& above = At(parent);
  int before = above.last_child;
  if (above.sorted) {
    while (before != 0 && Compare_Ignoring_Case(node.sort_text, At(before).sort_text) < 0)
      before = At(before).previous;
  }
  node.previous = before;
  node.next = before == 0 ? above.first_child : At(before).next;
  (before == 0 ? above.first_child : At(before).next) = index;
  (node.next == 0 ? above.last_child : At(node.next).previous) = index;
  ++above.children;
}

void TreeView::Remove(int index) {
  Node& node = At(index);
  if (observer != nullptr) observer->Node_Removed(index);
  if (node.previous != 0) At(node.previous).next = node.next;
  if (node.next != 0) At(node.next).previous = node.previous;
  if (node.parent != 0) {
    Node& above = At(node.parent);
    if (above.first_child == index) above.first_child = node.next;
    if (above.last_child == index) above.last_child = node.previous;
    --above.children;
  }
  const bool selection_goes = [&] {
    for (int at = selected_; at != 0; at = At(at).parent)
      if (at == index) return true;
    return false;
  }();
  const int heir = node.parent;
  Forget(index);
  if (selection_goes) {
    selected_ = 0;
    Set_Selected_Item(heir);
  }
}

void TreeView::Forget(int index) {
  std::vector<int> doomed{index};
  while (!doomed.empty()) {
    const int next = doomed.back();
    doomed.pop_back();
    for (int child = At(next).first_child; child != 0; child = At(child).next) doomed.push_back(child);
    if (At(next).checked) --checked_count_;
    nodes_[static_cast<std::size_t>(next - 1)] = Node{};
    nodes_[static_cast<std::size_t>(next - 1)].exists = false;
    --count_;
  }
}

void TreeView::Clear() {
  nodes_.clear();
  count_ = checked_count_ = 0;
  selected_ = 0;
  if (observer != nullptr) observer->Cleared();
}

int TreeView::First_Sibling(int index) const {
  const int parent = Parent(index);
  return parent == 0 ? index : Child(parent);
}

template <class Field, class Value>
void TreeView::Assign_Node(int index, Field Node::*field, const Value& value) {
  Field& current = At(index).*field;
  if (current == value) return;
  current = value;
  if (observer != nullptr) observer->Node_Changed(index);
}

void TreeView::Set_Text(int index, std::string_view text) {
  Assign_Node(index, &Node::text, text);
}
void TreeView::Set_Checked(int index, bool checked) {
  if (At(index).checked != checked) checked_count_ += checked ? 1 : -1;
  Assign_Node(index, &Node::checked, checked);
}
void TreeView::Set_Bold(int index, bool bold) {
  Assign_Node(index, &Node::bold, bold);
}
void TreeView::Set_Fore_Colour(int index, Colour colour) {
  Assign_Node(index, &Node::fore_colour, colour);
}

void TreeView::Set_Lock(int index, Node_Lock lock) {
  Assign_Node(index, &Node::lock, lock);
}

void TreeView::Set_Expanded(int index, bool expanded) {
  if (At(index).expanded == expanded || (expanded && Children(index) == 0)) return;
  Assign_Node(index, &Node::expanded, expanded);
  Raise(expanded ? Expand : Collapse, index);
}

void TreeView::Set_Selected_Item(int index) {
  if (index != 0) At(index);
  if (selected_ == index) return;
  selected_ = index;
  if (observer != nullptr) observer->Selection_Changed(index);
}

void TreeView::Ensure_Visible(int index) {
  for (int above = Parent(index); above != 0; above = Parent(above)) Set_Expanded(above, true);
  if (observer != nullptr) observer->Made_Visible(index);
}

void TreeView::Tick(int index, bool checked) {
  Set_Checked(index, checked);
  Raise(NodeCheck, index);
}

void TreeView::Click_Node(int index) {
  Set_Selected_Item(index);
  Raise(NodeClick, index);
}

}  // namespace tidyfold
