#include "base/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace tidyfold {

namespace {

std::error_code Last_Error() {
  return {errno, std::generic_category()};
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  int Number() const { return number_; }

 private:
  int number_;
};

std::error_code Fill(int file, std::string_view content, mode_t mode) {
  while (!content.empty()) {
    const ssize_t written = write(file, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return Last_Error();
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return fchmod(file, mode) == 0 && fsync(file) == 0 ? std::error_code() : Last_Error();
}

}  // namespace

std::error_code Replace_File(const std::filesystem::path& file, std::string_view content) {
  const std::filesystem::path target = Behind_Links(file), folder = target.parent_path();
  std::error_code error;
  if (!folder.empty()) std::filesystem::create_directories(folder, error);
  if (error) return error;

  struct stat present {};
  const mode_t mode = stat(target.c_str(), &present) == 0 ? present.st_mode & 07777 : 0600;
  // Several programs may write at the same time; each its own draft, which only its owner can read.
  std::string draft = target.string() + ".XXXXXX";
  const Descriptor writing(mkstemp(draft.data()));
  if (writing.Number() < 0) return Last_Error();
  error = Fill(writing.Number(), content, mode);
  if (!error && rename(draft.c_str(), target.c_str()) != 0) error = Last_Error();
  if (error) {
    unlink(draft.c_str());
    return error;
  }
  // The new name lasts when the folder does. Some file systems cannot do this for folders; the file is good.
  const Descriptor names(open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (names.Number() >= 0) fsync(names.Number());
  return {};
}

}  // namespace tidyfold
