#include "errors/procedure.h"

#include "errors/automation_error.h"

namespace tidyfold {

bool Error_Handler::Is_Gone(std::exception_ptr failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const Automation_Error& gone) {
    return gone.Number() == automation_error::unavailable;
  } catch (...) {
    return false;
  }
}

void Error_Handler::Record(std::exception_ptr failure) {
  error.Set(failure);
  if (!Is_Gone(failure)) return;
  if (!std::exchange(store_gone_, true))
    untold_ = error.Description.empty() ? "The store cannot be reached any more." : error.Description;
  if (End_Without_Store) End_Without_Store();
}

void Error_Handler::Report(std::string_view trap) {
  if (error.Number == automation_error::unavailable) {
    error.Clear();
  } else {
    stack.Display(trap);
  }
  stack.Clear();
  if (!untold_.empty()) Tell_Gone();
}

void Error_Handler::Tell_Gone() {
  const std::string text = std::exchange(untold_, {});
  message_box_.Show(text, Buttons::OK_Only, Icon::Critical);
}

}  // namespace tidyfold
