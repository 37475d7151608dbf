#include "stores/imap/client.h"

#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace tidyfold::imap {

namespace {

constexpr std::size_t longest_quoted = 1000;
constexpr std::size_t read_at_once = 64 << 10;
constexpr std::size_t most_alerts = 10;

bool Fits_Quotes(std::string_view text) {
  return text.size() <= longest_quoted && std::all_of(text.begin(), text.end(), [](char c) {
           const auto byte = static_cast<unsigned char>(c);
           return byte >= 0x20 && byte < 0x7F;
         });
}

}  // namespace

Command& Command::Raw(std::string_view text) {
  if (pieces_.back().literal) pieces_.push_back({{}, false});
  pieces_.back().text += text;
  return *this;
}

Command& Command::String(std::string_view text) {
  if (!Fits_Quotes(text)) {
    pieces_.push_back({std::string(text), true});
    return *this;
  }
  Raw("\"");
  std::string& line = pieces_.back().text;
  for (const char c : text) {
    if (c == '"' || c == '\\') line += '\\';
    line += c;
  }
  line += '"';
  return *this;
}

bool Is_Passing(std::string_view code) {
  return code == busy_code || code == "INUSE" || code == "LIMIT" || code == "OVERQUOTA";
}

void Demand_Ok(const Response& answer) {
  if (answer.Name() != "OK") throw Refused(answer.Text(), answer.Code());
}

Client::Client(std::unique_ptr<Transport> transport, const Interruption& interruption,
               std::chrono::seconds patience, const Response_Limits& limits)
    : transport_(std::move(transport)),
      interruption_(interruption),
      patience_(patience),
      limits_(limits),
      reader_(limits) {}

Client::~Client() = default;

bool Client::Greet() {
  if (transport_->Is_Greeted()) return false;
  const auto greeting = Next();
  if (greeting == nullptr || !greeting->Is_Untagged()) throw Protocol_Error("This is no IMAP server.");
  if (greeting->Name() == "BYE") throw Refused(greeting->Text(), busy_code);
  if (greeting->Name() != "OK" && greeting->Name() != "PREAUTH")
    throw Protocol_Error("This is no IMAP server.");
  Take(*greeting, {});
  return greeting->Name() == "PREAUTH";
}

std::string Client::Send(const Command& command) {
  std::string tag = "T" + std::to_string(++commands_);
  std::string out = tag + " ";
  for (const Command::Piece& piece : command.pieces_) {
    if (!piece.literal) {
      out += piece.text;
      continue;
    }
    const bool at_once = Has("LITERAL+") || (Has("LITERAL-") && piece.text.size() <= 4096);
    out += "{" + std::to_string(piece.text.size()) + (at_once ? "+}\r\n" : "}\r\n");
    if (!at_once) {
      Write(std::exchange(out, {}));
      for (auto response = Next(); !response->Is_Continuation(); response = Next()) {
        // It is refused before all of it was sent.
        if (response->Tag() == tag) {
          finished_[tag] = std::move(response);
          return tag;
        }
        Take(*response, {});
      }
    }
    out += piece.text;
  }
  Write(out + "\r\n");
  return tag;
}

std::unique_ptr<Response> Client::Finish(const std::string& tag, const Handler& handler, bool in_bulk) {
  for (;;) {
    if (const auto found = finished_.find(tag); found != finished_.end()) {
      auto answer = std::move(found->second);
      finished_.erase(found);
      return answer;
    }
    auto response = Next(in_bulk);
    if (response->Is_Continuation()) throw Protocol_Error("The server asks for more than there is.");
    if (response->Is_Untagged()) {
      Take(*response, handler);
      continue;
    }
    Take(*response, {});
    finished_[std::string(response->Tag())] = std::move(response);
  }
}

std::unique_ptr<Response> Client::Run(const Command& command, const Handler& handler) {
  auto answer = Finish(Send(command), handler);
  Demand_Ok(*answer);
  return answer;
}

std::unique_ptr<Response> Client::Exchange(
    const Command& command, const std::function<std::string(std::string_view challenge)>& answer) {
  const std::string tag = Send(command);
  for (;;) {
    auto response = Next();
    if (response->Is_Continuation()) {
      Write(answer(response->Text()) + "\r\n");
    } else if (response->Is_Untagged()) {
      Take(*response, {});
    } else {
      Take(*response, {});
      return response;
    }
  }
}

bool Client::Has(std::string_view capability) {
  if (capabilities_.empty()) Run(Command("CAPABILITY"));
  return capabilities_.contains(capability);
}

void Client::Learn_Capabilities(const std::vector<Value>& words) {
  capabilities_.clear();
  for (const Value& word : words) capabilities_.insert(Upper_Ascii(word.Text()));
}

void Client::Take(const Response& response, const Handler& handler) {
  if (response.Name() == "CAPABILITY" || response.Code() == "CAPABILITY")
    Learn_Capabilities(response.Arguments());
  if (response.Code() == "ALERT" && alerts.size() < most_alerts) alerts.push_back(response.Text());
  if (response.Name() == "BYE") bye_ = response.Text();
  if (!response.Is_Untagged()) return;
  if (on_untagged) on_untagged(response);
  if (handler) handler(response);
}

std::unique_ptr<Response> Client::Next(bool in_bulk) {
  for (;;) {
    if (interruption_.Is_Set()) throw Interrupted();
    if (auto text = reader_.Next()) return std::make_unique<Response>(std::move(*text), limits_);
    if (Read_More()) continue;
    Wait(false);
    if (in_bulk) Let_Gather();
  }
}

// A server that hands out a little at a time would have both sides woken up for each.
void Client::Let_Gather() const {
  constexpr int milliseconds = 1;
  pollfd end{interruption_.Descriptor(), POLLIN, 0};
  poll(&end, 1, milliseconds);
}

// False where nothing can be read now.
bool Client::Read_More() {
  char buffer[read_at_once];
  const auto got = transport_->Read(buffer, sizeof buffer);
  if (!got) return false;
  if (*got == 0)
    throw Connection_Error(bye_.empty() ? "The mail server closed the connection."
                                        : "The mail server closed the connection: " + bye_);
  reader_.Feed({buffer, *got});
  return true;
}

void Client::Wait(bool to_write) {
  const int read_end = transport_->Read_Descriptor(), write_end = transport_->Write_Descriptor();
  pollfd ends[] = {{read_end, POLLIN, 0},
                   {interruption_.Descriptor(), POLLIN, 0},
                   {write_end, static_cast<short>(to_write ? POLLOUT : 0), 0}};
  const auto end = std::chrono::steady_clock::now() + patience_;
  for (;;) {
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now()).count();
    const int ready = poll(ends, to_write ? 3 : 2, static_cast<int>(std::max<std::int64_t>(left, 0)));
    if (interruption_.Is_Set()) throw Interrupted();
    if (ready > 0) return;
    if (ready < 0 && errno != EINTR) throw Connection_Error("The connection to the mail server was lost.");
    if (left <= 0)
      throw Connection_Error("The mail server has not answered for " + std::to_string(patience_.count()) +
                             " seconds.");
  }
}

// A server that waits until it can answer takes nothing more, so what it says is read meanwhile.
void Client::Write(std::string_view bytes) {
  while (!bytes.empty()) {
    if (interruption_.Is_Set()) throw Interrupted();
    const std::size_t sent = transport_->Write(bytes);
    bytes.remove_prefix(sent);
    if (sent == 0 && !Read_More()) Wait(true);
  }
}

}  // namespace tidyfold::imap
