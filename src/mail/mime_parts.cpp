#include "mail/mime_parts.h"

#include <algorithm>
#include <utility>

#include "mail/header_parameters.h"
#include "mail/header_text.h"

namespace tidyfold {
namespace {

constexpr std::size_t none = Mime_Part::none;

class Splitter {
 public:
  explicit Splitter(std::string_view text) : text_(text) {}

  std::vector<Mime_Part> Split() {
    Begin_Part(none);
    while (!open_.empty() && at_ < text_.size()) {
      const std::size_t line_at = Next_Dashes();
      if (line_at == std::string_view::npos) break;
      const std::string_view line = First_Line(text_.substr(line_at));
      at_ = std::min(line_at + line.size() + 1, text_.size());
      const std::size_t level = Level_Of(line);
      if (level == none) continue;
      End_Part(line_at);
      const bool last = Header_Trim(line).size() > open_[level].boundary.size() + 2;
      open_.resize(level + 1);
      if (const std::size_t end = text_.find('\n', line_at); end != std::string_view::npos) at_ = end + 1;
      if (last) {
        open_.pop_back();
      } else {
        Begin_Part(open_.back().part);
      }
    }
    End_Part(text_.size());
    return std::move(parts_);
  }

 private:
  struct Open_Multipart {
    std::size_t part;
    std::string boundary;
  };

  // The next line that begins with "--".
  std::size_t Next_Dashes() const {
    if (text_.substr(at_).starts_with("--") && (at_ == 0 || text_[at_ - 1] == '\n')) return at_;
    const std::size_t found = text_.find("\n--", at_ == 0 ? 0 : at_ - 1);
    return found == std::string_view::npos ? found : found + 1;
  }

  // The innermost multipart that this line is a boundary of.
  std::size_t Level_Of(std::string_view line) const {
    line = Header_Trim(line);
    for (std::size_t level = open_.size(); level-- > 0;) {
      const std::string& boundary = open_[level].boundary;
      const std::string_view rest = line.substr(std::min<std::size_t>(boundary.size() + 2, line.size()));
      if (line.size() >= boundary.size() + 2 && (rest.empty() || rest == "--") &&
          line.substr(2, boundary.size()) == boundary) {
        return level;
      }
    }
    return none;
  }

  void Begin_Part(std::size_t parent) {
    if (parts_.size() >= most_parts) return;
    const std::size_t index = parts_.size();
    Mime_Part part;
    const std::string_view text = text_.substr(at_);
    if (parent == none) {
      at_ += part.headers.Read(text);
    } else {
      at_ += part.headers.Read(text, [this](std::string_view line) { return Level_Of(line) != none; });
    }
    part.type = Type_Of(part.headers, parent);
    if (parent != none) {
      Mime_Part& multipart = parts_[parent];
      if (multipart.first_child == none) multipart.first_child = index;
      if (multipart.last_child != none) parts_[multipart.last_child].next = index;
      multipart.last_child = index;
    }
    current_ = index;
    body_ = at_;
    if (part.Is_Multipart() && open_.size() < deepest_part)
      open_.push_back({index, Header_Parameter(part.headers[Mail_Field::Content_Type], "boundary")});
    parts_.push_back(std::move(part));
  }

  // A body does not end with the line break in front of a boundary.
  void End_Part(std::size_t end) {
    if (current_ == none) return;
    if (end < text_.size() && end > body_) --end;
    if (end < text_.size() && end > body_ && text_[end - 1] == '\r') --end;
    parts_[current_].body = text_.substr(body_, end - body_);
    current_ = none;
  }

  std::string Type_Of(const Mail_Headers& headers, std::size_t parent) const {
    std::string type = Header_Word(headers[Mail_Field::Content_Type]);
    std::erase_if(type, [](char c) { return c == ' ' || c == '\t'; });
    if (type.find('/') != std::string::npos) return type;
    // No type, or one from before MIME.
    const bool digest = parent != none && parts_[parent].type == "multipart/digest";
    return type.empty() && digest ? "message/rfc822" : "text/plain";
  }

  std::string_view text_;
  std::vector<Mime_Part> parts_;
  std::vector<Open_Multipart> open_;
  std::size_t at_ = 0;
  std::size_t current_ = none;  // the part whose body this is; none between a last boundary and the next
  std::size_t body_ = 0;
};

}  // namespace

std::vector<Mime_Part> Split_Message(std::string_view text) {
  return Splitter(text).Split();
}

}  // namespace tidyfold
