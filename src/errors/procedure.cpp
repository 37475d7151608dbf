#include "errors/procedure.h"

#include "errors/automation_error.h"

namespace tidyfold {

bool Error_Handler::Is_Gone(const std::exception_ptr& failure) {
  try {
    std::rethrow_exception(failure);
  } catch (const Automation_Error& gone) {
    return gone.Number() == automation_error::unavailable;
  } catch (...) {
    return false;
  }
}

void Error_Handler::Record(const std::exception_ptr& failure) {
  error.Set(failure);
  if (!Is_Gone(failure)) return;
  if (!std::exchange(store_gone_, true))
    untold_ = error.Description.empty() ? "The store cannot be reached any more." : error.Description;
  if (End_Without_Store) End_Without_Store();
}

void Error_Handler::Report(std::string_view trap, bool is_command) {
  if (error.Number == automation_error::unavailable) {
    error.Clear();
  } else {
    stack.Display(trap);
  }
  stack.Clear();
  emptied_ = true;
  Leave_After_Failure(is_command);
}

void Error_Handler::Leave_After_Failure(bool is_command) {
  if (store_gone_) Tell_Gone();
  if (is_command) store_gone_ = emptied_ = false;
}

void Error_Handler::Tell_Gone() {
  const std::string text = std::exchange(untold_, {});
  if (text.empty()) return;
  message_box_.Show(text, Buttons::OK_Only, Icon::Critical);
}

}  // namespace tidyfold
