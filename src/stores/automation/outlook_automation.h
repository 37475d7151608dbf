// Outlook itself, through automation. All objects belong to the thread that created them. This must be the
// window's thread, which handles messages while it waits for Outlook.
//
// Calls are retried for a while when Outlook is busy; then the question of Ask_When_Busy decides. If it stays
// busy or has been closed, they throw Automation_Error with the number automation_error::unavailable.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "outlook/object_model.h"

namespace tidyfold {

namespace com {
struct Session;
}

class Outlook_Automation : public Automation {
 public:
  // `patience` is how long calls are retried; by default long enough for a send and receive, or for a message
  // box that is answered at once. Throws Automation_Error when the thread cannot be used for automation.
  explicit Outlook_Automation(std::chrono::milliseconds patience = std::chrono::seconds(20));
  Outlook_Automation(const Outlook_Automation&) = delete;
  Outlook_Automation& operator=(const Outlook_Automation&) = delete;
  // All objects that came from it must be gone.
  ~Outlook_Automation() override;

  std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) override;
  std::shared_ptr<Application> CreateObject(const std::string& program) override;
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string& program) override;
  bool Asking_Costs_Calls() const override { return true; }
  void Ask_When_Busy(std::function<bool(const std::string& words)> go_on) override;
  std::string Why_Not_Reached() const override { return why_not_reached_; }

 private:
  std::shared_ptr<com::Session> session_;
  std::string why_not_reached_;
};

}  // namespace tidyfold
