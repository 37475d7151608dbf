#include "import/mapi_item.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/text.h"
#include "import/mapi_calendar.h"
#include "import/mapi_contact.h"
#include "import/mapi_message.h"
#include "mail/charset.h"
#include "mail/html_text.h"
#include "mail/item_identity.h"
#include "mail/local_date.h"
#include "mail/mime_message.h"
#include "mail/rtf_text.h"

namespace tidyfold {
namespace {

constexpr Named_Property appointment_end{mapi_set::appointment, 0x820E}, task_due{mapi_set::task, 0x8105},
    task_completed{mapi_set::task, 0x810F}, journal_end{mapi_set::journal, 0x8708};

constexpr std::uint32_t flag_read = 1;
constexpr std::uint32_t object_distribution_list = 8, object_mail_user = 6;
constexpr std::uint32_t flagged_for_follow_up = 2, verb_reply = 102, verb_reply_to_all = 103;

Date Local(std::optional<std::uint64_t> filetime) {
  return filetime ? Local_Date_From_Filetime(*filetime) : no_date;
}

Date First_Of(Date first, Date second) {
  return first != no_date ? first : second;
}

std::int32_t Class_Of(const Mapi_Properties& properties) {
  const std::string message_class = properties.Text(mapi_property::message_class);
  if (!message_class.empty()) return Item_Class_Of(message_class);
  // Entries of address books have no message class.
  const std::uint32_t object_type = properties.Number(mapi_property::object_type).value_or(0);
  if (object_type == object_mail_user) return item_class::contact;
  if (object_type == object_distribution_list) return item_class::distribution_list;
  return item_class::mail;
}

void Read_Dates(const Mapi_Properties& properties, New_Item& item) {
  item.received = First_Of(Local(properties.Time(mapi_property::delivery_time)),
                           Local(properties.Time(mapi_property::client_submit_time)));
  item.last_modified = First_Of(Local(properties.Time(mapi_property::last_modification_time)), item.received);
  const Date end = Local(properties.Time(mapi_property::end_date));
  if (item.item_class == item_class::appointment)
    item.end = First_Of(Local(properties.Time(appointment_end)), end);
  if (item.item_class == item_class::journal) item.end = First_Of(Local(properties.Time(journal_end)), end);
  if (item.item_class == item_class::task) {
    // Due dates have no time zone, completion dates do.
    const auto due = properties.Time(task_due);
    if (due) item.due = Date_From_Floating_Filetime(*due);
    item.completed = Local(properties.Time(task_completed));
  }
}

// With their contents where the item's own form does not hold them.
std::vector<New_Attachment> Attachments(const Mapi_Item& source, bool with_content) {
  std::vector<New_Attachment> attachments;
  for (const auto& attachment : source.Attachments()) {
    if (attachment->Is_Exception_Of_Series()) continue;
    New_Attachment kept{attachment->Name(), attachment->Size()};
    if (with_content) kept.content = attachment->Data().value_or(std::string());
    attachments.push_back(std::move(kept));
  }
  return attachments;
}

void Read_Marks(const Mapi_Properties& properties, New_Item& item) {
  item.unread = (properties.Number(mapi_property::message_flags).value_or(flag_read) & flag_read) == 0;
  item.flagged = properties.Number(mapi_property::flag_status) == flagged_for_follow_up;
  const std::uint32_t verb = properties.Number(mapi_property::last_verb).value_or(0);
  item.answered = verb == verb_reply || verb == verb_reply_to_all;
}

void Read_Identities(const Mapi_Properties& properties, New_Item& item) {
  Kept_Identities kept = Identities_In(properties.Text(mapi_property::transport_headers));
  item.sender_address = Sender_Address(properties);
  if (item.sender_address.empty()) item.sender_address = std::move(kept.sender_address);
  item.message_id = Message_Id_Of(properties);
  item.list_id = std::move(kept.list_id);
}

std::string Text_Of(const Mapi_Body& body) {
  if (!body.plain.empty()) return body.plain;
  if (!body.html.empty()) return Html_To_Text(body.html);
  return Rtf_To_Text(body.rtf);
}

}  // namespace

New_Item Read_Mapi_Item(const Mapi_Item& source) {
  const Mapi_Properties& properties = source.Properties();
  New_Item item;
  item.item_class = Class_Of(properties);
  item.subject = One_Line(properties.Subject());
  if (item.subject.empty()) item.subject = properties.First_Text(mapi_property::display_name);
  item.sender = properties.First_Text(mapi_property::sender_name, mapi_property::sent_representing_name);
  item.recipients = properties.First_Text(mapi_property::display_to);
  item.size = properties.Number(mapi_property::message_size).value_or(0);
  Read_Marks(properties, item);
  Read_Dates(properties, item);
  const Mapi_Body body = Read_Mapi_Body(source);
  item.body = Text_Of(body);
  item.attachments = Attachments(source, !Is_Message_Class(item.item_class));
  if (item.size > max_message_size) return item;
  if (Is_Message_Class(item.item_class)) {
    Read_Identities(properties, item);
    item.raw_message = Rebuild_Message(source, body);
  } else if (item.item_class == item_class::appointment) {
    Mapi_Appointment appointment = Build_Appointment(source, item.body);
    item.end = appointment.end;
    item.raw_message = std::move(appointment.calendar);
  } else if (item.item_class == item_class::task) {
    item.raw_message = Build_Task(source, item.body);
  } else if (item.item_class == item_class::contact) {
    item.raw_message = Build_Contact(source, item.body);
  } else if (item.item_class == item_class::distribution_list) {
    item.raw_message = Build_Distribution_List(source, item.body);
  }
  return item;
}

}  // namespace tidyfold
