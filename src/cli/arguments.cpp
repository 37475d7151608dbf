#include "cli/arguments.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "base/dates.h"
#include "base/file_path.h"
#include "cli/failure.h"
#include "outlook/object_model.h"
#include "stores/sqlite/sample_store.h"

namespace tidyfold::cli {

namespace {

constexpr std::array<std::pair<const char*, Command>, 11> commands = {{{"sample", Command::Sample},
                                                                       {"import", Command::Import},
                                                                       {"export", Command::Export},
                                                                       {"folders", Command::Folders},
                                                                       {"items", Command::Items},
                                                                       {"clean", Command::Clean},
                                                                       {"protect", Command::Protect},
                                                                       {"check", Command::Check},
                                                                       {"compact", Command::Compact},
                                                                       {"runs", Command::Runs},
                                                                       {"undo", Command::Undo}}};

constexpr std::pair<const char*, int> types[] = {
    {"mail", item_class::mail},        {"appointments", item_class::appointment},
    {"contacts", item_class::contact}, {"journals", item_class::journal},
    {"tasks", item_class::task},       {"notes", item_class::note}};

// Equals a bare word after "import".
constexpr const char* source_option = "--source";

[[noreturn]] void Fail(const std::string& text) {
  throw Failure(Exit_Status::Bad_Input, text);
}

bool Is_Command(const std::string& word) {
  return std::any_of(commands.begin(), commands.end(),
                     [&](const auto& known) { return known.first == word; });
}

// Puts a name before every value of a list: "--store A --store B" for "--store A B", "--source A" for a bare
// "A". CLI11 accepts lists, too, but would then parse "[Gmail]" as one.
std::vector<std::string> With_Every_Value_Named(const std::vector<std::string>& arguments) {
  std::vector<std::string> named;
  std::string command, list;
  bool value_due = false, only_words = false;
  for (const std::string& argument : arguments) {
    if (value_due) {
      value_due = false;
    } else if (!only_words && argument == "--") {
      only_words = true;
      continue;
    } else if (!only_words && argument.size() > 1 && argument.front() == '-') {
      value_due = argument == "--store" || argument == "--folder";
      const bool has_list = command != "import" && command != "export";
      const bool begins_list = argument == (command.empty() ? "--store" : "--folder") && has_list;
      list = begins_list ? argument : command == "import" ? source_option : "";
    } else if (command.empty() && Is_Command(argument)) {
      command = argument;
      list = command == "import" ? source_option : "";
    } else if (!list.empty()) {
      named.push_back(list);
    }
    named.push_back(argument);
  }
  return named;
}

// The arguments as text, before they are parsed.
struct Raw {
  std::vector<std::string> stores, types, folders, sources;
  std::string cutoff, subject, target, directory, export_form, sample_file, save_plan, plan, backup;
  bool json = false, csv = false;
};

template <class List>
CLI::Option* Add_List(CLI::App& app, const std::string& name, List& list, const std::string& description) {
  return app.add_option(name, list, description)->allow_extra_args(false);
}

void Add_Folders(CLI::App& command, Raw& raw) {
  Add_List(command, "--folder", raw.folders, "A folder, by its path; may be repeated")->type_name("PATH");
}

void Add_Filters(CLI::App& command, Arguments& arguments, Raw& raw) {
  Filters& filters = arguments.filters;
  Add_Folders(command, raw);
  command.add_flag("--sub-folders", arguments.sub_folders, "Mark what lies below as well");
  Add_List(command, "--type", raw.types, "Items of this type only; may be repeated")
      ->type_name("mail|appointments|contacts|journals|tasks|notes");
  command.add_option("--cutoff", raw.cutoff, "Items of that day and older ones only")
      ->type_name("YYYY-MM-DD");
  command.add_option("--subject", raw.subject, "Items whose subject begins so only")->type_name("TEXT");
  command.add_flag("--match-case", filters.match_case, "The subject's case must match");
  command.add_flag("--match-word", filters.match_word, "The whole subject must match");
  command.add_flag("--unread", filters.unread, "Unread items too");
  command.add_flag("--flagged", filters.flagged, "Flagged items too");
}

void Add_Store_Commands(CLI::App& app, Arguments& arguments, Raw& raw) {
  CLI::App& sample = *app.add_subcommand("sample", "Write a new store with made-up items");
  sample.add_option("STORE", raw.sample_file, "The new store's file")->required();
  sample.add_option("--items", arguments.sample_items, "How many items")
      ->check(CLI::Range(0, std::numeric_limits<int>::max()))
      ->type_name("N")
      ->capture_default_str();
  sample.add_option("--name", arguments.sample_name, "The top folder's name")
      ->type_name("NAME")
      ->capture_default_str();
  sample.add_option("--seed", arguments.sample_seed, "The same seed gives the same store")
      ->type_name("N")
      ->capture_default_str();

  CLI::App& import =
      *app.add_subcommand("import", "Bring mail, calendars and address books of other programs in");
  Add_List(import, std::string("SOURCE,") + source_option, raw.sources,
           "PST, OST, PAB, mbox, EML, EMLX, MSG, iCalendar and vCard files, and folders that hold such files "
           "or Maildirs")
      ->required();
  CLI::Option* target =
      import.add_option("--folder", raw.target, "The folder that a source goes into")->type_name("PATH");
  import
      .add_flag("--merge", arguments.merge,
                "Bring the folders of a source into the store's own of the same names")
      ->excludes(target);
  import.add_flag("--again", arguments.again, "Bring in what is there already once more");

  CLI::App& exporting = *app.add_subcommand("export", "Write folders in forms that other programs read");
  exporting.add_option("DIRECTORY", raw.directory, "Where to; made where it is missing")->required();
  Add_List(exporting, "--folder", raw.folders,
           "A folder, by its path, with all that lies below it; may be repeated. All folders by default")
      ->type_name("PATH");
  exporting.add_option("--as", raw.export_form, "How mail is written; maildir by default")
      ->type_name("maildir|mbox|eml");

  CLI::App& folders = *app.add_subcommand("folders", "List the folders");
  folders.add_flag("--json", raw.json, "As JSON");

  CLI::App& protect = *app.add_subcommand("protect", "Keep folders, and all below them, from being cleaned");
  Add_Folders(protect, raw);
  protect.add_flag("--off", arguments.protection_off, "Take the protection off");

  app.add_subcommand("check", "Look for what is wrong with the stores");
  app.add_subcommand("compact", "Give the room back that the stores no longer need");
}

void Add_Item_Commands(CLI::App& app, Arguments& arguments, Raw& raw) {
  CLI::App& items = *app.add_subcommand("items", "List the items that pass the filters");
  Add_Filters(items, arguments, raw);
  CLI::Option* json = items.add_flag("--json", raw.json, "As JSON");
  items.add_flag("--csv", raw.csv, "As comma-separated values")->excludes(json);

  CLI::App& clean = *app.add_subcommand("clean", "Delete the items that pass the filters");
  Add_Filters(clean, arguments, raw);
  Options& options = arguments.options;
  clean.add_flag("--permanent", options.permanent, "Delete for good, not into Deleted Items");
  clean.add_flag("--turbo", options.turbo, "Delete every item of the folders for good, without filters");
  clean.add_flag("--delete-folders", options.delete_folders, "Delete the folders themselves, for good");
  clean.add_flag("--confirm-folders", options.confirm_folders, "Ask before each folder");
  clean.add_flag("--confirm-items", options.confirm_items, "Ask before each item");
  CLI::Option* dry_run =
      clean.add_flag("--dry-run", arguments.dry_run, "List what would be taken, and change nothing");
  clean.add_option("--save-plan", raw.save_plan, "Write what would be taken to a new file")
      ->needs(dry_run)
      ->type_name("FILE");
  CLI::Option* plan =
      clean.add_option("--plan", raw.plan, "Take exactly what a saved plan names")->type_name("FILE");
  // What does not choose goes with a plan.
  for (CLI::Option* chooses : clean.get_options())
    if (chooses != plan && chooses != clean.get_help_ptr()) plan->excludes(chooses);
  const CLI::Range from_0(0, std::numeric_limits<std::int32_t>::max());
  clean.add_option("--max", arguments.most, "Refuse a run that would take more")
      ->check(from_0)
      ->type_name("N");
  clean
      .add_option("--deleted-items-limit", arguments.deleted_items_limit,
                  "The most that a Deleted Items folder may hold, for this run; 0: any number")
      ->check(from_0)
      ->type_name("N");
  clean
      .add_option(
          "--backup", raw.backup,
          "Copy what goes for good to a new folder in this one, and compare, before anything is deleted")
      ->type_name("DIRECTORY");
  clean.add_flag("--yes", arguments.yes, "Answer Yes or OK to every question");
  clean.add_flag("--json", raw.json, "As JSON");
}

void Add_Run_Commands(CLI::App& app, Arguments& arguments, Raw& raw) {
  CLI::App& runs = *app.add_subcommand("runs", "List the runs of the log, or the items of one");
  CLI::App& undo = *app.add_subcommand("undo", "Put back what a run moved to Deleted Items");
  for (CLI::App* command : {&runs, &undo})
    command->add_option("RUN", arguments.run, "The run's number")->check(CLI::PositiveNumber);
  CLI::Option* json = runs.add_flag("--json", raw.json, "As JSON");
  runs.add_flag("--csv", raw.csv, "As comma-separated values")->excludes(json);
  undo.add_flag("--yes", arguments.yes, "Answer Yes or OK to every question");
  undo.add_flag("--json", raw.json, "As JSON");
}

Export_Form Form_Named(const std::string& name) {
  if (name.empty() || name == "maildir") return Export_Form::Maildir;
  if (name == "mbox") return Export_Form::Mbox;
  if (name == "eml") return Export_Form::Eml;
  Fail("--as \"" + name + "\" is no form. Choose from maildir, mbox and eml.");
}

int Item_Class_Of_Type(const std::string& name) {
  for (const auto& [known, item_class] : types)
    if (name == known) return item_class;
  Fail("--type \"" + name +
       "\" is no type. Choose from mail, appointments, contacts, journals, tasks and notes.");
}

void Understand(Arguments& arguments, const Raw& raw, const CLI::App& command) {
  try {
    for (const std::string& store : raw.stores) arguments.stores.push_back(Read_Store_Address(store));
  } catch (const Store_Address_Error& error) {
    Fail(std::string("--store ") + error.what());
  }
  arguments.folders = raw.folders;
  for (const std::string& source : raw.sources) arguments.sources.push_back(File_Path(source));
  arguments.sample_file = File_Path(raw.sample_file);
  arguments.directory = File_Path(raw.directory);
  arguments.export_form = Form_Named(raw.export_form);
  const auto given = [&](const char* name) {
    const CLI::Option* option = command.get_option_no_throw(name);
    return option != nullptr && option->count() > 0;
  };
  if (raw.json) arguments.form = Form::Json;
  if (raw.csv) arguments.form = Form::Csv;
  if (arguments.command == Command::Import && given("--folder")) arguments.target = raw.target;
  if (given("--subject")) arguments.filters.subject = raw.subject;
  for (const std::string& type : raw.types) arguments.filters.types.push_back(Item_Class_Of_Type(type));
  if (given("--cutoff")) {
    arguments.filters.cutoff = Parse_Date(raw.cutoff);
    if (!arguments.filters.cutoff)
      Fail("--cutoff \"" + raw.cutoff + "\" is no date. Give a day of the calendar as YYYY-MM-DD.");
  }
  if (given("--save-plan")) arguments.save_plan = File_Path(raw.save_plan);
  if (given("--backup")) arguments.backup = File_Path(raw.backup);
  if (given("--plan")) arguments.plan = File_Path(raw.plan);
  const bool needs_folder = arguments.command == Command::Items || arguments.command == Command::Protect ||
                            (arguments.command == Command::Clean && !arguments.plan);
  if (needs_folder && arguments.folders.empty())
    Fail("No folder is named. Name it with --folder PATH; \"folders\" lists every path.");
  if (arguments.save_plan && arguments.options.delete_folders)
    Fail(
        "--save-plan cannot be used with --delete-folders: a plan names items, not folders. Leave one of "
        "them "
        "out.");
  if (arguments.backup && arguments.backup->empty())
    Fail("--backup names no folder. Name the one in which copies are kept.");
  const bool makes_store = arguments.command == Command::Sample;
  if (makes_store && !arguments.stores.empty())
    Fail("--store names stores that exist; the new one is named after \"sample\". Leave --store out.");
  if (arguments.command == Command::Runs && !arguments.stores.empty())
    Fail("The log is the same for all stores. Leave --store out.");
  constexpr Command for_outlook[] = {Command::Folders, Command::Items, Command::Clean, Command::Undo};
  if (arguments.outlook && !arguments.stores.empty())
    Fail("--outlook cannot be used with --store. Leave one of them out.");
  if (arguments.outlook &&
      std::find(std::begin(for_outlook), std::end(for_outlook), arguments.command) == std::end(for_outlook))
    Fail("--outlook goes with folders, items, clean and undo only. Leave it out.");
  if (arguments.outlook && arguments.backup)
    Fail("--backup copies items of store files only, not of Outlook. Leave it out.");
  constexpr Command for_files[] = {Command::Import, Command::Check, Command::Compact};
  for (const Store_Address& store : arguments.stores)
    if (!store.Is_File() &&
        std::find(std::begin(for_files), std::end(for_files), arguments.command) != std::end(for_files))
      Fail("The command \"" + command.get_name() + "\" goes with store files only, not with \"" +
           store.Text() + "\". Name a file.");
  const bool needs_store =
      !makes_store && arguments.command != Command::Runs && arguments.command != Command::Undo;
  if (needs_store && arguments.stores.empty() && !arguments.outlook)
    Fail("No store is named. Name it with --store FILE before the command.");
}

}  // namespace

std::vector<std::filesystem::path> Store_Files(const Arguments& arguments) {
  std::vector<std::filesystem::path> files;
  for (const Store_Address& store : arguments.stores) files.push_back(store.path);
  return files;
}

Arguments Read_Arguments(std::vector<std::string> given) {
  Arguments arguments;
  arguments.sample_name = "Sample";
  arguments.sample_items = sample_default_items;
  arguments.sample_seed = sample_default_seed;
  Raw raw;

  CLI::App app("Clears out mail and calendar stores.", "tidyfold-cli");
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "tidyfold-cli " TIDYFOLD_VERSION);
  app.require_subcommand(1);
  app.fallthrough();
  Add_List(app, "--store", raw.stores,
           "A store: a file, maildir:DIRECTORY or imaps://USER@HOST/; repeat it for several stores")
      ->type_name("STORE");
  app.add_option(
         "--password-command", arguments.password_command,
         "A command that writes the password of a mail account, instead of the keyring or the terminal")
      ->type_name("COMMAND");
  app.add_flag("--outlook", arguments.outlook, "What Outlook has open, on Windows");
  Add_Store_Commands(app, arguments, raw);
  Add_Item_Commands(app, arguments, raw);
  Add_Run_Commands(app, arguments, raw);
  for (CLI::App* command : app.get_subcommands({}))
    if (command->get_name() != "sample" && command->get_name() != "runs")
      command->footer("Stores are named before the command: tidyfold-cli --store FILE " +
                      command->get_name() + " ...");

  given = With_Every_Value_Named(given);
  // CLI11 takes them from the end.
  std::reverse(given.begin(), given.end());
  try {
    app.parse(std::move(given));
  } catch (const CLI::CallForHelp&) {
    throw Help{app.help()};
  } catch (const CLI::CallForVersion& version) {
    throw Help{std::string(version.what()) + "\n"};
  } catch (const CLI::ParseError& error) {
    Fail(std::string(error.what()) + ". See \"tidyfold-cli --help\".");
  }
  const CLI::App& command = *app.get_subcommands().front();
  for (const auto& [name, which] : commands)
    if (command.get_name() == name) arguments.command = which;
  Understand(arguments, raw, command);
  return arguments;
}

}  // namespace tidyfold::cli
