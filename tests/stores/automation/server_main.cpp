// Stands in for Outlook in tests: offers its published object model over stores in memory.
//
//   outlook_server.exe /RegServer   registers itself (under Wine only)
//   outlook_server.exe              serves until it is told to quit, or for two minutes without a call
#include <array>
#include <cstdio>
#include <cstring>

#include "served_outlook.h"
#include "server_ids.h"

namespace tidyfold::test_server {
namespace {

constexpr UINT look_every = 1000;  // milliseconds
constexpr ULONGLONG longest_idle = 120000;

std::wstring Text_Of(const CLSID& id) {
  std::array<wchar_t, 39> text{};
  StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
  return text.data();
}

int Register() {
  if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr) {
    std::fputs("This is a Windows whose Outlook may be a real one; nothing was registered.\n", stderr);
    return 1;
  }
  std::array<wchar_t, MAX_PATH> buffer{};
  GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
  const std::wstring program = buffer.data();
  const std::wstring proxy = program.substr(0, program.rfind(L'\\') + 1) + L"message_proxy.dll";
  bool written = true;
  const auto write = [&](const std::wstring& key, const wchar_t* name, const std::wstring& text) {
    const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    written = written && RegSetKeyValueW(HKEY_LOCAL_MACHINE, (L"Software\\Classes\\" + key).c_str(), name,
                                         REG_SZ, text.c_str(), bytes) == ERROR_SUCCESS;
  };
  const std::pair<std::wstring, std::wstring> classes[] = {{outlook_program, Text_Of(outlook_class)},
                                                           {control_program, Text_Of(control_class)}};
  for (const auto& [name, id] : classes) {
    write(name + L"\\CLSID", nullptr, id);
    write(L"CLSID\\" + id + L"\\ProgID", nullptr, name);
    write(L"CLSID\\" + id + L"\\LocalServer32", nullptr, L"\"" + program + L"\"");
  }
  const std::wstring proxy_key = L"CLSID\\" + Text_Of(message_proxy_class) + L"\\InprocServer32";
  write(proxy_key, nullptr, proxy);
  write(proxy_key, L"ThreadingModel", L"Both");
  return written ? 0 : 1;
}

class Filter : public com::Com_Object<IMessageFilter> {
 public:
  explicit Filter(World& world) : world_(world) {}
  DWORD STDMETHODCALLTYPE HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override {
    last_call = GetTickCount64();
    if (world_.busy_calls <= 0) return SERVERCALL_ISHANDLED;
    // Wine makes the call in spite of SERVERCALL_RETRYLATER.
    --world_.busy_calls;
    return SERVERCALL_REJECTED;
  }
  DWORD STDMETHODCALLTYPE RetryRejectedCall(HTASK, DWORD, DWORD) override { return static_cast<DWORD>(-1); }
  DWORD STDMETHODCALLTYPE MessagePending(HTASK, DWORD, DWORD) override { return PENDINGMSG_WAITDEFPROCESS; }

  ULONGLONG last_call = GetTickCount64();

 private:
  World& world_;
};

int Serve() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  World world;
  world.outlooks.push_back(std::make_unique<Memory_Outlook>());
  Filter filter(world);
  CoRegisterMessageFilter(&filter, nullptr);
  // All clients share these objects.
  const com::Ptr<IDispatch> application = Make_Application(world), control = Make_Control(world);
  const auto factory = [](const com::Ptr<IDispatch>& object) {
    return new com::Class_Factory([object] { return com::Ptr<IUnknown>::Share(object.Get()); });
  };
  DWORD active = 0, classes[2] = {};
  RegisterActiveObject(application.Get(), outlook_class, ACTIVEOBJECT_STRONG, &active);
  CoRegisterClassObject(control_class, factory(control), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                        &classes[0]);
  CoRegisterClassObject(outlook_class, factory(application), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE,
                        &classes[1]);
  // Wine does not notice that a process has ended and would still send clients there. Objects that clients
  // hold fail from now on; nothing is destroyed during a call.
  world.switches.vanish = [&] {
    RevokeActiveObject(active, nullptr);
    for (const DWORD one : classes) CoRevokeClassObject(one);
    TerminateProcess(GetCurrentProcess(), 0);
  };
  SetEvent(CreateEventW(nullptr, TRUE, FALSE, ready_event));
  SetTimer(nullptr, 0, look_every, nullptr);
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (message.message == WM_TIMER && GetTickCount64() - filter.last_call > longest_idle) break;
    DispatchMessageW(&message);
  }
  world.switches.vanish();
  return 0;
}

}  // namespace
}  // namespace tidyfold::test_server

int main(int count, char** arguments) {
  using namespace tidyfold::test_server;
  return count > 1 && std::strcmp(arguments[1], "/RegServer") == 0 ? Register() : Serve();
}
