// A message box that a test answers from a script. Unexpected boxes fail the test, and so do expected ones
// that are never shown.
//
//   Scripted_Message_Box box;
//   box.Expect("Are you sure", Buttons::Yes_No, Answer::Yes);
//   box.Expect(Exact("Done."), Buttons::OK_Only, Answer::OK, [&] { window.cmdRun.Push(); });
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "controls/interaction.h"

namespace tidyfold {

// The text of an expected box: all of it, or a part. A plain string is a part.
struct Expected_Text {
  Expected_Text(const char* part) : text(part) {}
  Expected_Text(std::string part) : text(std::move(part)) {}
  bool Fits(const std::string& shown) const {
    return whole ? shown == text : shown.find(text) != std::string::npos;
  }
  std::string text;
  bool whole = false;
};

inline Expected_Text Exact(std::string text) {
  Expected_Text expected(std::move(text));
  expected.whole = true;
  return expected;
}

class Scripted_Message_Box : public Message_Box {
 public:
  struct Shown {
    std::string text;
    Buttons buttons;
    Icon icon;
  };

  Scripted_Message_Box() = default;
  Scripted_Message_Box(const Scripted_Message_Box&) = delete;
  Scripted_Message_Box& operator=(const Scripted_Message_Box&) = delete;
  ~Scripted_Message_Box() override { Verify(); }

  // Boxes must come in this order. The action runs while the box is open, like a handler in its event loop.
  void Expect(Expected_Text text, Buttons buttons, Answer answer, std::function<void()> while_open = {}) {
    script_.push_back({std::move(text), buttons, answer, std::move(while_open)});
  }

  // What a question for a directory is answered with.
  std::optional<std::string> directory;
  std::optional<std::string> Ask_Directory(const std::string&, const std::string&) override {
    return directory;
  }

  // From now on a box that the script does not expect is answered Yes or OK instead of failing the test.
  void Answer_Anything() { answer_anything_ = true; }

  // Runs when a box has been answered, before Show returns; numbers count from 1.
  std::function<void(int number)> on_box;

  // Every box so far.
  const std::vector<Shown>& Boxes() const { return shown_; }
  int Count(std::string_view part) const {
    int count = 0;
    for (const Shown& box : shown_) count += box.text.find(part) != std::string::npos ? 1 : 0;
    return count;
  }

  // Fails the test when expected boxes have not been shown, and forgets them.
  void Verify() {
    for (const Step& step : script_) ADD_FAILURE() << "Expected message box not shown: " << step.text.text;
    script_.clear();
  }

  // By its sentence; what else it says is in `last_review`.
  Answer Show_Review(const Review& review) override {
    last_review = review;
    return Show(review.sentence, Buttons::OK_Cancel, Icon::None, application_title);
  }
  Review last_review;

  Answer Show(const std::string& text, Buttons buttons, Icon icon, const std::string&) override {
    shown_.push_back({text, buttons, icon});
    const Answer answer = Scripted_Answer(text, buttons);
    if (on_box) on_box(static_cast<int>(shown_.size()));
    return answer;
  }

 private:
  Answer Scripted_Answer(const std::string& text, Buttons buttons) {
    if (script_.empty() || (answer_anything_ && !script_.front().text.Fits(text))) {
      if (answer_anything_) return Consenting(buttons);
      ADD_FAILURE() << "Unexpected message box: " << text;
      return Safest_Answer(buttons);
    }
    const Step step = std::move(script_.front());
    script_.pop_front();
    if (!step.text.Fits(text)) {
      ADD_FAILURE() << "Message box: " << text << "\nExpected: " << step.text.text;
      return Safest_Answer(buttons);
    }
    EXPECT_EQ(buttons, step.buttons) << "Buttons of: " << text;
    if (step.while_open) step.while_open();
    return step.answer;
  }

  struct Step {
    Expected_Text text;
    Buttons buttons;
    Answer answer;
    std::function<void()> while_open;
  };

  static Answer Consenting(Buttons buttons) {
    return buttons == Buttons::Yes_No || buttons == Buttons::Yes_No_Cancel ? Answer::Yes : Answer::OK;
  }
  std::deque<Step> script_;
  std::vector<Shown> shown_;
  bool answer_anything_ = false;
};

}  // namespace tidyfold
