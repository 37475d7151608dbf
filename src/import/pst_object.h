// Reads items from an Outlook data file with libpff.
#pragma once

#include <libpff/features.h>
// Opening files through our own handles would need the headers of another library.
#undef LIBPFF_HAVE_BFIO
#include <libpff.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "import/mapi.h"

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

// The properties of one row; most items have one row, a table of recipients has one for each.
class Pst_Properties : public Mapi_Properties {
 public:
  explicit Pst_Properties(libpff_item_t* item, int row = 0);
  std::vector<std::string> List(const Named_Property& property) const override;

 protected:
  std::optional<Mapi_Value> Find(std::uint32_t property) const override;
  std::optional<Mapi_Value> Find(const Named_Property& property) const override;
  void Release() { row_.reset(); }

 private:
  struct Free_Row {
    void operator()(libpff_record_set_t* row) const { libpff_record_set_free(&row, nullptr); }
  };
  struct Free_Entry {
    void operator()(libpff_record_entry_t* entry) const { libpff_record_entry_free(&entry, nullptr); }
  };
  using Entry = std::unique_ptr<libpff_record_entry_t, Free_Entry>;

  Entry Find_Entry(std::uint32_t property, std::uint8_t flags) const;
  static std::optional<Mapi_Value> Value_Of(const Entry& entry);

  std::unique_ptr<libpff_record_set_t, Free_Row> row_;
};

class Pst_Item : public Mapi_Item {
 public:
  explicit Pst_Item(Pff_Item item) : item_(std::move(item)), properties_(item_.get()) {}

  const Mapi_Properties& Properties() const override { return properties_; }
  std::vector<std::unique_ptr<Mapi_Properties>> Recipients() const override;
  std::vector<std::unique_ptr<Mapi_Attachment>> Attachments() const override;
  std::string Rtf() const override;

 private:
  Pff_Item item_;
  Pst_Properties properties_;
};

}  // namespace tidyfold
