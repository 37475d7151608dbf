// Message boxes as the desktop shows them.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "controls/interaction.h"
#include "settings/user_values.h"

namespace tidyfold {

// A box belongs to the window in front. Esc and closing it are the answer that changes nothing: No where
// there is no Cancel. Enter is that answer too, except on the review, whose Enter is OK.
class Desktop_Message_Box : public Message_Box {
 public:
  // Called around each box: before it opens, to update the windows behind it, and after it has closed.
  std::function<void(const std::string& text)> opening;
  std::function<void()> closed;

  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string& title) override;
  // With a box to tick by which it is not shown again.
  void Inform(const std::string& text) override;
  void Show_All_Again();
  // Where that is kept; none: it is shown every time.
  std::unique_ptr<User_Values> not_shown_again;
  Answer Show_Review(const Review& review) override;
  std::optional<std::string> Ask_Directory(const std::string& question, const std::string& now) override;
  std::optional<std::int32_t> Ask_Number(const std::string& question, std::int32_t now, std::int32_t least,
                                         std::int32_t most) override;
  // Boxes may be nested.
  int Open_Boxes() const { return open_boxes_; }

 private:
  // `ask` is given the window that the box belongs to.
  template <class Ask>
  auto Open(const std::string& text, Ask&& ask);

  int open_boxes_ = 0;
};

}  // namespace tidyfold
