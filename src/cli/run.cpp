#include "cli/commands.h"
#include "errors/automation_error.h"
#include "import/import.h"
#include "outlook/store_open_error.h"
#include "runs/run_log.h"

namespace tidyfold::cli {

namespace {

Exit_Status Run_Command(const Arguments& arguments, Terminal& terminal) {
  switch (arguments.command) {
    case Command::Sample:
      return Sample(arguments, terminal);
    case Command::Import:
      return Import(arguments, terminal);
    case Command::Export:
      return Export(arguments, terminal);
    case Command::Folders:
      return Folders(arguments, terminal);
    case Command::Items:
      return Items(arguments, terminal);
    case Command::Clean:
      return Clean(arguments, terminal);
    case Command::Protect:
      return Protect(arguments, terminal);
    case Command::Check:
      return Check(arguments, terminal);
    case Command::Compact:
      return Compact(arguments, terminal);
    case Command::Runs:
      return Runs(arguments, terminal);
    case Command::Undo:
      return Undo(arguments, terminal);
  }
  return Exit_Status::Bad_Input;
}

// Reports the command's errors.
Exit_Status Guarded(Terminal& terminal, const std::vector<std::string>& words) {
  try {
    return Run_Command(Read_Arguments(words), terminal);
  } catch (const Help& help) {
    terminal.Write(help.text);
    return Exit_Status::Done;
  } catch (const Failure& failure) {
    terminal.Write_Error(failure.what());
    return failure.Status();
  } catch (const Store_Open_Error& error) {
    terminal.Write_Error(error.what());
    if (error.Why() == Store_Open_Error::Reason::Cancelled) return Exit_Status::Cancelled;
  } catch (const Import_Error& error) {
    terminal.Write_Error(error.what());
  } catch (const Export_Error& error) {
    terminal.Write_Error(error.what());
  } catch (const Run_Log_Error& error) {
    terminal.Write_Error(error.what());
  } catch (const Automation_Error& error) {
    terminal.Write_Error(error.Description());
  } catch (const std::exception& error) {
    terminal.Write_Error(std::string("Something unexpected went wrong: ") + error.what());
    return Exit_Status::Not_All_Done;
  }
  // Everything that was begun has been rolled back.
  return Exit_Status::Bad_Input;
}

}  // namespace

Exit_Status Run(const std::vector<std::string>& words) {
  Terminal terminal;
  Exit_Status status = Guarded(terminal, words);
  try {
    terminal.Check_Output();
  } catch (const Failure& failure) {
    terminal.Write_Error(failure.what());
    if (status == Exit_Status::Done) status = failure.Status();
  }
  terminal.End_Progress();
  return status;
}

}  // namespace tidyfold::cli
