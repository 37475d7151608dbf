#include "stores/automation/com.h"

#include <array>
#include <new>

#include "base/text.h"
#include "errors/automation_error.h"

namespace tidyfold::com {

namespace {

constexpr const char* source_name = "Outlook";

// The other program has ended or cannot be reached.
bool Is_Gone(HRESULT result) {
  constexpr std::array<HRESULT, 8> gone = {
      HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE),
      HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
      HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE),
      RPC_E_DISCONNECTED,
      RPC_E_SERVER_DIED,
      RPC_E_SERVER_DIED_DNE,
      RPC_E_CONNECTION_TERMINATED,
      CO_E_OBJNOTCONNECTED,
  };
  for (const HRESULT one : gone)
    if (result == one) return true;
  return false;
}

// The system's text for the result, or its bare number if there is none.
std::string Description_Of(HRESULT result) {
  std::array<wchar_t, 512> text{};
  DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                     static_cast<DWORD>(result), 0, text.data(), static_cast<DWORD>(text.size()), nullptr);
  while (length > 0 && (text[length - 1] == L'\n' || text[length - 1] == L'\r')) --length;
  if (length > 0) return To_Utf8(std::wstring_view(text.data(), length));
  return "Automation error " + std::to_string(result);
}

std::string Take(BSTR& text) {
  if (text == nullptr) return {};
  std::string taken = To_Utf8(std::wstring_view(text, SysStringLen(text)));
  SysFreeString(std::exchange(text, nullptr));
  return taken;
}

}  // namespace

std::wstring To_Wide(std::string_view text) {
  if (text.empty()) return {};
  const std::string valid = Valid_Utf8(text);
  const int length = static_cast<int>(valid.size());
  std::wstring wide(valid.size(), L'\0');
  const int written = MultiByteToWideChar(CP_UTF8, 0, valid.data(), length, wide.data(), length);
  wide.resize(static_cast<std::size_t>(written));
  return wide;
}

std::string To_Utf8(std::wstring_view text) {
  if (text.empty()) return {};
  const int length = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string bytes(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), needed, nullptr, nullptr);
  return bytes;
}

Variant::Variant(std::string_view text) : Variant() {
  const std::wstring wide = To_Wide(text);
  BSTR copy = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (copy == nullptr) throw std::bad_alloc();
  value_.vt = VT_BSTR;
  value_.bstrVal = copy;
}

Variant Variant::Copy_Of(const VARIANT& other) {
  Variant copy;
  Check(VariantCopyInd(&copy.value_, const_cast<VARIANT*>(&other)));
  return copy;
}

Variant Variant::Changed(VARTYPE type) const {
  Variant changed;
  // The invariant locale keeps numbers and dates independent of the machine's settings.
  Check(VariantChangeTypeEx(&changed.value_, const_cast<VARIANT*>(&value_), LOCALE_INVARIANT, 0, type));
  return changed;
}

std::string Variant::Text() const {
  if (value_.vt == VT_EMPTY || value_.vt == VT_NULL) return {};
  if (value_.vt != VT_BSTR) return Changed(VT_BSTR).Text();
  return To_Utf8(std::wstring_view(value_.bstrVal, SysStringLen(value_.bstrVal)));
}

Ptr<IDispatch> Variant::Object() const {
  if (value_.vt == VT_DISPATCH) return Ptr<IDispatch>::Share(value_.pdispVal);
  if (value_.vt == VT_EMPTY || value_.vt == VT_NULL) return {};
  if (value_.vt != VT_UNKNOWN) Fail(DISP_E_TYPEMISMATCH);
  Ptr<IDispatch> object;
  if (value_.punkVal != nullptr) {
    Check(value_.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(object.Receive())));
  }
  return object;
}

bool Is_Busy(HRESULT result) {
  return result == RPC_E_CALL_REJECTED || result == RPC_E_SERVERCALL_RETRYLATER ||
         result == RPC_E_SERVERCALL_REJECTED;
}

void Fail(HRESULT result, EXCEPINFO* told) {
  std::string description, source;
  if (result == DISP_E_EXCEPTION && told != nullptr) {
    if (told->pfnDeferredFillIn != nullptr) told->pfnDeferredFillIn(told);
    // One of the two holds the error code.
    result = told->scode != 0 ? told->scode : static_cast<HRESULT>(told->wCode);
    if (result == S_OK) result = E_FAIL;
    description = Take(told->bstrDescription);
    source = Take(told->bstrSource);
    Take(told->bstrHelpFile);
  }
  if (Is_Gone(result)) {
    throw Automation_Error(
        automation_error::unavailable,
        "Outlook has been closed, or no longer answers. Start it again, and then Tidyfold.", source_name);
  }
  if (Is_Busy(result)) {
    throw Automation_Error(automation_error::unavailable,
                           "Outlook is busy, or waits for an answer in one of its windows. What was under "
                           "way has ended. Look there, and then try again.",
                           source_name);
  }
  if (description.empty()) description = Description_Of(result);
  throw Automation_Error(static_cast<std::int32_t>(result), description,
                         source.empty() ? source_name : source);
}

}  // namespace tidyfold::com
