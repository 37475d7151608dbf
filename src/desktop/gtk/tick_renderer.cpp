#include "desktop/gtk/tick_renderer.h"

#include <gtk/gtk-a11y.h>

#include <memory>
#include <string>

namespace tidyfold {

namespace {

constexpr const char* asked = "asked";

struct Path_Deleter {
  void operator()(GtkTreePath* path) const { gtk_tree_path_free(path); }
};
using Path = std::unique_ptr<GtkTreePath, Path_Deleter>;

// The path of a row by its place among those that stand in open branches, from 0; empty when there is none.
Path Path_Of_Row(GtkTreeView* view, int row) {
  GtkTreeModel* const model = gtk_tree_view_get_model(view);
  Path path(gtk_tree_path_new_first());
  const auto exists = [&] {
    GtkTreeIter unused;
    return gtk_tree_path_get_depth(path.get()) > 0 &&
           gtk_tree_model_get_iter(model, &unused, path.get()) != FALSE;
  };
  for (; row > 0; --row) {
    if (gtk_tree_view_row_expanded(view, path.get()) != FALSE) {
      gtk_tree_path_down(path.get());
      continue;
    }
    gtk_tree_path_next(path.get());
    while (!exists()) {
      if (gtk_tree_path_up(path.get()) == FALSE || gtk_tree_path_get_depth(path.get()) == 0) return nullptr;
      gtk_tree_path_next(path.get());
    }
  }
  return row == 0 && exists() ? std::move(path) : nullptr;
}

// The text that stands in the same row.
const gchar* Name_Of(AtkObject* cell) {
  AtkObject* const row = atk_object_get_parent(cell);
  for (int at = row == nullptr ? 0 : atk_object_get_n_accessible_children(row); at-- > 0;) {
    AtkObject* const other = atk_object_ref_accessible_child(row, at);
    if (other == nullptr) continue;
    // The row keeps the cell, and the cell its text.
    const gchar* const text = GTK_IS_TEXT_CELL_ACCESSIBLE(other) ? atk_object_get_name(other) : nullptr;
    g_object_unref(other);
    if (text != nullptr) return text;
  }
  return nullptr;
}

// The path of the row that the tick stands in; empty where it cannot be ticked, or stands nowhere any more.
Path Path_Of(AtkObject* cell) {
  GtkWidget* const view = gtk_accessible_get_widget(GTK_ACCESSIBLE(cell));
  AtkObject* const row = atk_object_get_parent(cell);
  gint place = 0, column = 0;
  if (view == nullptr || gtk_widget_is_sensitive(view) == FALSE || !ATK_IS_TABLE_CELL(row) ||
      atk_table_cell_get_position(ATK_TABLE_CELL(row), &place, &column) == FALSE)
    return nullptr;
  return Path_Of_Row(GTK_TREE_VIEW(view), place);
}

std::string Text_Of(AtkObject* cell) {
  const gchar* const name = Name_Of(cell);
  return name != nullptr ? name : "";
}

struct Question {
  AtkObject* cell;
  std::string name;
};

// The tree may be another one by now: what was asked for is a folder of this name in this place.
gboolean Ask(gpointer data) {
  const std::unique_ptr<Question> question(static_cast<Question*>(data));
  const Path path = Path_Of(question->cell);
  if (path != nullptr && Text_Of(question->cell) == question->name) {
    GtkCellRenderer* renderer = nullptr;
    g_object_get(question->cell, "renderer", &renderer, nullptr);
    gchar* const text = gtk_tree_path_to_string(path.get());
    g_signal_emit_by_name(renderer, asked, text);
    g_free(text);
    g_object_unref(renderer);
  }
  g_object_unref(question->cell);
  return G_SOURCE_REMOVE;
}

gboolean Do_Action(AtkAction* action, gint number) {
  AtkObject* const cell = ATK_OBJECT(action);
  if (number != 0 || Path_Of(cell) == nullptr) return FALSE;
  // A box may follow the tick, and would keep the answer back until it is closed.
  g_idle_add(Ask, new Question{ATK_OBJECT(g_object_ref(cell)), Text_Of(cell)});
  return TRUE;
}

template <void (*Class_Ready)(gpointer)>
GType Derived(GType parent, const char* name) {
  GTypeQuery sizes;
  g_type_query(parent, &sizes);
  return g_type_register_static_simple(
      parent, name, sizes.class_size, [](gpointer it, gpointer) { Class_Ready(it); }, sizes.instance_size,
      nullptr, G_TYPE_FLAG_NONE);
}

void Accessible_Class_Ready(gpointer it) {
  ATK_OBJECT_CLASS(it)->get_name = Name_Of;
}

GType Accessible_Type() {
  static const GType type = [] {
    const GType derived =
        Derived<Accessible_Class_Ready>(GTK_TYPE_BOOLEAN_CELL_ACCESSIBLE, "TidyfoldTickAccessible");
    const GInterfaceInfo actions = {
        [](gpointer it, gpointer) {
          auto* const action = static_cast<AtkActionIface*>(it);
          action->do_action = Do_Action;
          action->get_n_actions = [](AtkAction*) { return 1; };
          const auto name = [](AtkAction*, gint number) -> const gchar* {
            return number == 0 ? "toggle" : nullptr;
          };
          action->get_name = action->get_localized_name = action->get_description = name;
          action->get_keybinding = [](AtkAction*, gint) -> const gchar* { return nullptr; };
        },
        nullptr, nullptr};
    g_type_add_interface_static(derived, ATK_TYPE_ACTION, &actions);
    return derived;
  }();
  return type;
}

void Renderer_Class_Ready(gpointer it) {
  gtk_cell_renderer_class_set_accessible_type(GTK_CELL_RENDERER_CLASS(it), Accessible_Type());
  g_signal_new(asked, G_TYPE_FROM_CLASS(it), G_SIGNAL_RUN_LAST, 0, nullptr, nullptr, nullptr, G_TYPE_NONE, 1,
               G_TYPE_STRING);
}

}  // namespace

GtkCellRenderer* New_Tick_Renderer() {
  static const GType type = Derived<Renderer_Class_Ready>(GTK_TYPE_CELL_RENDERER_TOGGLE, "TidyfoldTick");
  return GTK_CELL_RENDERER(g_object_new(type, nullptr));
}

}  // namespace tidyfold
