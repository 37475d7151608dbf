// The filter options as a value, and the predicates that test one item against them.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "base/dates.h"
#include "outlook/folder_data.h"

namespace tidyfold {

struct Item_Filter {
  static constexpr std::size_t type_count = 6;

  bool by_type = false, by_date = false, by_subject = false;
  bool unread_too = false, flagged_too = false;
  bool match_case = false, match_word = false;
  // Wanted item classes; the others are 0. Empty while by_type is off.
  std::array<std::int32_t, type_count> types{};
  // The last day that passes; 0 while by_date is off.
  Date cutoff = 0;
  // Empty while by_subject is off.
  std::string subject;

  bool operator==(const Item_Filter&) const = default;

  bool Check_Type(std::int32_t item_class) const;
  // The cut-off day itself passes.
  bool Check_Date(Date item_date) const;
  // Blanks at the end never count; without Match Case neither case nor blanks at the beginning do.
  bool Check_Subject(std::string_view item_subject) const;
  // Whether an item that was read passes every filter.
  // Never true for one that was not read as far as its EntryID, or that a run has deleted.
  bool Passes(const ItemData& item) const {
    return item.ItemClass > 0 && !item.EntryID.empty() && (!item.Unread || unread_too) &&
           (!item.Flagged || flagged_too) && Check_Type(item.ItemClass) && Check_Date(item.ItemDate) &&
           Check_Subject(item.Subject);
  }

  // What the filter lets pass, for a person: "mail and notes only", "2012-12-31 and older".
  std::string In_Words() const;
};

// The filter that rows, totals and runs go by. It changes when a choice is taken over, not while a text is
// being typed.
class Filter_In_Force {
 public:
  const Item_Filter& Filter() const { return filter_; }
  // Moves whenever the filter changes.
  std::uint32_t Version() const { return version_; }
  void Set(Item_Filter filter) {
    if (filter == filter_) return;
    filter_ = std::move(filter);
    ++version_;
  }

 private:
  Item_Filter filter_;
  std::uint32_t version_ = 1;
};

}  // namespace tidyfold
