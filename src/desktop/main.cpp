// tidyfold [--store FILE]...
#include <CLI/CLI.hpp>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "base/file_path.h"
#include "base/program_arguments.h"
#include "desktop/common/program.h"

int main(int argc, char** argv) {
  CLI::App arguments("Clears out a mail and calendar store.", "tidyfold");
  std::vector<std::string> stores;
  arguments.add_option("--store", stores, "A store to open; repeat it for several. None: those open last.")
      ->type_name("FILE")
      ->allow_extra_args(false);
  try {
    std::vector<std::string> given = tidyfold::Program_Arguments(argc, argv);
    std::reverse(given.begin(), given.end());  // CLI11 takes the first from the end
    arguments.parse(given);
  } catch (const CLI::ParseError& error) {
    return arguments.exit(error);
  }

  // Made by the toolkit, once it is ready for the timers and the windows of a program.
  static std::vector<std::filesystem::path> paths;
  paths.reserve(stores.size());
  for (const std::string& store : stores) paths.push_back(tidyfold::File_Path(store));
  wxApp::SetInitializerFunction([]() -> wxAppConsole* { return new tidyfold::Program(paths); });
  int no_arguments = 1;
  return wxEntry(no_arguments, argv);
}
