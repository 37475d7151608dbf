// What the status bar says while a run goes.
#pragma once

#include <cstdint>
#include <string_view>

#include "controls/main_window.h"
#include "errors/procedure.h"

namespace tidyfold {

class Status_Line {
 public:
  Status_Line(MainWindow& window, Error_Handler& errors) : bar_(window.sbStatusBar), errors_(errors) {}

  // Items looked at and removed in this folder, and removed in the whole run.
  void Display_Cleaning_Status(std::string_view folder_name, std::int32_t checked,
                               std::int32_t deleted_from_folder, std::int32_t deleted_in_run);
  void Display_Delete_By_Selected_Status(std::int32_t processed, std::int32_t cleaned);
  // Items of a copy that have been written, of all that it takes, also on the gauge.
  void Display_Copying_Status(std::int64_t done, std::int64_t total);
  // The gauge beside the words: how much the run has to look at, and that it has looked at so much more.
  void Start_Gauge(std::int64_t total);
  void Move_Gauge(std::int64_t by = 1);
  void Clear_Gauge() { bar_.Set_Gauge(0, 0); }

 private:
  StatusBar& bar_;
  Error_Handler& errors_;
};

}  // namespace tidyfold
