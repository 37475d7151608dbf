#include "outlook/item_key.h"

#include <cmath>
#include <string_view>

namespace tidyfold {

namespace {

// FNV-1a, 64 bits.
class Hash {
 public:
  void Add_Byte(unsigned char byte) { value_ = (value_ ^ byte) * 0x100000001B3u; }
  void Add_Number(std::int64_t number) {
    for (int shift = 0; shift < 64; shift += 8) Add_Byte(static_cast<unsigned char>(number >> shift));
  }
  // Ends with a byte that UTF-8 does not have, so that neighbours cannot run into one another.
  void Add_Text(std::string_view text) {
    for (const char character : text) {
      const bool ignored =
          character == '\r' || character == '\n' || character == ' ' || character == '\t' || character == '>';
      if (!ignored) Add_Byte(static_cast<unsigned char>(character));
    }
    Add_Byte(0xFF);
  }
  void Add_Date(Date date) { Add_Number(std::llround(date * 86400)); }
  std::uint64_t Value() const { return value_; }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325u;
};

}  // namespace

Item_Key Key_Of(const New_Item& item) {
  Hash hash;
  hash.Add_Number(item.item_class);
  for (const std::string* text : {&item.sender, &item.subject, &item.body}) hash.Add_Text(*text);
  for (const New_Attachment& attachment : item.attachments) hash.Add_Text(attachment.name);
  if (item.message_id.empty()) {
    hash.Add_Text(item.recipients);
    for (const Date date : {item.received, item.completed, item.due, item.end}) hash.Add_Date(date);
  }
  return {item.message_id, hash.Value()};
}

}  // namespace tidyfold
