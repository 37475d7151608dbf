#include "desktop/common/cell_pictures.h"

#include <wx/brush.h>
#include <wx/pen.h>

#include <algorithm>
#include <initializer_list>
#include <vector>

namespace tidyfold {

namespace {

constexpr int units = 14;

// Draws in a square of 14 units, whatever its size in pixels.
class Sketch {
 public:
  Sketch(wxDC& dc, const wxRect& square, const wxColour& ink) : dc_(dc), square_(square), ink_(ink) {
    Draw_Lines();
  }

  void Draw_Lines() {
    dc_.SetPen(wxPen(ink_, std::max(1, square_.width / units)));
    dc_.SetBrush(*wxTRANSPARENT_BRUSH);
  }
  void Fill() { dc_.SetBrush(ink_); }
  void Line(std::initializer_list<wxPoint> corners) {
    std::vector<wxPoint> points;
    for (const wxPoint& corner : corners) points.push_back(At(corner));
    dc_.DrawLines(static_cast<int>(points.size()), points.data());
  }
  void Box(int left, int top, int right, int bottom) {
    const wxPoint corner = At({left, top}), end = At({right, bottom});
    dc_.DrawRectangle(corner.x, corner.y, end.x - corner.x + 1, end.y - corner.y + 1);
  }
  void Circle(int x, int y, int radius) { dc_.DrawCircle(At({x, y}), radius * square_.width / units); }

 private:
  wxPoint At(const wxPoint& unit) const {
    return {square_.x + unit.x * square_.width / units, square_.y + unit.y * square_.height / units};
  }

  wxDC& dc_;
  const wxRect& square_;
  wxColour ink_;
};

}  // namespace

int Cell_Picture_Side(int character_height) {
  return std::max(units, character_height * 4 / 5);
}

void Draw_Cell_Picture(wxDC& dc, Cell_Picture picture, const wxRect& square, const wxColour& ink) {
  Sketch sketch(dc, square, ink);
  switch (picture) {
    case Cell_Picture::None:
      return;
    case Cell_Picture::Goes:  // a waste bin
      sketch.Line({{1, 3}, {13, 3}});
      sketch.Line({{5, 3}, {5, 1}, {9, 1}, {9, 3}});
      sketch.Line({{3, 3}, {4, 13}, {10, 13}, {11, 3}});
      sketch.Line({{6, 5}, {6, 11}});
      sketch.Line({{8, 5}, {8, 11}});
      return;
    case Cell_Picture::Attachment:  // a paper clip
      sketch.Line({{4, 4},
                   {4, 10},
                   {5, 12},
                   {7, 13},
                   {9, 12},
                   {10, 10},
                   {10, 3},
                   {9, 1},
                   {7, 1},
                   {6, 3},
                   {6, 9},
                   {7, 10},
                   {8, 9},
                   {8, 4}});
      return;
    case Cell_Picture::Mail:
      sketch.Box(0, 2, 13, 11);
      sketch.Line({{0, 2}, {7, 8}, {13, 2}});
      return;
    case Cell_Picture::Appointment:
      sketch.Box(1, 2, 12, 12);
      sketch.Line({{1, 5}, {12, 5}});
      sketch.Line({{4, 0}, {4, 3}});
      sketch.Line({{9, 0}, {9, 3}});
      return;
    case Cell_Picture::Contact:
      sketch.Circle(7, 4, 3);
      sketch.Line({{1, 13}, {2, 10}, {5, 8}, {9, 8}, {12, 10}, {13, 13}, {1, 13}});
      return;
    case Cell_Picture::Task:
      sketch.Box(1, 1, 12, 12);
      sketch.Line({{3, 7}, {6, 10}, {11, 3}});
      return;
    case Cell_Picture::Journal:
      sketch.Box(2, 1, 11, 12);
      sketch.Line({{4, 1}, {4, 12}});
      sketch.Line({{6, 4}, {10, 4}});
      return;
    case Cell_Picture::Note:
      sketch.Line({{2, 1}, {11, 1}, {11, 9}, {8, 12}, {2, 12}, {2, 1}});
      sketch.Line({{8, 12}, {8, 9}, {11, 9}});
      sketch.Line({{4, 4}, {9, 4}});
      return;
    case Cell_Picture::Other:
      sketch.Box(2, 1, 11, 12);
      sketch.Line({{4, 4}, {9, 4}});
      sketch.Line({{4, 7}, {9, 7}});
      return;
  }
}

}  // namespace tidyfold
