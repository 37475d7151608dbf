#include "grid/item_search.h"

#include <algorithm>
#include <string_view>

#include "base/size_text.h"
#include "base/text.h"

namespace tidyfold {

namespace {

bool Is_Ascii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char letter) { return (letter & 0x80) == 0; });
}

char Upper_Letter(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

// `word` is in upper case. Most words and texts are plain, and then nothing is copied.
bool Holds(std::string_view text, std::string_view word) {
  if (Is_Ascii(word)) {
    return std::search(text.begin(), text.end(), word.begin(), word.end(),
                       [](char letter, char wanted) { return Upper_Letter(letter) == wanted; }) != text.end();
  }
  return !Is_Ascii(text) && Upper_Case(text).find(word) != std::string::npos;
}

}  // namespace

void Item_Search::Wire() {
  window_.txtFind.Change = [this] { txtFind_Change(); };
  window_.grdItems.Row_Shown = [this, before = window_.grdItems.Row_Shown] {
    Raise(before);
    Say_How_Many();
  };
}

void Item_Search::txtFind_Change() {
  errors_.Run("txtFind_Change", [&] {
    words_.clear();
    const std::string text = Upper_Case(window_.txtFind.Text());
    for (std::size_t at = 0; at < text.size();) {
      const std::size_t end = std::min(text.find(' ', at), text.size());
      if (end > at) words_.push_back(text.substr(at, end - at));
      at = end + 1;
    }
    const No_Redraw no_redraw(window_.grdItems);
    if (words_.empty()) {
      window_.grdItems.Narrow({});
    } else {
      window_.grdItems.Narrow([this](const GridRow& row) { return Matches(row); });
    }
    Say_How_Many();
  });
}

bool Item_Search::Matches(const GridRow& row) const {
  const FolderData& record = records_[row.row_data];
  if (row.item < 1 || row.item > record.Cache_Bound()) return false;
  const ItemData& item = record.Cached(row.item);
  return std::all_of(words_.begin(), words_.end(), [&](const std::string& word) {
    return Holds(item.Subject, word) || Holds(item.SenderOrText, word) || Holds(record.FolderName, word) ||
           Holds(Type_Name(item.ItemClass), word) ||
           (item.ItemDate != no_date && Holds(Format_Date(item.ItemDate), word));
  });
}

void Item_Search::Say_How_Many() {
  const FlexGrid& grid = window_.grdItems;
  window_.lblFound.Set_Caption(grid.Is_Narrowed()
                                   ? Format_Count(grid.Shown_Rows()) + " of " +
                                         Format_Count(grid.Rows() - 1) + " shown; what will go stays the same"
                                   : std::string());
}

}  // namespace tidyfold
