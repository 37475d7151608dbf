// A second process, made by a fork.
#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <utility>

namespace tidyfold {

// Does some work in another process, which then waits to be killed, so that nothing is closed or tidied up.
class Other_Process {
 public:
  // Returns when `work` has ended.
  explicit Other_Process(const std::function<int()>& work) {
    int ends[2];
    if (pipe(ends) != 0) return;
    process_ = fork();
    if (process_ == 0) {
      unsigned char result = 255;
      try {
        result = static_cast<unsigned char>(work());
      } catch (...) {
      }
      if (write(ends[1], &result, 1) != 1) _exit(1);
      for (;;) pause();
    }
    close(ends[1]);
    unsigned char result = 0;
    if (read(ends[0], &result, 1) == 1) result_ = result;
    close(ends[0]);
  }
  Other_Process(const Other_Process&) = delete;
  Other_Process& operator=(const Other_Process&) = delete;
  ~Other_Process() { Kill(); }
  // What `work` returned; 255 after an exception, -1 where it crashed.
  int Result() const { return result_; }
  void Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = -1;
  }

 private:
  pid_t process_ = -1;
  int result_ = -1;
};

inline int In_Killed_Process(const std::function<int()>& work) {
  return Other_Process(work).Result();
}

// What must be open when the process is killed.
template <class Object>
Object& Left_Open(std::shared_ptr<Object> object) {
  return **new std::shared_ptr<Object>(std::move(object));
}

}  // namespace tidyfold
