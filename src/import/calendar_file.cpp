#include "import/calendar_file.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "import/calendar_item.h"
#include "import/calendar_text.h"
#include "import/mime_message.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t long_item = 1 << 16;  // bytes

std::vector<Calendar_Item> Read(const fs::path& file, Import_Run& run) {
  return run.Beside([&] { return Items_Of_Calendars(Read_Text_File(file)); });
}

bool Is_Item(const std::string& kind) {
  return kind == "VEVENT" || kind == "VTODO" || kind == "VJOURNAL";
}

void Add(std::vector<Calendar_Item> items, MAPIFolder& folder, Import_Run& run) {
  std::int64_t number = 0;
  for (Calendar_Item& item : items) {
    const std::string where = item.kind + " " + std::to_string(++number);
    if (!Is_Item(item.kind)) {
      run.Leave_Out(where, "it is neither an appointment nor a task nor a journal entry");
      continue;
    }
    try {
      if (!item.problem.empty()) throw Message_Error(item.problem);
      const bool is_long = static_cast<std::int64_t>(item.calendar.size()) > long_item;
      const auto read = [&] { return Read_Calendar_Item(std::move(item.calendar)); };
      run.Add(folder, is_long ? run.Beside(read) : read());
    } catch (const Message_Error& error) {
      run.Fail(where, error.what());
    }
  }
}

}  // namespace

void Import_Calendar(const fs::path& source, Import_Run& run) {
  std::vector<Calendar_Item> items = Read(source, run);
  if (items.empty())
    throw Import_Error(source.string() + ": the calendar has no items, so there is nothing to import.");
  run.Expect(static_cast<std::int64_t>(items.size()));
  const bool tasks =
      std::all_of(items.begin(), items.end(), [](const Calendar_Item& item) { return item.kind == "VTODO"; });
  const MAPIFolder_Ptr folder = run.Target_Folder(tasks ? item_type::task : item_type::appointment);
  Add(std::move(items), *folder, run);
}

void Add_Calendar_File(const fs::path& file, const MAPIFolder_Ptr& folder, Import_Run& run) {
  Add(Read(file, run), *folder, run);
}

}  // namespace tidyfold
