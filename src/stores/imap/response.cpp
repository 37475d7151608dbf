#include "stores/imap/response.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/text.h"

namespace tidyfold::imap {

namespace {

bool Is_Digit(char c) {
  return c >= '0' && c <= '9';
}

bool Is_Letter_Or_Digit(char c) {
  const char lower = static_cast<char>(c | 0x20);
  return Is_Digit(c) || (lower >= 'a' && lower <= 'z');
}

// The bytes of the literal that a line announces with its end: "{12}", "{12+}", "~{12}".
std::optional<std::uint64_t> Announced_Literal(std::string_view line) {
  if (line.size() < 3 || line.back() != '}') return std::nullopt;
  std::size_t at = line.size() - 1;
  if (line[at - 1] == '+') --at;
  const std::size_t end = at;
  while (at > 0 && Is_Digit(line[at - 1])) --at;
  if (at == end || at == 0 || line[at - 1] != '{') return std::nullopt;
  const auto number = Parse_Number(line.substr(at, end - at));
  if (!number) throw Protocol_Error("The server announced a text of an impossible length.");
  return number;
}

// Texts for people end as they like, and may end like a literal.
bool Has_Text(std::string_view line) {
  const std::size_t blank = line.find(' ');
  if (blank == std::string_view::npos || line.starts_with('+')) return true;
  const std::string_view rest = line.substr(blank + 1);
  const std::string_view word = rest.substr(0, std::min(rest.find(' '), rest.size()));
  for (const std::string_view status : {"OK", "NO", "BAD", "BYE", "PREAUTH"})
    if (Same_Ascii(word, status)) return true;
  return false;
}

}  // namespace

std::string Upper_Ascii(std::string_view text) {
  std::string upper(text);
  for (char& c : upper)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return upper;
}

bool Same_Ascii(std::string_view text, std::string_view upper_case) {
  return std::equal(
      text.begin(), text.end(), upper_case.begin(), upper_case.end(), [](char left, char right) {
        return (left >= 'a' && left <= 'z' ? static_cast<char>(left - 'a' + 'A') : left) == right;
      });
}

std::optional<std::uint64_t> Parse_Number(std::string_view digits) {
  if (digits.empty()) return std::nullopt;
  std::uint64_t number = 0;
  for (const char c : digits) {
    if (!Is_Digit(c)) return std::nullopt;
    const auto digit = static_cast<std::uint64_t>(c - '0');
    if (number > (UINT64_MAX - digit) / 10) return std::nullopt;
    number = number * 10 + digit;
  }
  return number;
}

void Response_Reader::Feed(std::string_view bytes) {
  if (begin_ > 0 && (begin_ == buffer_.size() || begin_ > (1 << 20))) {
    buffer_.erase(0, begin_);
    line_ -= begin_;
    scanned_ -= begin_;
    begin_ = 0;
  }
  buffer_.append(bytes);
}

std::optional<std::string> Response_Reader::Next() {
  for (;;) {
    const char* const found = scanned_ >= buffer_.size()
                                  ? nullptr
                                  : static_cast<const char*>(std::memchr(buffer_.data() + scanned_, '\n',
                                                                         buffer_.size() - scanned_));
    if (found == nullptr) {
      // A literal that is still coming in has been measured already.
      if (scanned_ <= buffer_.size() && buffer_.size() - begin_ > limits_.line + literals_)
        throw Protocol_Error("The server sent a line without an end.");
      scanned_ = std::max(scanned_, buffer_.size());
      return std::nullopt;
    }
    const auto end = static_cast<std::size_t>(found - buffer_.data());
    std::string_view line(buffer_.data() + line_, end - line_);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const bool may_announce = line_ != begin_ || !Has_Text(line);
    if (const auto literal = may_announce ? Announced_Literal(line) : std::nullopt) {
      if (*literal > limits_.response - std::min(limits_.response, end + 1 - begin_))
        throw Protocol_Error("The server sent more at once than a mail can hold.");
      line_ = scanned_ = end + 1 + static_cast<std::size_t>(*literal);
      literals_ += static_cast<std::size_t>(*literal);
      continue;
    }
    const std::size_t last = line_ + line.size();
    std::string response = buffer_.substr(begin_, last - begin_);
    begin_ = line_ = scanned_ = end + 1;
    const std::size_t outside = response.size() - std::exchange(literals_, 0);
    if (outside > limits_.line) throw Protocol_Error("The server sent a line without an end.");
    return response;
  }
}

// One pass over the text, without recursion.
class Response_Parser {
 public:
  Response_Parser(Response& response, const Response_Limits& limits)
      : response_(response), limits_(limits), rest_(response.bytes_) {}

  void Parse() {
    const std::string_view tag = Word();
    if (tag.empty()) Fail();
    response_.tag_ = tag;
    if (tag == "+") return Parse_Text();
    std::string_view word = Word();
    if (!word.empty() && Is_Digit(word.front()) && tag == "*") {
      const auto number = Parse_Number(word);
      if (!number || *number > UINT32_MAX) throw Protocol_Error("The server sent an impossible number.");
      response_.number_ = static_cast<std::uint32_t>(*number);
      word = Word();
    }
    response_.name_ = Upper_Ascii(word);
    for (const std::string_view status : {"OK", "NO", "BAD", "BYE", "PREAUTH"})
      if (response_.name_ == status) return Parse_Status();
    if (tag != "*") Fail();
    Parse_Values('\0');
    if (!rest_.empty()) Fail();
  }

 private:
  [[noreturn]] static void Fail() { throw Protocol_Error("The server sent something that is no IMAP."); }

  std::string_view Word() {
    const std::string_view word = rest_.substr(0, std::min(rest_.find(' '), rest_.size()));
    if (word.find('\0') != std::string_view::npos) Fail();
    rest_.remove_prefix(std::min(word.size() + 1, rest_.size()));
    return word;
  }

  void Parse_Text() {
    std::string text = Valid_Utf8(rest_);
    for (char& c : text)
      if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = ' ';
    response_.text_ = std::move(text);
  }

  void Parse_Status() {
    if (rest_.starts_with('[')) {
      rest_.remove_prefix(1);
      const std::string_view whole = rest_;
      const std::size_t end = rest_.find_first_of(" ]");
      if (end == std::string_view::npos) Fail();
      response_.code_ = Upper_Ascii(rest_.substr(0, end));
      rest_.remove_prefix(end);
      try {
        Parse_Values(']');
      } catch (const Protocol_Error&) {
        // A code that nobody understands still ends at its bracket.
        response_.nodes_.clear();
        rest_ = whole.substr(std::min(whole.find(']'), whole.size()));
      }
      if (rest_.starts_with(']')) rest_.remove_prefix(1);
      if (rest_.starts_with(' ')) rest_.remove_prefix(1);
    }
    Parse_Text();
  }

  // Up to the end or to the closing bracket, which stays.
  void Parse_Values(char closing) {
    // One for every dozen bytes is usual for a structure.
    constexpr std::size_t usual_length = 12, most_ahead = 1000;
    auto& nodes = response_.nodes_;
    nodes.reserve(std::min(rest_.size() / usual_length, most_ahead));
    std::vector<std::uint32_t> open;
    for (;;) {
      while (rest_.starts_with(' ')) rest_.remove_prefix(1);
      if (rest_.empty()) break;
      const char c = rest_.front();
      if (c == closing && open.empty()) break;
      if (c == '(') {
        if (open.size() >= static_cast<std::size_t>(limits_.depth))
          throw Protocol_Error("The server sent lists nested too deeply.");
        open.push_back(static_cast<std::uint32_t>(nodes.size()));
        nodes.push_back({{}, 0, Response::Kind::List});
        rest_.remove_prefix(1);
      } else if (c == ')') {
        if (open.empty()) Fail();
        nodes[open.back()].end = static_cast<std::uint32_t>(nodes.size());
        open.pop_back();
        rest_.remove_prefix(1);
      } else if (c == '"') {
        Parse_Quoted();
      } else if (c == '{' || (c == '~' && rest_.size() > 1 && rest_[1] == '{')) {
        Parse_Literal();
      } else {
        Parse_Atom(closing);
      }
    }
    if (!open.empty()) Fail();
  }

  void Add(std::string_view text, Response::Kind kind) {
    auto& nodes = response_.nodes_;
    if (nodes.size() >= UINT32_MAX - 1) Fail();
    nodes.push_back({text, static_cast<std::uint32_t>(nodes.size() + 1), kind});
  }

  void Parse_Quoted() {
    std::size_t end = 1;
    bool escapes = false;
    for (; end < rest_.size() && rest_[end] != '"'; ++end) {
      if (rest_[end] == '\0') Fail();
      if (rest_[end] != '\\') continue;
      escapes = true;
      ++end;
    }
    if (end >= rest_.size()) Fail();
    std::string_view text = rest_.substr(1, end - 1);
    if (escapes) {
      std::string plain;
      for (std::size_t at = 0; at < text.size(); ++at) plain += text[at] == '\\' ? text[++at] : text[at];
      text = response_.unescaped_.emplace_front(std::move(plain));
    }
    Add(text, Response::Kind::String);
    rest_.remove_prefix(end + 1);
  }

  void Parse_Literal() {
    const std::size_t line_end = rest_.find('\n');
    if (line_end == std::string_view::npos) Fail();
    std::string_view line = rest_.substr(0, line_end);
    if (line.ends_with('\r')) line.remove_suffix(1);
    const auto size = Announced_Literal(line);
    if (!size || line.find('{') != line.rfind('{')) Fail();
    rest_.remove_prefix(line_end + 1);
    if (*size > rest_.size()) Fail();
    Add(rest_.substr(0, static_cast<std::size_t>(*size)), Response::Kind::String);
    rest_.remove_prefix(static_cast<std::size_t>(*size));
  }

  // What stands in brackets belongs to it, as in BODY[HEADER.FIELDS ("SUBJECT")].
  void Parse_Atom(char closing) {
    std::size_t end = 0;
    for (bool bracket = false; end < rest_.size(); ++end) {
      const char c = rest_[end];
      if (Is_Letter_Or_Digit(c)) continue;
      if (c == '\0' || c == '\r' || c == '\n') Fail();
      if (bracket) {
        if (c == ']') bracket = false;
      } else if (c == '[' && closing == '\0') {
        bracket = true;
      } else if (c == ' ' || c == '(' || c == ')' || c == '"' || (c == closing && closing != '\0')) {
        break;
      }
    }
    if (end == 0) Fail();
    const std::string_view text = rest_.substr(0, end);
    const bool nil = Same_Ascii(text, "NIL");
    Add(nil ? std::string_view() : text, nil ? Response::Kind::Nil : Response::Kind::Atom);
    rest_.remove_prefix(end);
  }

  Response& response_;
  const Response_Limits& limits_;
  std::string_view rest_;
};

Response::Response(std::string text, const Response_Limits& limits) : bytes_(std::move(text)) {
  Response_Parser(*this, limits).Parse();
}

std::vector<Value> Response::Values(std::uint32_t begin, std::uint32_t end) const {
  std::size_t count = 0;
  for (std::uint32_t at = begin; at < end; at = nodes_[at].end) ++count;
  std::vector<Value> values;
  values.reserve(count);
  for (std::uint32_t at = begin; at < end; at = nodes_[at].end) values.emplace_back(*this, at);
  return values;
}

std::vector<Value> Response::Arguments() const {
  return Values(0, static_cast<std::uint32_t>(nodes_.size()));
}

bool Value::Is(std::string_view upper_case) const {
  return Is_Atom() && Same_Ascii(Text(), upper_case);
}

std::optional<std::uint64_t> Value::Number() const {
  return Parse_Number(Text());
}

std::optional<std::uint32_t> Value::Number_32() const {
  const auto number = Parse_Number(Text());
  if (!number || *number > UINT32_MAX) return std::nullopt;
  return static_cast<std::uint32_t>(*number);
}

std::vector<Value> Value::List() const {
  if (!Is_List()) return {};
  return response_->Values(index_ + 1, Node().end);
}

}  // namespace tidyfold::imap
