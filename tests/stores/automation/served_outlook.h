// Outlook's object model, as far as it is published and the program uses it, over stores in memory.
#pragma once

#include <memory>
#include <vector>

#include "served_object.h"
#include "stores/memory/memory_store.h"

namespace tidyfold::test_server {

struct World {
  Switches switches;
  int busy_calls = 0;  // so many calls from now on are turned away
  // The last one is open; clients may still hold objects of the others.
  std::vector<std::unique_ptr<Memory_Outlook>> outlooks;

  Memory_Outlook& Outlook() { return *outlooks.back(); }
};

com::Ptr<IDispatch> Make_Application(World& world);
com::Ptr<IDispatch> Make_Folder(World& world, MAPIFolder_Ptr folder);
// Through which a test fills the stores and sets the switches. Not part of the object model.
com::Ptr<IDispatch> Make_Control(World& world);

// Marshals itself into a client's process as message_proxy.dll, which offers IMAPIProp there.
com::Ptr<IUnknown> Make_Message(World& world, std::shared_ptr<Mapi_Object> message);

// {0B2F0A4E-6D0B-4C58-9E43-6A1F5D6B7C01}: the proxy of messages.
inline constexpr CLSID message_proxy_class = {
    0x0B2F0A4E, 0x6D0B, 0x4C58, {0x9E, 0x43, 0x6A, 0x1F, 0x5D, 0x6B, 0x7C, 0x01}};
// What the proxy calls: GetProps(number of the property), its text or nothing.
inline constexpr const wchar_t* message_member = L"GetProps";

}  // namespace tidyfold::test_server
