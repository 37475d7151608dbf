#include "import/message_parts.h"

#include <memory>
#include <utility>

namespace tidyfold {

void Append_Address(InternetAddressList* list, const std::string& name, const std::string& address) {
  if (name.empty() && address.empty()) return;
  const Gmime_Ptr<InternetAddress> mailbox(internet_address_mailbox_new(name.c_str(), address.c_str()));
  internet_address_list_add(list, mailbox.get());
}

void Set_Date(GMimeMessage* message, std::int64_t unix_seconds) {
  const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
      g_date_time_new_from_unix_utc(unix_seconds), g_date_time_unref);
  if (date) g_mime_message_set_date(message, date.get());
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

void Attach_As(const std::string& name, GMimeObject* part) {
  g_mime_object_set_disposition(part, "attachment");
  if (!name.empty()) g_mime_part_set_filename(GMIME_PART(part), name.c_str());
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

std::string Written(GMimeObject* object) {
  const std::unique_ptr<GMimeFormatOptions, decltype(&g_mime_format_options_free)> format(
      g_mime_format_options_new(), g_mime_format_options_free);
  g_mime_format_options_set_newline_format(format.get(), GMIME_NEWLINE_FORMAT_DOS);
  const Gmime_Ptr<GMimeStream> memory(g_mime_stream_mem_new());
  g_mime_object_write_to_stream(object, format.get(), memory.get());
  const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(memory.get()));
  return {reinterpret_cast<const char*>(bytes->data), bytes->len};
}

}  // namespace tidyfold
