#include "stores/maildir/read_ahead.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <exception>
#include <system_error>
#include <utility>

#include "mail/maildir.h"

namespace tidyfold::maildir {

bool Holds_Header(std::string_view beginning) {
  return beginning.find("\n\n") != std::string_view::npos ||
         beginning.find("\r\n\r\n") != std::string_view::npos;
}

Mail_Summary Summarize_File(std::string_view beginning, std::string_view name) {
  Mail_Summary summary = Summarize_Beginning(beginning);
  if (summary.received == no_date) summary.received = Delivery_In(name);
  return summary;
}

Header_Batch::Header_Batch(const std::string& directory, const std::vector<const Mail*>& mails) {
  constexpr int how = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
  cur_ = ::open((directory + "/cur").c_str(), how);
  new_ = ::open((directory + "/new").c_str(), how);
  for (const Mail* const mail : mails) {
    File& file = files_.emplace_back();
    file.name = mail->name;
    file.is_new = mail->is_new;
  }
}

Header_Batch::~Header_Batch() {
  for (const int directory : {cur_, new_})
    if (directory >= 0) ::close(directory);
}

std::optional<Read_Header> Header_Batch::Read(const File& file) const {
  const int opened =
      ::openat(file.is_new ? new_ : cur_, file.name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (opened < 0) return std::nullopt;
  std::array<char, summary_bytes> buffer;
  const ssize_t got = ::read(opened, buffer.data(), buffer.size());
  std::int64_t size = got;
  bool usual = got > 0;
  // Only what fills the buffer may be longer, or no file.
  if (got == static_cast<ssize_t>(buffer.size())) {
    struct stat about = {};
    usual = ::fstat(opened, &about) == 0 && S_ISREG(about.st_mode);
    size = about.st_size;
  }
  ::close(opened);
  if (!usual) return std::nullopt;
  const std::string_view text(buffer.data(), static_cast<std::size_t>(got));
  if (size > got && !Holds_Header(text)) return std::nullopt;
  try {
    return Read_Header{Summarize_File(text, file.name), size};
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

bool Header_Batch::Read_Next() {
  const std::size_t at = next_.fetch_add(1);
  if (at >= files_.size()) return false;
  File& file = files_[at];
  file.header = Read(file);
  file.done = true;
  file.done.notify_all();
  return true;
}

std::optional<Read_Header> Header_Batch::Take(std::size_t place) {
  File& file = files_[place];
  while (!file.done)
    if (!Read_Next()) file.done.wait(false);
  return std::move(file.header);
}

Read_Ahead::~Read_Ahead() {
  {
    const std::lock_guard guard(lock_);
    ending_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void Read_Ahead::Begin(const std::shared_ptr<Header_Batch>& batch) {
  if (!thread_.joinable()) {
    try {
      thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
      return;  // who takes the headers reads them
    }
  }
  {
    const std::lock_guard guard(lock_);
    batches_.push_back(batch);
  }
  changed_.notify_all();
}

void Read_Ahead::Work() {
  for (;;) {
    std::shared_ptr<Header_Batch> batch;
    {
      std::unique_lock guard(lock_);
      changed_.wait(guard, [&] { return ending_ || !batches_.empty(); });
      if (ending_) return;
      batch = batches_.front().lock();
      batches_.pop_front();
    }
    while (batch != nullptr && batch.use_count() > 1 && !ending_ && batch->Read_Next()) {
    }
  }
}

}  // namespace tidyfold::maildir
