#include "import/pst_item.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/text.h"
#include "import/charset.h"
#include "import/html_text.h"
#include "import/local_date.h"
#include "import/mime_message.h"
#include "import/pst_message.h"
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

constexpr std::uint32_t appointment_set = 0x00062002, task_set = 0x00062003, journal_set = 0x0006200A;
constexpr Named_Property appointment_end{appointment_set, 0x820E}, task_due{task_set, 0x8105},
    task_completed{task_set, 0x810F}, journal_end{journal_set, 0x8708};

constexpr std::uint32_t flag_read = 1;
constexpr std::uint32_t object_distribution_list = 8, object_mail_user = 6;
constexpr std::uint32_t exception_of_a_series = 2;

Date Local(std::optional<std::uint64_t> filetime) {
  return filetime ? Local_Date_From_Filetime(*filetime) : no_date;
}

Date First_Of(Date first, Date second) {
  return first != no_date ? first : second;
}

std::int32_t Class_Of(const Pst_Properties& properties) {
  const std::string message_class = properties.Text(pst_property::message_class);
  if (!message_class.empty()) return Item_Class_Of(message_class);
  // Entries of address books have no message class.
  const std::uint32_t object_type = properties.Number(pst_property::object_type).value_or(0);
  if (object_type == object_mail_user) return item_class::contact;
  if (object_type == object_distribution_list) return item_class::distribution_list;
  return item_class::mail;
}

bool Has_Raw_Message(std::int32_t number) {
  return number == item_class::mail || number == item_class::report ||
         (number >= item_class::meeting_request && number <= item_class::meeting_response_tentative);
}

void Read_Dates(const Pst_Properties& properties, New_Item& item) {
  item.received = First_Of(Local(properties.Time(pst_property::delivery_time)),
                           Local(properties.Time(pst_property::client_submit_time)));
  item.last_modified = First_Of(Local(properties.Time(pst_property::last_modification_time)), item.received);
  const Date end = Local(properties.Time(pst_property::end_date));
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

std::vector<New_Attachment> Attachments(libpff_item_t* message) {
  std::vector<New_Attachment> attachments;
  Pff_Error error;
  int count = 0;
  Check_Pff(libpff_message_get_number_of_attachments(message, &count, error.Out()), error);
  for (int i = 0; i < count; ++i) {
    libpff_item_t* found = nullptr;
    Check_Pff(libpff_message_get_attachment(message, i, &found, error.Out()), error);
    const Pff_Item attachment(found);
    const Pst_Properties properties(found);
    if ((properties.Number(pst_property::attachment_flags).value_or(0) & exception_of_a_series) != 0)
      continue;
    std::string name;
    for (const std::uint32_t property :
         {pst_property::attachment_long_name, pst_property::attachment_name, pst_property::display_name}) {
      if (name.empty()) name = One_Line(properties.Text(property));
    }
    // libpff gives the size of the data only for plain files.
    size64_t size = properties.Number(pst_property::attachment_size).value_or(0);
    int type = 0;
    if (libpff_attachment_get_type(found, &type, error.Out()) == 1 && type == LIBPFF_ATTACHMENT_TYPE_DATA) {
      libpff_attachment_get_data_size(found, &size, error.Out());
    }
    attachments.push_back({std::move(name), static_cast<std::int64_t>(size)});
  }
  return attachments;
}

std::string Text_Of(const Pst_Body& body) {
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

New_Item Read_Pst_Item(libpff_item_t* message) {
  const Pst_Properties properties(message);
  New_Item item;
  item.item_class = Class_Of(properties);
  item.subject = One_Line(properties.Subject());
  if (item.subject.empty()) item.subject = One_Line(properties.Text(pst_property::display_name));
  item.sender = One_Line(properties.Text(pst_property::sender_name));
  if (item.sender.empty()) item.sender = One_Line(properties.Text(pst_property::sent_representing_name));
  item.recipients = One_Line(properties.Text(pst_property::display_to));
  item.unread = (properties.Number(pst_property::message_flags).value_or(flag_read) & flag_read) == 0;
  item.size = properties.Number(pst_property::message_size).value_or(0);
  Read_Dates(properties, item);
  const Pst_Body body = Read_Pst_Body(message, properties);
  item.body = Text_Of(body);
  item.attachments = Attachments(message);
  if (Has_Raw_Message(item.item_class) && item.size <= max_message_size) {
    item.raw_message = Rebuild_Message(message, properties, body);
  }
  return item;
}

}  // namespace tidyfold
