// The commands. Each returns its exit status or throws Failure, Store_Open_Error, Run_Log_Error or
// Automation_Error.
#pragma once

#include <string>
#include <vector>

#include "cli/arguments.h"
#include "cli/failure.h"
#include "cli/terminal.h"

namespace tidyfold::cli {

Exit_Status Sample(const Arguments& arguments, Terminal& terminal);
Exit_Status Import(const Arguments& arguments, Terminal& terminal);
Exit_Status Export(const Arguments& arguments, Terminal& terminal);
Exit_Status Folders(const Arguments& arguments, Terminal& terminal);
Exit_Status Items(const Arguments& arguments, Terminal& terminal);
Exit_Status Clean(const Arguments& arguments, Terminal& terminal);
Exit_Status Protect(const Arguments& arguments, Terminal& terminal);
Exit_Status Check(const Arguments& arguments, Terminal& terminal);
Exit_Status Compact(const Arguments& arguments, Terminal& terminal);
Exit_Status Runs(const Arguments& arguments, Terminal& terminal);
Exit_Status Undo(const Arguments& arguments, Terminal& terminal);

// Runs the command in `words` (without the program's name) and reports its errors.
Exit_Status Run(const std::vector<std::string>& words);

}  // namespace tidyfold::cli
