#include "import/apple_message.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "base/text.h"
#include "import/import.h"
#include "import/source_file.h"
#include "mail/header_parameters.h"
#include "mail/mime_parts.h"
#include "mail/transfer_encoding.h"

namespace tidyfold {
namespace {

constexpr std::uint64_t read_mark = 1, deleted_mark = 2, answered_mark = 4, flagged_mark = 16;

// The number behind "<key>flags</key><integer>".
std::uint64_t Flags(std::string_view list) {
  const std::size_t key = list.find("<key>flags</key>");
  if (key == std::string_view::npos) return 0;
  constexpr std::string_view mark = "<integer>";
  const std::size_t value = list.find(mark, key);
  if (value == std::string_view::npos) return 0;
  std::uint64_t flags = 0;
  std::from_chars(list.data() + value + mark.size(), list.data() + list.size(), flags);
  return flags;
}

namespace fs = std::filesystem;

// Numbers as in "1.2", in the order of the text: 2.1 is the first within the second, and a message that is
// not taken apart is 1.
std::vector<std::string> Part_Numbers(const std::vector<Mime_Part>& parts) {
  std::vector<std::string> numbers(parts.size());
  if (!parts.empty() && !parts.front().Is_Multipart()) numbers.front() = "1";
  for (std::size_t whole = 0; whole < parts.size(); ++whole) {
    int number = 0;
    for (std::size_t part = parts[whole].first_child; part != Mime_Part::none; part = parts[part].next)
      numbers[part] = (numbers[whole].empty() ? "" : numbers[whole] + ".") + std::to_string(++number);
  }
  return numbers;
}

std::optional<std::string> Read_Part_File(const fs::path& file) {
  try {
    return Read_Text_File(file);
  } catch (const Import_Error&) {
    return std::nullopt;
  }
}

// The body of a part, encoded as its header says; none where it lies nowhere.
std::optional<std::string> Body_Beside(const fs::path& message, const std::string& number,
                                       const Mime_Part& part) {
  const std::string name = message.filename().string();
  const std::string id = name.substr(0, name.find('.'));
  std::error_code error;
  const fs::path encoded = message.parent_path() / (id + "." + number + ".emlxpart");
  if (fs::is_regular_file(encoded, error)) return Read_Part_File(encoded);
  const fs::path folder = message.parent_path().parent_path() / "Attachments" / id / number;
  std::vector<fs::path> files;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error))
    if (at->is_regular_file(error) && !at->path().filename().string().starts_with('.'))
      files.push_back(at->path());
  if (files.size() != 1) return std::nullopt;
  std::optional<std::string> body = Read_Part_File(files.front());
  if (body) body = Encode_Transfer(*body, Header_Word(part.headers[Mail_Field::Content_Transfer_Encoding]));
  return body;
}

}  // namespace

int Put_Parts_Back(const fs::path& file, std::string& message) {
  const std::vector<Mime_Part> parts = Split_Message(message);
  const std::vector<std::string> numbers = Part_Numbers(parts);
  std::string whole;
  std::size_t copied = 0;
  int missing = 0;
  for (std::size_t at = 0; at < parts.size(); ++at) {
    const Mime_Part& part = parts[at];
    const bool taken_out = !part.headers[Mail_Field::X_Apple_Content_Length].empty() &&
                           !part.Is_Multipart() && Trim(part.body).empty();
    if (!taken_out) continue;
    const std::optional<std::string> body = Body_Beside(file, numbers[at], part);
    if (!body) {
      ++missing;
      continue;
    }
    const auto place = static_cast<std::size_t>(part.body.data() - message.data());
    whole.append(message, copied, place - copied);
    whole += *body;
    copied = place + part.body.size();
    if (!body->ends_with('\n') && message.find_first_of("\r\n", copied) != copied) whole += '\n';
  }
  if (copied == 0) return missing;
  whole.append(message, copied);
  message = std::move(whole);
  return missing;
}

Apple_Message Split_Apple_Frame(std::string text) {
  Apple_Message apple;
  std::size_t length = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
  const std::size_t begin = text.find('\n');
  if (error != std::errc() || begin == std::string::npos) {
    apple.message = std::move(text);
    return apple;
  }
  const std::size_t whole = text.size() - (begin + 1);
  // The list stands where the length says, or else where it begins.
  const auto list_at = [&](std::size_t at) {
    const std::string_view rest = std::string_view(text).substr(at);
    return rest.empty() || rest.starts_with("<?xml") || rest.starts_with("<!DOCTYPE plist");
  };
  std::size_t list = begin + 1 + std::min(length, whole);
  if (!list_at(list)) list = std::min(text.rfind("\n<?xml"), text.size() - 1) + 1;
  const std::uint64_t flags = Flags(std::string_view(text).substr(list));
  apple.read = (flags & read_mark) != 0;
  apple.deleted = (flags & deleted_mark) != 0;
  apple.answered = (flags & answered_mark) != 0;
  apple.flagged = (flags & flagged_mark) != 0;
  apple.message = text.substr(begin + 1, list - begin - 1);
  return apple;
}

}  // namespace tidyfold
