// The command that gives unused room back.
#include "base/size_text.h"
#include "cli/commands.h"
#include "errors/automation_error.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold::cli {

Exit_Status Compact(const Arguments& arguments, Terminal& terminal) {
  Exit_Status status = Exit_Status::Done;
  for (const std::filesystem::path& path : Store_Files(arguments)) {
    // A store of an older format is compact when it has been brought up to date.
    std::error_code missing;
    const auto before = static_cast<std::int64_t>(std::filesystem::file_size(path, missing));
    const auto store = Embedded_Store::Open(path, Store_Mode::Read_Write,
                                            Told_On(terminal, "Bringing " + path.string() + " up to date"));
    const Compacted compacted = store->Compact(Told_On(terminal, "Compacting " + path.string()));
    terminal.End_Progress();
    terminal.Write(Printable_Line(path.string()) + ": " + Format_Size(missing ? compacted.before : before) +
                   " -> " + Format_Size(compacted.after) + "\n");
    if (!compacted.cancelled) continue;
    terminal.Write_Error("Cancelled; the store \"" + path.string() + "\" is whole.");
    status = Exit_Status::Cancelled;
    break;
  }
  return status;
}

}  // namespace tidyfold::cli
