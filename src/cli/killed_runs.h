// What a run that was killed has left to be told.
#pragma once

#include "cli/terminal.h"
#include "runs/run_log.h"

namespace tidyfold::cli {

// Each once, on standard error; for commands that write.
void Tell_Killed_Runs(Run_Log& log, Terminal& terminal);

}  // namespace tidyfold::cli
