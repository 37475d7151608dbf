#include "stores/automation/outlook_automation.h"

#include "stores/automation/objects.h"

#include <tlhelp32.h>

namespace tidyfold {

namespace {

// Office notes here that a person has switched to the new Outlook.
bool Uses_New_Outlook() {
  DWORD value = 0, size = sizeof value;
  return RegGetValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Office\\16.0\\Outlook\\Preferences",
                      L"UseNewOutlook", RRF_RT_REG_DWORD, nullptr, &value, &size) == ERROR_SUCCESS &&
         value != 0;
}

bool Is_Running(const wchar_t* program) {
  const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
  if (all == INVALID_HANDLE_VALUE) return false;
  PROCESSENTRY32W process{};
  process.dwSize = sizeof process;
  bool running = false;
  for (BOOL more = Process32FirstW(all, &process); more != FALSE && !running;
       more = Process32NextW(all, &process))
    running = CompareStringOrdinal(process.szExeFile, -1, program, -1, TRUE) == CSTR_EQUAL;
  CloseHandle(all);
  return running;
}

std::string Why_Not_Started(bool is_registered) {
  if (Uses_New_Outlook() || (!is_registered && Is_Running(L"olk.exe"))) {
    return "You use the new Outlook, which no program can drive. Switch to the classic Outlook: in the new "
           "one, turn off \"New Outlook\" at the top right.";
  }
  if (!is_registered) {
    return "Outlook is not installed on this computer, or only the new Outlook is, which no program can "
           "drive. Tidyfold needs the classic Outlook.";
  }
  if (Is_Running(L"outlook.exe")) {
    return "Outlook is running, but does not let Tidyfold in. Most often one of the two was started as "
           "administrator: close both, and start both as yourself.";
  }
  return "Outlook is installed, but could not be started. Start it yourself, answer what it asks, and then "
         "start Tidyfold, neither of them as administrator.";
}

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
  CLSID id{};
  HRESULT result = CLSIDFromProgID(com::To_Wide(program).c_str(), &id);
  const bool is_registered = SUCCEEDED(result);
  if (is_registered) {
    result = CoCreateInstance(id, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                              reinterpret_cast<void**>(object.Receive()));
  }
  if (FAILED(result)) why_not_reached_ = Why_Not_Started(is_registered && result != REGDB_E_CLASSNOTREG);
  com::Check(result);
  why_not_reached_.clear();
  return com::Make_Application(session_, std::move(object));
}

void Outlook_Automation::Ask_When_Busy(std::function<bool(const std::string& words)> go_on) {
  session_->caller.Ask_When_Busy(std::move(go_on));
}

std::shared_ptr<Mapi_Utils> Outlook_Automation::Create_Mapi_Utils(const std::string& program) {
  return com::Create_Companion(session_, program);
}

}  // namespace tidyfold
