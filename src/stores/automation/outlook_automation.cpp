#include "stores/automation/outlook_automation.h"

#include "stores/automation/objects.h"

namespace tidyfold {

namespace {

CLSID Class_Of(const std::string& program) {
  CLSID id{};
  com::Check(CLSIDFromProgID(com::To_Wide(program).c_str(), &id));
  return id;
}

}  // namespace

Outlook_Automation::Outlook_Automation(std::chrono::milliseconds patience) {
  com::Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE));
  session_ = std::make_shared<com::Session>(patience);
}

Outlook_Automation::~Outlook_Automation() {
  session_.reset();
  CoUninitialize();
}

std::shared_ptr<Application> Outlook_Automation::GetObject(const std::string& path,
                                                           const std::string& program) {
  // Outlook has no documents that could be opened by path.
  if (!path.empty()) com::Fail(E_INVALIDARG);
  com::Ptr<IUnknown> running;
  com::Check(GetActiveObject(Class_Of(program), nullptr, running.Receive()));
  com::Ptr<IDispatch> object;
  com::Check(running->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Receive())));
  return com::Make_Application(session_, std::move(object));
}

std::shared_ptr<Application> Outlook_Automation::CreateObject(const std::string& program) {
  com::Ptr<IDispatch> object;
  com::Check(CoCreateInstance(Class_Of(program), nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(object.Receive())));
  return com::Make_Application(session_, std::move(object));
}

std::shared_ptr<Mapi_Utils> Outlook_Automation::Create_Mapi_Utils(const std::string& program) {
  return com::Create_Companion(session_, program);
}

}  // namespace tidyfold
