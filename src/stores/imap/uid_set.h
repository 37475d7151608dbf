// Sets of message numbers as commands and answers write them: "3,5:9".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tidyfold::imap {

using Uid = std::uint32_t;

// No set names more than a mailbox can hold here.
inline constexpr std::size_t most_uids = 20'000'000;

// In the order given, so that sets of COPYUID correspond. Throws Protocol_Error for what is none, for 0 and
// "*", and for more than most_uids.
std::vector<Uid> Parse_Uid_Set(std::string_view text);
// In the order given; neighbours that ascend by one become a range.
std::string Format_Uid_Set(const std::vector<Uid>& uids);
// In ascending order, in as many sets as it takes for each to fit into a command: servers may refuse lines
// that are longer than some 8,000 bytes (RFC 7162, section 4).
std::vector<std::vector<Uid>> Portions_For_Commands(std::vector<Uid> uids);

}  // namespace tidyfold::imap
