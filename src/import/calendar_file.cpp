#include "import/calendar_file.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "import/calendar_item.h"
#include "import/calendar_text.h"
#include "import/source_file.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t long_item = 1 << 16;  // bytes

bool Is_Item(const std::string& kind) {
  return kind == "VEVENT" || kind == "VTODO" || kind == "VJOURNAL";
}

void Add(const std::vector<Calendar_Item>& items, MAPIFolder& folder, Import_Run& run) {
  std::int64_t number = 0;
  for (const Calendar_Item& item : items) {
    const std::string where = item.kind + " " + std::to_string(++number);
    if (!Is_Item(item.kind)) {
      run.Leave_Out(where, "it is neither an appointment nor a task nor a journal entry");
      continue;
    }
    try {
      if (!item.problem.empty()) throw Message_Error(item.problem);
      std::string calendar = item.Calendar();
      const bool is_long = static_cast<std::int64_t>(calendar.size()) > long_item;
      const auto read = [&] { return Read_Calendar_Item(std::move(calendar)); };
      run.Add(folder, is_long ? run.Beside(read) : read());
    } catch (const Message_Error& error) {
      run.Fail(where, error.what());
    }
  }
}

}  // namespace

void Import_Calendar(const fs::path& source, Import_Run& run) {
  const std::string text = run.Beside([&] { return Read_Text_File(source); });
  const std::vector<Calendar_Item> items = run.Beside([&] { return Items_Of_Calendars(text); });
  if (items.empty())
    throw Import_Error(source.string() + ": the calendar has no items, so there is nothing to import.");
  run.Expect(static_cast<std::int64_t>(items.size()));
  const bool tasks =
      std::all_of(items.begin(), items.end(), [](const Calendar_Item& item) { return item.kind == "VTODO"; });
  const MAPIFolder_Ptr folder = run.Target_Folder(tasks ? item_type::task : item_type::appointment);
  Add(items, *folder, run);
}

void Add_Calendar_File(const fs::path& file, const MAPIFolder_Ptr& folder, Import_Run& run) {
  const std::string text = run.Beside([&] { return Read_Text_File(file); });
  Add(run.Beside([&] { return Items_Of_Calendars(text); }), *folder, run);
}

}  // namespace tidyfold
