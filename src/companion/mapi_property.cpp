#include "companion/mapi_property.h"

#include <mapicode.h>
#include <mapidefs.h>

#include <array>
#include <memory>

namespace tidyfold::companion {

namespace {

// {00020303-0000-0000-C000-000000000046}; in no import library.
constexpr IID mapi_prop_interface = {
    0x00020303, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

// Loaded on first use, so that the library also loads without MAPI.
template <class Function>
Function Mapi_Function(const char* name) {
  static const HMODULE library = LoadLibraryW(L"mapi32.dll");
  const FARPROC address = library == nullptr ? nullptr : GetProcAddress(library, name);
  return reinterpret_cast<Function>(reinterpret_cast<void*>(address));
}

// MAPI must free what its objects return, and has to be initialised for that.
void Initialise_Mapi() {
  static const bool done = [] {
    const auto initialise = Mapi_Function<HRESULT(WINAPI*)(void*)>("MAPIInitialize");
    return initialise != nullptr && SUCCEEDED(initialise(nullptr));
  }();
  static_cast<void>(done);
}

struct Mapi_Free {
  void operator()(void* memory) const {
    static const auto free_buffer = Mapi_Function<ULONG(WINAPI*)(void*)>("MAPIFreeBuffer");
    if (free_buffer != nullptr) free_buffer(memory);
  }
};

// The system's code page. CP_ACP is that of this process, which may have chosen UTF-8.
UINT Code_Page_Of_System() {
  DWORD page = 0;
  GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                 reinterpret_cast<wchar_t*>(&page), sizeof page / sizeof(wchar_t));
  return page == 0 ? CP_ACP : page;
}

std::wstring From_Code_Page(const char* text) {
  static const UINT page = Code_Page_Of_System();
  const int length = MultiByteToWideChar(page, 0, text, -1, nullptr, 0);
  if (length <= 1) return {};
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  MultiByteToWideChar(page, 0, text, -1, wide.data(), length);
  wide.pop_back();
  return wide;
}

}  // namespace

std::wstring Read_Text_Property(IUnknown& object, std::uint32_t property_tag) {
  const std::uint32_t type = PROP_TYPE(property_tag);
  if (type != PT_STRING8 && type != PT_UNICODE) com::Fail(MAPI_E_INVALID_TYPE);
  // Beside an Outlook of the other bitness the message offers no such interface here, and to load MAPI would
  // make the system show a box.
  com::Ptr<IMAPIProp> properties;
  com::Check(object.QueryInterface(mapi_prop_interface, reinterpret_cast<void**>(properties.Receive())));
  Initialise_Mapi();

  // Asks for both forms in one call.
  SizedSPropTagArray(2, tags) = {2, {CHANGE_PROP_TYPE(property_tag, PT_UNICODE), property_tag}};
  if (type == PT_UNICODE) tags.cValues = 1;
  ULONG count = 0;
  SPropValue* received = nullptr;
  // Succeeds, with a warning, if some are absent.
  const HRESULT result = properties->GetProps(reinterpret_cast<SPropTagArray*>(&tags), 0, &count, &received);
  const std::unique_ptr<SPropValue, Mapi_Free> values(received);
  com::Check(result);
  HRESULT failure = S_OK;
  for (ULONG i = 0; i < count; ++i) {
    const SPropValue& value = received[i];
    switch (PROP_TYPE(value.ulPropTag)) {
      case PT_UNICODE:
        return value.Value.lpszW;
      case PT_STRING8:
        return From_Code_Page(value.Value.lpszA);
      case PT_ERROR:
        if (value.Value.err != MAPI_E_NOT_FOUND) failure = value.Value.err;
        break;
      default:
        break;
    }
  }
  com::Check(failure);
  return {};
}

}  // namespace tidyfold::companion
