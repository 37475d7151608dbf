// The embedded store compared with bare SQLite on the same data: reading every item, and moving items to
// "Deleted Items".
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/sample_store.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::int32_t item_count = 100'000;
constexpr int group = 100;
constexpr std::int32_t rows_at_once = 500;

// A sample store, made once, and a fresh copy for each run that changes it.
class Files {
 public:
  Files() {
    std::string name = (fs::temp_directory_path() / "tidyfold-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    directory_ = name;
    Make_Sample(Store(), "Sample", item_count);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() { fs::remove_all(directory_); }
  fs::path Store() const { return directory_ / "store.tfs"; }
  fs::path Copy() const {
    fs::path copy = directory_ / "copy.tfs";
    fs::copy_file(Store(), copy, fs::copy_options::overwrite_existing);
    return copy;
  }

 private:
  fs::path directory_;
};

// Bare SQLite with the store's settings.
class Bare {
 public:
  explicit Bare(const fs::path& file) {
    Check(sqlite3_open_v2(file.c_str(), &connection_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr));
    Execute(
        "PRAGMA locking_mode = EXCLUSIVE; PRAGMA foreign_keys = ON; PRAGMA synchronous = NORMAL;"
        "PRAGMA secure_delete = FAST; PRAGMA cache_size = -16384; PRAGMA temp_store = MEMORY;");
  }
  Bare(const Bare&) = delete;
  Bare& operator=(const Bare&) = delete;
  ~Bare() { sqlite3_close(connection_); }

  void Execute(const char* sql) { Check(sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr)); }
  // Calls `row` for every row.
  template <class Row>
  void Select(const char* sql, Row&& row) {
    sqlite3_stmt* statement = nullptr;
    Check(sqlite3_prepare_v2(connection_, sql, -1, &statement, nullptr));
    while (sqlite3_step(statement) == SQLITE_ROW) row(statement);
    Check(sqlite3_finalize(statement));
  }
  sqlite3* Connection() { return connection_; }

 private:
  void Check(int code) {
    if (code != SQLITE_OK) throw std::runtime_error(sqlite3_errmsg(connection_));
  }
  sqlite3* connection_ = nullptr;
};

constexpr const char* ordered_select =
    "SELECT class, subject, received, last_modified, completed, due, ended, unread, id, sender_or_text, "
    "size, flag "
    "FROM item ORDER BY folder, position";

void Load_Bare_Steps(benchmark::State& state, const Files& files) {
  Bare bare(files.Store());
  for (auto _ : state) {
    std::int64_t rows = 0;
    bare.Select(ordered_select, [&](sqlite3_stmt*) { ++rows; });
    if (rows != item_count) state.SkipWithError("rows are missing");
  }
}

// The same, and reads every value.
void Load_Bare_Values(benchmark::State& state, const Files& files) {
  Bare bare(files.Store());
  for (auto _ : state) {
    std::int64_t rows = 0;
    bare.Select(ordered_select, [&](sqlite3_stmt* row) {
      ++rows;
      benchmark::DoNotOptimize(sqlite3_column_int(row, 0));
      for (int date = 2; date <= 6; ++date) benchmark::DoNotOptimize(sqlite3_column_double(row, date));
      for (const int number : {7, 10, 11}) benchmark::DoNotOptimize(sqlite3_column_int(row, number));
      const std::string id = "I" + std::to_string(sqlite3_column_int64(row, 8));
      const std::string subject(reinterpret_cast<const char*>(sqlite3_column_text(row, 1)));
      const std::string sender(reinterpret_cast<const char*>(sqlite3_column_text(row, 9)));
      benchmark::DoNotOptimize(id.data());
      benchmark::DoNotOptimize(subject.data());
      benchmark::DoNotOptimize(sender.data());
    });
    if (rows != item_count) state.SkipWithError("rows are missing");
  }
}

std::int64_t Load(Mapi_Utils& utils, MAPIFolder& folder) {
  const auto items = folder.Items();
  const std::int32_t count = items->Count();
  for (std::int32_t i = 1; i <= count; ++i) {
    const Item_Ptr item = items->Item(i);
    const std::int32_t item_class = item->Class();
    const std::string subject = item->Subject();
    benchmark::DoNotOptimize(subject.data());
    const Date dates[] = {item->ReceivedTime(), item->LastModificationTime(), item->DateCompleted(),
                          item->DueDate(), item->End()};
    benchmark::DoNotOptimize(dates);
    benchmark::DoNotOptimize(item->UnRead());
    const std::string id = item->EntryID();
    benchmark::DoNotOptimize(id.data());
    const std::string text = item_class == item_class::mail
                                 ? utils.HrGetOneProp(*item->MAPIOBJECT(), sender_name_tag)
                                 : item->Body(20);
    benchmark::DoNotOptimize(text.data());
  }
  const auto folders = folder.Folders();
  std::int64_t read = count;
  for (std::int32_t i = 1; i <= folders->Count(); ++i) read += Load(utils, *folders->Item(i));
  return read;
}

void Load_Store(benchmark::State& state, const Files& files) {
  Embedded_Outlook outlook;
  outlook.Open({files.Store()});
  const auto utils = outlook.Create_Mapi_Utils("TidyDll.TidyMAPIUtils");
  for (auto _ : state) {
    const auto session = outlook.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
    if (Load(*utils, *session->Folders()->Item(1)) != item_count) state.SkipWithError("items are missing");
  }
}

std::int64_t Load_Rows(MAPIFolder& folder) {
  const auto table = folder.GetTable();
  std::int64_t read = 0;
  for (auto rows = table->GetArray(rows_at_once); !rows.empty(); rows = table->GetArray(rows_at_once)) {
    benchmark::DoNotOptimize(rows.data());
    read += static_cast<std::int64_t>(rows.size());
  }
  const auto folders = folder.Folders();
  for (std::int32_t i = 1; i <= folders->Count(); ++i) read += Load_Rows(*folders->Item(i));
  return read;
}

// What the cache reads: the folders' tables, five hundred rows a call.
void Load_Table(benchmark::State& state, const Files& files) {
  Embedded_Outlook outlook;
  outlook.Open({files.Store()});
  for (auto _ : state) {
    const auto session = outlook.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
    if (Load_Rows(*session->Folders()->Item(1)) != item_count) state.SkipWithError("items are missing");
  }
}

// Times the work without the copying before it: wall time as the benchmark's time, processor time as a
// counter, since other programs disturb it less.
void Time(benchmark::State& state, const std::function<void()>& work) {
  const std::clock_t processor = std::clock();
  const auto start = std::chrono::steady_clock::now();
  work();
  state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
  state.counters["work_cpu_ms"] = 1000.0 * static_cast<double>(std::clock() - processor) / CLOCKS_PER_SEC;
}

// Folder 2 is "Deleted Items", folder 3 the Inbox.
std::vector<std::int64_t> Inbox_Items(Bare& bare) {
  std::vector<std::int64_t> ids;
  bare.Select("SELECT id FROM item WHERE folder = 3 ORDER BY position DESC",
              [&](sqlite3_stmt* row) { ids.push_back(sqlite3_column_int64(row, 0)); });
  return ids;
}

void Move_Bare(benchmark::State& state, const Files& files) {
  for (auto _ : state) {
    Bare bare(files.Copy());
    const auto ids = Inbox_Items(bare);
    std::int64_t position = item_count;
    Time(state, [&] {
      sqlite3_stmt* move = nullptr;
      sqlite3_prepare_v2(bare.Connection(), "UPDATE item SET folder = 2, position = ?2 WHERE id = ?1", -1,
                         &move, nullptr);
      for (std::size_t i = 0; i < ids.size(); ++i) {
        if (i % group == 0) bare.Execute("BEGIN IMMEDIATE");
        sqlite3_bind_int64(move, 1, ids[i]);
        sqlite3_bind_int64(move, 2, ++position);
        if (sqlite3_step(move) != SQLITE_DONE) state.SkipWithError("a row was not moved");
        sqlite3_reset(move);
        if (i % group == group - 1 || i + 1 == ids.size()) bare.Execute("COMMIT");
      }
      sqlite3_finalize(move);
    });
    state.counters["items"] = static_cast<double>(ids.size());
  }
}

// A run over the live folder, from its last item to its first.
void Move_Store(benchmark::State& state, const Files& files) {
  for (auto _ : state) {
    Embedded_Outlook outlook;
    outlook.Open({files.Copy()});
    const auto session = outlook.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
    const auto items = session->GetDefaultFolder(default_folder_inbox)->Items();
    const std::int32_t count = items->Count();
    Time(state, [&] {
      for (std::int32_t i = count; i >= 1; --i) {
        items->Item(i)->Delete();
        if ((count - i) % group == group - 1) outlook.Commit_Pending();
      }
      outlook.Commit_Pending();
    });
    if (items->Count() != 0) state.SkipWithError("an item was not moved");
    state.counters["items"] = count;
  }
}

// A run over items that were read before, each found by its EntryID.
void Move_Store_By_Id(benchmark::State& state, const Files& files) {
  for (auto _ : state) {
    Embedded_Outlook outlook;
    outlook.Open({files.Copy()});
    const auto session = outlook.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
    const auto inbox = session->GetDefaultFolder(default_folder_inbox);
    const std::string store_id = inbox->StoreID();
    std::vector<std::string> ids;
    for (std::int32_t i = 1; i <= inbox->Items()->Count(); ++i) {
      ids.push_back(inbox->Items()->Item(i)->EntryID());
    }
    Time(state, [&] {
      for (std::size_t i = 0; i < ids.size(); ++i) {
        session->GetItemFromID(ids[i], store_id)->Delete();
        if (i % group == group - 1) outlook.Commit_Pending();
      }
      outlook.Commit_Pending();
    });
    if (inbox->Items()->Count() != 0) state.SkipWithError("an item was not moved");
    state.counters["items"] = static_cast<double>(ids.size());
  }
}

}  // namespace
}  // namespace tidyfold

int main(int argc, char** argv) try {
  using namespace tidyfold;
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  const Files files;
  using Case = std::pair<const char*, void (*)(benchmark::State&, const Files&)>;
  for (const auto& [name, run] :
       {Case{"load/bare_select_stepped", Load_Bare_Steps}, Case{"load/bare_select_values", Load_Bare_Values},
        Case{"load/store", Load_Store}, Case{"load/store_table", Load_Table}}) {
    benchmark::RegisterBenchmark(name, run, std::cref(files))->Unit(benchmark::kMillisecond);
  }
  for (const auto& [name, run] : {Case{"move/bare_updates", Move_Bare}, Case{"move/store", Move_Store},
                                  Case{"move/store_by_entry_id", Move_Store_By_Id}}) {
    benchmark::RegisterBenchmark(name, run, std::cref(files))->Unit(benchmark::kMillisecond)->UseManualTime();
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "store_bench: %s\n", error.what());
  return 1;
}
