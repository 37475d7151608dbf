#include "companion/mapi_utils.h"

#include <new>

#include "companion/mapi_property.h"
#include "errors/automation_error.h"
#include "stores/automation/com_object.h"

namespace tidyfold::companion {

LONG users = 0;

namespace {

constexpr DISPID get_one_prop = 1;
constexpr const wchar_t* source_name = L"TidyDll.TidyMAPIUtils";

HRESULT Tell(EXCEPINFO* told, HRESULT result, const std::string& description) {
  if (told == nullptr) return result;
  *told = {};
  told->scode = result;
  told->bstrSource = SysAllocString(source_name);
  told->bstrDescription = SysAllocString(com::To_Wide(description).c_str());
  return DISP_E_EXCEPTION;
}

// Automation languages pass variables by reference, even variants inside variants.
const VARIANT& Behind(const VARIANT& value) {
  return value.vt == (VT_BYREF | VT_VARIANT) ? *value.pvarVal : value;
}

IUnknown* Object_In(const VARIANT& argument) {
  const VARIANT& value = Behind(argument);
  switch (value.vt) {
    case VT_UNKNOWN:
    case VT_DISPATCH:
      return value.punkVal;
    case VT_UNKNOWN | VT_BYREF:
    case VT_DISPATCH | VT_BYREF:
      return *value.ppunkVal;
    default:
      com::Fail(DISP_E_TYPEMISMATCH);
  }
}

class Mapi_Utils_Object : public com::Com_Object<IDispatch> {
 public:
  Mapi_Utils_Object() { InterlockedIncrement(&users); }
  ~Mapi_Utils_Object() override { InterlockedDecrement(&users); }

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
    // Parameters are passed by position; their names are never looked up.
    for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
    if (lstrcmpiW(names[0], L"HrGetOneProp") != 0) return DISP_E_UNKNOWNNAME;
    ids[0] = get_one_prop;
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD kind, DISPPARAMS* parameters,
                                   VARIANT* answer, EXCEPINFO* told, UINT*) override {
    if (id != get_one_prop || (kind & DISPATCH_METHOD) == 0) return DISP_E_MEMBERNOTFOUND;
    if (parameters == nullptr || parameters->cArgs != 2) return DISP_E_BADPARAMCOUNT;
    try {
      IUnknown* object = Object_In(parameters->rgvarg[1]);
      if (object == nullptr) com::Fail(DISP_E_TYPEMISMATCH);
      const auto tag = static_cast<std::uint32_t>(com::Variant::Copy_Of(parameters->rgvarg[0]).Number());
      const std::wstring text = Read_Text_Property(*object, tag);
      if (answer == nullptr) return S_OK;
      VariantInit(answer);
      answer->bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
      if (answer->bstrVal == nullptr) return E_OUTOFMEMORY;
      answer->vt = VT_BSTR;
      return S_OK;
    } catch (const Automation_Error& error) {
      return Tell(told, error.Number(), error.Description());
    } catch (const std::bad_alloc&) {
      return E_OUTOFMEMORY;
    }
  }
};

}  // namespace

com::Ptr<IUnknown> Make_Mapi_Utils() {
  return com::Ptr<IUnknown>(new Mapi_Utils_Object);
}

}  // namespace tidyfold::companion
