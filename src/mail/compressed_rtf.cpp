#include "mail/compressed_rtf.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace tidyfold {
namespace {

constexpr std::size_t header_size = 16;
constexpr std::uint32_t compressed_mark = 0x75465A4C;    // "LZFu"
constexpr std::uint32_t uncompressed_mark = 0x414C454D;  // "MELA"
constexpr std::size_t largest = std::size_t{64} << 20;

constexpr std::size_t window_size = 4096;
constexpr std::string_view window_begin =
    "{\\rtf1\\ansi\\mac\\deff0\\deftab720{\\fonttbl;}{\\f0\\fnil \\froman \\fswiss \\fmodern \\fscript "
    "\\fdecor MS Sans SerifSymbolArialTimes New RomanCourier{\\colortbl\\red0\\green0\\blue0\r\n\\par "
    "\\pard\\plain\\f0\\fs20\\b\\i\\u\\tab\\tx";
static_assert(window_begin.size() == 207);

unsigned Byte(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]);
}

std::uint32_t Number(std::string_view bytes, std::size_t at) {
  return Byte(bytes, at) | (Byte(bytes, at + 1) << 8) | (Byte(bytes, at + 2) << 16) |
         (Byte(bytes, at + 3) << 24);
}

// Runs of eight tokens, each of a byte that says which are characters and which refer to the last 4096 bytes.
std::string Decompress(std::string_view bytes, std::size_t size) {
  std::array<char, window_size> window{};
  std::copy(window_begin.begin(), window_begin.end(), window.begin());
  std::size_t end = window_begin.size();
  std::string text;
  const auto put = [&](char c) {
    text += c;
    window[end] = c;
    end = (end + 1) % window_size;
  };
  for (std::size_t at = 0; at < bytes.size();) {
    const unsigned references = Byte(bytes, at++);
    for (unsigned bit = 0; bit < 8; ++bit) {
      const bool reference = ((references >> bit) & 1U) != 0;
      if (at + (reference ? 2 : 1) > bytes.size() || text.size() >= size) return text;
      if (!reference) {
        put(bytes[at++]);
        continue;
      }
      const unsigned token = (Byte(bytes, at) << 8) | Byte(bytes, at + 1);
      at += 2;
      std::size_t from = token >> 4;
      if (from == end) return text;
      for (unsigned length = (token & 0xF) + 2; length > 0; --length) {
        put(window[from]);
        from = (from + 1) % window_size;
      }
    }
  }
  return text;
}

}  // namespace

std::string Decompress_Rtf(std::string_view bytes) {
  if (bytes.size() < header_size) return {};
  const std::uint32_t mark = Number(bytes, 8);
  const std::size_t size = std::min<std::size_t>(Number(bytes, 4), largest);
  const std::string_view content = bytes.substr(header_size);
  if (mark == uncompressed_mark) return std::string(content.substr(0, size));
  return mark == compressed_mark ? Decompress(content, size) : std::string();
}

}  // namespace tidyfold
