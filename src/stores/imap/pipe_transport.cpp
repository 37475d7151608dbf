#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

#include "stores/imap/transport.h"

namespace tidyfold::imap {

Interruption::Interruption() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
    throw Connection_Error("There is no room for another connection on this machine.");
  read_end_ = ends[0];
  write_end_ = ends[1];
}

Interruption::~Interruption() {
  close(read_end_);
  close(write_end_);
}

void Interruption::Set() {
  if (set_.exchange(true)) return;
  while (write(write_end_, "x", 1) < 0 && errno == EINTR) {
  }
}

void Interruption::Clear() {
  if (!set_) return;
  char byte;
  while (read(read_end_, &byte, 1) > 0) {
  }
  set_ = false;
}

namespace {

// One end of a pair of sockets is the program's input and output.
class Pipe_Transport : public Transport {
 public:
  Pipe_Transport(int socket, pid_t process) : socket_(socket), process_(process) {}
  Pipe_Transport(const Pipe_Transport&) = delete;
  Pipe_Transport& operator=(const Pipe_Transport&) = delete;
  ~Pipe_Transport() override {
    close(socket_);
    kill(process_, SIGTERM);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  std::optional<std::size_t> Read(char* buffer, std::size_t size) override {
    const ssize_t got = recv(socket_, buffer, size, MSG_DONTWAIT);
    if (got >= 0) return static_cast<std::size_t>(got);
    if (Is_Temporary()) return std::nullopt;
    throw Connection_Error("The mail server's program has ended.");
  }
  std::size_t Write(std::string_view bytes) override {
    const ssize_t sent = send(socket_, bytes.data(), bytes.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent >= 0) return static_cast<std::size_t>(sent);
    if (Is_Temporary()) return 0;
    throw Connection_Error("The mail server's program has ended.");
  }
  int Read_Descriptor() const override { return socket_; }

 private:
  static bool Is_Temporary() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }
  int socket_;
  pid_t process_;
};

}  // namespace

std::unique_ptr<Transport> Start_Program(const std::vector<std::string>& words) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    throw Connection_Error("There is no room for another connection on this machine.");
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  pid_t process = 0;
  const int failure =
      posix_spawn(&process, words.at(0).c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (failure != 0) {
    close(ends[0]);
    throw Connection_Error("\"" + words[0] + "\" cannot be started: " + std::strerror(failure) + ".");
  }
  return std::make_unique<Pipe_Transport>(ends[0], process);
}

}  // namespace tidyfold::imap
