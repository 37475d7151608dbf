#include "companion/registration.h"

#include <objbase.h>

#include <array>

namespace tidyfold::companion {

namespace {

std::wstring Class_Key() {
  std::array<wchar_t, 39> text{};
  StringFromGUID2(class_id, text.data(), static_cast<int>(text.size()));
  return std::wstring(L"Software\\Classes\\CLSID\\") + text.data();
}

std::wstring Program_Key() {
  return std::wstring(L"Software\\Classes\\") + program_id;
}

LSTATUS Write(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  return RegSetKeyValueW(root, key.c_str(), name, REG_SZ, text.c_str(), bytes);
}

LSTATUS Write_All(HKEY root, const std::wstring& library_path) {
  const std::wstring class_key = Class_Key(), library_key = class_key + L"\\InprocServer32";
  const std::wstring class_text = class_key.substr(class_key.rfind(L'\\') + 1);
  const struct {
    std::wstring key;
    const wchar_t* name;
    std::wstring text;
  } values[] = {
      {class_key, nullptr, L"Tidyfold message properties"},
      {library_key, nullptr, library_path},
      {library_key, L"ThreadingModel", L"Apartment"},
      {class_key + L"\\ProgID", nullptr, program_id},
      {Program_Key(), nullptr, L"Tidyfold message properties"},
      {Program_Key() + L"\\CLSID", nullptr, class_text},
  };
  for (const auto& value : values) {
    if (const LSTATUS status = Write(root, value.key, value.name, value.text); status != ERROR_SUCCESS)
      return status;
  }
  return ERROR_SUCCESS;
}

LSTATUS Remove_All(HKEY root) {
  LSTATUS failure = ERROR_SUCCESS;
  for (const std::wstring& key : {Class_Key(), Program_Key()}) {
    const LSTATUS status = RegDeleteTreeW(root, key.c_str());
    if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) failure = status;
  }
  return failure;
}

}  // namespace

HRESULT Register(const std::wstring& library_path) {
  const LSTATUS status = Write_All(HKEY_LOCAL_MACHINE, library_path);
  if (status == ERROR_ACCESS_DENIED) return Register_For_User(library_path);
  return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

HRESULT Register_For_User(const std::wstring& library_path) {
  return HRESULT_FROM_WIN32(static_cast<DWORD>(Write_All(HKEY_CURRENT_USER, library_path)));
}

HRESULT Unregister() {
  const LSTATUS machine = Remove_All(HKEY_LOCAL_MACHINE);
  const HRESULT user = Unregister_For_User();
  return machine != ERROR_SUCCESS ? HRESULT_FROM_WIN32(static_cast<DWORD>(machine)) : user;
}

HRESULT Unregister_For_User() {
  return HRESULT_FROM_WIN32(static_cast<DWORD>(Remove_All(HKEY_CURRENT_USER)));
}

}  // namespace tidyfold::companion
