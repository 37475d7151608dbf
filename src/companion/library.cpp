// The entry points of an in-process automation server.
#include <array>

#include "companion/mapi_utils.h"
#include "companion/registration.h"
#include "stores/automation/com_object.h"

namespace tidyfold::companion {
namespace {

HMODULE this_library = nullptr;

// The library stays loaded while anyone holds this.
class Counted_Factory : public com::Class_Factory {
 public:
  using Class_Factory::Class_Factory;
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&users)); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(InterlockedDecrement(&users)); }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lock ? InterlockedIncrement(&users) : InterlockedDecrement(&users);
    return S_OK;
  }
};

Counted_Factory factory([] { return Make_Mapi_Utils(); });

HRESULT With_Own_Path(HRESULT (*work)(const std::wstring& path)) {
  std::array<wchar_t, 32768> path{};
  const DWORD length = GetModuleFileNameW(this_library, path.data(), static_cast<DWORD>(path.size()));
  return length == 0 ? HRESULT_FROM_WIN32(GetLastError()) : work(path.data());
}

}  // namespace
}  // namespace tidyfold::companion

using namespace tidyfold::companion;

extern "C" BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_ATTACH) this_library = library;
  return TRUE;
}

STDAPI DllGetClassObject(REFCLSID wanted_class, REFIID wanted, LPVOID* object) {
  if (!IsEqualCLSID(wanted_class, class_id)) return CLASS_E_CLASSNOTAVAILABLE;
  return factory.QueryInterface(wanted, object);
}

STDAPI DllCanUnloadNow() {
  return users == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer() {
  return With_Own_Path(Register);
}

STDAPI DllUnregisterServer() {
  return Unregister();
}

// "user", from regsvr32 /n /i:user: for the current user alone, whatever the rights.
STDAPI DllInstall(BOOL install, LPCWSTR for_whom) {
  if (for_whom == nullptr || lstrcmpiW(for_whom, L"user") != 0) return E_INVALIDARG;
  return install ? With_Own_Path(Register_For_User) : Unregister_For_User();
}
