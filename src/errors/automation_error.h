// The failure of a call into a message store.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace tidyfold {

class Automation_Error : public std::exception {
 public:
  Automation_Error(std::int32_t number, std::string description, std::string source)
      : number_(number), description_(std::move(description)), source_(std::move(source)) {}
  std::int32_t Number() const noexcept { return number_; }
  const std::string& Description() const noexcept { return description_; }
  const std::string& Source() const noexcept { return source_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::int32_t number_;
  std::string description_;
  std::string source_;
};

// Numbers that every store uses for the same failure, so that reports agree whatever lies behind. They are
// the platform's HRESULTs (https://learn.microsoft.com/office/client-developer/outlook/mapi/mapi-constants).
namespace automation_error {
inline constexpr std::int32_t not_found = static_cast<std::int32_t>(0x8004010F);      // MAPI_E_NOT_FOUND
inline constexpr std::int32_t no_access = static_cast<std::int32_t>(0x80070005);      // E_ACCESSDENIED
inline constexpr std::int32_t call_failed = static_cast<std::int32_t>(0x80004005);    // MAPI_E_CALL_FAILED
inline constexpr std::int32_t corrupt_data = static_cast<std::int32_t>(0x8004011B);   // MAPI_E_CORRUPT_DATA
inline constexpr std::int32_t not_supported = static_cast<std::int32_t>(0x80040102);  // MAPI_E_NO_SUPPORT
inline constexpr std::int32_t bad_index = static_cast<std::int32_t>(0x8002000B);      // DISP_E_BADINDEX
inline constexpr std::int32_t busy = static_cast<std::int32_t>(0x80010001);           // RPC_E_CALL_REJECTED
// The program behind the store has ended or does not answer at all, or the store's file can no longer be
// reached. Whatever is asked of it next fails as well, so this is told once and ends what is under way. Its
// description says all that a person needs.
inline constexpr std::int32_t unavailable =
    static_cast<std::int32_t>(0x800706BA);  // RPC_S_SERVER_UNAVAILABLE
}  // namespace automation_error

}  // namespace tidyfold
