#include "import/msg_object.h"

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-input-memory.h>
#include <gsf/gsf-utils.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>

#include "import/compound_file.h"
#include "mail/compressed_rtf.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

constexpr const char* property_stream = "__properties_version1.0";
constexpr std::string_view recipient_mark = "__recip_version1.0_", attachment_mark = "__attach_version1.0_";
// What stands before the properties of the file's item, of an attached item, and of all else.
constexpr std::size_t head_of_file = 32, head_of_item = 24, head_of_part = 8;
constexpr std::size_t entry_size = 16;
constexpr std::uint16_t type_object = 0x000D, type_bytes = 0x0102, type_list_of_bytes = 0x1102;
constexpr std::uint32_t first_named = 0x8000;
constexpr std::uint32_t by_reference_least = 2, by_reference_most = 4, embedded_item = 5;
constexpr std::size_t most_parts = 100'000;

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
using Storage = std::unique_ptr<GsfInfile, Unref>;
using Input = std::unique_ptr<GsfInput, Unref>;

// The names of properties that have no fixed number, for all items of the file: by set and number.
using Names = std::map<std::pair<std::uint32_t, std::uint32_t>, std::uint32_t>;

std::optional<std::string> Stream(GsfInfile* storage, const std::string& name) {
  const Input input(gsf_infile_child_by_name(storage, name.c_str()));
  if (!input) return std::nullopt;
  const gsf_off_t size = gsf_input_size(input.get());
  if (size < 0 || size > max_message_size) throw Message_Error("it is damaged (a value of no real size)");
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (size > 0 &&
      gsf_input_read(input.get(), bytes.size(), reinterpret_cast<guint8*>(bytes.data())) == nullptr)
    throw Message_Error("it is damaged (a value is cut off)");
  return bytes;
}

Storage Child(GsfInfile* storage, const std::string& name) {
  Input child(gsf_infile_child_by_name(storage, name.c_str()));
  if (!child || !GSF_IS_INFILE(child.get())) return nullptr;
  return Storage(GSF_INFILE(child.release()));
}

std::string Value_Name(std::uint32_t property, std::uint16_t type) {
  std::array<char, 32> name{};
  std::snprintf(name.data(), name.size(), "__substg1.0_%04X%04X", property, type);
  return name.data();
}

// A list of sets, and a list of properties, each with its place among those that have names.
Names Read_Names(GsfInfile* file) {
  constexpr std::size_t set_size = 16, name_size = 8, sets_with_own_numbers = 3;
  Names names;
  const Storage storage = Child(file, "__nameid_version1.0");
  if (!storage) return names;
  const std::string sets = Stream(storage.get(), "__substg1.0_00020102").value_or(std::string());
  const std::string entries = Stream(storage.get(), "__substg1.0_00030102").value_or(std::string());
  for (std::size_t at = 0; at + name_size <= entries.size(); at += name_size) {
    const std::string_view entry = std::string_view(entries).substr(at, name_size);
    const std::uint64_t kind = Little_Endian(entry.substr(4, 2));
    if ((kind & 1) != 0) continue;  // named by a text
    const std::size_t set = static_cast<std::size_t>(kind >> 1);
    if (set < sets_with_own_numbers || (set - sets_with_own_numbers + 1) * set_size > sets.size()) continue;
    const std::string_view guid = std::string_view(sets).substr((set - sets_with_own_numbers) * set_size, 4);
    names.try_emplace({static_cast<std::uint32_t>(Little_Endian(guid)),
                       static_cast<std::uint32_t>(Little_Endian(entry.substr(0, 4)))},
                      first_named + static_cast<std::uint32_t>(Little_Endian(entry.substr(6, 2))));
  }
  return names;
}

class Msg_Properties : public Mapi_Properties {
 public:
  Msg_Properties(GsfInfile* storage, const Names& names, std::size_t head)
      : storage_(storage), names_(names) {
    const std::string stream = Stream(storage, property_stream).value_or(std::string());
    for (std::size_t at = head; at + entry_size <= stream.size(); at += entry_size) {
      const std::string_view entry = std::string_view(stream).substr(at, entry_size);
      const auto tag = static_cast<std::uint32_t>(Little_Endian(entry.substr(0, 4)));
      entries_.try_emplace(
          tag >> 16, Mapi_Value{static_cast<std::uint16_t>(tag & 0xFFFF), std::string(entry.substr(8))});
    }
  }

  std::vector<std::string> List(const Named_Property& property) const override {
    std::vector<std::string> values;
    const auto number = Number_Of_Name(property);
    if (!number) return values;
    const std::string name = Value_Name(*number, type_list_of_bytes);
    const std::size_t count = Stream(storage_, name).value_or(std::string()).size() / 8;
    for (std::size_t i = 0; i < std::min(count, most_parts); ++i) {
      std::array<char, 32> ordinal{};
      std::snprintf(ordinal.data(), ordinal.size(), "-%08zX", i);
      auto value = Stream(storage_, name + ordinal.data());
      if (!value) break;
      values.push_back(std::move(*value));
    }
    return values;
  }

 protected:
  std::optional<Mapi_Value> Find(std::uint32_t property) const override {
    const auto found = entries_.find(property);
    if (found == entries_.end()) return std::nullopt;
    const std::uint16_t type = found->second.type;
    if (const std::size_t size = Fixed_Size(type); size > 0) {
      return Mapi_Value{type, found->second.bytes.substr(0, size)};
    }
    auto bytes = Stream(storage_, Value_Name(property, type));
    if (!bytes) return std::nullopt;
    return Mapi_Value{type, *std::move(bytes)};
  }
  std::optional<Mapi_Value> Find(const Named_Property& property) const override {
    const auto number = Number_Of_Name(property);
    return number ? Find(*number) : std::nullopt;
  }

 private:
  std::optional<std::uint32_t> Number_Of_Name(const Named_Property& property) const {
    const auto found = names_.find({property.set, property.number});
    return found == names_.end() ? std::nullopt : std::optional(found->second);
  }

  // Of the types that stand in the list of properties itself; 0 for those that have a stream.
  static std::size_t Fixed_Size(std::uint16_t type) {
    switch (type) {
      case 0x0002:  // integer
      case 0x000B:  // boolean
        return 2;
      case 0x0003:  // integer
      case 0x0004:  // real number
      case 0x000A:  // error code
        return 4;
      case 0x0005:  // real number
      case 0x0006:  // currency
      case 0x0007:  // application time
      case 0x0014:  // integer
      case 0x0040:  // time
        return 8;
      default:
        return 0;
    }
  }

  GsfInfile* storage_;
  const Names& names_;
  std::map<std::uint32_t, Mapi_Value> entries_;
};

class Msg_Item : public Mapi_Item {
 public:
  Msg_Item(Storage storage, std::shared_ptr<const Names> names, std::size_t head)
      : storage_(std::move(storage)), names_(std::move(names)), properties_(storage_.get(), *names_, head) {}

  const Mapi_Properties& Properties() const override { return properties_; }
  std::vector<std::unique_ptr<Mapi_Properties>> Recipients() const override;
  std::vector<std::unique_ptr<Mapi_Attachment>> Attachments() const override;
  std::string Rtf() const override {
    return Decompress_Rtf(properties_.Bytes(mapi_property::compressed_rtf).value_or(std::string()));
  }

 private:
  // The storages whose name begins so, in order.
  template <class Take>
  void For_Each(std::string_view mark, Take take) const {
    std::vector<std::string> names;
    const int count = gsf_infile_num_children(storage_.get());
    for (int i = 0; i < count; ++i) {
      const char* name = gsf_infile_name_by_index(storage_.get(), i);
      if (name != nullptr && std::string_view(name).starts_with(mark)) names.emplace_back(name);
    }
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
      if (Storage part = Child(storage_.get(), name)) take(std::move(part));
    }
  }

  Storage storage_;
  std::shared_ptr<const Names> names_;
  Msg_Properties properties_;
};

class Msg_Recipient : public Msg_Properties {
 public:
  Msg_Recipient(Storage storage, const Names& names)
      : Msg_Properties(storage.get(), names, head_of_part), storage_(std::move(storage)) {}

 private:
  Storage storage_;
};

class Msg_Attachment : public Mapi_Attachment {
 public:
  Msg_Attachment(Storage storage, std::shared_ptr<const Names> names)
      : storage_(std::move(storage)),
        names_(std::move(names)),
        properties_(storage_.get(), *names_, head_of_part) {}

  const Mapi_Properties& Properties() const override { return properties_; }

  std::optional<std::string> Data() const override {
    const std::uint32_t method = properties_.Number(mapi_property::attachment_method).value_or(0);
    if (method == embedded_item || (method >= by_reference_least && method <= by_reference_most))
      return std::nullopt;
    return Stream(storage_.get(), Value_Name(mapi_property::attachment_data, type_bytes));
  }
  std::int64_t Size() const override {
    const Input data(gsf_infile_child_by_name(
        storage_.get(), Value_Name(mapi_property::attachment_data, type_bytes).c_str()));
    if (data) return gsf_input_size(data.get());
    return properties_.Number(mapi_property::attachment_size).value_or(0);
  }
  std::unique_ptr<Mapi_Item> Item() const override {
    Storage item = Child(storage_.get(), Value_Name(mapi_property::attachment_data, type_object));
    if (!item || properties_.Number(mapi_property::attachment_method) != embedded_item) return nullptr;
    return std::make_unique<Msg_Item>(std::move(item), names_, head_of_item);
  }

 private:
  Storage storage_;
  std::shared_ptr<const Names> names_;
  Msg_Properties properties_;
};

std::vector<std::unique_ptr<Mapi_Properties>> Msg_Item::Recipients() const {
  std::vector<std::unique_ptr<Mapi_Properties>> recipients;
  For_Each(recipient_mark, [&](Storage part) {
    recipients.push_back(std::make_unique<Msg_Recipient>(std::move(part), *names_));
  });
  return recipients;
}

std::vector<std::unique_ptr<Mapi_Attachment>> Msg_Item::Attachments() const {
  std::vector<std::unique_ptr<Mapi_Attachment>> attachments;
  For_Each(attachment_mark, [&](Storage part) {
    attachments.push_back(std::make_unique<Msg_Attachment>(std::move(part), names_));
  });
  return attachments;
}

}  // namespace

std::unique_ptr<Mapi_Item> Open_Msg(const std::string& bytes) {
  static std::once_flag once;
  std::call_once(once, [] {
    gsf_init();
    // What is wrong with a file is told in the report, not on standard error.
    g_log_set_handler(
        "libgsf:msole", G_LOG_LEVEL_MASK, [](const gchar*, GLogLevelFlags, const gchar*, gpointer) {},
        nullptr);
  });
  const std::string problem = Problem_Of_Compound_File(bytes);
  if (!problem.empty()) throw Message_Error(problem);
  const Input input(gsf_input_memory_new(reinterpret_cast<const guint8*>(bytes.data()),
                                         static_cast<gsf_off_t>(bytes.size()), FALSE));
  GError* error = nullptr;
  Storage file(gsf_infile_msole_new(input.get(), &error));
  if (error != nullptr) g_error_free(error);
  if (!file) throw Message_Error("it is damaged (its parts cannot be listed)");
  // Other programs keep their documents in compound files too.
  if (!Stream(file.get(), property_stream))
    throw Message_Error("it is a compound file, but no item of Outlook's");
  auto names = std::make_shared<const Names>(Read_Names(file.get()));
  return std::make_unique<Msg_Item>(std::move(file), std::move(names), head_of_file);
}

}  // namespace tidyfold
