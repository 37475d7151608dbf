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
com::Ptr<IDispatch> Serve(World& world, const MAPIFolder_Ptr& folder);
// Through which a test fills the stores and sets the switches. Not part of the object model.
com::Ptr<IDispatch> Make_Control(World& world);

}  // namespace tidyfold::test_server
