#include "import/mapi.h"

#include <cstring>
#include <string_view>

#include "mail/charset.h"

namespace tidyfold {
namespace {

constexpr std::uint16_t type_real = 0x0005, type_text_16_bit = 0x001F, type_text_8_bit = 0x001E,
                        type_time = 0x0040, type_bytes = 0x0102;
constexpr std::uint32_t exception_of_series = 2;

}  // namespace

std::uint64_t Little_Endian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = std::min<std::size_t>(bytes.size(), 8); i > 0; --i)
    number = number << 8 | static_cast<unsigned char>(bytes[i - 1]);
  return number;
}

std::uint32_t Mapi_Properties::Code_Page() const {
  // Texts are in the code page of the program that wrote them.
  return Number(mapi_property::message_code_page).value_or(0);
}

std::string Mapi_Properties::Line_Of(const std::string& text) {
  return One_Line(text);
}

std::string Mapi_Properties::Text_Of(const std::optional<Mapi_Value>& value, std::uint32_t code_page) {
  if (!value) return {};
  if (value->type == type_text_16_bit) return To_Utf8(value->bytes, "UTF-16LE");
  if (value->type != type_text_8_bit && value->type != type_bytes) return {};
  return To_Utf8(value->bytes, Code_Page_Charset(code_page));
}

std::optional<std::uint32_t> Mapi_Properties::Number_Of(const std::optional<Mapi_Value>& value) {
  if (!value || value->bytes.empty() || value->bytes.size() > 4) return std::nullopt;
  return static_cast<std::uint32_t>(Little_Endian(value->bytes));
}

std::optional<std::uint64_t> Mapi_Properties::Time_Of(const std::optional<Mapi_Value>& value) {
  if (!value || value->type != type_time || value->bytes.size() != 8) return std::nullopt;
  return Little_Endian(value->bytes);
}

std::string Mapi_Properties::Html() const {
  return Text_Of(Find(mapi_property::html), Number(mapi_property::internet_code_page).value_or(Code_Page()));
}

std::string Mapi_Properties::Subject() const {
  std::string subject = Text(mapi_property::subject);
  if (!subject.starts_with('\x01')) return subject;
  // 01 and one more character, of whatever size.
  std::size_t end = 2;
  while (end < subject.size() && (static_cast<unsigned char>(subject[end]) & 0xC0) == 0x80) ++end;
  return subject.size() < 2 ? std::string() : subject.substr(end);
}

std::optional<double> Mapi_Properties::Real(const Named_Property& property) const {
  const auto value = Find(property);
  if (!value || value->type != type_real || value->bytes.size() != sizeof(double)) return std::nullopt;
  const std::uint64_t bits = Little_Endian(value->bytes);
  double number = 0;
  std::memcpy(&number, &bits, sizeof number);
  return number;
}

std::string Mapi_Attachment::Name() const {
  return Properties().First_Text(mapi_property::attachment_long_name, mapi_property::attachment_name,
                                 mapi_property::display_name);
}

bool Mapi_Attachment::Is_Exception_Of_Series() const {
  return (Properties().Number(mapi_property::attachment_flags).value_or(0) & exception_of_series) != 0;
}

bool Is_Internet_Address(const std::string& address) {
  return address.find('@') != std::string::npos;
}

std::string Sender_Address(const Mapi_Properties& properties) {
  std::string address =
      properties.First_Text(mapi_property::sender_smtp_address, mapi_property::sent_representing_smtp_address,
                            mapi_property::sender_address, mapi_property::sent_representing_address);
  return Is_Internet_Address(address) ? address : std::string();
}

std::string Recipient_Address(const Mapi_Properties& recipient) {
  std::string address = recipient.First_Text(mapi_property::smtp_address, mapi_property::address);
  return Is_Internet_Address(address) ? address : std::string();
}

}  // namespace tidyfold
