#include "import/pst_message.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "import/charset.h"
#include "import/gmime_ptr.h"
#include "import/mail_headers.h"
#include "import/mime_message.h"
#include "import/rtf_text.h"

namespace tidyfold {
namespace {

// Nested messages; anything deeper is damage.
constexpr int max_depth = 20;

constexpr std::int64_t filetime_second = 10'000'000;
constexpr std::int64_t filetime_of_1970 = 11'644'473'600;

// Fields that describe the structure of the original, which is lost.
constexpr std::array<std::string_view, 3> structure_fields = {"CONTENT-", "MIME-VERSION", "LINES"};

std::string Built(libpff_item_t* message, const Pst_Properties& properties, const Pst_Body& body, int depth);

// The original headers with CR LF, without those of the structure.
std::string Kept_Headers(std::string_view headers) {
  std::string kept;
  bool keep = false;
  while (!headers.empty()) {
    const std::size_t end = std::min(headers.find('\n'), headers.size() - 1) + 1;
    std::string_view line = headers.substr(0, end);
    headers.remove_prefix(end);
    while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
    const bool continued = line.starts_with(' ') || line.starts_with('\t');
    if (!continued) {
      const std::string name = Upper_Case(line.substr(0, line.find(':')));
      // The first line may be a title by the program that delivered the message.
      keep = Begins_With_Header(line);
      for (const std::string_view field : structure_fields) keep = keep && !name.starts_with(field);
    }
    if (keep) kept.append(line).append("\r\n");
  }
  return kept;
}

void Append_Address(InternetAddressList* list, const std::string& name, const std::string& address) {
  if (name.empty() && address.empty()) return;
  const Gmime_Ptr<InternetAddress> mailbox(internet_address_mailbox_new(name.c_str(), address.c_str()));
  internet_address_list_add(list, mailbox.get());
}

bool Is_Internet_Address(const std::string& address) {
  return address.find('@') != std::string::npos;
}

std::string Recipient_Address(const Pst_Properties& recipient) {
  std::string address = One_Line(recipient.Text(pst_property::smtp_address));
  if (address.empty()) address = One_Line(recipient.Text(pst_property::address));
  return Is_Internet_Address(address) ? address : std::string();
}

void Add_Recipients(libpff_item_t* source, GMimeMessage* message) {
  Pff_Error error;
  libpff_item_t* found = nullptr;
  Check_Pff(libpff_message_get_recipients(source, &found, error.Out()), error);
  const Pff_Item recipients(found);
  int count = 0;
  if (recipients) Check_Pff(libpff_item_get_number_of_record_sets(found, &count, error.Out()), error);
  for (int i = 0; i < count; ++i) {
    const Pst_Properties recipient(found, i);
    const std::uint32_t type = recipient.Number(pst_property::recipient_type).value_or(GMIME_ADDRESS_TYPE_TO);
    GMimeAddressType kind = GMIME_ADDRESS_TYPE_TO;
    if (type == 2) kind = GMIME_ADDRESS_TYPE_CC;
    if (type == 3) kind = GMIME_ADDRESS_TYPE_BCC;
    Append_Address(g_mime_message_get_addresses(message, kind),
                   One_Line(recipient.Text(pst_property::display_name)), Recipient_Address(recipient));
  }
}

void Add_Headers(libpff_item_t* source, const Pst_Properties& properties, GMimeMessage* message) {
  std::string address = One_Line(properties.Text(pst_property::sender_smtp_address));
  if (address.empty()) address = One_Line(properties.Text(pst_property::sender_address));
  Append_Address(g_mime_message_get_from(message), One_Line(properties.Text(pst_property::sender_name)),
                 Is_Internet_Address(address) ? address : std::string());
  Add_Recipients(source, message);
  g_mime_message_set_subject(message, One_Line(properties.Subject()).c_str(), "utf-8");
  std::optional<std::uint64_t> time = properties.Time(pst_property::client_submit_time);
  if (!time) time = properties.Time(pst_property::delivery_time);
  if (!time) time = properties.Time(pst_property::last_modification_time);
  if (time) {
    const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
        g_date_time_new_from_unix_utc(static_cast<std::int64_t>(*time / filetime_second) - filetime_of_1970),
        g_date_time_unref);
    if (date) g_mime_message_set_date(message, date.get());
  }
  std::string id = One_Line(properties.Text(pst_property::message_id));
  if (id.starts_with('<') && id.ends_with('>')) id = id.substr(1, id.size() - 2);
  if (!id.empty()) g_mime_message_set_message_id(message, id.c_str());
}

Gmime_Ptr<GMimeObject> Text_Part(const std::string& text, const char* subtype) {
  GMimeTextPart* part = g_mime_text_part_new_with_subtype(subtype);
  g_mime_text_part_set_charset(part, "utf-8");
  g_mime_text_part_set_text(part, text.c_str());
  return Gmime_Ptr<GMimeObject>(GMIME_OBJECT(part));
}

Gmime_Ptr<GMimeObject> File_Part(const std::string& bytes, std::string type) {
  const std::size_t slash = type.find('/');
  if (slash == std::string::npos || slash == 0) type = "application/octet-stream";
  const std::size_t divide = type.find('/');
  GMimePart* part =
      g_mime_part_new_with_type(type.substr(0, divide).c_str(), type.substr(divide + 1).c_str());
  const Gmime_Ptr<GMimeStream> stream(g_mime_stream_mem_new_with_buffer(bytes.data(), bytes.size()));
  const Gmime_Ptr<GMimeDataWrapper> content(
      g_mime_data_wrapper_new_with_stream(stream.get(), GMIME_CONTENT_ENCODING_DEFAULT));
  g_mime_part_set_content(part, content.get());
  return Gmime_Ptr<GMimeObject>(GMIME_OBJECT(part));
}

std::string Attached_Data(libpff_item_t* attachment) {
  Pff_Error error;
  size64_t size = 0;
  Check_Pff(libpff_attachment_get_data_size(attachment, &size, error.Out()), error);
  if (size > static_cast<size64_t>(max_message_size))
    throw Message_Error("an attachment is larger than 512 MB");
  std::string data(static_cast<std::size_t>(size), '\0');
  for (std::size_t at = 0; at < data.size();) {
    const ssize_t count = libpff_attachment_data_read_buffer(
        attachment, reinterpret_cast<std::uint8_t*>(data.data()) + at, data.size() - at, error.Out());
    if (count <= 0) throw Message_Error("an attachment is damaged (" + error.Text() + ")");
    at += static_cast<std::size_t>(count);
  }
  return data;
}

std::string Attached_Message(libpff_item_t* attachment, int depth) {
  Pff_Error error;
  libpff_item_t* found = nullptr;
  Check_Pff(libpff_attachment_get_item(attachment, &found, error.Out()), error);
  const Pff_Item inner(found);
  if (!inner || depth >= max_depth) return {};
  const Pst_Properties properties(found);
  return Built(found, properties, Read_Pst_Body(found, properties), depth + 1);
}

// Empty for a reference to external data.
Gmime_Ptr<GMimeObject> Attachment_Part(libpff_item_t* attachment, int depth) {
  Pff_Error error;
  int type = LIBPFF_ATTACHMENT_TYPE_UNDEFINED;
  Check_Pff(libpff_attachment_get_type(attachment, &type, error.Out()), error);
  const Pst_Properties properties(attachment);
  Gmime_Ptr<GMimeObject> part;
  if (type == LIBPFF_ATTACHMENT_TYPE_DATA) {
    part =
        File_Part(Attached_Data(attachment), One_Line(properties.Text(pst_property::attachment_mime_type)));
  } else if (type == LIBPFF_ATTACHMENT_TYPE_ITEM) {
    part = File_Part(Attached_Message(attachment, depth), "message/rfc822");
  }
  if (!part) return part;
  if (type == LIBPFF_ATTACHMENT_TYPE_DATA) {
    g_mime_part_set_content_encoding(GMIME_PART(part.get()), GMIME_CONTENT_ENCODING_BASE64);
  }
  g_mime_object_set_disposition(part.get(), "attachment");
  std::string name = One_Line(properties.Text(pst_property::attachment_long_name));
  if (name.empty()) name = One_Line(properties.Text(pst_property::attachment_name));
  if (name.empty()) name = One_Line(properties.Text(pst_property::display_name));
  if (!name.empty()) g_mime_part_set_filename(GMIME_PART(part.get()), name.c_str());
  const std::string id = One_Line(properties.Text(pst_property::attachment_content_id));
  if (!id.empty()) g_mime_object_set_content_id(part.get(), id.c_str());
  return part;
}

void Add_Part(Gmime_Ptr<GMimeObject>& whole, Gmime_Ptr<GMimeObject> part, const char* subtype) {
  GMimeContentType* type = g_mime_object_get_content_type(whole.get());
  if (!g_mime_content_type_is_type(type, "multipart", subtype)) {
    GMimeMultipart* multipart = g_mime_multipart_new_with_subtype(subtype);
    g_mime_multipart_add(multipart, whole.get());
    whole.reset(GMIME_OBJECT(multipart));
  }
  g_mime_multipart_add(GMIME_MULTIPART(whole.get()), part.get());
}

Gmime_Ptr<GMimeObject> Content(libpff_item_t* message, const Pst_Body& body, int depth) {
  std::string plain = body.plain;
  if (plain.empty() && body.html.empty()) plain = Rtf_To_Text(body.rtf);
  Gmime_Ptr<GMimeObject> whole =
      Text_Part(plain.empty() ? body.html : plain, plain.empty() ? "html" : "plain");
  if (!plain.empty() && !body.html.empty()) Add_Part(whole, Text_Part(body.html, "html"), "alternative");
  Pff_Error error;
  int count = 0;
  Check_Pff(libpff_message_get_number_of_attachments(message, &count, error.Out()), error);
  for (int i = 0; i < count; ++i) {
    libpff_item_t* found = nullptr;
    Check_Pff(libpff_message_get_attachment(message, i, &found, error.Out()), error);
    const Pff_Item attachment(found);
    if (auto part = Attachment_Part(found, depth)) Add_Part(whole, std::move(part), "mixed");
  }
  return whole;
}

std::string Written(GMimeObject* object) {
  const std::unique_ptr<GMimeFormatOptions, decltype(&g_mime_format_options_free)> format(
      g_mime_format_options_new(), g_mime_format_options_free);
  g_mime_format_options_set_newline_format(format.get(), GMIME_NEWLINE_FORMAT_DOS);
  const Gmime_Ptr<GMimeStream> memory(g_mime_stream_mem_new());
  g_mime_object_write_to_stream(object, format.get(), memory.get());
  const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(memory.get()));
  return {reinterpret_cast<const char*>(bytes->data), bytes->len};
}

std::string Built(libpff_item_t* source, const Pst_Properties& properties, const Pst_Body& body, int depth) {
  const Gmime_Ptr<GMimeObject> content = Content(source, body, depth);
  g_mime_object_encode(content.get(), GMIME_ENCODING_CONSTRAINT_7BIT);
  std::string headers = Kept_Headers(properties.Text(pst_property::transport_headers));
  if (!headers.empty()) return headers + "MIME-Version: 1.0\r\n" + Written(content.get());
  const Gmime_Ptr<GMimeMessage> message(g_mime_message_new(TRUE));
  Add_Headers(source, properties, message.get());
  g_mime_message_set_mime_part(message.get(), content.get());
  return Written(GMIME_OBJECT(message.get()));
}

}  // namespace

Pst_Body Read_Pst_Body(libpff_item_t* message, const Pst_Properties& properties) {
  Pst_Body body;
  body.plain = properties.Text(pst_property::body);
  body.html = properties.Text(pst_property::html);
  if (!body.plain.empty() || !body.html.empty()) return body;
  Pff_Error error;
  std::size_t size = 0;
  const int found = libpff_message_get_rtf_body_size(message, &size, error.Out());
  Check_Pff(found, error);
  if (found != 1 || size == 0) return body;
  body.rtf.resize(size);
  Check_Pff(libpff_message_get_rtf_body(message, reinterpret_cast<std::uint8_t*>(body.rtf.data()), size,
                                        error.Out()),
            error);
  return body;
}

std::string Rebuild_Message(libpff_item_t* message, const Pst_Properties& properties, const Pst_Body& body) {
  return Built(message, properties, body, 0);
}

}  // namespace tidyfold
