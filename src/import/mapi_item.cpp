#include "import/mapi_item.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/text.h"
#include "import/charset.h"
#include "import/html_text.h"
#include "import/item_identity.h"
#include "import/local_date.h"
#include "import/mapi_calendar.h"
#include "import/mapi_contact.h"
#include "import/mapi_message.h"
#include "import/mime_message.h"
#include "import/rtf_text.h"

namespace tidyfold {
namespace {

using Class_Name = std::pair<std::string_view, std::int32_t>;

// In upper case: class names are compared without case.
constexpr std::array<Class_Name, 20> message_classes = {{
    {"IPM.NOTE", item_class::mail},
    {"IPM.APPOINTMENT", item_class::appointment},
    {"IPM.CONTACT", item_class::contact},
    {"IPM.ABCHPERSON", item_class::contact},
    {"IPM.TASK", item_class::task},
    {"IPM.ACTIVITY", item_class::journal},
    {"IPM.STICKYNOTE", item_class::note},
    {"IPM.POST", item_class::post},
    {"IPM.DISTLIST", item_class::distribution_list},
    {"IPM.SCHEDULE.MEETING.REQUEST", item_class::meeting_request},
    {"IPM.SCHEDULE.MEETING.CANCELED", item_class::meeting_cancellation},
    {"IPM.SCHEDULE.MEETING.RESP.NEG", item_class::meeting_response_negative},
    {"IPM.SCHEDULE.MEETING.RESP.POS", item_class::meeting_response_positive},
    {"IPM.SCHEDULE.MEETING.RESP.TENT", item_class::meeting_response_tentative},
    {"IPM.TASKREQUEST", item_class::task_request},
    {"IPM.TASKREQUEST.UPDATE", item_class::task_request_update},
    {"IPM.TASKREQUEST.ACCEPT", item_class::task_request_accept},
    {"IPM.TASKREQUEST.DECLINE", item_class::task_request_decline},
    {"REPORT", item_class::report},
    {"IPM.REPORT", item_class::report},
}};

constexpr std::array<Class_Name, 6> container_classes = {{
    {"IPF.NOTE", item_type::mail},
    {"IPF.APPOINTMENT", item_type::appointment},
    {"IPF.CONTACT", item_type::contact},
    {"IPF.TASK", item_type::task},
    {"IPF.JOURNAL", item_type::journal},
    {"IPF.STICKYNOTE", item_type::note},
}};

template <std::size_t size>
std::int32_t Nearest(const std::array<Class_Name, size>& classes, std::string_view name,
                     std::int32_t otherwise) {
  for (std::string upper = Upper_Case(name); !upper.empty();) {
    for (const auto& [known, number] : classes) {
      if (known == upper) return number;
    }
    const std::size_t dot = upper.rfind('.');
    upper.resize(dot == std::string::npos ? 0 : dot);
  }
  return otherwise;
}

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

std::int32_t Item_Class_Of(std::string_view message_class) {
  return Nearest(message_classes, message_class, item_class::mail);
}

std::int32_t Item_Type_Of(std::string_view container_class) {
  return Nearest(container_classes, container_class, item_type::mail);
}

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
