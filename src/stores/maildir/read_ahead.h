// Reads the headers of a folder's next files with a second thread, while the store works on those before.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "mail/mail_summary.h"
#include "stores/maildir/mail_list.h"

namespace tidyfold::maildir {

struct Read_Header {
  Mail_Summary summary;
  std::int64_t size = 0;  // bytes of the file
};

// Whether the beginning of a file goes on to the end of its header.
bool Holds_Header(std::string_view beginning);
// What it tells, with the delivery in its name where it has no date. Throws Message_Error.
Mail_Summary Summarize_File(std::string_view beginning, std::string_view name);

// A few files of one folder, as they were called when the batch was made.
class Header_Batch {
 public:
  Header_Batch(const std::string& directory, const std::vector<const Mail*>& mails);
  Header_Batch(const Header_Batch&) = delete;
  Header_Batch& operator=(const Header_Batch&) = delete;
  ~Header_Batch();

  // Reads the next file that nobody has begun; false if there is none. May be called from any thread.
  bool Read_Next();
  // Once. Nothing for a file that is not there, cannot be read or is not usual; what that means, a closer
  // look must tell. While another thread reads this file, the next ones are read here.
  std::optional<Read_Header> Take(std::size_t place);

 private:
  struct File {
    std::string name;
    bool is_new = false;
    std::optional<Read_Header> header;
    std::atomic<bool> done = false;
  };
  std::optional<Read_Header> Read(const File& file) const;

  int cur_ = -1, new_ = -1;  // the directories
  std::deque<File> files_;
  std::atomic<std::size_t> next_ = 0;
};

// The thread. It begins with the first batch; batches that nobody holds any more are not read.
class Read_Ahead {
 public:
  Read_Ahead() = default;
  Read_Ahead(const Read_Ahead&) = delete;
  Read_Ahead& operator=(const Read_Ahead&) = delete;
  // Waits for the file that is being read.
  ~Read_Ahead();

  void Begin(const std::shared_ptr<Header_Batch>& batch);

 private:
  void Work();

  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<std::weak_ptr<Header_Batch>> batches_;
  std::atomic<bool> ending_ = false;
  std::thread thread_;
};

}  // namespace tidyfold::maildir
