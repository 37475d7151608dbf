// Binary data that mail carries as text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tidyfold {

// Everything that is no digit is skipped. Padding ends a block, not the data: some writers encode piece by
// piece.
std::string Decode_Base64(std::string_view text);

// The length of what Decode_Base64 returns.
std::int64_t Decoded_Base64_Size(std::string_view text);

// Text in the named Content-Transfer-Encoding; of an unknown one, as it is.
std::string Decode_Transfer(std::string_view text, std::string_view encoding);
std::int64_t Decoded_Transfer_Size(std::string_view text, std::string_view encoding);
// Bytes in the named Content-Transfer-Encoding, in lines of at most 76 characters where it has lines of its
// own; in others, as they are.
std::string Encode_Transfer(std::string_view bytes, std::string_view encoding);

struct Uuencoded_File {
  std::string name;       // as written, in the text's charset
  std::int64_t size = 0;  // decoded
};

// Takes files that are uuencoded ("begin 644 NAME" to "end") out of the text.
std::vector<Uuencoded_File> Take_Uuencoded(std::string& text);

}  // namespace tidyfold
