#include "stores/imap/uid_set.h"

#include <algorithm>

#include "stores/imap/response.h"

namespace tidyfold::imap {

std::vector<Uid> Parse_Uid_Set(std::string_view text) {
  std::vector<Uid> uids;
  const auto number = [](std::string_view digits) {
    const auto parsed = Parse_Number(digits);
    if (!parsed || *parsed == 0 || *parsed > UINT32_MAX)
      throw Protocol_Error("The server named messages by impossible numbers.");
    return static_cast<Uid>(*parsed);
  };
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(','), text.size());
    const std::string_view range = text.substr(0, comma);
    const std::size_t colon = range.find(':');
    const Uid one = number(range.substr(0, colon));
    const Uid other = colon == std::string_view::npos ? one : number(range.substr(colon + 1));
    const Uid first = std::min(one, other), last = std::max(one, other);
    if (last - first >= most_uids - std::min(most_uids, uids.size()))
      throw Protocol_Error("The server named more messages than a mailbox holds.");
    for (std::uint64_t uid = first; uid <= last; ++uid) uids.push_back(static_cast<Uid>(uid));
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return uids;
}

std::string Format_Uid_Set(const std::vector<Uid>& uids) {
  std::string text;
  for (std::size_t at = 0; at < uids.size();) {
    std::size_t last = at;
    while (last + 1 < uids.size() && uids[last] != UINT32_MAX && uids[last + 1] == uids[last] + 1) ++last;
    if (!text.empty()) text += ',';
    text += std::to_string(uids[at]);
    if (last > at) text += ':' + std::to_string(uids[last]);
    at = last + 1;
  }
  return text;
}

std::vector<std::vector<Uid>> Portions_For_Commands(std::vector<Uid> uids) {
  constexpr std::size_t most = 7500, longest_range = 2 * 10 + 2;
  std::vector<std::vector<Uid>> portions;
  std::size_t bytes = most;
  std::sort(uids.begin(), uids.end());
  for (const Uid uid : uids) {
    const bool goes_on = !portions.empty() && !portions.back().empty() && portions.back().back() + 1 == uid;
    if (!goes_on) bytes += longest_range;
    if (bytes > most) {
      portions.emplace_back();
      bytes = longest_range;
    }
    portions.back().push_back(uid);
  }
  return portions;
}

}  // namespace tidyfold::imap
