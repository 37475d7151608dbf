#include "mail/meeting.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/text.h"
#include "outlook/object_model.h"

namespace tidyfold {
namespace {

// In upper case, with continued lines joined.
std::string Unfolded(std::string_view calendar) {
  std::string text;
  for (std::size_t at = 0; at < calendar.size(); ++at) {
    if (calendar[at] == '\r') continue;
    if (calendar[at] == '\n' && at + 1 < calendar.size() &&
        (calendar[at + 1] == ' ' || calendar[at + 1] == '\t')) {
      ++at;
      continue;
    }
    text += calendar[at];
  }
  return Upper_Case(text);
}

// The word behind the first `mark`.
std::string_view Word_Behind(std::string_view text, std::string_view mark) {
  const std::size_t found = text.find(mark);
  if (found == std::string_view::npos) return {};
  const std::string_view rest = text.substr(found + mark.size());
  return rest.substr(0, std::min(rest.find_first_of("\n;:, "), rest.size()));
}

}  // namespace

std::int32_t Meeting_Class(std::string_view calendar, std::string_view method) {
  const std::string text = Unfolded(calendar);
  const std::string named = method.empty() ? std::string(Word_Behind(text, "\nMETHOD:")) : Upper_Case(method);
  if (named == "REQUEST") return item_class::meeting_request;
  if (named == "CANCEL") return item_class::meeting_cancellation;
  if (named != "REPLY") return item_class::mail;
  const std::string_view answer = Word_Behind(text, "PARTSTAT=");
  if (answer == "ACCEPTED") return item_class::meeting_response_positive;
  if (answer == "DECLINED") return item_class::meeting_response_negative;
  if (answer == "TENTATIVE") return item_class::meeting_response_tentative;
  return item_class::mail;
}

}  // namespace tidyfold
