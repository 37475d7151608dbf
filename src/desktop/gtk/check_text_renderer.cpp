#include "desktop/common/check_text_renderer.h"

#include <gtk/gtk.h>

#include <utility>

namespace tidyfold {

namespace {

class Check_Text_Renderer : public wxDataViewTextRenderer {
 public:
  explicit Check_Text_Renderer(Tick_Handler ticked)
      : wxDataViewTextRenderer(wxDataViewCheckIconTextRenderer::GetDefaultType()),
        ticked_(std::move(ticked)),
        toggle_(gtk_cell_renderer_toggle_new()),
        picture_(gtk_cell_renderer_pixbuf_new()) {
    g_signal_connect(toggle_, "toggled", G_CALLBACK(Toggled), this);
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
  static void Toggled(GtkCellRendererToggle*, gchar* path_text, gpointer data) {
    const auto* const self = static_cast<Check_Text_Renderer*>(data);
    GtkTreePath* const path = gtk_tree_path_new_from_string(path_text);
    const wxDataViewItem item = self->GetOwner()->GetOwner()->GTKPathToItem(path);
    gtk_tree_path_free(path);
    if (item.IsOk()) self->ticked_(item);
  }

  Tick_Handler ticked_;
  GtkCellRenderer *toggle_, *picture_;  // owned by the column
};

}  // namespace

wxDataViewRenderer* New_Check_Text_Renderer(Tick_Handler ticked) {
  return new Check_Text_Renderer(std::move(ticked));
}

}  // namespace tidyfold
