#include "plan/item_filter.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"

namespace tidyfold {

namespace {

const char* Type_In_Words(std::int32_t item_class) {
  switch (item_class) {
    case item_class::mail:
      return "mail";
    case item_class::appointment:
      return "appointments";
    case item_class::contact:
      return "contacts";
    case item_class::journal:
      return "journal entries";
    case item_class::task:
      return "tasks";
    default:
      return "notes";
  }
}

}  // namespace

bool Item_Filter::Check_Type(std::int32_t item_class) const {
  return !by_type || std::find(types.begin(), types.end(), item_class) != types.end();
}

bool Item_Filter::Check_Date(Date item_date) const {
  return !by_date || std::floor(item_date) <= cutoff;
}

bool Item_Filter::Check_Subject(std::string_view item_subject) const {
  if (!by_subject) return true;
  const std::string_view wanted = Trim_Right(subject), given = Trim_Right(item_subject);
  if (match_case) return match_word ? given == wanted : given.starts_with(wanted);
  const std::string_view text = Trim(wanted), in = Trim(given);
  return Begins_Ignoring_Case(in, text) && (!match_word || Begins_Ignoring_Case(text, in));
}

std::string Item_Filter::In_Words() const {
  std::string words;
  const auto add = [&](const std::string& part) { words += (words.empty() ? "" : "; ") + part; };
  if (by_type) {
    std::string wanted;
    for (const std::int32_t type : types)
      if (type != 0) wanted += (wanted.empty() ? "" : ", ") + std::string(Type_In_Words(type));
    add(wanted.empty() ? "no type" : wanted + " only");
  }
  if (by_date) add(Format_Date(cutoff) + " and older");
  if (by_subject) {
    add(std::string(match_word ? "subject is \"" : "subject begins with \"") +
        std::string(Trim_Right(subject)) + "\"" + (match_case ? " (case matters)" : ""));
  }
  add(unread_too ? "unread items too" : "read items only");
  add(flagged_too ? "flagged items too" : "no flagged items");
  return words;
}

}  // namespace tidyfold
