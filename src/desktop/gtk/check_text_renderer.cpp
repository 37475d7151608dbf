#include "desktop/common/check_text_renderer.h"

#include <gtk/gtk.h>

#include <utility>

#include "desktop/gtk/tick_renderer.h"

namespace tidyfold {

namespace {

class Check_Text_Renderer : public wxDataViewTextRenderer {
 public:
  Check_Text_Renderer(Tick_Handler clicked, Tick_Handler asked)
      : wxDataViewTextRenderer(wxDataViewCheckIconTextRenderer::GetDefaultType()),
        clicked_(std::move(clicked)),
        asked_(std::move(asked)),
        toggle_(New_Tick_Renderer()),
        picture_(gtk_cell_renderer_pixbuf_new()) {
    g_signal_connect(toggle_, "toggled", G_CALLBACK(Clicked), this);
    g_signal_connect(toggle_, "asked", G_CALLBACK(Asked), this);
    EnableEllipsize(wxELLIPSIZE_NONE);
  }

  void GtkPackIntoColumn(GtkTreeViewColumn* column) override {
    gtk_tree_view_column_pack_start(column, toggle_, FALSE);
    gtk_tree_view_column_pack_start(column, picture_, FALSE);
    wxDataViewTextRenderer::GtkPackIntoColumn(column);
  }

  bool SetValue(const wxVariant& value) override {
    wxDataViewCheckIconText shown;
    shown << value;
    g_object_set(toggle_, "active", shown.GetCheckedState() == wxCHK_CHECKED, nullptr);
    const wxBitmapBundle bundle = shown.GetBitmapBundle();
    g_object_set(picture_, "visible", bundle.IsOk(), nullptr);
    if (bundle.IsOk()) {
      const wxBitmap bitmap = bundle.GetBitmapFor(GetOwner()->GetOwner());
      g_object_set(picture_, "pixbuf", bitmap.GetPixbuf(), nullptr);
    }
    return SetTextValue(shown.GetText());
  }

 private:
  static void Clicked(GtkCellRenderer*, const gchar* path, gpointer data) {
    const auto* const self = static_cast<Check_Text_Renderer*>(data);
    self->Tell(self->clicked_, path);
  }
  static void Asked(GtkCellRenderer*, const gchar* path, gpointer data) {
    const auto* const self = static_cast<Check_Text_Renderer*>(data);
    self->Tell(self->asked_, path);
  }

  void Tell(const Tick_Handler& handler, const gchar* path_text) const {
    GtkTreePath* const path = gtk_tree_path_new_from_string(path_text);
    const wxDataViewItem item = GetOwner()->GetOwner()->GTKPathToItem(path);
    gtk_tree_path_free(path);
    if (item.IsOk()) handler(item);
  }

  Tick_Handler clicked_, asked_;
  GtkCellRenderer *toggle_, *picture_;  // owned by the column
};

}  // namespace

wxDataViewRenderer* New_Check_Text_Renderer(Tick_Handler clicked, Tick_Handler asked) {
  return new Check_Text_Renderer(std::move(clicked), std::move(asked));
}

}  // namespace tidyfold
