// Reads properties from an Outlook file with libpff.
#pragma once

#include <libpff/features.h>
// Opening files through our own handles would need the headers of another library.
#undef LIBPFF_HAVE_BFIO
#include <libpff.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tidyfold {

struct Free_Pff_Item {
  void operator()(libpff_item_t* item) const { libpff_item_free(&item, nullptr); }
};
using Pff_Item = std::unique_ptr<libpff_item_t, Free_Pff_Item>;

// Receives the error of a libpff call: pass `error.Out()`, read the text afterwards.
class Pff_Error {
 public:
  Pff_Error() = default;
  Pff_Error(const Pff_Error&) = delete;
  Pff_Error& operator=(const Pff_Error&) = delete;
  ~Pff_Error();
  libpff_error_t** Out();
  // The innermost cause, without the names of functions.
  std::string Text() const;

 private:
  libpff_error_t* error_ = nullptr;
};

// Throws Message_Error with the error's text if the result is that of a failed call (-1).
void Check_Pff(int result, const Pff_Error& error);

// MAPI property identifiers
// (https://learn.microsoft.com/office/client-developer/outlook/mapi/mapi-properties).
namespace pst_property {
inline constexpr std::uint32_t message_class = 0x001A, subject = 0x0037, client_submit_time = 0x0039,
                               sent_representing_name = 0x0042, end_date = 0x0061, transport_headers = 0x007D,
                               recipient_type = 0x0C15, sender_name = 0x0C1A, sender_address_type = 0x0C1E,
                               sender_address = 0x0C1F, display_to = 0x0E04, delivery_time = 0x0E06,
                               message_flags = 0x0E07, message_size = 0x0E08, object_type = 0x0FFE,
                               body = 0x1000, compressed_rtf = 0x1009, html = 0x1013, message_id = 0x1035,
                               hidden = 0x10F4, display_name = 0x3001, address_type = 0x3002,
                               address = 0x3003, last_modification_time = 0x3008, ipm_subtree = 0x35E0,
                               wastebasket = 0x35E3, container_class = 0x3613, attachment_size = 0x0E20,
                               attachment_name = 0x3704, attachment_long_name = 0x3707,
                               attachment_mime_type = 0x370E, attachment_content_id = 0x3712,
                               smtp_address = 0x39FE, internet_code_page = 0x3FDE, message_code_page = 0x3FFD,
                               sender_smtp_address = 0x5D01, attachment_flags = 0x7FFD;
}

// A named property: its number within a set. Sets are told apart by the first 32 bits of their GUIDs.
struct Named_Property {
  std::uint32_t set;
  std::uint32_t number;
};

// The properties of one row; most items have one row, a table of recipients has one for each. Absent
// properties are empty; all throw Message_Error if the file is damaged.
class Pst_Properties {
 public:
  explicit Pst_Properties(libpff_item_t* item, int row = 0);

  std::string Text(std::uint32_t property) const;
  // The subject, whose first characters may encode the length of its prefix ("Re: ").
  std::string Subject() const;
  std::optional<std::string> Bytes(std::uint32_t property) const;
  std::optional<std::uint32_t> Number(std::uint32_t property) const;
  bool Flag(std::uint32_t property) const;
  // 100-nanosecond intervals since 1601.
  std::optional<std::uint64_t> Time(std::uint32_t property) const;
  std::optional<std::uint64_t> Time(const Named_Property& property) const;

 private:
  struct Free_Row {
    void operator()(libpff_record_set_t* row) const { libpff_record_set_free(&row, nullptr); }
  };
  struct Free_Entry {
    void operator()(libpff_record_entry_t* entry) const { libpff_record_entry_free(&entry, nullptr); }
  };
  using Entry = std::unique_ptr<libpff_record_entry_t, Free_Entry>;

  Entry Find(std::uint32_t property, std::uint8_t flags) const;
  static std::string Data(const Entry& entry);
  static std::optional<std::uint64_t> Time_Of(const Entry& entry);

  std::unique_ptr<libpff_record_set_t, Free_Row> row_;
};

}  // namespace tidyfold
