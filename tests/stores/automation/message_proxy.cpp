// The proxy of the test server's messages: created in the process that asks for an item's MAPIOBJECT, it
// offers IMAPIProp there and gets properties from the server.
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

// The system's code page under Wine. That of the program is UTF-8.
constexpr UINT western = 1252;

// Free with MAPIFreeBuffer.
void* Allocate(std::size_t size) {
  using Function = SCODE(WINAPI*)(ULONG, void**);
  static const HMODULE library = LoadLibraryW(L"mapi32.dll");
  void* memory = nullptr;
  reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, "MAPIAllocateBuffer")))(
      static_cast<ULONG>(size), &memory);
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
    tidyfold::com::Variant answer;
    const HRESULT result = Ask(PROP_ID(tags->aulPropTag[0]), answer.Raw());
    if (FAILED(result)) return result;
    const bool eight_bit_only = GetEnvironmentVariableW(L"TIDYFOLD_TEST_8_BIT", nullptr, 0) > 0;
    const std::wstring wide = tidyfold::com::To_Wide(answer.Text());
    const std::size_t wide_size = (wide.size() + 1) * sizeof(wchar_t), narrow_size = 4 * (wide.size() + 1);
    auto* all =
        static_cast<SPropValue*>(Allocate(tags->cValues * sizeof(SPropValue) + wide_size + narrow_size));
    auto* wide_text = reinterpret_cast<wchar_t*>(all + tags->cValues);
    auto* narrow_text = reinterpret_cast<char*>(wide_text) + wide_size;
    std::memcpy(wide_text, wide.c_str(), wide_size);
    WideCharToMultiByte(western, 0, wide.c_str(), -1, narrow_text, static_cast<int>(narrow_size), nullptr,
                        nullptr);
    HRESULT outcome = S_OK;
    for (ULONG i = 0; i < tags->cValues; ++i) {
      const ULONG tag = tags->aulPropTag[i];
      const bool unicode = PROP_TYPE(tag) == PT_UNICODE;
      all[i] = {};
      all[i].ulPropTag = tag;
      if (answer.Raw().vt != VT_BSTR || (unicode && eight_bit_only)) {
        all[i].ulPropTag = CHANGE_PROP_TYPE(tag, PT_ERROR);
        all[i].Value.err = MAPI_E_NOT_FOUND;
        outcome = MAPI_W_ERRORS_RETURNED;
      } else if (unicode) {
        all[i].Value.lpszW = wide_text;
      } else {
        all[i].Value.lpszA = narrow_text;
      }
    }
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
    VARIANT argument;
    argument.vt = VT_I4;
    argument.lVal = static_cast<LONG>(number);
    DISPPARAMS parameters{&argument, nullptr, 1, 0};
    EXCEPINFO told{};
    const HRESULT result =
        reader_->Invoke(tidyfold::test_server::message_member, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                        &parameters, &answer, &told, nullptr);
    return result == DISP_E_EXCEPTION ? told.scode : result;
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
