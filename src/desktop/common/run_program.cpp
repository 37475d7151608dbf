#include "desktop/common/run_program.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "base/file_path.h"
#include "base/program_arguments.h"
#include "desktop/common/program.h"

namespace tidyfold {

int Run_Program(int argc, char** argv, Program_Observer* observer) {
  CLI::App arguments("Clears out a mail and calendar store.", "tidyfold");
  std::vector<std::string> stores;
  arguments.add_option("--store", stores, "A store to open; repeat it for several. None: those open last.")
      ->type_name("STORE")
      ->allow_extra_args(false);
  std::vector<std::string> files;
  arguments.add_option("files", files, "Stores to open, and files or folders to import.")->type_name("FILE");
  try {
    std::vector<std::string> given = Program_Arguments(argc, argv);
    std::reverse(given.begin(), given.end());  // CLI11 takes them from the back
    arguments.parse(given);
  } catch (const CLI::ParseError& error) {
    return arguments.exit(error);
  }

  // wxWidgets creates the wxApp through a plain function pointer, which cannot capture.
  static std::vector<Store_Address> addresses;
  static std::vector<std::filesystem::path> others;
  static Program_Observer* watching;
  try {
    for (const std::string& store : stores) addresses.push_back(Read_Store_Address(store));
  } catch (const Store_Address_Error& error) {
    return arguments.exit(CLI::ValidationError("--store", error.what()));
  }
  others.reserve(files.size());
  for (const std::string& file : files) others.push_back(File_Path(file));
  watching = observer;
  wxApp::SetInitializerFunction([]() -> wxAppConsole* { return new Program(addresses, others, watching); });
  int no_arguments = 1;
  return wxEntry(no_arguments, argv);
}

}  // namespace tidyfold
