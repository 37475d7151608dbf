#include "desktop/common/tree_widget.h"

#include <gtk/gtk.h>

#include <memory>

#include "base/text.h"

// wxDataViewCtrl looks up every ancestor of every ancestor of an item; a tree of a thousand levels would take
// more than a minute to open. These calls go to GTK's tree view by paths instead.
namespace tidyfold {

namespace {

struct Path_Deleter {
  void operator()(GtkTreePath* path) const { gtk_tree_path_free(path); }
};
using Path = std::unique_ptr<GtkTreePath, Path_Deleter>;

GtkTreeView* View(wxDataViewCtrl& widget) {
  return GTK_TREE_VIEW(widget.GtkGetTreeView());
}

GtkAdjustment* Scroll_Bar(wxDataViewCtrl& widget) {
  return gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(widget.GtkGetTreeView()));
}

// The widget shows children in the model's order.
Path Path_Of(const TreeView& model, int node) {
  Path path(gtk_tree_path_new());
  for (; node != 0; node = model.Parent(node)) {
    int position = 0;
    if (model.Parent(node) != 0) {
      for (int at = model.First_Sibling(node); at != node; at = model.Next(at)) ++position;
    } else {
      for (int at = 1; at != node; ++at) position += model.Exists(at) && model.Parent(at) == 0;
    }
    gtk_tree_path_prepend_index(path.get(), position);
  }
  return path;
}

}  // namespace

void Tree_Widget::Expand(int node) {
  gtk_tree_view_expand_row(View(widget_), Path_Of(model_, node).get(), FALSE);
}

void Tree_Widget::Collapse(int node) {
  gtk_tree_view_collapse_row(View(widget_), Path_Of(model_, node).get());
}

bool Tree_Widget::Is_Expanded(int node) const {
  return gtk_tree_view_row_expanded(View(widget_), Path_Of(model_, node).get()) != FALSE;
}

void Tree_Widget::Make_Current(int node) {
  gtk_tree_view_set_cursor(View(widget_), Path_Of(model_, node).get(), nullptr, FALSE);
}

void Tree_Widget::Scroll_To(int node) {
  gtk_tree_view_scroll_to_cell(View(widget_), Path_Of(model_, node).get(), nullptr, FALSE, 0, 0);
}

void Tree_Widget::Show_All_Anew() {
  gtk_tree_view_columns_autosize(View(widget_));
  widget_.Refresh();
}

double Tree_Widget::Scroll_Position() const {
  return gtk_adjustment_get_value(Scroll_Bar(widget_));
}

void Tree_Widget::Set_Scroll_Position(double position) {
  gtk_adjustment_set_value(Scroll_Bar(widget_), position);
}

void Tree_Widget::Search_By_Typing() {
  gtk_tree_view_set_search_column(View(widget_), 0);
  gtk_tree_view_set_search_equal_func(
      View(widget_),
      [](GtkTreeModel*, gint, const gchar* typed, GtkTreeIter* row, gpointer data) -> gboolean {
        const auto& model = *static_cast<const TreeView*>(data);
        const int node = Node_Of(wxDataViewItem(row->user_data));
        // FALSE means a match.
        return !model.Exists(node) || !Upper_Case(model.Text(node)).starts_with(Upper_Case(typed));
      },
      const_cast<TreeView*>(&model_), nullptr);
}

}  // namespace tidyfold
