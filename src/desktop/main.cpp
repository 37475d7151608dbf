// tidyfold [--store FILE]...
#include <CLI/CLI.hpp>

#include <filesystem>
#include <string>
#include <vector>

#include "desktop/program.h"

int main(int argc, char** argv) {
  CLI::App arguments("Clears out a mail and calendar store.", "tidyfold");
  std::vector<std::string> stores;
  arguments.add_option("--store", stores, "A store to open; repeat it for several. None: those open last.")
      ->type_name("FILE")
      ->allow_extra_args(false);
  CLI11_PARSE(arguments, argc, argv);

  // Made by the toolkit, once it is ready for the timers and the windows of a program.
  static const std::vector<std::filesystem::path> paths(stores.begin(), stores.end());
  wxApp::SetInitializerFunction([]() -> wxAppConsole* { return new tidyfold::Program(paths); });
  int no_arguments = 1;
  return wxEntry(no_arguments, argv);
}
