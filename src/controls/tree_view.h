// The model of a tree with check boxes.
#pragma once

#include <vector>

#include "controls/control.h"

namespace tidyfold {

// What the front end is told about single nodes. Everything else arrives through Control::changed.
class TreeView_Observer {
 public:
  virtual ~TreeView_Observer() = default;
  virtual void Node_Added(int index) = 0;
  virtual void Node_Changed(int index) = 0;
  virtual void Node_Removed(int index) = 0;  // the node and all below it; called before they go
  virtual void Cleared() = 0;
  virtual void Selection_Changed(int index) = 0;
  virtual void Made_Visible(int index) = 0;  // scroll to it; its ancestors are expanded already
};

// A node that cannot be ticked shows a lock: its own, or that of a node above it.
enum class Node_Lock { None, From_Above, Own };

// Nodes are named by their index, counted from 1 in the order in which they were added; 0 stands for no node.
// An index is never given to another node until the tree is cleared, so a node that was removed cannot be
// mistaken for one that took its place. All calls that name a node throw std::out_of_range for one that does
// not exist.
class TreeView : public Control {
 public:
  using Control::Control;

  // Adds a node as the last child of `parent`, or in the place that its text has among the children when the
  // parent keeps them sorted (ignoring case, by the texts that the nodes were added with: a text that changes
  // moves no node). Returns its index.
  int Add(int parent, std::string_view key, std::string_view text);
  // Removes a node and everything below it.
  void Remove(int index);
  void Clear();

  // Nodes that exist, and the highest index given.
  int Count() const { return count_; }
  // Nodes that are checked.
  int Checked_Count() const { return checked_count_; }
  int Upper_Bound() const { return static_cast<int>(nodes_.size()); }
  bool Exists(int index) const {
    return index >= 1 && index <= Upper_Bound() && nodes_[static_cast<std::size_t>(index - 1)].exists;
  }
  int Find_Key(std::string_view key) const;

  int Parent(int index) const { return At(index).parent; }
  int Child(int index) const { return At(index).first_child; }
  int Next(int index) const { return At(index).next; }
  int First_Sibling(int index) const;
  int Children(int index) const { return At(index).children; }

  const std::string& Key(int index) const { return At(index).key; }
  const std::string& Text(int index) const { return At(index).text; }
  const std::string& Node_Tag(int index) const { return At(index).tag; }
  bool Checked(int index) const { return At(index).checked; }
  bool Bold(int index) const { return At(index).bold; }
  bool Expanded(int index) const { return At(index).expanded; }
  Colour Fore_Colour(int index) const { return At(index).fore_colour; }
  Node_Lock Lock(int index) const { return At(index).lock; }
  // Shown while the pointer is over the node; empty: the control's own.
  const std::string& Node_Tip(int index) const { return At(index).tip; }

  void Set_Text(int index, std::string_view text);
  void Set_Node_Tag(int index, std::string_view tag) { At(index).tag = tag; }
  void Set_Checked(int index, bool checked);
  void Set_Bold(int index, bool bold);
  void Set_Fore_Colour(int index, Colour colour);
  void Set_Lock(int index, Node_Lock lock);
  void Set_Node_Tip(int index, std::string_view tip) { At(index).tip = tip; }
  void Set_Sorted(int index, bool sorted) { At(index).sorted = sorted; }
  // A change raises Expand or Collapse. A node without children stays collapsed.
  void Set_Expanded(int index, bool expanded);

  int Selected_Item() const { return selected_; }
  void Set_Selected_Item(int index);
  // Expands every ancestor and asks the front end to scroll to the node.
  void Ensure_Visible(int index);

  // What a front end calls when the user ticks a node: sets the tick, then raises NodeCheck. It raises
  // MouseUp (or KeyUp) itself afterwards, as the platform does.
  void Tick(int index, bool checked);
  // What a front end calls when the user clicks a node: selects it, then raises NodeClick.
  void Click_Node(int index);

  std::function<void(int index)> NodeCheck, NodeClick, Expand, Collapse;
  std::function<void()> MouseUp, KeyUp;

  TreeView_Observer* observer = nullptr;

 private:
  struct Node {
    std::string key, text, sort_text, tag, tip;
    int parent = 0, first_child = 0, last_child = 0, next = 0, previous = 0, children = 0;
    Colour fore_colour = 0;
    Node_Lock lock = Node_Lock::None;
    bool exists = true, checked = false, bold = false, expanded = false, sorted = false;
  };
  const Node& At(int index) const {
    if (!Exists(index)) Throw_No_Node(index);
    return nodes_[static_cast<std::size_t>(index - 1)];
  }
  [[noreturn]] static void Throw_No_Node(int index);
  Node& At(int index);
  void Link(int index, int parent);
  void Forget(int index);
  template <class Field, class Value>
  void Assign_Node(int index, Field Node::*field, const Value& value);

  std::vector<Node> nodes_;  // element 0 is node 1
  int count_ = 0;
  int checked_count_ = 0;
  int selected_ = 0;
};

}  // namespace tidyfold
