// Message boxes as the desktop shows them.
#pragma once

#include <functional>

#include "controls/interaction.h"

namespace tidyfold {

// Belongs to the window that is in front. Esc and closing the box are the answer that changes nothing, and so
// is Enter.
class Desktop_Message_Box : public Message_Box {
 public:
  // Run around each box: before it opens (bring what lies behind it up to date), and after it has closed.
  std::function<void(const std::string& text)> opening;
  std::function<void()> closed;

  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override;
  // How many boxes are open, one above the other.
  int Open_Boxes() const { return open_boxes_; }

 private:
  int open_boxes_ = 0;
};

}  // namespace tidyfold
