// The parsed command line.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/dates.h"
#include "base/store_address.h"
#include "export/export.h"

namespace tidyfold::cli {

enum class Command { Sample, Import, Export, Folders, Items, Clean, Protect, Check, Compact, Runs, Undo };
enum class Form { Text, Json, Csv };

struct Filters {
  std::vector<int> types;  // item classes; empty: every type
  std::optional<Date> cutoff;
  std::optional<std::string> subject;
  bool match_case = false;
  bool match_word = false;
  bool unread = false, flagged = false;
};

struct Options {
  bool permanent = false;
  bool turbo = false;
  bool delete_folders = false;
  bool confirm_folders = false;
  bool confirm_items = false;
};

struct Arguments {
  Command command = Command::Check;
  std::vector<Store_Address> stores;
  bool outlook = false;          // what Outlook has open, instead of files
  std::string password_command;  // writes the password of mail accounts
  Form form = Form::Text;

  // runs, undo
  std::optional<std::int64_t> run;

  // protect
  bool protection_off = false;

  // items, clean, protect
  std::vector<std::string> folders;  // paths
  bool sub_folders = false;
  Filters filters;
  Options options;
  bool dry_run = false;
  bool yes = false;
  std::optional<std::int64_t> most;                 // items, or folders, that a run may take
  std::optional<std::int32_t> deleted_items_limit;  // for this run alone; 0: none
  std::optional<std::filesystem::path> save_plan, plan, backup;

  // import
  std::vector<std::filesystem::path> sources;
  std::optional<std::string> target;  // a path
  bool merge = false;
  bool again = false;

  // export; with folders
  std::filesystem::path directory;
  Export_Form export_form = Export_Form::Maildir;

  // sample
  std::filesystem::path sample_file;
  std::string sample_name;
  std::int32_t sample_items = 0;
  std::uint64_t sample_seed = 0;
};

// `arguments` without the program's name. Throws Failure for bad usage, Help if help was asked for.
Arguments Read_Arguments(std::vector<std::string> arguments);

// The stores of a command that goes with store files only.
std::vector<std::filesystem::path> Store_Files(const Arguments& arguments);

// The help text that was asked for; not a failure.
struct Help {
  std::string text;
};

}  // namespace tidyfold::cli
