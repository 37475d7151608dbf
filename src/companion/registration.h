// The companion's entries in the registry.
#pragma once

#include <windows.h>

#include <string>

namespace tidyfold::companion {

// {7B0C63B5-5D1E-4E0A-9C5B-2F8E6A41D3C7}
inline constexpr CLSID class_id = {
    0x7B0C63B5, 0x5D1E, 0x4E0A, {0x9C, 0x5B, 0x2F, 0x8E, 0x6A, 0x41, 0xD3, 0xC7}};
inline constexpr const wchar_t* program_id = L"TidyDll.TidyMAPIUtils";

// For all users of the machine, or for the current user if the rights are missing.
HRESULT Register(const std::wstring& library_path);
HRESULT Register_For_User(const std::wstring& library_path);
// Removes both.
HRESULT Unregister();
HRESULT Unregister_For_User();

}  // namespace tidyfold::companion
