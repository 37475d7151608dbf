#include "mail/item_identity.h"

#include <glib.h>

#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string_view>

namespace tidyfold {
namespace {

class Digest {
 public:
  Digest() : sum_(g_checksum_new(G_CHECKSUM_SHA256), g_checksum_free) {}

  // With the length in front, so that "ab", "c" differs from "a", "bc".
  void Add(std::string_view text) {
    Add(static_cast<std::int64_t>(text.size()));
    g_checksum_update(sum_.get(), reinterpret_cast<const guchar*>(text.data()),
                      static_cast<gssize>(text.size()));
  }
  void Add(std::int64_t number) {
    std::array<guchar, sizeof number> bytes;
    std::memcpy(bytes.data(), &number, sizeof number);
    g_checksum_update(sum_.get(), bytes.data(), static_cast<gssize>(bytes.size()));
  }
  // In seconds: a date may have been a sum of days and parts of a day.
  void Add_Date(Date date) { Add(std::llround(date * 86400)); }

  std::int64_t Number() {
    std::array<guint8, 32> bytes;
    gsize size = bytes.size();
    g_checksum_get_digest(sum_.get(), bytes.data(), &size);
    std::uint64_t number = 0;
    std::memcpy(&number, bytes.data(), sizeof number);
    number >>= 1;
    return number == 0 ? 1 : static_cast<std::int64_t>(number);
  }

 private:
  std::unique_ptr<GChecksum, decltype(&g_checksum_free)> sum_;
};

}  // namespace

bool Is_Message_Class(std::int32_t number) {
  return number == item_class::mail || number == item_class::report ||
         (number >= item_class::meeting_request && number <= item_class::meeting_response_tentative);
}

std::string Plain_Text(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (const char c : text)
    if (c != '\r') plain += c;
  plain.resize(plain.find_last_not_of(" \n\t") + 1);
  return plain;
}

std::int64_t Item_Identity(const New_Item& item) {
  Digest digest;
  digest.Add(std::int64_t{item.item_class});
  digest.Add(item.message_id);
  digest.Add(item.sender);
  digest.Add(item.recipients);
  digest.Add(item.subject);
  digest.Add(Plain_Text(item.body));
  // Where a mail names no date of its own, the files of mail programs do, each another one.
  if (item.message_id.empty()) digest.Add_Date(item.received);
  for (const Date date : {item.completed, item.due, item.end}) digest.Add_Date(date);
  for (const New_Attachment& attachment : item.attachments) {
    digest.Add(attachment.name);
    digest.Add(attachment.size);
  }
  if (!Is_Message_Class(item.item_class)) digest.Add(Plain_Text(item.raw_message));
  return digest.Number();
}

std::int64_t Item_Fingerprint(const New_Item& item) {
  Digest digest;
  digest.Add(Item_Identity(item));
  digest.Add(item.message_id);
  digest.Add(item.list_id);
  digest.Add(item.sender_address);
  digest.Add(item.raw_message);
  digest.Add(std::int64_t{0} + (item.unread ? 1 : 0) + (item.flagged ? 2 : 0) + (item.answered ? 4 : 0));
  for (const Date date : {item.received, item.last_modified}) digest.Add_Date(date);
  for (const New_Attachment& attachment : item.attachments) digest.Add(attachment.content);
  return digest.Number();
}

}  // namespace tidyfold
