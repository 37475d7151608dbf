// Items as Outlook describes them (MAPI), whichever file they lie in: properties with numbers, recipients,
// attachments.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tidyfold {

// Property identifiers
// (https://learn.microsoft.com/office/client-developer/outlook/mapi/mapi-properties).
namespace mapi_property {
inline constexpr std::uint32_t importance = 0x0017, message_class = 0x001A, subject = 0x0037,
                               client_submit_time = 0x0039, subject_prefix = 0x003D,
                               sent_representing_name = 0x0042, start_date = 0x0060, end_date = 0x0061,
                               sent_representing_address = 0x0065, transport_headers = 0x007D,
                               recipient_type = 0x0C15, sender_name = 0x0C1A, sender_address = 0x0C1F,
                               display_to = 0x0E04, delivery_time = 0x0E06, message_flags = 0x0E07,
                               message_size = 0x0E08, attachment_size = 0x0E20, object_type = 0x0FFE,
                               body = 0x1000, compressed_rtf = 0x1009, html = 0x1013, message_id = 0x1035,
                               last_verb = 0x1081, flag_status = 0x1090, hidden = 0x10F4,
                               display_name = 0x3001, address_type = 0x3002, address = 0x3003,
                               creation_time = 0x3007, last_modification_time = 0x3008, search_key = 0x300B,
                               ipm_subtree = 0x35E0, wastebasket = 0x35E3, container_class = 0x3613,
                               attachment_data = 0x3701, attachment_name = 0x3704, attachment_method = 0x3705,
                               attachment_long_name = 0x3707, attachment_mime_type = 0x370E,
                               attachment_content_id = 0x3712, smtp_address = 0x39FE,
                               internet_code_page = 0x3FDE, message_code_page = 0x3FFD,
                               sender_smtp_address = 0x5D01, sent_representing_smtp_address = 0x5D02,
                               recipient_flags = 0x5FFD, recipient_track_status = 0x5FFF,
                               attachment_flags = 0x7FFD;
}

// A named property: its number within a set. Sets are told apart by the first 32 bits of their GUIDs.
struct Named_Property {
  std::uint32_t set;
  std::uint32_t number;
};
namespace mapi_set {
inline constexpr std::uint32_t appointment = 0x00062002, task = 0x00062003, address = 0x00062004,
                               common = 0x00062008, journal = 0x0006200A, meeting = 0x6ED8DA90;
}

// A value as it stands in the file, in the byte order of Intel processors.
struct Mapi_Value {
  std::uint16_t type;  // its MAPI type
  std::string bytes;
};

// The properties of one object. Absent properties, and those of another type than the one asked for, are
// empty. All throw Message_Error if the file is damaged.
class Mapi_Properties {
 public:
  virtual ~Mapi_Properties() = default;

  template <class Property>
  std::optional<std::string> Bytes(const Property& property) const {
    auto value = Find(property);
    return value ? std::optional(std::move(value->bytes)) : std::nullopt;
  }
  template <class Property>
  std::string Text(const Property& property) const {
    return Text_Of(Find(property), Code_Page());
  }
  template <class Property>
  std::optional<std::uint32_t> Number(const Property& property) const {
    return Number_Of(Find(property));
  }
  template <class Property>
  bool Flag(const Property& property) const {
    return Number(property).value_or(0) != 0;
  }
  // 100-nanosecond intervals since 1601.
  template <class Property>
  std::optional<std::uint64_t> Time(const Property& property) const {
    return Time_Of(Find(property));
  }
  // The first text that is not empty, in one line.
  template <class... Property>
  std::string First_Text(const Property&... properties) const {
    std::string first;
    ((first.empty() ? void(first = Line_Of(Text(properties))) : void()), ...);
    return first;
  }

  // The HTML body is in a code page of its own.
  std::string Html() const;
  // The subject, whose first characters may encode the length of its prefix ("Re: ").
  std::string Subject() const;
  std::optional<double> Real(const Named_Property& property) const;
  // A list of binary values.
  virtual std::vector<std::string> List(const Named_Property& property) const = 0;

 protected:
  virtual std::optional<Mapi_Value> Find(std::uint32_t property) const = 0;
  virtual std::optional<Mapi_Value> Find(const Named_Property& property) const = 0;

 private:
  std::uint32_t Code_Page() const;
  static std::string Line_Of(const std::string& text);
  static std::string Text_Of(const std::optional<Mapi_Value>& value, std::uint32_t code_page);
  static std::optional<std::uint32_t> Number_Of(const std::optional<Mapi_Value>& value);
  static std::optional<std::uint64_t> Time_Of(const std::optional<Mapi_Value>& value);
};

class Mapi_Item;

class Mapi_Attachment {
 public:
  virtual ~Mapi_Attachment() = default;
  virtual const Mapi_Properties& Properties() const = 0;
  // Of a file, its bytes; nothing for an item or a reference to a file elsewhere.
  virtual std::optional<std::string> Data() const = 0;
  virtual std::int64_t Size() const = 0;
  // An attached item; nullptr for a file.
  virtual std::unique_ptr<Mapi_Item> Item() const = 0;

  std::string Name() const;
  // Outlook keeps changed occurrences of a series as attachments that it never shows.
  bool Is_Exception_Of_Series() const;
};

class Mapi_Item {
 public:
  virtual ~Mapi_Item() = default;
  virtual const Mapi_Properties& Properties() const = 0;
  virtual std::vector<std::unique_ptr<Mapi_Properties>> Recipients() const = 0;
  virtual std::vector<std::unique_ptr<Mapi_Attachment>> Attachments() const = 0;
  // The body in RTF, expanded; empty if there is none.
  virtual std::string Rtf() const = 0;
};

// A number in the byte order of Intel processors, of up to 8 bytes.
std::uint64_t Little_Endian(std::string_view bytes);

// Whether the text is an address of Internet mail; Exchange has others.
bool Is_Internet_Address(const std::string& address);

// The sender's address and a recipient's; empty if it is none of Internet mail.
std::string Sender_Address(const Mapi_Properties& properties);
std::string Recipient_Address(const Mapi_Properties& recipient);

}  // namespace tidyfold
