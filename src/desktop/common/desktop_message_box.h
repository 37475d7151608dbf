// Message boxes as the desktop shows them.
#pragma once

#include <wx/window.h>

#include <functional>

#include "controls/interaction.h"

namespace tidyfold {

// A box belongs to the window in front. Esc and closing it are the answer that changes nothing: No where
// there is no Cancel. Enter is that answer too, except on the review, whose Enter is OK.
class Desktop_Message_Box : public Message_Box {
 public:
  // Called around each box: before it opens, to update the windows behind it, and after it has closed.
  std::function<void(const std::string& text)> opening;
  std::function<void()> closed;

  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override;
  Answer Show_Review(const Review& review) override;
  // Boxes may be nested.
  int Open_Boxes() const { return open_boxes_; }

 private:
  // `show` is given the window that the box belongs to.
  Answer Open(const std::string& text, const std::function<Answer(wxWindow* parent)>& show);

  int open_boxes_ = 0;
};

}  // namespace tidyfold
