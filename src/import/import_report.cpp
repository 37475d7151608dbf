#include <map>
#include <utility>

#include "import/import.h"

namespace tidyfold {

std::string Counts_Of(const Import_Report& report) {
  const auto left_out = static_cast<std::int64_t>(report.left_out.size());
  std::string counts = std::to_string(report.found) + " items found, " + std::to_string(report.imported) +
                       " imported, " + std::to_string(report.failed) + " failed";
  if (report.there_already > 0) counts += ", " + std::to_string(report.there_already) + " there already";
  if (left_out > 0) counts += ", " + std::to_string(left_out) + " left out";
  return counts;
}

std::vector<std::string> Details_Of(const Import_Report& report) {
  std::vector<std::string> lines;
  for (const Import_Failure& failure : report.failures) lines.push_back(failure.where + ": " + failure.why);
  for (const Import_Failure& doubt : report.doubts) lines.push_back(doubt.where + ": " + doubt.why);
  struct Left_Out {
    std::int64_t items = 0;
    std::string first;
  };
  std::map<std::string, Left_Out> reasons;
  for (const Import_Failure& item : report.left_out) {
    Left_Out& reason = reasons[item.why];
    if (reason.items++ == 0) reason.first = item.where;
  }
  for (const auto& [why, which] : reasons) {
    std::string line = std::to_string(which.items) + " left out: ";
    line.append(why).append(which.items == 1 ? " (" : " (the first: ").append(which.first).append(")");
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace tidyfold
