#include "mail/kept_fields.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>

#include "base/text.h"
#include "mail/charset.h"
#include "mail/header_text.h"
#include "mail/item_identity.h"
#include "mail/mail_flags.h"
#include "mail/mail_headers.h"
#include "mail/transfer_encoding.h"

namespace tidyfold {
namespace {

constexpr std::string_view prefix = "X-Tidyfold-";
constexpr std::string_view block_name = "X-Tidyfold-Export:";
constexpr std::string_view file_mark = "ATTACH;X-TIDYFOLD-FILE=";
constexpr std::string_view no_value = "none";
constexpr std::size_t longest_line = 75;  // bytes, as iCalendar and vCard ask for

constexpr std::array<std::pair<const char*, std::int32_t>, 14> classes = {{
    {"mail", item_class::mail},
    {"report", item_class::report},
    {"post", item_class::post},
    {"note", item_class::note},
    {"journal", item_class::journal},
    {"task-request", item_class::task_request},
    {"task-request-update", item_class::task_request_update},
    {"task-request-accept", item_class::task_request_accept},
    {"task-request-decline", item_class::task_request_decline},
    {"meeting-request", item_class::meeting_request},
    {"meeting-cancellation", item_class::meeting_cancellation},
    {"meeting-declined", item_class::meeting_response_negative},
    {"meeting-accepted", item_class::meeting_response_positive},
    {"meeting-tentative", item_class::meeting_response_tentative},
}};

struct Text_Member {
  const char* name;
  std::string New_Item::*member;
};
constexpr std::array<Text_Member, 6> texts = {{{"Sender", &New_Item::sender},
                                               {"Sender-Address", &New_Item::sender_address},
                                               {"Recipients", &New_Item::recipients},
                                               {"Message-Id", &New_Item::message_id},
                                               {"List-Id", &New_Item::list_id},
                                               {"Subject", &New_Item::subject}}};

struct Date_Member {
  const char* name;
  Date New_Item::*member;
};
constexpr std::array<Date_Member, 5> dates = {{{"Received", &New_Item::received},
                                               {"Modified", &New_Item::last_modified},
                                               {"Completed", &New_Item::completed},
                                               {"Due", &New_Item::due},
                                               {"End", &New_Item::end}}};

// Everything but letters, digits and a few marks as "%" and two hexadecimal digits: such text stands anywhere
// and may be folded anywhere.
std::string Coded(std::string_view text) {
  constexpr std::string_view plain = "-._@<>/()'!?+*=";
  constexpr const char* digits = "0123456789ABCDEF";
  std::string coded;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (g_ascii_isalnum(c) || plain.find(c) != std::string_view::npos) {
      coded += c;
    } else {
      coded += '%';
      coded += digits[byte >> 4];
      coded += digits[byte & 15];
    }
  }
  return coded;
}

std::string Decoded(std::string_view text) {
  return Decode_Hex(text, '%');
}

std::string Coded_Date(Date date) {
  return date == no_date ? std::string(no_value) : Format_Moment(date);
}

// "2014-03-05T09:30:00"
std::optional<Date> Decoded_Date(std::string_view text) {
  if (text == no_value) return no_date;
  constexpr std::size_t size = 19;
  if (text.size() != size || text[10] != 'T' || text[13] != ':' || text[16] != ':') return std::nullopt;
  const auto day = Parse_Date(text.substr(0, 10));
  int seconds = 0;
  for (const std::size_t at : {std::size_t{11}, std::size_t{14}, std::size_t{17}}) {
    int number = 0;
    const auto read = std::from_chars(text.data() + at, text.data() + at + 2, number);
    if (read.ptr != text.data() + at + 2) return std::nullopt;
    seconds = seconds * 60 + number;
  }
  if (!day) return std::nullopt;
  return *day + seconds / 86400.0;
}

bool Same_Moment(Date left, Date right) {
  return std::llround(left * 86400) == std::llround(right * 86400);
}

// A message's own date is shown in the time zone of whoever reads it: two readings of it are whole quarters
// of an hour apart, no more than the world's zones are.
bool Same_But_For_Zone(Date left, Date right) {
  const long long apart = std::abs(std::llround((left - right) * 86400));
  constexpr long long quarter = 15LL * 60, farthest = 26LL * 3600;
  return apart <= farthest && apart % quarter == 0;
}

std::string Letters(const New_Item& item) {
  std::string letters;
  if (item.flagged) letters += 'F';
  if (item.answered) letters += 'R';
  if (!item.unread) letters += 'S';
  return letters;
}

void Set_Letters(std::string_view letters, New_Item& item) {
  item.flagged = letters.find('F') != std::string_view::npos;
  item.answered = letters.find('R') != std::string_view::npos;
  item.unread = letters.find('S') == std::string_view::npos;
}

// "NAME,SIZE,NAME,SIZE"
std::string Coded_List(const std::vector<New_Attachment>& attachments) {
  std::string list;
  for (const New_Attachment& attachment : attachments) {
    if (!list.empty()) list += ',';
    list += Coded(attachment.name) + "," + std::to_string(attachment.size);
  }
  return list.empty() ? std::string(no_value) : list;
}

// What lies in the item already keeps its content.
void Set_List(std::string_view list, std::vector<New_Attachment>& attachments) {
  std::vector<New_Attachment> set;
  while (!list.empty() && list != no_value) {
    const std::size_t comma = std::min(list.find(','), list.size());
    New_Attachment attachment{One_Line(Decoded(list.substr(0, comma))), 0};
    list.remove_prefix(std::min(comma + 1, list.size()));
    const std::size_t next = std::min(list.find(','), list.size());
    const auto read = std::from_chars(list.data(), list.data() + next, attachment.size);
    if (read.ptr != list.data() + next || attachment.size < 0) return;
    list.remove_prefix(std::min(next + 1, list.size()));
    const auto found = std::find_if(attachments.begin(), attachments.end(), [&](const New_Attachment& there) {
      return there.name == attachment.name && !there.content.empty();
    });
    if (found != attachments.end()) attachment.content = std::exchange(found->content, {});
    set.push_back(std::move(attachment));
  }
  attachments = std::move(set);
}

bool Same_Files(const std::vector<New_Attachment>& left, const std::vector<New_Attachment>& right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [](const New_Attachment& one, const New_Attachment& other) {
                      return one.name == other.name && one.size == other.size;
                    });
}

// A line and those that continue it, joined; `size` is how much of the text they take.
struct Joined_Line {
  std::string text;
  std::size_t size = 0;
};
Joined_Line Take_Line(std::string_view text) {
  Joined_Line line;
  do {
    const std::string_view rest = text.substr(line.size);
    const std::string_view part = First_Line(rest);
    line.text += line.size == 0 ? part : part.substr(1);
    line.size += std::min(rest.find('\n'), rest.size() - 1) + 1;
  } while (line.size < text.size() && (text[line.size] == ' ' || text[line.size] == '\t'));
  return line;
}

Kept_Field Field_Of(std::string line) {
  if (Begins_Ignoring_Case(line, file_mark)) return {std::string(file_mark), line.substr(file_mark.size())};
  if (Begins_Ignoring_Case(line, prefix)) {
    const std::size_t colon = std::min(line.find(':'), line.size());
    return {line.substr(prefix.size(), colon - prefix.size()), line.substr(std::min(colon + 1, line.size()))};
  }
  return {{}, std::move(line)};
}

// The block that the text begins with; `size` is 0 where there is none.
struct Block {
  std::vector<Kept_Field> fields;
  std::size_t size = 0;
};
Block Read_Block(std::string_view text) {
  constexpr std::size_t most = 100'000;
  Block block;
  if (!Begins_With_Kept_Block(text)) return block;
  const std::string_view first = First_Line(text).substr(block_name.size());
  std::size_t count = 0;
  const auto read = std::from_chars(first.data(), first.data() + first.size(), count);
  if (first.empty() || read.ptr != first.data() + first.size() || count > most) return block;
  std::size_t at = std::min(text.find('\n'), text.size() - 1) + 1;
  for (; block.fields.size() < count;) {
    if (at >= text.size()) return {};
    Joined_Line line = Take_Line(text.substr(at));
    at += line.size;
    block.fields.push_back(Field_Of(std::move(line.text)));
  }
  block.size = at;
  return block;
}

const std::string* Value(const std::vector<Kept_Field>& fields, std::string_view name) {
  for (const Kept_Field& field : fields)
    if (Same_Name(field.name, name)) return &field.value;
  return nullptr;
}

std::optional<std::int32_t> Class_Of(const std::vector<Kept_Field>& fields) {
  const std::string* value = Value(fields, "Class");
  if (value == nullptr) return std::nullopt;
  for (const auto& [name, number] : classes)
    if (*value == name) return number;
  return std::nullopt;
}

}  // namespace

std::vector<Kept_Field> Kept_Fields_Of(const New_Item& item, const New_Item& read) {
  std::vector<Kept_Field> fields;
  const bool has_message = Is_Message_Class(item.item_class) && !item.raw_message.empty();
  if (item.item_class != read.item_class) {
    for (const auto& [name, number] : classes)
      if (number == item.item_class) fields.push_back({"Class", name});
  }
  for (const auto& [name, member] : texts) {
    // A store of an older format does not know what only the message itself tells.
    if (has_message && (item.*member).empty() && member != &New_Item::sender &&
        member != &New_Item::subject && member != &New_Item::recipients)
      continue;
    if (item.*member != read.*member) fields.push_back({name, Coded(item.*member)});
  }
  for (const auto& [name, member] : dates) {
    // A message that changed is another message; what says so is the date of its arrival.
    if (has_message && member == &New_Item::last_modified) continue;
    const bool same = has_message && member == &New_Item::received
                          ? Same_But_For_Zone(item.*member, read.*member)
                          : Same_Moment(item.*member, read.*member);
    if (!same && !Coded_Date(item.*member).starts_with('T'))
      fields.push_back({name, Coded_Date(item.*member)});
  }
  if (Letters(item) != Letters(read)) fields.push_back({"Flags", Letters(item)});
  if (!Same_Files(item.attachments, read.attachments))
    fields.push_back({"Files", Coded_List(item.attachments)});
  // The text of a message is what its bytes say.
  if (!has_message && Plain_Text(item.body) != Plain_Text(read.body))
    fields.push_back({"Text", Coded(item.body)});
  return fields;
}

std::vector<Kept_Field> Kept_Files(const std::vector<New_Attachment>& attachments) {
  std::vector<Kept_Field> fields;
  for (const New_Attachment& attachment : attachments) {
    if (attachment.content.empty()) continue;
    const std::unique_ptr<char, decltype(&g_free)> base64(
        g_base64_encode(reinterpret_cast<const guchar*>(attachment.content.data()),
                        attachment.content.size()),
        g_free);
    fields.push_back(
        {std::string(file_mark), Coded(attachment.name) + ";ENCODING=BASE64;VALUE=BINARY:" + base64.get()});
  }
  return fields;
}

std::vector<Kept_Field> Mbox_Fields(const New_Item& item, std::size_t size, std::size_t body_size) {
  std::string marks;
  if (item.answered) marks += 'A';
  if (item.flagged) marks += 'F';
  return {{"Size", std::to_string(size)},
          {"Status: ", item.unread ? "O" : "RO"},
          {"X-Status: ", marks},
          {"Content-Length: ", std::to_string(body_size)}};
}

Kept_Field Kept_Lead_In(std::string_view text) {
  return {"Lead-In", Coded(text)};
}

std::string Kept_Block(const std::vector<Kept_Field>& fields, std::string_view line_end) {
  std::string block = std::string(block_name) + std::to_string(fields.size());
  block += line_end;
  for (const Kept_Field& field : fields) {
    std::string line;
    if (field.name == file_mark || field.name.ends_with(' ')) {
      line = field.name + field.value;
    } else {
      line = std::string(prefix) + field.name + ":" + field.value;
    }
    for (std::size_t at = 0; at < line.size();) {
      const std::size_t size = std::min(longest_line - (at == 0 ? 0 : 1), line.size() - at);
      if (at > 0) block += ' ';
      block.append(line, at, size).append(line_end);
      at += size;
    }
  }
  return block;
}

bool Begins_With_Kept_Block(std::string_view text) {
  return text.size() > block_name.size() && Same_Name(text.substr(0, block_name.size()), block_name);
}

std::vector<Kept_Field> Take_Kept_Fields_At_Top(std::string& message) {
  Block block = Read_Block(message);
  if (block.size == 0) return {};
  message.erase(0, block.size);
  if (const std::string* lead_in = Value(block.fields, "Lead-In")) message.insert(0, Decoded(*lead_in));
  // An mbox may add line ends.
  if (const std::string* text = Value(block.fields, "Size")) {
    std::size_t size = 0;
    const auto read = std::from_chars(text->data(), text->data() + text->size(), size);
    if (read.ec == std::errc() && size < message.size() &&
        message.find_first_not_of("\r\n", size) == std::string::npos)
      message.resize(size);
  }
  // What mail programs say of a message there counts as what they say in its header.
  std::string program_fields;
  for (const Kept_Field& field : block.fields)
    if (field.name.empty()) program_fields += field.value + "\n";
  if (!program_fields.empty()) {
    const Mail_Flags flags = Flags_In(program_fields);
    New_Item marks;
    marks.unread = !flags.read;
    marks.flagged = flags.flagged;
    marks.answered = flags.answered;
    block.fields.push_back({"Flags", Letters(marks)});
  }
  return std::move(block.fields);
}

std::vector<Kept_Field> Take_Kept_Fields(std::string& text) {
  std::vector<Kept_Field> fields;
  std::string rest;
  std::size_t copied = 0;
  for (std::size_t at = text.find(block_name); at != std::string::npos; at = text.find(block_name, at)) {
    Block block;
    if (at == 0 || text[at - 1] == '\n') block = Read_Block(std::string_view(text).substr(at));
    if (block.size == 0) {
      ++at;
      continue;
    }
    rest.append(text, copied, at - copied);
    at += block.size;
    copied = at;
    if (!fields.empty()) continue;  // only the first one was written for this item
    if (const std::string* lead_in = Value(block.fields, "Lead-In")) rest += Decoded(*lead_in);
    fields = std::move(block.fields);
  }
  if (copied > 0) text = rest.append(text, copied);
  return fields;
}

Kept_Field Built_Form() {
  return {"Built", "yes"};
}

bool Has_No_Own_Form(const std::vector<Kept_Field>& fields) {
  const auto found = Class_Of(fields);
  return Value(fields, "Built") != nullptr || (found && !Is_Message_Class(*found));
}

void Set_Kept_Fields(const std::vector<Kept_Field>& fields, New_Item& item) {
  if (const auto found = Class_Of(fields)) {
    // A calendar's or a card's item is what its own form says.
    const bool has_class = item.item_class == item_class::appointment ||
                           item.item_class == item_class::task || item.item_class == item_class::contact ||
                           item.item_class == item_class::distribution_list;
    if (!has_class) item.item_class = *found;
  }
  for (const auto& [name, member] : texts)
    if (const std::string* value = Value(fields, name)) item.*member = One_Line(Decoded(*value));
  for (const auto& [name, member] : dates) {
    const std::string* value = Value(fields, name);
    const auto date = value == nullptr ? std::nullopt : Decoded_Date(*value);
    if (date) item.*member = *date;
  }
  if (const std::string* value = Value(fields, "Flags")) Set_Letters(*value, item);
  for (const Kept_Field& field : fields) {
    if (field.name != file_mark) continue;
    const std::size_t name_end = std::min(field.value.find(';'), field.value.size());
    const std::size_t begin = std::min(field.value.find(':'), field.value.size() - 1) + 1;
    std::string content = Decode_Base64(std::string_view(field.value).substr(begin));
    const auto size = static_cast<std::int64_t>(content.size());
    item.attachments.push_back(
        {One_Line(Decoded(std::string_view(field.value).substr(0, name_end))), size, std::move(content)});
  }
  if (const std::string* value = Value(fields, "Files")) Set_List(*value, item.attachments);
  if (const std::string* value = Value(fields, "Text")) item.body = Valid_Utf8(Decoded(*value));
}

}  // namespace tidyfold
