// A plan as a file: what a dry run has shown, for a later run that takes exactly that.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/session.h"
#include "plan/clean_plan.h"

namespace tidyfold::cli {

// An item as it was when the plan was made. The date is "yyyy-mm-dd" or empty.
struct Filed_Item {
  std::string entry_id;
  std::int32_t item_class = 0;
  std::string subject, date;
  bool unread = false, flagged = false;
};

struct Filed_Stop {
  std::string store_id, folder, entry_id;
  std::vector<Filed_Item> items;
};

struct Filed_Store {
  std::string id, name, place;
};

struct Filed_Plan {
  Run_Options options;
  std::vector<Filed_Store> stores;
  std::vector<Filed_Stop> stops;
};

// A text as JSON holds it: what is no UTF-8 is replaced.
std::string Filed_Text(const std::string& text);

// Throws Failure if something is there already: a plan never replaces a file.
void Check_New_File(const std::filesystem::path& file);
// Throws Failure if the file cannot be written, or if the plan does not name every item that it takes.
void Write_Plan_File(const std::filesystem::path& file, const Clean_Plan& plan, Session& session);
// Throws Failure for a file that cannot be read, is no plan or comes from a newer version.
Filed_Plan Read_Plan_File(const std::filesystem::path& file);

}  // namespace tidyfold::cli
