#include "desktop/common/system_look.h"

#include <gtk/gtk.h>

#include <string>

#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// Darker than most themes' red, on which white text does not differ by 4.5:1.
constexpr const char* dangerous_look =
    "button.destructive-action:not(:disabled) { background-image: none; background-color: #a8121f;"
    " border-color: #7d0c16; color: #ffffff; text-shadow: none; }"
    "button.destructive-action:hover:not(:disabled) { background-color: #bf1826; }"
    "button.destructive-action:active:not(:disabled) { background-color: #8c0e19; }";

GtkStyleProvider* Dangerous_Look() {
  static GtkCssProvider* const provider = [] {
    GtkCssProvider* const made = gtk_css_provider_new();
    gtk_css_provider_load_from_data(made, dangerous_look, -1, nullptr);
    return made;
  }();
  return GTK_STYLE_PROVIDER(provider);
}

}  // namespace

// GTK leaves the screen's scale factor out of its pixels; only the text grows, by the resolution.
double Dots_Per_Inch(const wxWindow&) {
  const double resolution = gdk_screen_get_resolution(gdk_screen_get_default());
  return resolution > 0 ? resolution : 96;
}

int Check_Box_Gap() {
  return 0;
}

void Look_Dangerous(wxButton& button, bool dangerous) {
  GtkStyleContext* const style = gtk_widget_get_style_context(GTK_WIDGET(button.GetHandle()));
  if (dangerous) {
    gtk_style_context_add_provider(style, Dangerous_Look(), GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    gtk_style_context_add_class(style, GTK_STYLE_CLASS_DESTRUCTIVE_ACTION);
  } else {
    gtk_style_context_remove_class(style, GTK_STYLE_CLASS_DESTRUCTIVE_ACTION);
    gtk_style_context_remove_provider(style, Dangerous_Look());
  }
}

namespace {

struct Tip {
  GdkRectangle part;
  std::string text;
};

gboolean Tip_Asked_For(GtkWidget*, gint x, gint y, gboolean, GtkTooltip* tooltip, gpointer data) {
  const auto* const tip = static_cast<const Tip*>(data);
  const GdkRectangle& part = tip->part;
  if (tip->text.empty() || x < part.x || y < part.y || x >= part.x + part.width || y >= part.y + part.height)
    return FALSE;
  gtk_tooltip_set_tip_area(tooltip, &part);
  gtk_tooltip_set_text(tooltip, tip->text.c_str());
  return TRUE;
}

}  // namespace

void Show_Tip_Beside(wxWindow& window, const wxRect& part, const wxString& text) {
  constexpr const char* kept = "tidyfold-tip";
  GtkWidget* const widget = GTK_WIDGET(window.GetHandle());
  auto* tip = static_cast<Tip*>(g_object_get_data(G_OBJECT(widget), kept));
  if (tip == nullptr) {
    tip = new Tip;
    g_object_set_data_full(G_OBJECT(widget), kept, tip,
                           [](gpointer data) { delete static_cast<Tip*>(data); });
    gtk_widget_set_has_tooltip(widget, TRUE);
    g_signal_connect(widget, "query-tooltip", G_CALLBACK(Tip_Asked_For), tip);
  }
  tip->part = {part.x, part.y, part.width, part.height};
  tip->text = From_Wx(text);
}

long Tool_Bar_Style() {
  return 0;
}

bool Is_On_Screen(const wxWindow& window) {
  return gtk_widget_get_mapped(GTK_WIDGET(window.GetHandle())) != FALSE;
}

// wxTopLevelWindow::IsActive is true some time before the window manager agrees.
bool Is_In_Front(wxFrame& frame) {
  return gtk_window_is_active(GTK_WINDOW(frame.GetHandle())) != FALSE;
}

bool Is_Program_In_Front() {
  bool active = false;
  GList* const windows = gtk_window_list_toplevels();
  for (const GList* at = windows; at != nullptr; at = at->next)
    active = active || gtk_window_is_active(GTK_WINDOW(at->data)) != FALSE;
  g_list_free(windows);
  return active;
}

}  // namespace tidyfold
