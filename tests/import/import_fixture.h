// A directory for sources, a store in memory, and a record of everything written to it.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <string_view>
#include <vector>

#include "doubles/requirements.h"
#include "doubles/temporary_directory.h"
#include "errors/automation_error.h"
#include "import/import.h"
#include "stores/memory/memory_store.h"

namespace tidyfold {

// Sets local time to New York's: 5 hours behind UTC, 4 in summer.
class In_New_York {
 public:
  In_New_York() {
    setenv("TZ", "America/New_York", 1);
    tzset();
  }
};

inline Date Day(int count, int hours = 0, int minutes = 0, int seconds = 0) {
  return count + (hours * 3600 + minutes * 60 + seconds) / 86400.0;
}

class Recording_Writer : public Store_Writer {
 public:
  struct Written {
    std::string folder;
    New_Item item;
  };

  explicit Recording_Writer(Store_Writer& store) : store_(store) {}
  MAPIFolder_Ptr Top_Folder() override { return store_.Top_Folder(); }
  MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name, std::int32_t type) override {
    return store_.Add_Folder(parent, name, type);
  }
  std::string Add_Item(MAPIFolder& folder, const New_Item& item) override {
    if (items_until_full == 0)
      throw Automation_Error(automation_error::call_failed, "The disk is full.", "test");
    --items_until_full;
    written.push_back({folder.Name(), item});
    return store_.Add_Item(folder, item);
  }
  std::int64_t Count_Alike(const Item_Key& key) override { return store_.Count_Alike(key); }
  void Begin() override { store_.Begin(); }
  void Commit() override {
    store_.Commit();
    ++commits;
  }
  void Roll_Back() override {
    store_.Roll_Back();
    ++roll_backs;
  }

  std::vector<Written> written;
  int items_until_full = -1;
  int commits = 0;
  int roll_backs = 0;

 private:
  Store_Writer& store_;
};

class Import_Test : public ::testing::Test {
 protected:
  std::filesystem::path Write(const std::string& name, std::string_view content) const {
    return Write_Bytes(directory / name, content);
  }
  Import_Report Import(const std::filesystem::path& source, const Import_Options& options = {}) {
    return Import_Source(source, writer, options);
  }
  std::string Error_Of(const std::filesystem::path& source) {
    try {
      Import(source);
    } catch (const Import_Error& error) {
      return error.what();
    }
    return "no error";
  }
  std::vector<std::string> Subjects() const {
    std::vector<std::string> subjects;
    for (const auto& written : writer.written) subjects.push_back(written.item.subject);
    return subjects;
  }
  std::int32_t Items_In(std::initializer_list<std::string_view> path) {
    return store.Folder(path)->Items()->Count();
  }

  In_New_York zone;
  Temporary_Directory directory;
  Memory_Outlook outlook;
  Memory_Store& store = outlook.Add_Store("Store");
  Recording_Writer writer{store};
};

// A file that another program wrote.
#define REQUIRE_SHARED_FILE(variable, name)                                                    \
  const std::filesystem::path variable = std::filesystem::path(TIDYFOLD_SHARED_DATA) / (name); \
  REQUIRE_OR_SKIP(std::filesystem::exists(variable), variable << " is missing")

}  // namespace tidyfold
