// The tooltips of the main window's controls.
#pragma once

#include "controls/main_window.h"
#include "errors/procedure.h"

namespace tidyfold {

void Load_Tooltips(MainWindow& window, Error_Handler& errors);

}  // namespace tidyfold
