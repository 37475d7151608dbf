#include "export/export_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include "base/text.h"
#include "export/export.h"
#include "export/safe_name.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

// Mail is private.
constexpr mode_t file_mode = S_IRUSR | S_IWUSR, directory_mode = S_IRWXU;

[[noreturn]] void Fail(const fs::path& path, int error) {
  const std::string remedy = error == ENOSPC || error == EDQUOT
                                 ? "The disk is full. Make room, or choose a folder on another disk."
                                 : std::string(std::strerror(error)) + ". Choose another folder.";
  throw Export_Error(path.string() + ": this cannot be written. " + remedy);
}

int Open_New(const fs::path& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, file_mode);
  if (file < 0) Fail(path, errno);
  return file;
}

// 0, or why not all of it was written.
int Write_All(int file, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return errno;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return 0;
}

bool Is_Directory(const fs::path& path) {
  std::error_code error;
  return fs::symlink_status(path, error).type() == fs::file_type::directory;
}

bool Is_There(const fs::path& path) {
  std::error_code error;
  return fs::symlink_status(path, error).type() != fs::file_type::not_found;
}

// Whether a directory only leads to others.
bool Only_Leads_On(const fs::path& directory) {
  std::error_code error;
  fs::directory_iterator entry(directory, error);
  for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (!Is_Directory(entry->path()) || name == "cur" || name == "new" || name == "tmp") return false;
  }
  return !error;
}

void Make_Directory(const fs::path& path) {
  if (::mkdir(path.c_str(), directory_mode) != 0) Fail(path, errno);
}

}  // namespace

void Write_New_File(const fs::path& path, std::string_view bytes, std::int64_t date) {
  const int file = Open_New(path);
  int error = Write_All(file, bytes);
  if (error == 0 && date != 0) {
    timespec times[2] = {};
    times[0].tv_sec = times[1].tv_sec = static_cast<time_t>(date);
    ::futimens(file, times);  // a file system without dates that old does no harm
  }
  if (::close(file) != 0 && error == 0) error = errno;
  if (error == 0) return;
  ::unlink(path.c_str());
  Fail(path, error);
}

Growing_File::Growing_File(fs::path path) : path_(std::move(path)), file_(Open_New(path_)) {}

Growing_File::~Growing_File() {
  ::close(file_);
}

void Growing_File::Append(std::string_view bytes) {
  if (const int error = Write_All(file_, bytes); error != 0) Fail(path_, error);
}

void Wait_For_Disk(const fs::path& directory) {
  const int opened = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (opened < 0) Fail(directory, errno);
#ifdef __linux__
  const int error = ::syncfs(opened) != 0 ? errno : 0;
#else
  ::sync();
  const int error = 0;
#endif
  ::close(opened);
  if (error != 0) Fail(directory, error);
}

Export_Tree::Export_Tree(fs::path root) {
  std::error_code error;
  root = fs::absolute(root, error).lexically_normal();
  if (!root.has_filename()) root = root.parent_path();
  if (fs::exists(root, error) && !fs::is_directory(root, error))
    throw Export_Error(root.string() + ": this is a file. Name a folder, which is made where it is missing.");
  const bool made = fs::create_directories(root, error);
  if (error) Fail(root, error.value());
  if (made) ::chmod(root.c_str(), directory_mode);
  places_[{}].directory = root;
}

const fs::path& Export_Tree::Add(const std::vector<std::string>& names) {
  return Make(names, true).directory;
}

Export_Tree::Place& Export_Tree::Place_Of(const std::vector<std::string>& names) {
  const auto found = places_.find(names);
  return found != places_.end() ? found->second : Make(names, false);
}

Export_Tree::Place& Export_Tree::Make(const std::vector<std::string>& names, bool for_items) {
  Place& above = Place_Of({names.begin(), names.end() - 1});
  const std::string name = Free_Name(Safe_Name(names.back()), "", [&](const std::string& candidate) {
    if (above.taken.contains(Upper_Case(candidate))) return true;
    const fs::path path = above.directory / candidate;
    if (!Is_There(path)) return false;
    return !Is_Directory(path) || (for_items && !Only_Leads_On(path));
  });
  above.taken.insert(Upper_Case(name));
  const fs::path directory = above.directory / name;
  if (!Is_Directory(directory)) Make_Directory(directory);
  Place& place = places_[names];
  place = {directory, {}};
  return place;
}

}  // namespace tidyfold
