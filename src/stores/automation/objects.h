// Implements the object model on automation objects.
#pragma once

#include <memory>

#include "outlook/object_model.h"
#include "stores/automation/dispatch.h"

namespace tidyfold::com {

// Shared by all objects of one session. Session and objects belong to the thread that created them.
struct Session {
  explicit Session(std::chrono::milliseconds patience) : caller(patience) {}
  Caller caller;
  Ptr<IDispatch> open_name_space;  // for folders that have to find single items
  Member_Ids application, name_space, store, folders, folder, items, table, columns, pattern, mapi_utils;
  Item_Ids item;
};
using Session_Ptr = std::shared_ptr<Session>;

std::shared_ptr<Application> Make_Application(const Session_Ptr& session, Ptr<IDispatch> object);
// Empty when the object is.
MAPIFolder_Ptr Make_Folder(const Session_Ptr& session, Ptr<IDispatch> object);
std::shared_ptr<Mapi_Utils> Make_Mapi_Utils(const Session_Ptr& session, Ptr<IDispatch> object);

// Throws Automation_Error when the companion is not registered.
std::shared_ptr<Mapi_Utils> Create_Companion(const Session_Ptr& session, const std::string& program);

}  // namespace tidyfold::com
