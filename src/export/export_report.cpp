#include "export/export.h"

namespace tidyfold {

std::string Counts_Of(const Export_Report& report) {
  return std::to_string(report.found) + " items found, " + std::to_string(report.exported) + " exported, " +
         std::to_string(report.failed) + " failed";
}

std::vector<std::string> Details_Of(const Export_Report& report) {
  std::vector<std::string> lines;
  for (const Export_Failure& failure : report.failures) lines.push_back(failure.where + ": " + failure.why);
  return lines;
}

}  // namespace tidyfold
