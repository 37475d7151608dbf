#include "mail/mail_addresses.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "mail/header_text.h"

namespace tidyfold {
namespace {

// Reads one field of addresses from left to right; nesting is counted, never followed.
class Address_Reader {
 public:
  Address_Reader(std::string_view value, std::string_view raw_charset)
      : text_(Unfolded(value)), raw_charset_(raw_charset) {}

  std::vector<Mail_Address> Read() {
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (c == '"') {
        Quoted();
        continue;
      }
      if (c == '(' && Comment()) continue;
      if (c == '<') {
        Angle();
        continue;
      }
      if (const std::size_t word = c == '=' ? Encoded_Word_Length(std::string_view(text_).substr(at_)) : 0;
          word > 0) {
        phrase_.append(text_, at_, word);
        at_ += word;
        continue;
      }
      if (c == ',' || c == ';') {
        End_Address();
        if (c == ';') in_group_ = false;
      } else if (c == ':') {
        Begin_Group();
      } else {
        // With all up to what may mean something else.
        const std::size_t end = std::min(text_.find_first_of("\"(<=,;:", at_ + 1), text_.size());
        phrase_.append(text_, at_, end - at_);
        at_ = end;
        continue;
      }
      ++at_;
    }
    End_Address();
    return std::move(addresses_);
  }

 private:
  void Quoted() {
    const std::size_t end = quotes_close_ ? Closing(at_ + 1, '"') : std::string::npos;
    quotes_close_ = end != std::string::npos;
    if (!quotes_close_) {
      ++at_;
      return;
    }
    for (std::size_t i = at_ + 1; i < end; ++i) {
      if (text_[i] == '\\' && i + 1 < end) ++i;
      phrase_ += text_[i];
    }
    at_ = end + 1;
  }

  // False when the parenthesis is just a character.
  bool Comment() {
    if (!comments_close_) return false;
    int depth = 0;
    for (std::size_t i = at_; i < text_.size(); ++i) {
      if (text_[i] == '\\') {
        ++i;
      } else if (text_[i] == '(') {
        ++depth;
      } else if (text_[i] == ')' && --depth == 0) {
        comment_ = text_.substr(at_ + 1, i - at_ - 1);
        at_ = i + 1;
        return true;
      }
    }
    comments_close_ = false;
    return false;
  }

  void Angle() {
    std::size_t end = std::min(text_.find_first_of("<>", at_ + 1), text_.size());
    // An address that never ends, ends at the next comma.
    const bool closed = end < text_.size() && text_[end] == '>';
    std::string_view inside = std::string_view(text_).substr(at_ + 1, end - at_ - 1);
    if (!closed) inside = inside.substr(0, inside.find(','));
    if (!closed) end = at_ + 1 + inside.size();
    if (inside.starts_with('@')) inside.remove_prefix(inside.rfind(':') + 1);
    address_ = inside;
    at_ = closed ? end + 1 : end;
  }

  std::size_t Closing(std::size_t from, char quote) const {
    for (std::size_t i = from; i < text_.size(); ++i) {
      if (text_[i] == '\\') {
        ++i;
      } else if (text_[i] == quote) {
        return i;
      }
    }
    return std::string::npos;
  }

  void Begin_Group() {
    const std::string name = Text(phrase_);
    Clear();
    if (name.starts_with('@')) return;  // the hosts of an old route: "@one,@two:user@three"
    if (!in_group_ && !name.empty()) addresses_.push_back({name, {}});
    in_group_ = true;
  }

  std::string Text(std::string_view raw) const { return Header_Text(raw, raw_charset_); }

  void End_Address() {
    Mail_Address found;
    const std::string_view phrase = Header_Trim(phrase_);
    if (address_) {
      found.name = Text(phrase);
      found.address = Text(*address_);
    } else {
      // Without brackets: an address, perhaps with a name before it, or only a name.
      const std::size_t last = phrase.find_last_of(" \t") + 1;
      const bool address = last == 0 || phrase.substr(last).find('@') != std::string_view::npos;
      found.address = address ? Text(phrase.substr(last)) : std::string();
      found.name = Text(address ? phrase.substr(0, last) : phrase);
    }
    if (found.name.empty() && !found.address.empty()) found.name = Text(comment_);
    const bool any = !found.name.empty() || !found.address.empty();
    if (any && !in_group_) addresses_.push_back(std::move(found));
    Clear();
  }

  void Clear() {
    phrase_.clear();
    comment_.clear();
    address_.reset();
  }

  const std::string text_;
  const std::string_view raw_charset_;
  std::vector<Mail_Address> addresses_;
  std::size_t at_ = 0;
  bool in_group_ = false;
  // False once a search has found no end: later ones would not either.
  bool quotes_close_ = true;
  bool comments_close_ = true;
  std::string phrase_;
  std::string comment_;
  std::optional<std::string> address_;
};

}  // namespace

std::vector<Mail_Address> Header_Addresses(std::string_view value, std::string_view raw_charset) {
  return Address_Reader(value, raw_charset).Read();
}

}  // namespace tidyfold
