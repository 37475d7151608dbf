#include "stores/sqlite/packer.h"

#include <zstd_errors.h>

#include <algorithm>
#include <new>

#include "errors/automation_error.h"
#include "stores/sqlite/database.h"

namespace tidyfold::sqlite {

namespace {

// Higher levels gain little on mail and cost a multiple of the time.
constexpr int level = 1;

constexpr std::size_t step = std::size_t{1} << 16;
// The memory for packed bytes that is kept from one call to the next.
constexpr std::size_t most_kept = std::size_t{1} << 20;

void Check(std::size_t result) {
  if (ZSTD_isError(result) == 0) return;
  if (ZSTD_getErrorCode(result) == ZSTD_error_memory_allocation) throw std::bad_alloc();
  throw Automation_Error(automation_error::call_failed,
                         std::string("A text could not be compressed (") + ZSTD_getErrorName(result) + ").",
                         error_source);
}

}  // namespace

Packer::Packer() : packing_(ZSTD_createCCtx()), unpacking_(ZSTD_createDCtx()) {
  if (packing_ == nullptr || unpacking_ == nullptr) throw std::bad_alloc();
  Check(ZSTD_CCtx_setParameter(packing_.get(), ZSTD_c_compressionLevel, level));
  Check(ZSTD_CCtx_setParameter(packing_.get(), ZSTD_c_checksumFlag, 1));
}

std::string_view Packer::Pack(std::string_view first, std::string_view second) {
  if (packed_.capacity() > most_kept) packed_ = {};
  packed_.clear();
  if (first.empty() && second.empty()) return packed_;
  Check(ZSTD_CCtx_reset(packing_.get(), ZSTD_reset_session_only));
  Check(ZSTD_CCtx_setPledgedSrcSize(packing_.get(), first.size() + second.size()));
  Feed(first, ZSTD_e_continue);
  Feed(second, ZSTD_e_end);
  return packed_;
}

void Packer::Feed(std::string_view text, ZSTD_EndDirective directive) {
  ZSTD_inBuffer in{text.data(), text.size(), 0};
  for (bool done = false; !done;) {
    const std::size_t before = packed_.size();
    packed_.resize(before + std::min(step, ZSTD_compressBound(in.size - in.pos) + 64));
    ZSTD_outBuffer out{packed_.data() + before, packed_.size() - before, 0};
    const std::size_t left = ZSTD_compressStream2(packing_.get(), &out, &in, directive);
    packed_.resize(before + out.pos);
    Check(left);
    done = directive == ZSTD_e_end ? left == 0 : in.pos == in.size;
  }
}

std::optional<std::string> Packer::Unpack(std::string_view packed, std::size_t bytes) {
  std::string text;
  if (packed.empty()) return bytes == 0 || bytes == everything ? std::optional(text) : std::nullopt;
  ZSTD_DCtx_reset(unpacking_.get(), ZSTD_reset_session_only);
  ZSTD_inBuffer in{packed.data(), packed.size(), 0};
  // The size that the frame tells saves reallocations; damaged frames tell anything.
  const unsigned long long told = ZSTD_getFrameContentSize(packed.data(), packed.size());
  const std::size_t likely = told < packed.size() * 64 ? static_cast<std::size_t>(told) : step;
  text.reserve(std::min(bytes, likely));
  while (text.size() < bytes) {
    const std::size_t before = text.size();
    text.resize(before + std::min(bytes - before, std::max(step, likely - std::min(likely, before))));
    ZSTD_outBuffer out{text.data() + before, text.size() - before, 0};
    const std::size_t left = ZSTD_decompressStream(unpacking_.get(), &out, &in);
    text.resize(before + out.pos);
    if (ZSTD_isError(left) != 0) return std::nullopt;
    if (left == 0) break;
    if (out.pos == 0 && in.pos == in.size) return std::nullopt;
  }
  if (bytes != everything && text.size() < bytes) return std::nullopt;
  return text;
}

}  // namespace tidyfold::sqlite
