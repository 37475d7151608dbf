#include "controls/interaction.h"

namespace tidyfold {

Answer Safest_Answer(Buttons buttons) {
  if (buttons == Buttons::OK_Only) return Answer::OK;
  return buttons == Buttons::Yes_No ? Answer::No : Answer::Cancel;
}

std::string Review::Text() const {
  std::string text = sentence;
  if (!lines.empty()) text += "\r\n";
  for (const std::string& line : lines) text += "\r\n" + line;
  if (!notes.empty()) text += "\r\n";
  for (const std::string& note : notes) text += "\r\n" + note;
  return text;
}

Answer Message_Box::Show_Review(const Review& review) {
  return Show(review.Text(), Buttons::OK_Cancel);
}

}  // namespace tidyfold
