#include "export/form_builders.h"

#include <libical/ical.h>

#include <memory>
#include <string_view>
#include <utility>

#include "export/item_form.h"
#include "import/message_parts.h"
#include "mail/charset.h"
#include "mail/item_identity.h"

namespace tidyfold {
namespace {

constexpr const char* no_address = "unknown@address.invalid";
constexpr const char* product = "-//Tidyfold//Tidyfold 2//EN";

// "Anna Holloway; Ben Ode"
void Append_Names(InternetAddressList* list, std::string_view names) {
  constexpr std::string_view between = "; ";
  while (!names.empty()) {
    const std::size_t end = std::min(names.find(between), names.size());
    const std::string name(names.substr(0, end));
    Append_Address(list, name, name.find('@') == std::string::npos ? no_address : name);
    names.remove_prefix(std::min(end + between.size(), names.size()));
  }
}

// GMime itself chooses the smallest charset that has all characters.
Gmime_Ptr<GMimeObject> Readable_Text(const std::string& text) {
  Gmime_Ptr<GMimeObject> part = File_Part(text, "text/plain");
  g_mime_object_set_content_type_parameter(part.get(), "charset", "utf-8");
  g_mime_part_set_content_encoding(GMIME_PART(part.get()), GMIME_CONTENT_ENCODING_8BIT);
  return part;
}

std::string Built(const New_Item& item, bool readable) {
  Start_Gmime();
  const Gmime_Ptr<GMimeMessage> message(g_mime_message_new(TRUE));
  if (!item.sender.empty() || !item.sender_address.empty())
    Append_Address(g_mime_message_get_from(message.get()), item.sender,
                   item.sender_address.empty() ? no_address : item.sender_address);
  Append_Names(g_mime_message_get_addresses(message.get(), GMIME_ADDRESS_TYPE_TO), item.recipients);
  g_mime_message_set_subject(message.get(), One_Line(item.subject).c_str(), "utf-8");
  if (const Date date = Date_Of_File(item); date != no_date) Set_Date(message.get(), Unix_Seconds(date));
  if (!item.message_id.empty()) g_mime_message_set_message_id(message.get(), item.message_id.c_str());
  Gmime_Ptr<GMimeObject> whole = readable ? Readable_Text(item.body) : Text_Part(item.body, "plain");
  for (const New_Attachment& attachment : item.attachments) {
    if (attachment.content.empty()) continue;
    Gmime_Ptr<GMimeObject> part = File_Part(attachment.content, {});
    g_mime_part_set_content_encoding(GMIME_PART(part.get()), GMIME_CONTENT_ENCODING_BASE64);
    Attach_As(attachment.name, part.get());
    Add_Part(whole, std::move(part), "mixed");
  }
  if (!readable) g_mime_object_encode(whole.get(), GMIME_ENCODING_CONSTRAINT_7BIT);
  g_mime_message_set_mime_part(message.get(), whole.get());
  return Written(GMIME_OBJECT(message.get()));
}

// Floating: a local time, wherever it is read.
icaltimetype Local_Time_Of(Date date) {
  const std::string text = Format_Moment(date);
  icaltimetype time = icaltime_null_time();
  if (std::sscanf(text.c_str(), "%d-%d-%dT%d:%d:%d", &time.year, &time.month, &time.day, &time.hour,
                  &time.minute, &time.second) != 6)
    return icaltime_null_time();
  return time;
}

icaltimetype Utc_Of(Date date) {
  return icaltime_from_timet_with_zone(static_cast<time_t>(Unix_Seconds(date)), 0,
                                       icaltimezone_get_utc_timezone());
}

std::string Uid(const New_Item& item) {
  return std::to_string(Item_Identity(item)) + "@tidyfold";
}

// Escaped, and folded after 75 bytes, between characters.
std::string Card_Line(std::string_view name, std::string_view value) {
  constexpr std::size_t longest = 75;
  std::string escaped(name);
  escaped += ':';
  for (const char c : value) {
    if (c == '\r') continue;
    if (c == '\\' || c == ',' || c == ';') escaped += '\\';
    escaped += c == '\n' ? std::string("\\n") : std::string(1, c);
  }
  std::string line;
  std::size_t width = 0;
  for (const char c : escaped) {
    const bool starts_character = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    constexpr std::size_t longest_character = 4;
    if (starts_character && width + longest_character > longest) {
      line += "\r\n ";
      width = 1;
    }
    line += c;
    ++width;
  }
  return line + "\r\n";
}

}  // namespace

std::string Build_Message(const New_Item& item) {
  return Built(item, false);
}

std::string Build_Text(const New_Item& item) {
  return Built(item, true);
}

std::string Build_Calendar(const New_Item& item) {
  const bool task = item.item_class == item_class::task;
  icalcomponent* part = icalcomponent_new(task ? ICAL_VTODO_COMPONENT : ICAL_VEVENT_COMPONENT);
  const auto add = [part](icalproperty* property) { icalcomponent_add_property(part, property); };
  add(icalproperty_new_uid(Uid(item).c_str()));
  const Date modified = item.last_modified == no_date ? Date_Of_File(item) : item.last_modified;
  if (modified != no_date) add(icalproperty_new_dtstamp(Utc_Of(modified)));
  if (item.last_modified != no_date) add(icalproperty_new_lastmodified(Utc_Of(item.last_modified)));
  add(icalproperty_new_summary(item.subject.c_str()));
  if (!item.body.empty()) add(icalproperty_new_description(item.body.c_str()));
  if (task) {
    if (item.due != no_date) add(icalproperty_new_due(Local_Time_Of(item.due)));
    if (item.completed != no_date) {
      add(icalproperty_new_completed(Utc_Of(item.completed)));
      add(icalproperty_new_status(ICAL_STATUS_COMPLETED));
    }
  } else if (const Date end = item.end == no_date ? modified : item.end; end != no_date) {
    add(icalproperty_new_dtstart(Local_Time_Of(end)));
    add(icalproperty_new_dtend(Local_Time_Of(end)));
  }
  const std::unique_ptr<icalcomponent, decltype(&icalcomponent_free)> calendar(
      icalcomponent_vanew(ICAL_VCALENDAR_COMPONENT, icalproperty_new_version("2.0"),
                          icalproperty_new_prodid(product), part, nullptr),
      icalcomponent_free);
  const std::unique_ptr<char, decltype(&icalmemory_free_buffer)> text(
      icalcomponent_as_ical_string_r(calendar.get()), [](void* buffer) { icalmemory_free_buffer(buffer); });
  return text ? std::string(text.get()) : std::string();
}

std::string Build_Card(const New_Item& item) {
  std::string card = "BEGIN:VCARD\r\nVERSION:4.0\r\n";
  card += "PRODID:" + std::string(product) + "\r\n";
  if (item.item_class == item_class::distribution_list) card += "KIND:group\r\n";
  card += Card_Line("UID", Uid(item));
  card += Card_Line("FN", item.subject.empty() ? "Unnamed" : item.subject);
  if (!item.sender_address.empty()) card += Card_Line("EMAIL", item.sender_address);
  if (!item.body.empty()) card += Card_Line("NOTE", item.body);
  if (item.last_modified != no_date) {
    const std::unique_ptr<char, decltype(&icalmemory_free_buffer)> revision(
        icaltime_as_ical_string_r(Utc_Of(item.last_modified)),
        [](void* buffer) { icalmemory_free_buffer(buffer); });
    card += Card_Line("REV", revision.get());
  }
  return card + "END:VCARD\r\n";
}

}  // namespace tidyfold
