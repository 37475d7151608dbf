// Names and identifiers that the tests share with the test server.
#pragma once

#include <windows.h>

namespace tidyfold::test_server {

inline constexpr const wchar_t* outlook_program = L"Outlook.Application";
inline constexpr const wchar_t* control_program = L"Tidyfold.TestOutlook";
// Set when the server is registered.
inline constexpr const wchar_t* ready_event = L"Tidyfold test Outlook is ready";

// {0B2F0A4E-6D0B-4C58-9E43-6A1F5D6B7C02}; the control ends in 03.
inline constexpr CLSID outlook_class = {
    0x0B2F0A4E, 0x6D0B, 0x4C58, {0x9E, 0x43, 0x6A, 0x1F, 0x5D, 0x6B, 0x7C, 0x02}};
inline constexpr CLSID control_class = {
    0x0B2F0A4E, 0x6D0B, 0x4C58, {0x9E, 0x43, 0x6A, 0x1F, 0x5D, 0x6B, 0x7C, 0x03}};

// {0B2F0A4E-6D0B-4C58-9E43-6A1F5D6B7C01}: the proxy of messages.
inline constexpr CLSID message_proxy_class = {
    0x0B2F0A4E, 0x6D0B, 0x4C58, {0x9E, 0x43, 0x6A, 0x1F, 0x5D, 0x6B, 0x7C, 0x01}};
// The id of the proxy's call: GetProps(number of the property) returns its text or nothing.
inline constexpr DISPID message_member = 1;

}  // namespace tidyfold::test_server
