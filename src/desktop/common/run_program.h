// tidyfold [--store FILE]...
#pragma once

#include "desktop/common/program_observer.h"

namespace tidyfold {

// The whole program: reads the command line, runs the event loop, returns the exit status. The observer, if
// any, must outlive the call.
int Run_Program(int argc, char** argv, Program_Observer* observer = nullptr);

}  // namespace tidyfold
