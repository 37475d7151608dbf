// Texts as a store keeps them: compressed with zstd.
#pragma once

#include <zstd.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace tidyfold::sqlite {

// Keeps zstd's memory between calls, which costs more than compressing a short text.
class Packer {
 public:
  Packer();

  // Two texts as one, so that what the second repeats of the first takes no room. Valid until the next call;
  // empty for empty texts.
  std::string_view Pack(std::string_view first, std::string_view second = {});
  // The first `bytes` bytes of the texts, without unpacking the rest; all by default. Nothing if the packed
  // bytes are damaged or hold less.
  std::optional<std::string> Unpack(std::string_view packed, std::size_t bytes = everything);

  static constexpr std::size_t everything = std::numeric_limits<std::size_t>::max();

 private:
  struct Free {
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
  };
  void Feed(std::string_view text, ZSTD_EndDirective directive);

  std::unique_ptr<ZSTD_CCtx, Free> packing_;
  std::unique_ptr<ZSTD_DCtx, Free> unpacking_;
  std::string packed_;
};

}  // namespace tidyfold::sqlite
