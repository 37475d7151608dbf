#include "outlook/message_class.h"

#include <array>
#include <string>
#include <utility>

#include "base/text.h"

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

}  // namespace

std::int32_t Item_Class_Of(std::string_view message_class, std::int32_t otherwise) {
  return Nearest(message_classes, message_class, otherwise);
}

std::int32_t Item_Type_Of(std::string_view container_class) {
  return Nearest(container_classes, container_class, item_type::mail);
}

}  // namespace tidyfold
