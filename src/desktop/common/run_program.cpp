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
      ->type_name("FILE")
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
  static std::vector<std::filesystem::path> paths, others;
  static Program_Observer* watching;
  paths.reserve(stores.size());
  for (const std::string& store : stores) paths.push_back(File_Path(store));
  others.reserve(files.size());
  for (const std::string& file : files) others.push_back(File_Path(file));
  watching = observer;
  wxApp::SetInitializerFunction([]() -> wxAppConsole* { return new Program(paths, others, watching); });
  int no_arguments = 1;
  return wxEntry(no_arguments, argv);
}

}  // namespace tidyfold
