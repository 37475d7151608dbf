// The commands that only read: folders, items, check.
#include "cli/choice.h"
#include "cli/commands.h"
#include "cli/listing.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold::cli {

Exit_Status Folders(const Arguments& arguments, Terminal& terminal) {
  Session session(arguments, Store_Mode::Read_Only, terminal, Answering::Decline, true);
  session.Load();
  List_Folders(session, terminal, arguments.form);
  return Exit_Status::Done;
}

Exit_Status Items(const Arguments& arguments, Terminal& terminal) {
  Session session(arguments, Store_Mode::Read_Only, terminal, Answering::Decline, true, Protection::Ignored);
  const std::vector<Store_Folder> folders = session.Find(arguments.folders);
  session.Load();
  Choice choice(session);
  // Listing Deleted Items is harmless, unlike a run over it.
  Options options;
  options.permanent = true;
  choice.Set(options, arguments.filters);
  if (arguments.sub_folders) choice.Mark_Sub_Folders();
  for (const Store_Folder& folder : folders) choice.Mark(folder);
  const std::int64_t count =
      Item_Listing(session, terminal, arguments.form).Write(session.Program().planner.Plan_Run());
  if (arguments.form == Form::Text) terminal.Write(Counted(count, "item") + "\n");
  if (arguments.form == Form::Json) terminal.Write("\n");
  return Exit_Status::Done;
}

Exit_Status Check(const Arguments& arguments, Terminal& terminal) {
  Exit_Status status = Exit_Status::Done;
  for (const std::filesystem::path& path : Store_Files(arguments)) {
    const auto store = Embedded_Store::Open(path, Store_Mode::Read_Only);
    const std::vector<std::string> faults = store->Check();
    for (const std::string& fault : faults)
      terminal.Write(Printable_Line(path.string() + ": " + fault) + "\n");
    if (faults.empty()) {
      terminal.Write(Printable_Line(path.string()) + ": sound\n");
      continue;
    }
    terminal.Write_Error("The store \"" + path.string() + "\" is damaged. Restore it from a backup copy.");
    status = Exit_Status::Bad_Input;
  }
  return status;
}

}  // namespace tidyfold::cli
