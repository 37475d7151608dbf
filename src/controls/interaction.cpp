#include "controls/interaction.h"

namespace tidyfold {

std::string Review::Text() const {
  std::string text = sentence;
  if (!rows.empty()) text += "\r\n";
  for (const std::vector<std::string>& row : rows) {
    std::string line;
    for (std::size_t cell = 0; cell < row.size(); ++cell)
      line += (cell == 0 ? "" : cell == 1 ? ": " : ", ") + row[cell];
    text += "\r\n" + line;
  }
  if (!notes.empty()) text += "\r\n";
  for (const std::string& note : notes) text += "\r\n" + note;
  return text;
}

Answer Message_Box::Show_Review(const Review& review) {
  return Show(review.Text(), Buttons::OK_Cancel);
}

}  // namespace tidyfold
