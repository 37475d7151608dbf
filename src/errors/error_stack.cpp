#include "errors/error_stack.h"

#include <new>
#include <stdexcept>

#include "errors/automation_error.h"

namespace tidyfold {

namespace {

constexpr const char* support_contact = "Tidyfold Support (support@tidyfold.example)";

}  // namespace

void Current_Error::Set(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const Automation_Error& error) {
    *this = {error.Number(), error.Description(), error.Source()};
  } catch (const std::bad_alloc&) {
    *this = {7, "Out of memory", application_title};
  } catch (const std::overflow_error& error) {
    *this = {6, error.what(), application_title};
  } catch (const std::exception& error) {
    *this = {440, error.what(), application_title};
  } catch (...) {
    *this = {440, "Automation error", application_title};
  }
}

ErrorStack::ErrorStack(Message_Box& message_box, Current_Error& error)
    : message_box_(message_box), error_(error), entries_(static_cast<std::size_t>(capacity_)) {}

void ErrorStack::Enlarge() {
  capacity_ += 10;
  entries_.resize(static_cast<std::size_t>(capacity_));
}

void ErrorStack::Push_Text(std::string label, std::int32_t kind) {
  StackEntry& entry = Next();
  entry.literal = {};
  entry.text = std::move(label);
  entry.Kind = kind;
}

const StackEntry& ErrorStack::Entry(std::int32_t index) const {
  if (index < 1 || index > count_)
    throw std::out_of_range("The error stack has no entry " + std::to_string(index));
  return entries_[static_cast<std::size_t>(index - 1)];
}

void ErrorStack::DisplayStack() const {
  std::string text;
  for (std::int32_t i = 1; i <= count_; ++i) {
    text += "\r\n";
    text += Entry(i).Label();
  }
  message_box_.Show(text);
}

void ErrorStack::Display(std::string_view trap) {
  const bool referenced = count_ >= 1;
  std::string text;
  if (!referenced) {
    text =
        "An un-referenced error has occurred.\r\n\r\n"
        "Please note the following Source and Description and notify\r\n";
    text += support_contact;
  } else if (Entry(count_).Kind == 1) {
    text =
        "An error has occurred.\r\n\r\n"
        "A folder or item may have been deleted during processing.\r\n"
        "The folder tree will be refreshed then please try again.";
  } else {
    text =
        "An error has occurred.\r\n\r\n"
        "Please note the following Source, Location and Description and notify\r\n";
    text += support_contact;
  }
  text += "\r\n\r\nSource:    \t" + error_.Source;
  text.append("\r\nTrap:      \t\t").append(trap);
  if (referenced) text.append("\r\nLocation:  \t").append(Entry(count_).Label());
  text += "\r\nDescripton:\t" + error_.Description;
  text += "\r\nNumber:    \t" + std::to_string(error_.Number);
  message_box_.Show(text, Buttons::OK_Only, Icon::Critical);
  DisplayStack();
  error_.Clear();
}

void ProcessError::DisplayProcessingError(std::string_view process, std::string_view item) {
  // A store that has gone is told of once, and not item by item.
  if (SuppressMessages || error_.Number == automation_error::unavailable) return;
  std::string text =
      "An processing error has occurred.\r\n\r\n"
      "The following item could not be processed:\r\n";
  text += "  Source:    \t" + error_.Source;
  text.append("\r\n  Process:   \t").append(process);
  text.append("\r\n  Item:      \t").append(item);
  text += "\r\n  Descripton:\t" + error_.Description;
  text += "\r\n  Number:    \t" + std::to_string(error_.Number);
  text += "\r\n\r\nSuppress further messages?";
  SuppressMessages = message_box_.Show(text, Buttons::Yes_No) == Answer::Yes;
}

}  // namespace tidyfold
