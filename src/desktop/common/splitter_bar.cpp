#include "desktop/common/splitter_bar.h"

#include <wx/dcbuffer.h>
#include <wx/settings.h>
#include <wx/utils.h>

namespace tidyfold {

namespace {

// Unscaled pixels.
constexpr int key_step = 16;
constexpr int handle_length = 36;
constexpr int dot_distance = 6;

}  // namespace

Splitter_Bar::Splitter_Bar(wxWindow* parent)
    : wxWindow(parent, wxID_ANY, wxDefaultPosition, wxDefaultSize, 0) {
  SetBackgroundStyle(wxBG_STYLE_PAINT);
  Bind(wxEVT_PAINT, &Splitter_Bar::Paint, this);
  const auto repaint = [this](wxEvent& event) {
    event.Skip();
    Refresh();
  };
  Bind(wxEVT_SET_FOCUS, repaint);
  Bind(wxEVT_KILL_FOCUS, repaint);
  Bind(wxEVT_ENTER_WINDOW, [this](wxMouseEvent&) {
    hot_ = true;
    Refresh();
  });
  Bind(wxEVT_LEAVE_WINDOW, [this](wxMouseEvent&) {
    hot_ = false;
    Refresh();
  });
}

void Splitter_Bar::Paint(wxPaintEvent&) {
  wxAutoBufferedPaintDC dc(this);
  const wxSize size = GetClientSize();
  dc.SetPen(*wxTRANSPARENT_PEN);
  dc.SetBrush(wxSystemSettings::GetColour(wxSYS_COLOUR_BTNFACE));
  dc.DrawRectangle(size);
  const bool strong = HasFocus() || hot_ || HasCapture();
  const wxColour ink = wxSystemSettings::GetColour(strong ? wxSYS_COLOUR_HIGHLIGHT : wxSYS_COLOUR_GRAYTEXT);
  dc.SetBrush(ink);
  const int dot = FromDIP(2), length = FromDIP(handle_length);
  for (int y = (size.y - length) / 2; y < (size.y + length) / 2; y += FromDIP(dot_distance))
    dc.DrawRectangle((size.x - dot) / 2, y, dot, dot);
  if (HasFocus()) {
    dc.SetBrush(*wxTRANSPARENT_BRUSH);
    dc.SetPen(wxPen(ink, 1, wxPENSTYLE_DOT));
    dc.DrawRectangle(size);
  }
}

Splitter_Bar_Binder::Splitter_Bar_Binder(PictureBox& model, Splitter_Bar& widget, const Scale& scale)
    : Control_Binder(model, widget), model_(model), widget_(widget), scale_(scale) {
  // A second press in quick succession arrives as a double click.
  for (const auto& press : {wxEVT_LEFT_DOWN, wxEVT_LEFT_DCLICK}) {
    widget_.Bind(press, [this](wxMouseEvent& event) {
      if (widget_.HasCapture()) return;
      widget_.SetFocus();
      widget_.Raise();
      widget_.CaptureMouse();
      grip_ = event.GetX();
      Raise(model_.MouseDown, scale_.To_Twips(event.GetX()));
    });
  }
  widget_.Bind(wxEVT_MOTION, [this](wxMouseEvent&) {
    if (widget_.HasCapture()) Follow_Pointer();
  });
  // GTK loses a release outside of the window that came before the press was handled.
  widget_.Bind(wxEVT_IDLE, [this](wxIdleEvent& event) {
    event.Skip();
    if (!widget_.HasCapture()) return;
    const wxMouseState mouse = wxGetMouseState();
    if (mouse.LeftIsDown() || mouse.MiddleIsDown() || mouse.RightIsDown()) return;
    Follow_Pointer();
    widget_.ReleaseMouse();
    Let_Go(0);
  });
  widget_.Bind(wxEVT_LEFT_UP, [this](wxMouseEvent& event) {
    if (!widget_.HasCapture()) return;
    widget_.ReleaseMouse();
    Let_Go(event.GetX());
  });
  widget_.Bind(wxEVT_MOUSE_CAPTURE_LOST, [this](wxMouseCaptureLostEvent&) { Let_Go(0); });
  widget_.Bind(wxEVT_KEY_DOWN, [this](wxKeyEvent& event) {
    switch (event.GetKeyCode()) {
      case WXK_LEFT:
        return Drag_By(-widget_.FromDIP(key_step));
      case WXK_RIGHT:
        return Drag_By(widget_.FromDIP(key_step));
      case WXK_TAB:
        widget_.Navigate(event.ShiftDown() ? wxNavigationKeyEvent::IsBackward
                                           : wxNavigationKeyEvent::IsForward);
        return;
      default:
        event.Skip();
    }
  });
  Show();
}

void Splitter_Bar_Binder::Show_Model() {
  widget_.SetCursor(model_.Mouse_Pointer() == MousePointer::Size_West_East ? wxCursor(wxCURSOR_SIZEWE)
                                                                           : wxNullCursor);
}

void Splitter_Bar_Binder::Drag_By(int pixels) {
  Raise(model_.MouseDown, Twips{0});
  Raise(model_.MouseMove, scale_.To_Twips(pixels));
  Let_Go(0);
}

// Not to an event's position, which is relative to where the bar was when the pointer moved.
void Splitter_Bar_Binder::Follow_Pointer() {
  const int pointer = widget_.GetParent()->ScreenToClient(wxGetMousePosition()).x;
  Raise(model_.MouseMove, scale_.To_Twips(pointer - grip_ - scale_.Pixels(model_.Left())));
}

void Splitter_Bar_Binder::Let_Go(int x) {
  Raise(model_.MouseUp, scale_.To_Twips(x));
  widget_.Refresh();
}

}  // namespace tidyfold
