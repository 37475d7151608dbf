// The bytes between this program and a server. All of it belongs to one thread, except Interruption.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tidyfold::imap {

// The server cannot be reached, or the connection has dropped; the text is for a person.
class Connection_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A person gave up the wait.
class Interrupted : public std::runtime_error {
 public:
  Interrupted() : std::runtime_error("The wait for the mail server was cancelled.") {}
};

// Ends waits from another thread.
class Interruption {
 public:
  Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;
  ~Interruption();
  // From any thread; lasts until Clear.
  void Set();
  void Clear();
  bool Is_Set() const { return set_; }
  // Readable while it is set.
  int Descriptor() const { return read_end_; }

 private:
  std::atomic<bool> set_ = false;
  int read_end_ = -1, write_end_ = -1;
};

// Never waits.
class Transport {
 public:
  virtual ~Transport() = default;
  // Nothing when there is nothing to read now; 0 at the end. Throws Connection_Error.
  virtual std::optional<std::size_t> Read(char* buffer, std::size_t size) = 0;
  // How much was taken; 0 when nothing can be taken now. The same bytes must then be offered again. Throws
  // Connection_Error.
  virtual std::size_t Write(std::string_view bytes) = 0;
  // For poll().
  virtual int Read_Descriptor() const = 0;
  virtual int Write_Descriptor() const { return Read_Descriptor(); }
  // Whether the server's greeting has been taken already.
  virtual bool Is_Greeted() const { return false; }
};

enum class Security { Tls, Start_Tls, Plain };

struct Server_Address {
  std::string host;
  std::uint16_t port = 0;
  Security security = Security::Tls;
};

// Certificates are checked against those of the system or, where the environment variable SSL_CERT_FILE names
// a file, those in it. Throws Connection_Error and Interrupted.
std::unique_ptr<Transport> Connect(const Server_Address& address, const Interruption& interruption);

// Talks with a program through its standard input and output; the first word is its path.
std::unique_ptr<Transport> Start_Program(const std::vector<std::string>& words);

}  // namespace tidyfold::imap
