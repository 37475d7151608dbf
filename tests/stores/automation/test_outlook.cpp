#include "test_outlook.h"

#include <gtest/gtest.h>

#include "errors/automation_error.h"
#include "server_ids.h"

namespace tidyfold {

namespace {

using test_server::control_class;
using test_server::control_program;
using test_server::ready_event;

// The server is beside the test program.
std::wstring Beside(const wchar_t* name) {
  std::array<wchar_t, MAX_PATH> path{};
  GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
  const std::wstring program = path.data();
  return program.substr(0, program.rfind(L'\\') + 1) + name;
}

HANDLE Start(std::wstring line) {
  STARTUPINFOW how{};
  how.cb = sizeof how;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &how, &process))
    throw std::runtime_error("The test server cannot be started.");
  CloseHandle(process.hThread);
  return process.hProcess;
}

std::wstring Server() {
  return L"\"" + Beside(L"outlook_server.exe") + L"\"";
}

DWORD Run(const std::wstring& line) {
  HANDLE process = Start(line);
  WaitForSingleObject(process, INFINITE);
  DWORD status = 1;
  GetExitCodeProcess(process, &status);
  CloseHandle(process);
  return status;
}

// Registers server and companion before the first test and stops the server after the last.
class Registered_Server : public testing::Environment {
 public:
  void SetUp() override {
    com::Check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    ASSERT_EQ(Run(Server() + L" /RegServer"), 0U);
    ASSERT_TRUE(Test_Outlook::Register_Companion(true));
  }
  void TearDown() override {
    Test_Outlook::Stop();
    CoUninitialize();
  }
};
[[maybe_unused]] testing::Environment* const registered =
    testing::AddGlobalTestEnvironment(new Registered_Server);

// A busy server rejects the test's own calls, too.
template <class Make_Call>
HRESULT Until_Answered(Make_Call&& call) {
  HRESULT result = call();
  while (com::Is_Busy(result)) result = call();
  return result;
}

com::Ptr<IDispatch> Running_Control() {
  com::Ptr<IDispatch> control;
  if (!Test_Outlook::Is_Running()) return control;
  com::Check(Until_Answered([&] {
    return CoCreateInstance(control_class, nullptr, CLSCTX_LOCAL_SERVER, IID_IDispatch,
                            reinterpret_cast<void**>(control.Receive()));
  }));
  return control;
}

com::Variant Call(IDispatch& control, const char* member, std::vector<com::Variant>& arguments) {
  std::wstring name = com::To_Wide(member);
  LPOLESTR text = name.data();
  DISPID id = DISPID_UNKNOWN;
  com::Check(
      Until_Answered([&] { return control.GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id); }));
  std::vector<VARIANT> reversed;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
    reversed.push_back(argument->Raw());
  DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
  com::Variant answer;
  EXCEPINFO told{};
  const HRESULT result = Until_Answered([&] {
    return control.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters, &answer.Raw(),
                          &told, nullptr);
  });
  if (FAILED(result)) com::Fail(result, &told);
  return answer;
}

}  // namespace

bool Test_Outlook::Register_Companion(bool there) {
  return Run(std::wstring(L"regsvr32 /s ") + (there ? L"" : L"/u ") + L"\"" TIDYFOLD_COMPANION L"\"") == 0;
}

bool Test_Outlook::Is_Running() {
  CLSID outlook = test_server::outlook_class;
  com::Ptr<IUnknown> running;
  if (FAILED(GetActiveObject(outlook, nullptr, running.Receive()))) return false;
  // The table may still hold a process that has ended.
  com::Ptr<IDispatch> object;
  UINT count = 0;
  return SUCCEEDED(Until_Answered([&] {
           return running->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Receive()));
         })) &&
         SUCCEEDED(Until_Answered([&] { return object->GetTypeInfoCount(&count); }));
}

Test_Outlook::Test_Outlook() {
  if (!Is_Running()) {
    HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, ready_event);
    ResetEvent(ready);
    HANDLE awaited[] = {ready, Start(Server())};
    const DWORD first = WaitForMultipleObjects(2, awaited, FALSE, INFINITE);
    for (HANDLE handle : awaited) CloseHandle(handle);
    if (first != WAIT_OBJECT_0) throw std::runtime_error("The test server has ended.");
  }
  control_ = Running_Control();
  if (!control_) throw std::runtime_error("The test server does not answer.");
  Tell("Reset");
}

com::Variant Test_Outlook::Tell_All(const char* member, std::vector<com::Variant>& arguments) {
  return Call(*control_, member, arguments);
}

void Test_Outlook::Stop() {
  const com::Ptr<IDispatch> control = Running_Control();
  if (!control) return;
  std::vector<com::Variant> none;
  const auto number = static_cast<DWORD>(Call(*control, "Process", none).Number());
  HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, number);
  try {
    Call(*control, "Quit", none);
  } catch (const Automation_Error&) {
    // The server may end before it answers.
  }
  WaitForSingleObject(process, INFINITE);
  CloseHandle(process);
}

std::string Test_Writer::Add_Item(MAPIFolder& folder, const New_Item& item) {
  std::vector<com::Variant> arguments;
  arguments.emplace_back(number_);
  for (const std::string& id : {folder.StoreID(), folder.EntryID()}) arguments.emplace_back(id);
  arguments.emplace_back(item.item_class);
  for (const std::string* text : {&item.sender, &item.subject, &item.body}) arguments.emplace_back(*text);
  arguments.emplace_back(item.unread);
  arguments.emplace_back(item.flagged);
  for (const Date date : {item.received, item.last_modified, item.completed, item.due, item.end})
    arguments.push_back(com::Variant::Of_Date(date));
  arguments.emplace_back(static_cast<std::int32_t>(item.size));
  arguments.emplace_back(!item.attachments.empty());
  return outlook_.Tell_All("AddItem", arguments).Text();
}

}  // namespace tidyfold
