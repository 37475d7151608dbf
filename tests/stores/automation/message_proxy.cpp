// The proxy of the test server's messages: it comes into being in the process of whoever asks for an item's
// MAPIOBJECT, offers IMAPIProp there, and fetches properties from the server.
#include <windows.h>

#include <mapicode.h>
#include <mapidefs.h>

#include <cstring>

#include "server_ids.h"
#include "stores/automation/com_object.h"

using tidyfold::com::Ptr;

template <>
const IID& tidyfold::com::Id_Of<IMAPIProp>() {
  static constexpr IID id = {0x00020303, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
  return id;
}

namespace {

template <class Function>
Function Mapi_Function(const char* name) {
  static const HMODULE library = LoadLibraryW(L"mapi32.dll");
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

// Memory that goes when `parent` goes.
void* Allocate_With(void* parent, std::size_t size) {
  void* memory = nullptr;
  if (parent == nullptr) {
    Mapi_Function<SCODE(WINAPI*)(ULONG, void**)>("MAPIAllocateBuffer")(static_cast<ULONG>(size), &memory);
  } else {
    Mapi_Function<SCODE(WINAPI*)(ULONG, void*, void**)>("MAPIAllocateMore")(static_cast<ULONG>(size), parent,
                                                                            &memory);
  }
  return memory;
}

class Message_Proxy : public tidyfold::com::Com_Object<IMAPIProp, IMarshal> {
 public:
  HRESULT STDMETHODCALLTYPE UnmarshalInterface(IStream* stream, REFIID wanted, void** object) override {
    const HRESULT result =
        CoUnmarshalInterface(stream, IID_IDispatch, reinterpret_cast<void**>(reader_.Receive()));
    return FAILED(result) ? result : QueryInterface(wanted, object);
  }
  HRESULT STDMETHODCALLTYPE GetUnmarshalClass(REFIID, void*, DWORD, void*, DWORD, CLSID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetMarshalSizeMax(REFIID, void*, DWORD, void*, DWORD, DWORD*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE MarshalInterface(IStream*, REFIID, void*, DWORD, void*, DWORD) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE ReleaseMarshalData(IStream* stream) override {
    return CoReleaseMarshalData(stream);
  }
  HRESULT STDMETHODCALLTYPE DisconnectObject(DWORD) override { return S_OK; }

  // One call to the server for all forms of a property.
  HRESULT STDMETHODCALLTYPE GetProps(LPSPropTagArray tags, ULONG, ULONG* count,
                                     LPSPropValue* values) override {
    VARIANT answer;
    const HRESULT result = Ask(PROP_ID(tags->aulPropTag[0]), answer);
    if (FAILED(result)) return result;
    auto* all = static_cast<SPropValue*>(Allocate_With(nullptr, tags->cValues * sizeof(SPropValue)));
    const bool eight_bit_only = GetEnvironmentVariableW(L"TIDYFOLD_TEST_8_BIT", nullptr, 0) > 0;
    HRESULT outcome = S_OK;
    for (ULONG i = 0; i < tags->cValues; ++i) {
      const ULONG tag = tags->aulPropTag[i];
      const bool unicode = PROP_TYPE(tag) == PT_UNICODE;
      all[i] = {};
      if (answer.vt != VT_BSTR || (unicode && eight_bit_only)) {
        all[i].ulPropTag = CHANGE_PROP_TYPE(tag, PT_ERROR);
        all[i].Value.err = MAPI_E_NOT_FOUND;
        outcome = MAPI_W_ERRORS_RETURNED;
        continue;
      }
      all[i].ulPropTag = tag;
      if (unicode) {
        const std::size_t size = (wcslen(answer.bstrVal) + 1) * sizeof(wchar_t);
        all[i].Value.lpszW = static_cast<wchar_t*>(Allocate_With(all, size));
        std::memcpy(all[i].Value.lpszW, answer.bstrVal, size);
      } else {
        const int size = WideCharToMultiByte(CP_ACP, 0, answer.bstrVal, -1, nullptr, 0, nullptr, nullptr);
        all[i].Value.lpszA = static_cast<char*>(Allocate_With(all, static_cast<std::size_t>(size)));
        WideCharToMultiByte(CP_ACP, 0, answer.bstrVal, -1, all[i].Value.lpszA, size, nullptr, nullptr);
      }
    }
    VariantClear(&answer);
    *count = tags->cValues;
    *values = all;
    return outcome;
  }

  HRESULT STDMETHODCALLTYPE GetLastError(HRESULT, ULONG, LPMAPIERROR*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE SaveChanges(ULONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetPropList(ULONG, LPSPropTagArray*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE OpenProperty(ULONG, LPCIID, ULONG, ULONG, LPUNKNOWN*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE SetProps(ULONG, LPSPropValue, LPSPropProblemArray*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE DeleteProps(LPSPropTagArray, LPSPropProblemArray*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE CopyTo(ULONG, LPCIID, LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID,
                                   ULONG, LPSPropProblemArray*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE CopyProps(LPSPropTagArray, ULONG, LPMAPIPROGRESS, LPCIID, LPVOID, ULONG,
                                      LPSPropProblemArray*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetNamesFromIDs(LPSPropTagArray*, LPGUID, ULONG, ULONG*,
                                            LPMAPINAMEID**) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray*) override {
    return E_NOTIMPL;
  }

 private:
  HRESULT Ask(ULONG number, VARIANT& answer) {
    VariantInit(&answer);
    VARIANT argument;
    argument.vt = VT_I4;
    argument.lVal = static_cast<LONG>(number);
    DISPPARAMS parameters{&argument, nullptr, 1, 0};
    EXCEPINFO told{};
    const HRESULT result =
        reader_->Invoke(tidyfold::test_server::message_member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                        &parameters, &answer, &told, nullptr);
    if (result != DISP_E_EXCEPTION) return result;
    SysFreeString(told.bstrDescription);
    SysFreeString(told.bstrSource);
    return told.scode;
  }

  Ptr<IDispatch> reader_;
};

tidyfold::com::Class_Factory factory([] {
  return Ptr<IUnknown>(static_cast<IMAPIProp*>(new Message_Proxy));
});

}  // namespace

STDAPI DllGetClassObject(REFCLSID, REFIID wanted, LPVOID* object) {
  return factory.QueryInterface(wanted, object);
}

STDAPI DllCanUnloadNow() {
  return S_FALSE;
}
