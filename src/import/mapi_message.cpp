#include "import/mapi_message.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "import/message_parts.h"
#include "mail/charset.h"
#include "mail/gmime_ptr.h"
#include "mail/header_parameters.h"
#include "mail/mail_addresses.h"
#include "mail/mail_headers.h"
#include "mail/mime_message.h"
#include "mail/rtf_text.h"

namespace tidyfold {
namespace {

// Nested messages; anything deeper is damage.
constexpr int max_depth = 20;

constexpr std::uint32_t recipient_type_mask = 0xF;  // above it: flags
constexpr std::int64_t filetime_second = 10'000'000;
constexpr std::int64_t filetime_of_1970 = 11'644'473'600;

// Fields that describe the structure of the original, which is lost.
constexpr std::array<std::string_view, 3> structure_fields = {"CONTENT-", "MIME-VERSION", "LINES"};

std::string Built(const Mapi_Item& item, const Mapi_Body& body, int depth);

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

void Add_Recipients(const Mapi_Item& item, GMimeMessage* message) {
  for (const auto& recipient : item.Recipients()) {
    const std::uint32_t type =
        recipient->Number(mapi_property::recipient_type).value_or(0) & recipient_type_mask;
    GMimeAddressType kind = GMIME_ADDRESS_TYPE_TO;
    if (type == 2) kind = GMIME_ADDRESS_TYPE_CC;
    if (type == 3) kind = GMIME_ADDRESS_TYPE_BCC;
    Append_Address(g_mime_message_get_addresses(message, kind),
                   recipient->First_Text(mapi_property::display_name), Recipient_Address(*recipient));
  }
}

void Add_Headers(const Mapi_Item& item, GMimeMessage* message) {
  const Mapi_Properties& properties = item.Properties();
  Append_Address(g_mime_message_get_from(message),
                 properties.First_Text(mapi_property::sender_name, mapi_property::sent_representing_name),
                 Sender_Address(properties));
  Add_Recipients(item, message);
  g_mime_message_set_subject(message, One_Line(properties.Subject()).c_str(), "utf-8");
  std::optional<std::uint64_t> time = properties.Time(mapi_property::client_submit_time);
  if (!time) time = properties.Time(mapi_property::delivery_time);
  if (!time) time = properties.Time(mapi_property::last_modification_time);
  if (time) Set_Date(message, static_cast<std::int64_t>(*time / filetime_second) - filetime_of_1970);
  const std::string id = Message_Id_Of(properties);
  if (!id.empty()) g_mime_message_set_message_id(message, id.c_str());
}

std::string Attached_Message(const Mapi_Item& inner, int depth) {
  return depth >= max_depth ? std::string() : Built(inner, Read_Mapi_Body(inner), depth + 1);
}

// Empty for a reference to external data.
Gmime_Ptr<GMimeObject> Attachment_Part(const Mapi_Attachment& attachment, int depth) {
  const Mapi_Properties& properties = attachment.Properties();
  Gmime_Ptr<GMimeObject> part;
  if (const auto data = attachment.Data()) {
    part = File_Part(*data, properties.First_Text(mapi_property::attachment_mime_type));
    g_mime_part_set_content_encoding(GMIME_PART(part.get()), GMIME_CONTENT_ENCODING_BASE64);
  } else if (const auto inner = attachment.Item()) {
    part = File_Part(Attached_Message(*inner, depth), "message/rfc822");
  }
  if (!part) return part;
  Attach_As(attachment.Name(), part.get());
  const std::string id = properties.First_Text(mapi_property::attachment_content_id);
  if (!id.empty()) g_mime_object_set_content_id(part.get(), id.c_str());
  return part;
}

Gmime_Ptr<GMimeObject> Content(const Mapi_Item& item, const Mapi_Body& body, int depth) {
  std::string plain = body.plain;
  if (plain.empty() && body.html.empty()) plain = Rtf_To_Text(body.rtf);
  Gmime_Ptr<GMimeObject> whole =
      Text_Part(plain.empty() ? body.html : plain, plain.empty() ? "html" : "plain");
  if (!plain.empty() && !body.html.empty()) Add_Part(whole, Text_Part(body.html, "html"), "alternative");
  for (const auto& attachment : item.Attachments()) {
    if (auto part = Attachment_Part(*attachment, depth)) Add_Part(whole, std::move(part), "mixed");
  }
  return whole;
}

std::string Built(const Mapi_Item& item, const Mapi_Body& body, int depth) {
  const Gmime_Ptr<GMimeObject> content = Content(item, body, depth);
  g_mime_object_encode(content.get(), GMIME_ENCODING_CONSTRAINT_7BIT);
  std::string headers = Kept_Headers(item.Properties().Text(mapi_property::transport_headers));
  if (!headers.empty()) {
    const std::string id = Message_Id_Of(item.Properties());
    Mail_Headers kept;
    kept.Read(headers);
    if (kept[Mail_Field::Message_Id].empty() && !id.empty()) headers += "Message-ID: <" + id + ">\r\n";
    return headers + "MIME-Version: 1.0\r\n" + Written(content.get());
  }
  const Gmime_Ptr<GMimeMessage> message(g_mime_message_new(TRUE));
  Add_Headers(item, message.get());
  g_mime_message_set_mime_part(message.get(), content.get());
  return Written(GMIME_OBJECT(message.get()));
}

}  // namespace

Mapi_Body Read_Mapi_Body(const Mapi_Item& item) {
  Mapi_Body body;
  body.plain = item.Properties().Text(mapi_property::body);
  body.html = item.Properties().Html();
  if (body.plain.empty() && body.html.empty()) body.rtf = item.Rtf();
  return body;
}

std::string Rebuild_Message(const Mapi_Item& item, const Mapi_Body& body) {
  return Built(item, body, 0);
}

std::string Message_Id_Of(const Mapi_Properties& properties) {
  const std::string id = properties.First_Text(mapi_property::message_id);
  return id.starts_with('<') && id.ends_with('>') ? id.substr(1, id.size() - 2) : id;
}

Kept_Identities Identities_In(const std::string& headers) {
  Mail_Headers fields;
  fields.Read(headers);
  const std::vector<Mail_Address> senders = Header_Addresses(fields[Mail_Field::From]);
  return {senders.empty() ? std::string() : senders.front().address,
          Header_Identity(fields[Mail_Field::List_Id])};
}

}  // namespace tidyfold
