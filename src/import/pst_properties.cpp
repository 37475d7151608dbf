#include "import/pst_properties.h"

#include <array>
#include <string_view>

#include "import/charset.h"
#include "import/mime_message.h"

namespace tidyfold {
namespace {

constexpr std::uint32_t type_16bit_text = 0x001F;
constexpr std::uint8_t own_property =
    LIBPFF_ENTRY_VALUE_FLAG_MATCH_ANY_VALUE_TYPE | LIBPFF_ENTRY_VALUE_FLAG_IGNORE_NAME_TO_ID_MAP;
constexpr std::uint8_t named_property = LIBPFF_ENTRY_VALUE_FLAG_MATCH_ANY_VALUE_TYPE;

std::uint32_t Little_Endian(const std::uint8_t* bytes) {
  return static_cast<std::uint32_t>(bytes[0]) | static_cast<std::uint32_t>(bytes[1]) << 8 |
         static_cast<std::uint32_t>(bytes[2]) << 16 | static_cast<std::uint32_t>(bytes[3]) << 24;
}

}  // namespace

Pff_Error::~Pff_Error() {
  if (error_ != nullptr) libpff_error_free(&error_);
}

libpff_error_t** Pff_Error::Out() {
  if (error_ != nullptr) libpff_error_free(&error_);
  return &error_;
}

std::string Pff_Error::Text() const {
  std::array<char, 8192> trace{};
  if (error_ == nullptr || libpff_error_backtrace_sprint(error_, trace.data(), trace.size()) <= 0)
    return "unknown";
  std::string_view cause(trace.data());
  cause = cause.substr(0, cause.find('\n'));
  const std::size_t function = cause.find(": ");
  if (function != std::string_view::npos) cause.remove_prefix(function + 2);
  while (cause.ends_with('.') || cause.ends_with(' ')) cause.remove_suffix(1);
  return One_Line(cause);
}

void Check_Pff(int result, const Pff_Error& error) {
  if (result < 0) throw Message_Error("it is damaged (" + error.Text() + ")");
}

Pst_Properties::Pst_Properties(libpff_item_t* item, int row) {
  Pff_Error error;
  int rows = 0;
  Check_Pff(libpff_item_get_number_of_record_sets(item, &rows, error.Out()), error);
  if (row >= rows) return;
  libpff_record_set_t* found = nullptr;
  Check_Pff(libpff_item_get_record_set_by_index(item, row, &found, error.Out()), error);
  row_.reset(found);
}

Pst_Properties::Entry Pst_Properties::Find(std::uint32_t property, std::uint8_t flags) const {
  if (!row_) return nullptr;
  Pff_Error error;
  libpff_record_entry_t* entry = nullptr;
  Check_Pff(libpff_record_set_get_entry_by_type(row_.get(), property, 0, &entry, flags, error.Out()), error);
  return Entry(entry);
}

std::string Pst_Properties::Data(const Entry& entry) {
  Pff_Error error;
  std::size_t size = 0;
  Check_Pff(libpff_record_entry_get_data_size(entry.get(), &size, error.Out()), error);
  if (size > static_cast<std::size_t>(max_message_size))
    throw Message_Error("it is damaged (a value of no real size)");
  std::string data(size, '\0');
  if (size > 0) {
    Check_Pff(libpff_record_entry_get_data(entry.get(), reinterpret_cast<std::uint8_t*>(data.data()), size,
                                           error.Out()),
              error);
  }
  return data;
}

std::optional<std::string> Pst_Properties::Bytes(std::uint32_t property) const {
  const Entry entry = Find(property, own_property);
  if (!entry) return std::nullopt;
  return Data(entry);
}

std::string Pst_Properties::Text(std::uint32_t property) const {
  const Entry entry = Find(property, own_property);
  if (!entry) return {};
  Pff_Error error;
  std::uint32_t type = 0;
  Check_Pff(libpff_record_entry_get_value_type(entry.get(), &type, error.Out()), error);
  if (type == type_16bit_text) return To_Utf8(Data(entry), "UTF-16LE");
  const bool page = property == pst_property::html;
  const auto code_page = Number(page ? pst_property::internet_code_page : pst_property::message_code_page);
  const std::string bytes = Data(entry);
  // A message's properties are in the code page of the program that wrote it.
  return To_Utf8(bytes, Code_Page_Charset(code_page.value_or(0)));
}

std::string Pst_Properties::Subject() const {
  std::string subject = Text(pst_property::subject);
  if (!subject.starts_with('\x01')) return subject;
  // 01 and one more character, of whatever size.
  std::size_t end = 2;
  while (end < subject.size() && (static_cast<unsigned char>(subject[end]) & 0xC0) == 0x80) ++end;
  return subject.size() < 2 ? std::string() : subject.substr(end);
}

std::optional<std::uint32_t> Pst_Properties::Number(std::uint32_t property) const {
  const Entry entry = Find(property, own_property);
  if (!entry) return std::nullopt;
  Pff_Error error;
  std::uint32_t number = 0;
  if (libpff_record_entry_get_data_as_32bit_integer(entry.get(), &number, error.Out()) != 1)
    return std::nullopt;
  return number;
}

bool Pst_Properties::Flag(std::uint32_t property) const {
  const Entry entry = Find(property, own_property);
  std::uint8_t flag = 0;
  Pff_Error error;
  return entry && libpff_record_entry_get_data_as_boolean(entry.get(), &flag, error.Out()) == 1 && flag != 0;
}

std::optional<std::uint64_t> Pst_Properties::Time_Of(const Entry& entry) {
  Pff_Error error;
  std::uint64_t time = 0;
  if (!entry || libpff_record_entry_get_data_as_filetime(entry.get(), &time, error.Out()) != 1)
    return std::nullopt;
  return time;
}

std::optional<std::uint64_t> Pst_Properties::Time(std::uint32_t property) const {
  return Time_Of(Find(property, own_property));
}

std::optional<std::uint64_t> Pst_Properties::Time(const Named_Property& property) const {
  const Entry entry = Find(property.number, named_property);
  if (!entry) return std::nullopt;
  Pff_Error error;
  libpff_name_to_id_map_entry_t* name = nullptr;
  std::array<std::uint8_t, 16> set{};
  if (libpff_record_entry_get_name_to_id_map_entry(entry.get(), &name, error.Out()) != 1 || name == nullptr ||
      libpff_name_to_id_map_entry_get_guid(name, set.data(), set.size(), error.Out()) != 1 ||
      Little_Endian(set.data()) != property.set) {
    return std::nullopt;
  }
  return Time_Of(entry);
}

}  // namespace tidyfold
