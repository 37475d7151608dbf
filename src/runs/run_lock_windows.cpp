#include <windows.h>

#include <system_error>

#include "runs/run_lock.h"

namespace tidyfold {

namespace {

// While it is open nobody else can open the file; it goes with the last handle.
class Windows_Run_Lock : public Run_Lock {
 public:
  explicit Windows_Run_Lock(const std::filesystem::path& file)
      : handle_(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                            FILE_FLAG_DELETE_ON_CLOSE, nullptr)) {
    if (handle_ == INVALID_HANDLE_VALUE) {
      const auto error = static_cast<int>(GetLastError());
      throw std::filesystem::filesystem_error("cannot be locked", file, {error, std::system_category()});
    }
  }
  ~Windows_Run_Lock() override { CloseHandle(handle_); }

 private:
  HANDLE handle_;
};

}  // namespace

std::unique_ptr<Run_Lock> Run_Lock::Take(const std::filesystem::path& file) {
  return std::make_unique<Windows_Run_Lock>(file);
}

bool Run_Lock::Is_Held(const std::filesystem::path& file) {
  const HANDLE handle =
      CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError() == ERROR_SHARING_VIOLATION;
  CloseHandle(handle);
  return false;
}

}  // namespace tidyfold
