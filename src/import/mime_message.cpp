#include "import/mime_message.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/text.h"
#include "import/charset.h"
#include "import/gmime_ptr.h"
#include "import/html_text.h"
#include "import/local_date.h"
#include "import/meeting.h"

namespace tidyfold {
namespace {

// No real message is nested deeper.
constexpr int max_depth = 100;

std::string Text_Of(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

// The topmost field of that name, decoded.
std::string Header(GMimeMessage* message, const char* name) {
  GMimeHeaderList* headers = g_mime_object_get_header_list(GMIME_OBJECT(message));
  const int count = g_mime_header_list_get_count(headers);
  for (int i = 0; i < count; ++i) {
    GMimeHeader* header = g_mime_header_list_get_header_at(headers, i);
    if (g_ascii_strcasecmp(g_mime_header_get_name(header), name) == 0)
      return Text_Of(g_mime_header_get_value(header));
  }
  return {};
}

std::string Display_Name(InternetAddress* address) {
  const char* name = internet_address_get_name(address);
  if (name != nullptr && *name != '\0') return One_Line(name);
  if (!INTERNET_ADDRESS_IS_MAILBOX(address)) return {};
  return One_Line(Text_Of(internet_address_mailbox_get_addr(INTERNET_ADDRESS_MAILBOX(address))));
}

std::string Display_Names(InternetAddressList* list) {
  std::string names;
  const int count = list == nullptr ? 0 : internet_address_list_length(list);
  for (int i = 0; i < count; ++i) {
    if (i > 0) names += "; ";
    names += Display_Name(internet_address_list_get_address(list, i));
  }
  return names;
}

std::string Sender(GMimeMessage* message) {
  for (InternetAddressList* list : {g_mime_message_get_from(message), g_mime_message_get_sender(message)}) {
    if (list != nullptr && internet_address_list_length(list) > 0) {
      return Display_Name(internet_address_list_get_address(list, 0));
    }
  }
  return One_Line(Header(message, "From"));
}

// A mail has the date of its arrival, which the last server wrote on top.
Date Received(GMimeMessage* message) {
  const std::string received = Header(message, "Received");
  const std::size_t semicolon = received.rfind(';');
  if (semicolon != std::string::npos) {
    const Date date = Parse_Mail_Date(std::string_view(received).substr(semicolon + 1));
    if (date != no_date) return date;
  }
  return Parse_Mail_Date(Header(message, "Date"));
}

bool Was_Read(GMimeMessage* message) {
  if (Header(message, "Status").find('R') != std::string::npos) return true;
  unsigned flags = 0;
  const std::string mozilla = Header(message, "X-Mozilla-Status");
  std::from_chars(mozilla.data(), mozilla.data() + mozilla.size(), flags, 16);
  if ((flags & 1U) != 0) return true;
  return Header(message, "X-Gmail-Labels").find("Opened") != std::string::npos;
}

bool Is_Type(GMimeObject* part, const char* type, const char* subtype) {
  GMimeContentType* content = g_mime_object_get_content_type(part);
  return content != nullptr && g_mime_content_type_is_type(content, type, subtype);
}

// Old mail has just "text", which the library does not know.
bool Is_Text(GMimeObject* part) {
  if (Is_Type(part, "text", "*")) return true;
  const std::string type = Upper_Case(Text_Of(g_mime_object_get_header(part, "Content-Type")));
  return type.starts_with("TEXT") && type.find('/') == std::string::npos;
}

std::string Decoded(GMimeObject* part) {
  GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(part));
  if (content == nullptr) return {};
  const Gmime_Ptr<GMimeStream> memory(g_mime_stream_mem_new());
  g_mime_data_wrapper_write_to_stream(content, memory.get());
  const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(memory.get()));
  return {reinterpret_cast<const char*>(bytes->data), bytes->len};
}

std::int64_t Decoded_Size(GMimeObject* part) {
  const Gmime_Ptr<GMimeStream> counter(g_mime_stream_null_new());
  if (GMIME_IS_PART(part)) {
    GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(part));
    if (content == nullptr) return 0;
    g_mime_data_wrapper_write_to_stream(content, counter.get());
  } else {
    g_mime_object_write_to_stream(part, nullptr, counter.get());
  }
  return static_cast<std::int64_t>(GMIME_STREAM_NULL(counter.get())->written);
}

bool Is_Attached(GMimeObject* part, bool root) {
  const char* disposition = g_mime_object_get_disposition(part);
  if (disposition != nullptr && g_ascii_strcasecmp(disposition, "attachment") == 0) return true;
  return !root && GMIME_IS_PART(part) && g_mime_part_get_filename(GMIME_PART(part)) != nullptr;
}

struct Body {
  std::string text;
  bool plain = false;
};

class Body_Reader {
 public:
  explicit Body_Reader(GMimeObject* root) : root_(root) {}

  std::string Text() { return Read(root_, 0).text; }
  std::vector<New_Attachment> Attachments() {
    std::vector<New_Attachment> found;
    Collect(root_, 0, found);
    return found;
  }
  // The class from the calendar part; mail if there is none.
  std::int32_t Meeting() { return Find_Meeting(root_, 0); }

 private:
  Body Read(GMimeObject* part, int depth) {
    if (part == nullptr || depth > max_depth) return {};
    if (GMIME_IS_MULTIPART(part)) return Read_Multipart(part, depth);
    if (!GMIME_IS_PART(part) || !Is_Text(part) || Is_Attached(part, part == root_)) return {};
    if (Is_Type(part, "text", "calendar") || Is_Type(part, "text", "rfc822-headers")) return {};
    const std::string bytes = Decoded(part);
    std::string charset = Text_Of(g_mime_object_get_content_type_parameter(part, "charset"));
    const bool marked_up = Is_Type(part, "text", "richtext") || Is_Type(part, "text", "enriched");
    if (marked_up) return {Html_To_Text(To_Utf8(bytes, charset)), false};
    if (!Is_Type(part, "text", "html")) return {To_Utf8(bytes, charset), true};
    if (charset.empty()) charset = Html_Charset(bytes);
    return {Html_To_Text(To_Utf8(bytes, charset)), false};
  }

  Body Read_Multipart(GMimeObject* part, int depth) {
    const int count = g_mime_multipart_get_count(GMIME_MULTIPART(part));
    const bool alternative = Is_Type(part, "multipart", "alternative");
    const bool first_only = Is_Type(part, "multipart", "related") || Is_Type(part, "multipart", "signed");
    Body whole;
    for (int i = 0; i < count; ++i) {
      Body body = Read(g_mime_multipart_get_part(GMIME_MULTIPART(part), i), depth + 1);
      if (alternative) {
        if (!body.text.empty() && (whole.text.empty() || (body.plain && !whole.plain)))
          whole = std::move(body);
        continue;
      }
      if (!body.text.empty()) {
        if (!whole.text.empty() && whole.text.back() != '\n') whole.text += '\n';
        whole.text += body.text;
        whole.plain = whole.plain || body.plain;
      }
      if (first_only) break;
    }
    return whole;
  }

  void Collect(GMimeObject* part, int depth, std::vector<New_Attachment>& found) {
    if (part == nullptr || depth > max_depth) return;
    if (GMIME_IS_MULTIPART(part)) {
      const int count = g_mime_multipart_get_count(GMIME_MULTIPART(part));
      for (int i = 0; i < count; ++i) {
        Collect(g_mime_multipart_get_part(GMIME_MULTIPART(part), i), depth + 1, found);
      }
      return;
    }
    if (Is_Text(part) && !Is_Attached(part, part == root_)) return;
    New_Attachment attachment;
    if (GMIME_IS_PART(part)) {
      attachment.name = One_Line(Text_Of(g_mime_part_get_filename(GMIME_PART(part))));
    } else if (GMIME_IS_MESSAGE_PART(part)) {
      attachment.name = One_Line(Text_Of(g_mime_object_get_content_disposition_parameter(part, "filename")));
      GMimeMessage* inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(part));
      if (attachment.name.empty() && inner != nullptr) {
        attachment.name = One_Line(Text_Of(g_mime_message_get_subject(inner)));
      }
    }
    attachment.size = Decoded_Size(part);
    found.push_back(std::move(attachment));
  }

  std::int32_t Find_Meeting(GMimeObject* part, int depth) {
    if (part == nullptr || depth > max_depth) return item_class::mail;
    if (GMIME_IS_MULTIPART(part)) {
      const int count = g_mime_multipart_get_count(GMIME_MULTIPART(part));
      for (int i = 0; i < count; ++i) {
        const std::int32_t found =
            Find_Meeting(g_mime_multipart_get_part(GMIME_MULTIPART(part), i), depth + 1);
        if (found != item_class::mail) return found;
      }
      return item_class::mail;
    }
    if (!GMIME_IS_PART(part) || !Is_Type(part, "text", "calendar") || Is_Attached(part, true))
      return item_class::mail;
    return Meeting_Class(Decoded(part), Text_Of(g_mime_object_get_content_type_parameter(part, "method")));
  }

  GMimeObject* root_;
};

// The parts point into the text, which must outlive the message.
class Parsed_Message {
 public:
  explicit Parsed_Message(std::string& raw)
      : bytes_{reinterpret_cast<guint8*>(raw.data()), static_cast<guint>(raw.size())} {
    const Gmime_Ptr<GMimeStream> stream(g_mime_stream_mem_new());
    g_mime_stream_mem_set_byte_array(GMIME_STREAM_MEM(stream.get()), &bytes_);
    g_mime_stream_mem_set_owner(GMIME_STREAM_MEM(stream.get()), FALSE);
    const Gmime_Ptr<GMimeParser> parser(g_mime_parser_new_with_stream(stream.get()));
    const std::unique_ptr<GMimeParserOptions, decltype(&g_mime_parser_options_free)> options(
        g_mime_parser_options_new(), g_mime_parser_options_free);
    const char* charsets[] = {"utf-8", "windows-1252", nullptr};
    g_mime_parser_options_set_fallback_charsets(options.get(), charsets);
    message_.reset(g_mime_parser_construct_message(parser.get(), options.get()));
    if (!message_) throw Message_Error("its headers cannot be read");
  }
  Parsed_Message(const Parsed_Message&) = delete;
  Parsed_Message& operator=(const Parsed_Message&) = delete;

  GMimeMessage* get() const { return message_.get(); }

 private:
  GByteArray bytes_;
  Gmime_Ptr<GMimeMessage> message_;
};

}  // namespace

bool Begins_With_Header(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && text[at] > ' ' && text[at] < 0x7F && text[at] != ':') ++at;
  if (at == 0) return false;
  while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
  return at < text.size() && text[at] == ':';
}

Date Parse_Mail_Date(std::string_view text, bool as_written) {
  const std::string terminated(text);
  const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
      g_mime_utils_header_decode_date(terminated.c_str()), g_date_time_unref);
  if (!date) return no_date;
  if (!as_written) return Local_Date(g_date_time_to_unix(date.get()));
  return Date_From_Calendar(g_date_time_get_year(date.get()), g_date_time_get_month(date.get()),
                            g_date_time_get_day_of_month(date.get()), g_date_time_get_hour(date.get()),
                            g_date_time_get_minute(date.get()), g_date_time_get_second(date.get()));
}

New_Item Read_Mime_Message(std::string raw) {
  if (!Begins_With_Header(raw)) throw Message_Error("it has no message headers");
  New_Item item;
  {
    const Parsed_Message message(raw);
    item.sender = Sender(message.get());
    item.recipients = Display_Names(g_mime_message_get_to(message.get()));
    item.subject = One_Line(Text_Of(g_mime_message_get_subject(message.get())));
    item.unread = !Was_Read(message.get());
    item.received = Received(message.get());
    item.last_modified = item.received;
    GMimeObject* root = g_mime_message_get_mime_part(message.get());
    Body_Reader body(root);
    item.body = body.Text();
    item.attachments = body.Attachments();
    item.item_class =
        root != nullptr && Is_Type(root, "multipart", "report") ? item_class::report : body.Meeting();
  }
  item.size = static_cast<std::int64_t>(raw.size());
  item.raw_message = std::move(raw);
  return item;
}

}  // namespace tidyfold
