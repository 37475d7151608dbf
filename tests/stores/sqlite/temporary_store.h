// Store files for a test, and access to them behind the program's back.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "doubles/temporary_directory.h"
#include "errors/automation_error.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

// The name and the bytes of every file in a directory.
inline std::map<std::string, std::string> All_Files(const std::filesystem::path& directory) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    files[entry.path().filename().string()] = Bytes_Of(entry.path());
  }
  return files;
}

// Runs SQL on a connection of its own, as another program would.
inline int Run_Sql(const std::filesystem::path& file, const std::string& sql,
                   std::int64_t* number = nullptr) {
  sqlite3* connection = nullptr;
  sqlite3_open(file.string().c_str(), &connection);
  const auto first_value = [](void* target, int, char** values, char**) {
    if (target != nullptr) *static_cast<std::int64_t*>(target) = std::stoll(values[0]);
    return 0;
  };
  const int code = sqlite3_exec(connection, sql.c_str(), first_value, number, nullptr);
  sqlite3_close(connection);
  return code;
}

inline std::int64_t Number_By_Sql(const std::filesystem::path& file, const std::string& sql) {
  std::int64_t number = -1;
  EXPECT_EQ(Run_Sql(file, sql, &number), SQLITE_OK);
  return number;
}

inline MAPIFolder_Ptr Folder_Named(Embedded_Store& store, const std::string& name) {
  const auto folders = store.Top_Folder()->Folders();
  for (std::int32_t i = 1; i <= folders->Count(); ++i) {
    if (folders->Item(i)->Name() == name) return folders->Item(i);
  }
  throw std::runtime_error("no folder " + name);
}

// Text that takes as many bytes in a store.
inline std::string Incompressible(std::size_t bytes) {
  std::mt19937_64 random(bytes);
  std::string text(bytes, ' ');
  for (char& byte : text) byte = static_cast<char>(random());
  return text;
}

// Adds `count` items with the subjects "1" and so on.
inline void Add_Numbered(Embedded_Store& store, const std::string& folder, int count) {
  const auto target = Folder_Named(store, folder);
  store.Writer().Begin();
  for (int number = 1; number <= count; ++number) {
    New_Item item;
    item.subject = std::to_string(number);
    item.body = "Body of " + item.subject;
    item.raw_message = "Subject: " + item.subject + "\r\n\r\n" + item.body;
    item.attachments = {{"file.txt", number}};
    store.Writer().Add_Item(*target, item);
  }
  store.Writer().Commit();
}

// Every subject, with blanks between.
inline std::string Subjects_Of(Embedded_Store& store, const std::string& folder) {
  std::string all;
  const auto items = Folder_Named(store, folder)->Items();
  for (std::int32_t i = 1; i <= items->Count(); ++i) all += (i > 1 ? " " : "") + items->Item(i)->Subject();
  return all;
}

// Subjects as Add_Numbered gives them.
inline std::string Numbers(int first, int last, int step = 1) {
  std::string all = std::to_string(first);
  for (int number = first + step; number != last + step; number += step) all += " " + std::to_string(number);
  return all;
}

// A store with some items in its Inbox, closed.
inline void Make_Small_Store(const std::filesystem::path& path, int items = 3) {
  Add_Numbered(*Embedded_Store::Create(path, "Small"), "Inbox", items);
}

using Reason = Store_Open_Error::Reason;

// Why the store cannot be opened; nothing if it can.
inline std::optional<Reason> Refusal(const std::filesystem::path& file, const std::function<void()>& open) {
  try {
    open();
    return std::nullopt;
  } catch (const Store_Open_Error& error) {
    EXPECT_EQ(error.File(), file);
    EXPECT_NE(std::string(error.what()).find(file.string()), std::string::npos) << error.what();
    return error.Why();
  }
}
inline std::optional<Reason> Refusal(const std::filesystem::path& file, Store_Mode mode) {
  return Refusal(file, [&] { Embedded_Store::Open(file, mode); });
}

// One store file in a directory of its own.
class Store_File : public testing::Test {
 protected:
  std::shared_ptr<Embedded_Store> Open(Store_Mode mode = Store_Mode::Read_Write) const {
    return Embedded_Store::Open(file_, mode);
  }
  // The file is sound, and these are the subjects in it.
  void Expect_Kept(const std::string& inbox, const std::string& deleted = {}) const {
    const auto store = Open();
    EXPECT_EQ(Subjects_Of(*store, "Inbox"), inbox);
    EXPECT_EQ(Subjects_Of(*store, "Deleted Items"), deleted);
    EXPECT_EQ(store->Check(), std::vector<std::string>());
  }

  Temporary_Directory directory_;
  const std::filesystem::path file_ = directory_ / "a.tfs";
};

}  // namespace tidyfold
