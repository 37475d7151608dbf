#include "import/pst_object.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "mail/charset.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

constexpr std::uint16_t type_list_of_bytes = 0x1102;
constexpr std::uint8_t own_property =
    LIBPFF_ENTRY_VALUE_FLAG_MATCH_ANY_VALUE_TYPE | LIBPFF_ENTRY_VALUE_FLAG_IGNORE_NAME_TO_ID_MAP;
constexpr std::uint8_t named_property = LIBPFF_ENTRY_VALUE_FLAG_MATCH_ANY_VALUE_TYPE;

void Check_Size(size64_t size) {
  if (size > static_cast<size64_t>(max_message_size))
    throw Message_Error("it is damaged (a value of no real size)");
}

class Pst_Attachment : public Mapi_Attachment {
 public:
  explicit Pst_Attachment(Pff_Item item) : item_(std::move(item)), properties_(item_.get()) {
    Pff_Error error;
    Check_Pff(libpff_attachment_get_type(item_.get(), &type_, error.Out()), error);
  }

  const Mapi_Properties& Properties() const override { return properties_; }

  std::optional<std::string> Data() const override {
    if (type_ != LIBPFF_ATTACHMENT_TYPE_DATA) return std::nullopt;
    Pff_Error error;
    size64_t size = 0;
    Check_Pff(libpff_attachment_get_data_size(item_.get(), &size, error.Out()), error);
    Check_Size(size);
    std::string data(static_cast<std::size_t>(size), '\0');
    std::size_t done = 0;
    while (done < data.size()) {
      const auto read = libpff_attachment_data_read_buffer(
          item_.get(), reinterpret_cast<std::uint8_t*>(data.data()) + done, data.size() - done, error.Out());
      if (read <= 0) throw Message_Error("an attachment is damaged (" + error.Text() + ")");
      done += static_cast<std::size_t>(read);
    }
    return data;
  }

  // libpff tells the size of the data only for files.
  std::int64_t Size() const override {
    size64_t size = properties_.Number(mapi_property::attachment_size).value_or(0);
    Pff_Error error;
    if (type_ == LIBPFF_ATTACHMENT_TYPE_DATA)
      libpff_attachment_get_data_size(item_.get(), &size, error.Out());
    return static_cast<std::int64_t>(size);
  }

  std::unique_ptr<Mapi_Item> Item() const override {
    if (type_ != LIBPFF_ATTACHMENT_TYPE_ITEM) return nullptr;
    Pff_Error error;
    libpff_item_t* found = nullptr;
    Check_Pff(libpff_attachment_get_item(item_.get(), &found, error.Out()), error);
    if (found == nullptr) return nullptr;
    return std::make_unique<Pst_Item>(Pff_Item(found));
  }

 private:
  Pff_Item item_;
  Pst_Properties properties_;
  int type_ = LIBPFF_ATTACHMENT_TYPE_UNDEFINED;
};

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

Pst_Properties::Entry Pst_Properties::Find_Entry(std::uint32_t property, std::uint8_t flags) const {
  if (!row_) return nullptr;
  Pff_Error error;
  libpff_record_entry_t* entry = nullptr;
  Check_Pff(libpff_record_set_get_entry_by_type(row_.get(), property, 0, &entry, flags, error.Out()), error);
  return Entry(entry);
}

std::optional<Mapi_Value> Pst_Properties::Value_Of(const Entry& entry) {
  if (!entry) return std::nullopt;
  Pff_Error error;
  std::uint32_t type = 0;
  Check_Pff(libpff_record_entry_get_value_type(entry.get(), &type, error.Out()), error);
  std::size_t size = 0;
  Check_Pff(libpff_record_entry_get_data_size(entry.get(), &size, error.Out()), error);
  Check_Size(size);
  Mapi_Value value{static_cast<std::uint16_t>(type), std::string(size, '\0')};
  if (size > 0) {
    Check_Pff(libpff_record_entry_get_data(entry.get(), reinterpret_cast<std::uint8_t*>(value.bytes.data()),
                                           size, error.Out()),
              error);
  }
  return value;
}

std::optional<Mapi_Value> Pst_Properties::Find(std::uint32_t property) const {
  return Value_Of(Find_Entry(property, own_property));
}

std::optional<Mapi_Value> Pst_Properties::Find(const Named_Property& property) const {
  const Entry entry = Find_Entry(property.number, named_property);
  if (!entry) return std::nullopt;
  Pff_Error error;
  libpff_name_to_id_map_entry_t* name = nullptr;
  std::array<char, 16> set{};
  if (libpff_record_entry_get_name_to_id_map_entry(entry.get(), &name, error.Out()) != 1 || name == nullptr ||
      libpff_name_to_id_map_entry_get_guid(name, reinterpret_cast<std::uint8_t*>(set.data()), set.size(),
                                           error.Out()) != 1 ||
      Little_Endian(std::string_view(set.data(), 4)) != property.set) {
    return std::nullopt;
  }
  return Value_Of(entry);
}

// A count, the place of each value, then the values.
std::vector<std::string> Pst_Properties::List(const Named_Property& property) const {
  std::vector<std::string> values;
  const auto list = Find(property);
  if (!list || list->type != type_list_of_bytes || list->bytes.size() < 4) return values;
  const std::string_view bytes = list->bytes;
  const std::size_t count = std::min<std::size_t>(Little_Endian(bytes.substr(0, 4)), bytes.size() / 4 - 1);
  const auto place = [&](std::size_t i) {
    return i < count ? std::min<std::size_t>(Little_Endian(bytes.substr(4 + 4 * i, 4)), bytes.size())
                     : bytes.size();
  };
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t begin = place(i), end = place(i + 1);
    if (begin <= end) values.emplace_back(bytes.substr(begin, end - begin));
  }
  return values;
}

namespace {

// The rows of a table live as long as the table.
class Pst_Recipient : public Pst_Properties {
 public:
  Pst_Recipient(std::shared_ptr<libpff_item_t> table, int row)
      : Pst_Properties(table.get(), row), table_(std::move(table)) {}
  ~Pst_Recipient() override { Release(); }

 private:
  std::shared_ptr<libpff_item_t> table_;
};

}  // namespace

std::vector<std::unique_ptr<Mapi_Properties>> Pst_Item::Recipients() const {
  std::vector<std::unique_ptr<Mapi_Properties>> recipients;
  Pff_Error error;
  libpff_item_t* found = nullptr;
  Check_Pff(libpff_message_get_recipients(item_.get(), &found, error.Out()), error);
  if (found == nullptr) return recipients;
  const std::shared_ptr<libpff_item_t> table(found, Free_Pff_Item());
  int count = 0;
  Check_Pff(libpff_item_get_number_of_record_sets(found, &count, error.Out()), error);
  for (int i = 0; i < count; ++i) recipients.push_back(std::make_unique<Pst_Recipient>(table, i));
  return recipients;
}

std::vector<std::unique_ptr<Mapi_Attachment>> Pst_Item::Attachments() const {
  std::vector<std::unique_ptr<Mapi_Attachment>> attachments;
  Pff_Error error;
  int count = 0;
  Check_Pff(libpff_message_get_number_of_attachments(item_.get(), &count, error.Out()), error);
  for (int i = 0; i < count; ++i) {
    libpff_item_t* found = nullptr;
    Check_Pff(libpff_message_get_attachment(item_.get(), i, &found, error.Out()), error);
    attachments.push_back(std::make_unique<Pst_Attachment>(Pff_Item(found)));
  }
  return attachments;
}

std::string Pst_Item::Rtf() const {
  Pff_Error error;
  std::size_t size = 0;
  const int found = libpff_message_get_rtf_body_size(item_.get(), &size, error.Out());
  Check_Pff(found, error);
  if (found != 1 || size == 0) return {};
  Check_Size(size);
  std::string rtf(size, '\0');
  Check_Pff(libpff_message_get_rtf_body(item_.get(), reinterpret_cast<std::uint8_t*>(rtf.data()), size,
                                        error.Out()),
            error);
  return rtf;
}

}  // namespace tidyfold
