#include "mail/tnef.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "mail/charset.h"
#include "mail/compressed_rtf.h"
#include "mail/html_text.h"
#include "mail/rtf_text.h"

namespace tidyfold {
namespace {

constexpr std::uint32_t signature = 0x223E9F78;
constexpr std::size_t most_attachments = 10'000;

// Attributes of the stream, without their types.
enum Attribute : std::uint32_t {
  attribute_body = 0x800C,
  attribute_attachment_data = 0x800F,
  attribute_attachment_title = 0x8010,
  attribute_new_attachment = 0x9002,
  attribute_message_properties = 0x9003,
  attribute_attachment_properties = 0x9005,
  attribute_code_page = 0x9007
};

// MAPI properties inside the attributes, and their types.
enum Property : std::uint32_t {
  property_body = 0x1000,
  property_compressed_rtf = 0x1009,
  property_html = 0x1013,
  property_display_name = 0x3001,
  property_attachment_data = 0x3701,
  property_attachment_name = 0x3704,
  property_attachment_long_name = 0x3707,
  property_code_page = 0x3FDE
};
enum Property_Type : std::uint32_t {
  type_short = 0x0002,
  type_long = 0x0003,
  type_float = 0x0004,
  type_double = 0x0005,
  type_currency = 0x0006,
  type_application_time = 0x0007,
  type_error = 0x000A,
  type_boolean = 0x000B,
  type_object = 0x000D,
  type_integer = 0x0014,
  type_text = 0x001E,
  type_unicode = 0x001F,
  type_time = 0x0040,
  type_identifier = 0x0048,
  type_binary = 0x0102,
  many_values = 0x1000
};

// Little-endian numbers and blocks; once it runs out, it yields zeros and empty blocks.
class Byte_Reader {
 public:
  explicit Byte_Reader(std::string_view bytes) : rest_(bytes) {}

  std::uint32_t Number(std::size_t size) {
    const std::string_view bytes = Block(size);
    std::uint32_t number = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
      number = (number << 8) | static_cast<unsigned char>(bytes[i]);
    return number;
  }
  std::string_view Block(std::size_t size) {
    failed_ = failed_ || size > rest_.size();
    if (failed_) return {};
    const std::string_view block = rest_.substr(0, size);
    rest_.remove_prefix(size);
    return block;
  }
  // A block that is filled up to a multiple of four bytes.
  std::string_view Padded_Block(std::size_t size) {
    const std::string_view block = Block(size);
    Block(std::min((4 - size % 4) % 4, rest_.size()));
    return block;
  }
  std::string_view Rest() const { return rest_; }
  bool Failed() const { return failed_; }
  bool At_End() const { return failed_ || rest_.empty(); }

 private:
  std::string_view rest_;
  bool failed_ = false;
};

// Bytes of one value whose size follows from its type; 0 for types that give their size.
std::size_t Fixed_Size(std::uint32_t type) {
  switch (type) {
    case type_short:
    case type_long:
    case type_float:
    case type_error:
    case type_boolean:
      return 4;
    case type_double:
    case type_currency:
    case type_application_time:
    case type_integer:
    case type_time:
      return 8;
    case type_identifier:
      return 16;
    default:
      return 0;
  }
}

// Calls `take(id, type, first value)` for each property.
template <class Take>
void Each_Property(std::string_view bytes, Take take) {
  constexpr std::uint32_t first_named = 0x8000;
  constexpr std::uint32_t named_by_text = 1;
  Byte_Reader reader(bytes);
  const std::uint32_t count = reader.Number(4);
  for (std::uint32_t i = 0; i < count && !reader.At_End(); ++i) {
    const std::uint32_t whole_type = reader.Number(2);
    const std::uint32_t id = reader.Number(2);
    if (id >= first_named) {
      reader.Block(16);
      const std::uint32_t kind = reader.Number(4);
      const std::uint32_t number = reader.Number(4);
      if (kind == named_by_text) reader.Padded_Block(number);
    }
    const std::uint32_t type = whole_type & ~std::uint32_t{many_values};
    const std::size_t fixed = Fixed_Size(type);
    const bool has_count = fixed == 0 || type != whole_type;
    const std::uint32_t values = has_count ? reader.Number(4) : 1;
    for (std::uint32_t value = 0; value < values && !reader.At_End(); ++value) {
      const std::string_view block = fixed != 0 ? reader.Block(fixed) : reader.Padded_Block(reader.Number(4));
      if (value == 0 && !reader.Failed()) take(id, type, block);
    }
  }
}

std::string_view Without_End(std::string_view text) {
  return text.substr(0, std::min(text.find('\0'), text.size()));
}

class Tnef_Reader {
 public:
  Tnef_Content Read(std::string_view bytes) {
    Byte_Reader reader(bytes);
    while (!reader.At_End()) {
      reader.Block(1);  // whether it is of the message or of an attachment, which the number tells too
      const std::uint32_t attribute = reader.Number(4) & 0xFFFF;
      const std::uint32_t size = reader.Number(4);
      std::string_view block = reader.Block(size);
      // Of a file that was cut off, what is there.
      if (reader.Failed()) block = reader.Rest();
      reader.Block(2);  // a checksum
      Take(attribute, block);
    }
    content_.body = Body();
    return std::move(content_);
  }

 private:
  void Take(std::uint32_t attribute, std::string_view block) {
    switch (attribute) {
      case attribute_code_page:
        if (block.size() >= 4) charset_ = Code_Page_Charset(Byte_Reader(block).Number(4));
        return;
      case attribute_body:
        text_ = To_Utf8(Without_End(block), charset_);
        return;
      case attribute_message_properties:
        Each_Property(block, [this](std::uint32_t id, std::uint32_t type, std::string_view value) {
          if (id == property_body) text_ = Text(type, value);
          if (id == property_html) html_ = value;
          if (id == property_compressed_rtf) rtf_ = value;
          if (id == property_code_page && value.size() >= 4)
            html_charset_ = Code_Page_Charset(Byte_Reader(value).Number(4));
        });
        return;
      case attribute_new_attachment:
        reading_attachment_ = content_.attachments.size() < most_attachments;
        long_name_ = false;
        if (reading_attachment_) content_.attachments.emplace_back();
        return;
      default:
        if (reading_attachment_) Take_Attachment(attribute, block, content_.attachments.back());
    }
  }

  void Take_Attachment(std::uint32_t attribute, std::string_view block, New_Attachment& attachment) {
    if (attribute == attribute_attachment_title && !long_name_) {
      attachment.name = One_Line(To_Utf8(Without_End(block), charset_));
    } else if (attribute == attribute_attachment_data) {
      attachment.size = static_cast<std::int64_t>(block.size());
    } else if (attribute == attribute_attachment_properties) {
      Each_Property(block, [&](std::uint32_t id, std::uint32_t type, std::string_view value) {
        if (id == property_attachment_data && attachment.size == 0)
          attachment.size = static_cast<std::int64_t>(value.size());
        const bool named =
            id == property_attachment_long_name ||
            ((id == property_display_name || id == property_attachment_name) && attachment.name.empty());
        if (!named || (long_name_ && id != property_attachment_long_name)) return;
        attachment.name = One_Line(Text(type, value));
        long_name_ = id == property_attachment_long_name;
      });
    }
  }

  std::string Text(std::uint32_t type, std::string_view value) const {
    if (type == type_unicode) return To_Utf8(value, "UTF-16LE");
    return To_Utf8(Without_End(value), charset_);
  }

  std::string Body() const {
    if (!text_.empty()) return text_;
    if (!html_.empty()) {
      const std::string charset = html_charset_.empty() ? Html_Charset(html_) : html_charset_;
      return Html_To_Text(To_Utf8(html_, charset));
    }
    return Rtf_To_Text(Decompress_Rtf(rtf_));
  }

  Tnef_Content content_;
  bool reading_attachment_ = false;
  bool long_name_ = false;
  std::string charset_ = "windows-1252";
  std::string html_charset_;
  std::string text_;
  std::string_view html_;
  std::string_view rtf_;
};

}  // namespace

std::optional<Tnef_Content> Read_Tnef(std::string_view bytes) {
  Byte_Reader reader(bytes);
  if (reader.Number(4) != signature) return std::nullopt;
  reader.Block(2);  // a key that only its writer knows
  return Tnef_Reader().Read(reader.Rest());
}

}  // namespace tidyfold
