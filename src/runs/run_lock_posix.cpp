#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "runs/run_lock.h"

namespace tidyfold {

namespace {

// Closes what it has opened, and the lock goes with it.
class Descriptor {
 public:
  Descriptor(const std::filesystem::path& file, int flags)
      : number_(open(file.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR)) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  bool Is_Open() const { return number_ >= 0; }
  // Without waiting.
  bool Lock(int kind) const { return flock(number_, kind | LOCK_NB) == 0; }

 private:
  int number_;
};

class Posix_Run_Lock : public Run_Lock {
 public:
  explicit Posix_Run_Lock(const std::filesystem::path& file)
      : file_(file), descriptor_(file, O_RDWR | O_CREAT) {
    if (!descriptor_.Is_Open() || !descriptor_.Lock(LOCK_EX))
      throw std::filesystem::filesystem_error("cannot be locked", file, {errno, std::generic_category()});
  }
  ~Posix_Run_Lock() override {
    std::error_code ignored;
    std::filesystem::remove(file_, ignored);
  }

 private:
  std::filesystem::path file_;
  Descriptor descriptor_;
};

}  // namespace

std::unique_ptr<Run_Lock> Run_Lock::Take(const std::filesystem::path& file) {
  return std::make_unique<Posix_Run_Lock>(file);
}

bool Run_Lock::Is_Held(const std::filesystem::path& file) {
  const Descriptor descriptor(file, O_RDONLY);
  return descriptor.Is_Open() && !descriptor.Lock(LOCK_SH) && errno == EWOULDBLOCK;
}

}  // namespace tidyfold
