#include "runs/run_log.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <system_error>
#include <tuple>
#include <utility>

#include "outlook/folder_path.h"
#include "runs/log_file.h"
#include "runs/run_lock.h"

namespace tidyfold {

namespace {

constexpr int item_bits = 32;
// Items of runs that have left the log are cleared away with the flushes of later ones, more of them than
// come in: all at once could hold up the window.
constexpr std::int64_t items_per_clearing = 500;
constexpr std::int64_t items_per_reading = 1000;

constexpr const char* run_columns =
    "SELECT id, kind, undo_of, began, ended, options, items, bytes, folders, exact, processed, "
    "not_all_deleted, "
    "cancelled, taken_back FROM run ";

constexpr const char* item_columns =
    "SELECT id, store_id, folder_entry_id, path, item_type, entry_id, new_entry_id, subject, date, class, "
    "action, result, reason FROM item_with_result ";

Logged_Item Read_Item(const Log_Statement& row) {
  Logged_Item item;
  item.number = row.Integer(0) & ((std::int64_t{1} << item_bits) - 1);
  item.folder = {row.Text(1), row.Text(2), row.Text(3), static_cast<std::int32_t>(row.Integer(4))};
  item.entry_id = row.Text(5);
  item.new_entry_id = row.Text(6);
  item.subject = row.Text(7);
  item.date = row.Real(8);
  item.item_class = static_cast<std::int32_t>(row.Integer(9));
  item.action = static_cast<Item_Action>(row.Integer(10));
  item.result = static_cast<Item_Result>(row.Integer(11));
  item.reason = row.Text(12);
  return item;
}

struct Statements {
  explicit Statements(Log_File& file)
      : add_folder(file, "INSERT INTO folder (run, store_id, entry_id, path, item_type) VALUES (?,?,?,?,?)"),
        add_item(file, "INSERT INTO item VALUES (?,?,?,?,?,?,?,?,?,?)"),
        add_result(file, "INSERT OR REPLACE INTO result VALUES (?,?,?,?,?)"),
        clear(file, "DELETE FROM item WHERE id IN (SELECT id FROM item WHERE id < ? ORDER BY id LIMIT ?)"),
        clear_results(file,
                      "DELETE FROM result WHERE first IN "
                      "(SELECT first FROM result WHERE first < ? ORDER BY first LIMIT ?)") {}
  Log_Statement add_folder, add_item, add_result, clear, clear_results;
};

// Of items that follow one another.
struct Result_Change {
  std::int64_t first, last;
  Item_Result result;
  std::string new_entry_id, reason;
};

using Folder_Key = std::tuple<std::string, std::string, std::string>;

}  // namespace

std::filesystem::path Default_Run_Log_File() {
  const auto variable = [](const char* name) {
    const char* const value = std::getenv(name);
    return std::filesystem::path(value == nullptr ? "" : value);
  };
#ifdef _WIN32
  const std::filesystem::path folder = variable("LOCALAPPDATA");
  return folder.is_absolute() ? folder / "Tidyfold" / "runs.sqlite" : std::filesystem::path();
#else
  std::filesystem::path folder = variable("XDG_STATE_HOME");
  // A relative one is to be ignored (XDG Base Directory rules).
  if (!folder.is_absolute()) {
    const std::filesystem::path home = variable("HOME");
    if (!home.is_absolute()) return {};
    folder = home / ".local" / "state";
  }
  return folder / "tidyfold" / "runs.sqlite";
#endif
}

Logged_Folder Describe_Folder(MAPIFolder& folder) {
  return {folder.StoreID(), folder.EntryID(), Path_Of_Folder(folder), folder.DefaultItemType()};
}

// The file, opened when it is first needed, and the run that is being written.
class Run_Log::File_Access {
 public:
  explicit File_Access(std::filesystem::path log_file) : path(std::move(log_file)) {}

  // For reading: nullptr while there is no log.
  Log_File* Open_If_There() {
    std::error_code error;
    if (file == nullptr && (path.empty() || !std::filesystem::exists(path, error))) return nullptr;
    return &Open();
  }
  Log_File& Open() {
    if (file == nullptr) file = std::make_unique<Log_File>(path);
    return *file;
  }
  Statements& Writing() {
    if (statements == nullptr) statements = std::make_unique<Statements>(Open());
    return *statements;
  }

  std::filesystem::path Lock_File(std::int64_t number) const {
    std::filesystem::path name = path;
    name += "-run-" + std::to_string(number);
    return name;
  }
  std::int64_t Id(std::int64_t item) const { return (run << item_bits) + item; }

  // The folder's row, written with the first item that names it. `added` lists what is new.
  std::int64_t Folder_Row(const Logged_Folder& folder, std::vector<Folder_Key>& added) {
    const auto is = [&](const Folder_Key& key) {
      return key == std::tie(folder.store_id, folder.entry_id, folder.path);
    };
    // Items come folder by folder.
    if (last_folder != folders.end() && is(last_folder->first)) return last_folder->second;
    Folder_Key key{folder.store_id, folder.entry_id, folder.path};
    last_folder = folders.find(key);
    if (last_folder != folders.end()) return last_folder->second;
    Writing().add_folder.Run(run, folder.store_id, folder.entry_id, folder.path, folder.item_type);
    const std::int64_t row = file->Last_Insert();
    added.push_back(key);
    last_folder = folders.emplace(std::move(key), row).first;
    return row;
  }

  std::filesystem::path path;
  std::unique_ptr<Log_File> file;
  std::unique_ptr<Statements> statements;

  std::int64_t run = 0;  // 0: none is being written
  std::unique_ptr<Run_Lock> lock;
  std::map<Folder_Key, std::int64_t> folders;
  std::map<Folder_Key, std::int64_t>::iterator last_folder = folders.end();
  std::int64_t items = 0;              // noted so far
  std::vector<Logged_Item> new_items;  // the last of them, not written yet
  std::vector<Result_Change> results;  // of items that are written
  std::int64_t oldest_kept = 0;        // run; 0: nothing is left to be cleared away
};

Run_Log::Run_Log(std::filesystem::path file) : access_(std::make_unique<File_Access>(std::move(file))) {}

Run_Log::~Run_Log() = default;

const std::filesystem::path& Run_Log::File() const {
  return access_->path;
}

std::int64_t Run_Log::Begin(const Run_Header& header, Date now) {
  Log_File& file = access_->Open();
  std::int64_t run = 0;
  std::unique_ptr<Run_Lock> lock;
  std::vector<std::int64_t> outdated;
  std::int64_t oldest_kept = 0;
  file.In_Transaction([&] {
    Log_Statement(file,
                  "INSERT INTO run (kind, undo_of, began, options, items, bytes, folders, exact) "
                  "VALUES (?,?,?,?,?,?,?,?)")
        .Run(static_cast<int>(header.kind), header.undo_of, Format_Moment(now), header.options, header.items,
             header.bytes, header.folders, header.exact);
    run = file.Last_Insert();
    Log_Statement add_store(file, "INSERT INTO store VALUES (?,?,?,?)");
    for (const Logged_Store& store : header.stores)
      add_store.Run(run, store.store_id, store.name, store.place);
    Log_Statement old(file, "SELECT id FROM run ORDER BY id DESC LIMIT -1 OFFSET ?");
    for (old.Bind(runs_kept); old.Step();) outdated.push_back(old.Integer(0));
    if (!outdated.empty()) {
      oldest_kept = outdated.front() + 1;
      for (const char* table : {"run WHERE id", "store WHERE run", "folder WHERE run"})
        Log_Statement(file, std::string("DELETE FROM ") + table + " < ?").Run(oldest_kept);
    }
    // Nobody sees the run before its lock is held.
    try {
      lock = Run_Lock::Take(access_->Lock_File(run));
    } catch (const std::filesystem::filesystem_error& error) {
      Fail_Log(access_->path, std::string("could not be locked (") + error.code().message() +
                                  "). Make its folder writable, and room on its disk.");
    }
  });
  for (const std::int64_t gone : outdated) {
    std::error_code ignored;
    std::filesystem::remove(access_->Lock_File(gone), ignored);
  }
  access_->run = run;
  access_->lock = std::move(lock);
  access_->folders.clear();
  access_->last_folder = access_->folders.end();
  access_->items = 0;
  access_->new_items.clear();
  access_->results.clear();
  access_->oldest_kept = oldest_kept;
  return run;
}

std::int64_t Run_Log::Note(const Logged_Item& item) {
  access_->new_items.push_back(item);
  access_->new_items.back().number = ++access_->items;
  return access_->items;
}

void Run_Log::Set_Result(std::int64_t item, Item_Result result, std::string_view new_entry_id,
                         std::string_view reason) {
  const auto unwritten = static_cast<std::int64_t>(access_->new_items.size());
  const std::int64_t written = access_->items - unwritten;
  if (item <= written) {
    // Most of what a group of changes held is done alike.
    std::vector<Result_Change>& results = access_->results;
    if (!results.empty() && results.back().last + 1 == item && results.back().result == result &&
        results.back().new_entry_id == new_entry_id && results.back().reason == reason) {
      results.back().last = item;
    } else {
      results.push_back({item, item, result, std::string(new_entry_id), std::string(reason)});
    }
    return;
  }
  Logged_Item& noted = access_->new_items.at(static_cast<std::size_t>(item - written - 1));
  noted.result = result;
  noted.new_entry_id = new_entry_id;
  noted.reason = reason;
}

void Run_Log::Flush() {
  File_Access& log = *access_;
  if (log.run == 0 || (log.new_items.empty() && log.results.empty())) return;
  Statements& statements = log.Writing();
  std::vector<Folder_Key> added;
  bool cleared = false;
  try {
    log.file->In_Transaction([&] {
      for (const Logged_Item& item : log.new_items) {
        statements.add_item.Run(log.Id(item.number), log.Folder_Row(item.folder, added), item.entry_id,
                                item.new_entry_id, item.subject, item.date, item.item_class,
                                static_cast<int>(item.action), static_cast<int>(item.result), item.reason);
      }
      for (const Result_Change& change : log.results) {
        statements.add_result.Run(log.Id(change.first), log.Id(change.last), static_cast<int>(change.result),
                                  change.new_entry_id, change.reason);
      }
      if (log.oldest_kept != 0) {
        statements.clear.Run(log.oldest_kept << item_bits, items_per_clearing);
        cleared = log.file->Changes() == 0;
        statements.clear_results.Run(log.oldest_kept << item_bits, items_per_clearing);
        cleared = cleared && log.file->Changes() == 0;
      }
    });
  } catch (...) {
    for (const Folder_Key& key : added) log.folders.erase(key);
    log.last_folder = log.folders.end();
    throw;
  }
  if (cleared) log.oldest_kept = 0;
  log.new_items.clear();
  log.results.clear();
}

void Run_Log::End(const Run_Outcome& outcome, Date now) {
  Flush();
  Log_Statement(access_->Open(),
                "UPDATE run SET ended = ?, processed = ?, not_all_deleted = ?, cancelled = ? WHERE id = ?")
      .Run(Format_Moment(now), outcome.processed, outcome.not_all_deleted, outcome.cancelled, access_->run);
  access_->run = 0;
  access_->lock.reset();
}

std::vector<Logged_Run> Run_Log::Runs() {
  return Read_Runs("ORDER BY id DESC", 0);
}

std::optional<Logged_Run> Run_Log::Run(std::int64_t run) {
  std::vector<Logged_Run> found = Read_Runs("WHERE id = ?", run);
  if (found.empty()) return std::nullopt;
  return std::move(found.front());
}

std::vector<Logged_Run> Run_Log::Read_Runs(const char* which, std::int64_t parameter) {
  Log_File* const file = access_->Open_If_There();
  if (file == nullptr) return {};
  std::vector<Logged_Run> runs;
  Log_Statement row(*file, std::string(run_columns) + which);
  if (parameter != 0) row.Bind(parameter);
  while (row.Step()) {
    Logged_Run run;
    run.run = row.Integer(0);
    run.header.kind = static_cast<Run_Kind>(row.Integer(1));
    run.header.undo_of = row.Integer(2);
    run.began = row.Text(3);
    run.ended = row.Text(4);
    run.header.options = row.Text(5);
    run.header.items = row.Integer(6);
    run.header.bytes = row.Integer(7);
    run.header.folders = row.Integer(8);
    run.header.exact = row.Integer(9) != 0;
    run.outcome = {row.Integer(10), row.Integer(11) != 0, row.Integer(12) != 0};
    run.taken_back = row.Integer(13);
    runs.push_back(std::move(run));
  }
  row.Reset();
  Log_Statement store(*file, "SELECT store_id, name, place FROM store WHERE run = ? ORDER BY rowid");
  Log_Statement count(*file,
                      "SELECT COUNT(*) FILTER (WHERE result = 1), COUNT(*) FILTER (WHERE result = 0) "
                      "FROM item_with_result WHERE id BETWEEN ? AND ?");
  for (Logged_Run& run : runs) {
    for (store.Bind(run.run); store.Step();)
      run.header.stores.push_back({store.Text(0), store.Text(1), store.Text(2)});
    if (!run.ended.empty()) continue;
    run.state = Run_Lock::Is_Held(access_->Lock_File(run.run)) ? Run_State_In_Log::Under_Way
                                                               : Run_State_In_Log::Killed;
    count.Bind(run.run << item_bits, ((run.run + 1) << item_bits) - 1);
    count.Step();
    run.outcome.processed = count.Integer(0);
    run.uncertain = count.Integer(1);
  }
  return runs;
}

void Run_Log::Items(std::int64_t run, const std::function<void(const Logged_Item&)>& visit) {
  Log_File* const file = access_->Open_If_There();
  if (file == nullptr) return;
  Log_Statement row(*file, std::string(item_columns).append("WHERE id > ? AND id < ? ORDER BY id LIMIT ?"));
  // In portions, so that no statement is open while the visitor does its work.
  std::vector<Logged_Item> portion;
  std::int64_t last = 0;
  do {
    portion.clear();
    row.Bind((run << item_bits) + last, (run + 1) << item_bits, items_per_reading);
    while (row.Step()) portion.push_back(Read_Item(row));
    row.Reset();
    for (const Logged_Item& item : portion) visit(item);
    if (!portion.empty()) last = portion.back().number;
  } while (!portion.empty());
}

std::optional<Logged_Item> Run_Log::Find_Moved(const std::string& store_id, const std::string& entry_id) {
  Log_File* const file = access_->Open_If_There();
  if (file == nullptr) return std::nullopt;
  Log_Statement row(
      *file, std::string(item_columns)
                 .append("WHERE (new_entry_id = ?1 OR (new_entry_id = '' AND entry_id = ?1)) "
                         "AND store_id = ?2 AND action = ?3 AND result IN (0, 1) ORDER BY id DESC LIMIT 1"));
  row.Bind(entry_id, store_id, static_cast<int>(Item_Action::Moved));
  if (!row.Step()) return std::nullopt;
  return Read_Item(row);
}

std::optional<Logged_Run> Run_Log::Last_To_Take_Back() {
  for (Logged_Run& run : Runs()) {
    const bool did_something = run.outcome.processed + run.uncertain > 0;
    if (run.header.kind == Run_Kind::Cleaning && run.taken_back == 0 && did_something &&
        run.state != Run_State_In_Log::Under_Way)
      return std::move(run);
  }
  return std::nullopt;
}

void Run_Log::Mark_Taken_Back(std::int64_t run, std::int64_t by) {
  Log_Statement(access_->Open(), "UPDATE run SET taken_back = ? WHERE id = ?").Run(by, run);
}

std::vector<Logged_Run> Run_Log::Killed_Since_Last_Told() {
  std::vector<Logged_Run> runs = Read_Runs("WHERE ended = '' AND told = 0 ORDER BY id DESC", 0);
  std::erase_if(runs, [](const Logged_Run& run) { return run.state != Run_State_In_Log::Killed; });
  return runs;
}

void Run_Log::Told(std::int64_t run) {
  Log_Statement(access_->Open(), "UPDATE run SET told = 1 WHERE id = ?").Run(run);
}

}  // namespace tidyfold
