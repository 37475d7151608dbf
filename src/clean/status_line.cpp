#include "clean/status_line.h"

#include <algorithm>
#include <string>

#include "base/size_text.h"
#include "base/text.h"

namespace tidyfold {

void Status_Line::Display_Cleaning_Status(std::string_view folder_name, std::int32_t checked,
                                          std::int32_t deleted_from_folder, std::int32_t deleted_in_run) {
  errors_.Run("Display_Cleaning_Status", [&] {
    std::string text = "Cleaning Folder \"";
    text.append(Trim(folder_name)).append("\"");
    bar_.Set_Panel_Text(1, text);
    bar_.Set_Panel_Text(2, "Checked: " + Format_Count(checked) + ", Deleted: Folder - " +
                               Format_Count(deleted_from_folder) + ", Total - " +
                               Format_Count(deleted_in_run));
  });
}

void Status_Line::Display_Delete_By_Selected_Status(std::int32_t processed, std::int32_t cleaned) {
  errors_.Run("Display_Delete_By_Selected_Status", [&] {
    bar_.Set_Panel_Text(2, "Processed - " + Format_Count(processed) + ", Cleaned - " + Format_Count(cleaned));
  });
}

void Status_Line::Display_Copying_Status(std::int64_t done, std::int64_t total) {
  errors_.Run("Display_Copying_Status", [&] {
    bar_.Set_Panel_Text(1, "Keeping a copy");
    bar_.Set_Panel_Text(2, "Copied: " + Format_Count(done) + " of " + Format_Count(total));
    bar_.Set_Gauge(std::min(done, total), total);
  });
}

void Status_Line::Start_Gauge(std::int64_t total) {
  bar_.Set_Gauge(0, total);
}

// Folders change while a run goes; the gauge then stands at its end for a while.
void Status_Line::Move_Gauge(std::int64_t by) {
  bar_.Set_Gauge(std::min(bar_.Gauge_Done() + by, bar_.Gauge_Total()), bar_.Gauge_Total());
}

}  // namespace tidyfold
