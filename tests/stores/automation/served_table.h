// A folder's table: columns by name or property, rows in arrays.
#pragma once

#include "served_outlook.h"

namespace tidyfold::test_server {

com::Ptr<IDispatch> Serve_Table(World& world, const Table_Ptr& table);

}  // namespace tidyfold::test_server
