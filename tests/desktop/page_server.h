// A Web server for one folder on the loopback address.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

namespace tidyfold {

// Listens until it is destroyed. Allows pages to be cached, as usual.
class Page_Server {
 public:
  explicit Page_Server(std::filesystem::path folder)
      : folder_(std::move(folder)), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    auto* const address = reinterpret_cast<sockaddr*>(&address_);
    if (bind(listener_, address, size) != 0 || listen(listener_, 16) != 0 ||
        getsockname(listener_, address, &size) != 0)
      throw std::runtime_error("The loopback address takes no server.");
    thread_ = std::thread([this] { Serve(); });
  }
  ~Page_Server() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
  }

  std::string Address() const { return "http://127.0.0.1:" + std::to_string(ntohs(address_.sin_port)); }

  // True as soon as the path has been requested.
  bool Wait_For(const std::string& path) {
    std::unique_lock lock(mutex_);
    return asked_.wait_for(lock, std::chrono::seconds(60), [&] { return paths_.contains(path); });
  }

 private:
  void Serve() {
    for (int client = -1; (client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC)) >= 0; close(client)) {
      char request[4096];
      const auto length = read(client, request, sizeof request);
      const std::string line(request, length > 0 ? static_cast<std::size_t>(length) : 0);
      const auto start = line.find(' ') + 1;
      const std::string path = line.substr(start, line.find(' ', start) - start);
      std::ifstream file(folder_ / path.substr(1), std::ios::binary);
      const std::string page(std::istreambuf_iterator<char>(file), {});
      const std::string type = path.ends_with(".css") ? "text/css" : "text/html";
      const std::string answer = std::string(page.empty() ? "HTTP/1.1 404 Not Found" : "HTTP/1.1 200 OK") +
                                 "\r\nContent-Type: " + type +
                                 "\r\nCache-Control: max-age=86400\r\nConnection: close\r\nContent-Length: " +
                                 std::to_string(page.size()) + "\r\n\r\n" + page;
      if (write(client, answer.data(), answer.size()) < 0) continue;
      const std::lock_guard lock(mutex_);
      paths_.insert(path);
      asked_.notify_all();
    }
  }

  std::filesystem::path folder_;
  int listener_;
  sockaddr_in address_{};
  std::mutex mutex_;
  std::condition_variable asked_;
  std::set<std::string> paths_;
  std::thread thread_;
};

}  // namespace tidyfold
