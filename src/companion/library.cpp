// What the system calls in an in-process automation server.
#include <array>
#include <new>

#include "companion/mapi_utils.h"
#include "companion/registration.h"

namespace tidyfold::companion {
namespace {

HMODULE this_library = nullptr;

class Class_Factory : public IClassFactory {
 public:
  virtual ~Class_Factory() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(wanted, IID_IUnknown) && !IsEqualIID(wanted, IID_IClassFactory)) return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IClassFactory*>(this);
    return S_OK;
  }
  // One for all, as long as the library is loaded.
  ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&users)); }
  ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(InterlockedDecrement(&users)); }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID wanted, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    try {
      return Make_Mapi_Utils()->QueryInterface(wanted, object);
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lock ? InterlockedIncrement(&users) : InterlockedDecrement(&users);
    return S_OK;
  }
};

Class_Factory factory;

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
  std::array<wchar_t, 32768> path{};
  const DWORD length = GetModuleFileNameW(this_library, path.data(), static_cast<DWORD>(path.size()));
  if (length == 0) return HRESULT_FROM_WIN32(GetLastError());
  return Register(path.data());
}

STDAPI DllUnregisterServer() {
  return Unregister();
}
