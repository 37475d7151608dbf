// Outlook itself, driven by automation. What comes out of it belongs to the thread that it was made on, which
// must be the window's: the thread serves its messages while it waits for Outlook.
//
// Calls that Outlook is too busy for are made again for a while. When it has been closed, or stays busy, they
// throw Automation_Error with the number automation_error::unavailable.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "outlook/object_model.h"

namespace tidyfold {

namespace com {
struct Session;
}

class Outlook_Automation : public Automation {
 public:
  // By default calls are made again for so long that a send and receive, or a box that is answered at once,
  // can end meanwhile. Throws Automation_Error when the thread cannot be used for automation.
  explicit Outlook_Automation(std::chrono::milliseconds patience = std::chrono::seconds(20));
  Outlook_Automation(const Outlook_Automation&) = delete;
  Outlook_Automation& operator=(const Outlook_Automation&) = delete;
  // Nothing that came out of it may be left.
  ~Outlook_Automation() override;

  std::shared_ptr<Application> GetObject(const std::string& path, const std::string& program) override;
  std::shared_ptr<Application> CreateObject(const std::string& program) override;
  std::shared_ptr<Mapi_Utils> Create_Mapi_Utils(const std::string& program) override;
  bool Asking_Costs_Calls() const override { return true; }

 private:
  std::shared_ptr<com::Session> session_;
};

}  // namespace tidyfold
