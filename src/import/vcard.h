// Reads contacts and distribution lists from vCard 2.1, 3.0 and 4.0 (RFC 6350).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/store_writer.h"

namespace tidyfold {

// Where a card stands in a text.
struct Card_Text {
  std::size_t begin;
  std::size_t size;
  bool whole;  // with its end
};

// The outermost cards of the text.
std::vector<Card_Text> Cards_In(std::string_view text);

// The card's text becomes the item's raw form. Throws Message_Error if there is nothing in it to call it by.
New_Item Read_Vcard(std::string card);

}  // namespace tidyfold
