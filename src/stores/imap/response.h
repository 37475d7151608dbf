// What an IMAP server says, taken apart (RFC 9051, section 9; RFC 3501 for servers of before).
#pragma once

#include <cstddef>
#include <cstdint>
#include <forward_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tidyfold::imap {

// What a server sent is no IMAP, or more than anyone needs. The connection is of no use afterwards.
class Protocol_Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

struct Response_Limits {
  std::size_t line = 16 << 20;       // bytes of a response without its literals
  std::size_t response = 600 << 20;  // bytes with them; one message may be 512 MB
  int depth = 200;                   // lists within lists
};

// Whole responses out of a stream of bytes.
class Response_Reader {
 public:
  explicit Response_Reader(const Response_Limits& limits = {}) : limits_(limits) {}
  void Feed(std::string_view bytes);
  // The next response without its line end, literals included; nothing until it is there. Throws
  // Protocol_Error beyond the limits.
  std::optional<std::string> Next();
  bool Empty() const { return begin_ == buffer_.size(); }

 private:
  Response_Limits limits_;
  std::string buffer_;
  std::size_t begin_ = 0;     // of the response
  std::size_t line_ = 0;      // of its present line, behind `begin_`
  std::size_t scanned_ = 0;   // no line end between `line_` and here
  std::size_t literals_ = 0;  // bytes of its literals so far
};

// A view of one element of a response; valid as long as that.
class Value;

class Response {
 public:
  // Throws Protocol_Error.
  explicit Response(std::string text, const Response_Limits& limits = {});
  Response(const Response&) = delete;
  Response& operator=(const Response&) = delete;

  bool Is_Continuation() const { return tag_ == "+"; }
  bool Is_Untagged() const { return tag_ == "*"; }
  std::string_view Tag() const { return tag_; }
  // "OK", "NO", "BAD", "BYE", "PREAUTH" with a text, or the name of data ("FETCH"); upper case.
  const std::string& Name() const { return name_; }
  // The number in front of the name, as in "12 EXISTS"; 0 where there is none.
  std::uint32_t Number() const { return number_; }
  // Of a response with a text: what stands in brackets in front of it, its first word in upper case.
  const std::string& Code() const { return code_; }
  // Behind the name; for responses with a text, behind the code's first word.
  std::vector<Value> Arguments() const;
  // For a person: UTF-8 without control characters.
  const std::string& Text() const { return text_; }

 private:
  friend class Value;
  std::vector<Value> Values(std::uint32_t begin, std::uint32_t end) const;
  friend class Response_Parser;
  enum class Kind : std::uint8_t { Nil, Atom, String, List };
  struct Node {
    std::string_view text;
    std::uint32_t end;  // the index behind the last node in it
    Kind kind;
  };

  std::string bytes_;
  std::string_view tag_;
  std::string name_, code_, text_;
  std::uint32_t number_ = 0;
  std::vector<Node> nodes_;
  std::forward_list<std::string> unescaped_;
};

class Value {
 public:
  bool Is_Nil() const { return Node().kind == Response::Kind::Nil; }
  bool Is_List() const { return Node().kind == Response::Kind::List; }
  bool Is_Atom() const { return Node().kind == Response::Kind::Atom; }
  // Empty for NIL and lists.
  std::string_view Text() const { return Node().text; }
  // Atoms compare without case.
  bool Is(std::string_view upper_case) const;
  // Decimal digits only; nothing for what is none or does not fit.
  std::optional<std::uint64_t> Number() const;
  std::optional<std::uint32_t> Number_32() const;
  // The elements of a list; none of anything else.
  std::vector<Value> List() const;

  Value(const Response& response, std::uint32_t index) : response_(&response), index_(index) {}

 private:
  const Response::Node& Node() const { return response_->nodes_[index_]; }
  const Response* response_;
  std::uint32_t index_;
};

// ASCII letters only.
std::string Upper_Ascii(std::string_view text);
bool Same_Ascii(std::string_view text, std::string_view upper_case);
// Decimal digits only.
std::optional<std::uint64_t> Parse_Number(std::string_view digits);

}  // namespace tidyfold::imap
