// A conversation with an IMAP server: commands with tags, and what is answered. Waits in its thread; an
// Interruption ends a wait at once.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "stores/imap/response.h"
#include "stores/imap/transport.h"

namespace tidyfold::imap {

// A server that refuses: what it said, for a person.
class Refused : public std::runtime_error {
 public:
  // `code` is the word in brackets (RFC 5530), in upper case.
  Refused(const std::string& text, std::string code) : std::runtime_error(text), code_(std::move(code)) {}
  const std::string& Code() const { return code_; }

 private:
  std::string code_;
};

// The code of a server that turns everyone away for now.
inline constexpr const char* busy_code = "UNAVAILABLE";
// Whether a code says that the same may work later (RFC 5530, RFC 9208).
bool Is_Passing(std::string_view code);

// Texts are sent as quoted strings or, where they do not allow it, as literals.
class Command {
 public:
  explicit Command(std::string text) { pieces_.push_back({std::move(text), false}); }
  Command& Raw(std::string_view text);
  Command& String(std::string_view text);

 private:
  friend class Client;
  struct Piece {
    std::string text;
    bool literal;
  };
  std::vector<Piece> pieces_;
};

class Client {
 public:
  using Handler = std::function<void(const Response&)>;

  // Every wait for the server ends with Connection_Error after `patience` of silence.
  Client(std::unique_ptr<Transport> transport, const Interruption& interruption,
         std::chrono::seconds patience, const Response_Limits& limits = {});
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client();

  // Reads the greeting. True where the server takes us for logged in already. Throws Refused for a server
  // that turns us away.
  bool Greet();

  // All of these throw Connection_Error, Protocol_Error and Interrupted, after which nothing can be asked any
  // more.

  // Sends a command and returns its tag; its answer comes with Finish.
  std::string Send(const Command& command);
  // Reads up to the answer of a command, and tells the handler of what comes untagged meanwhile.
  // Where much is to come, `in_bulk` lets it gather for a moment before each reading.
  std::unique_ptr<Response> Finish(const std::string& tag, const Handler& handler = {}, bool in_bulk = false);
  // Both; throws Refused unless the answer is OK.
  std::unique_ptr<Response> Run(const Command& command, const Handler& handler = {});
  // An exchange of lines (RFC 4422), as AUTHENTICATE makes: the answer to each line that the server sends.
  std::unique_ptr<Response> Exchange(const Command& command,
                                     const std::function<std::string(std::string_view challenge)>& answer);

  // What the server can do, in upper case; asked for where it has not said so.
  bool Has(std::string_view capability);
  // After what changes them: logging in, or turning encryption on.
  void Forget_Capabilities() { capabilities_.clear(); }

  // Told of every untagged response, in front of a command's own handler.
  Handler on_untagged;
  // What the server wants a person to read (ALERT).
  std::vector<std::string> alerts;

 private:
  std::unique_ptr<Response> Next(bool in_bulk = false);
  void Wait(bool to_write);
  void Let_Gather() const;
  bool Read_More();
  void Write(std::string_view bytes);
  void Take(const Response& response, const Handler& handler);
  void Learn_Capabilities(const std::vector<Value>& words);

  std::unique_ptr<Transport> transport_;
  const Interruption& interruption_;
  std::chrono::seconds patience_;
  Response_Limits limits_;
  Response_Reader reader_;
  std::set<std::string, std::less<>> capabilities_;
  std::map<std::string, std::unique_ptr<Response>> finished_;  // by tag
  std::uint64_t commands_ = 0;
  std::string bye_;
};

// Throws Refused unless the answer is OK.
void Demand_Ok(const Response& answer);

}  // namespace tidyfold::imap
