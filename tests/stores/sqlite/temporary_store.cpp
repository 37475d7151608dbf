#include "stores/sqlite/temporary_store.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tidyfold {

Temporary_Directory::Temporary_Directory() {
  std::string name = (std::filesystem::temp_directory_path() / "tidyfold-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory: " + name);
  path_ = name;
}

std::map<std::string, std::string> All_Files(const std::filesystem::path& directory) {
  std::map<std::string, std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    files[entry.path().filename().string()] = Bytes_Of(entry.path());
  }
  return files;
}

std::string Bytes_Of(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream bytes;
  bytes << stream.rdbuf();
  return bytes.str();
}

void Write_Bytes(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream(file, std::ios::binary) << bytes;
}

int Run_Sql(const std::filesystem::path& file, const std::string& sql) {
  sqlite3* connection = nullptr;
  sqlite3_open(file.c_str(), &connection);
  const int code = sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr);
  sqlite3_close(connection);
  return code;
}

std::int64_t Number_By_Sql(const std::filesystem::path& file, const std::string& sql) {
  sqlite3* connection = nullptr;
  sqlite3_stmt* statement = nullptr;
  sqlite3_open(file.c_str(), &connection);
  sqlite3_prepare_v2(connection, sql.c_str(), -1, &statement, nullptr);
  const std::int64_t number = sqlite3_step(statement) == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : -1;
  sqlite3_finalize(statement);
  sqlite3_close(connection);
  return number;
}

Other_Process::Other_Process(const std::function<int()>& work) {
  int ends[2];
  if (pipe(ends) != 0) return;
  process_ = fork();
  if (process_ == 0) {
    unsigned char result = 255;
    try {
      result = static_cast<unsigned char>(work());
    } catch (...) {
    }
    if (write(ends[1], &result, 1) != 1) _exit(1);
    for (;;) pause();
  }
  close(ends[1]);
  unsigned char result = 0;
  if (read(ends[0], &result, 1) == 1) result_ = result;
  close(ends[0]);
}

void Other_Process::Kill() {
  if (process_ <= 0) return;
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  process_ = -1;
}

MAPIFolder_Ptr Folder_Named(Embedded_Store& store, const std::string& name) {
  const auto folders = store.Top_Folder()->Folders();
  for (std::int32_t i = 1; i <= folders->Count(); ++i) {
    if (folders->Item(i)->Name() == name) return folders->Item(i);
  }
  throw std::runtime_error("no folder " + name);
}

void Add_Numbered(Embedded_Store& store, const std::string& folder, int count) {
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

std::string Subjects_Of(Embedded_Store& store, const std::string& folder) {
  std::string all;
  const auto items = Folder_Named(store, folder)->Items();
  for (std::int32_t i = 1; i <= items->Count(); ++i) all += (i > 1 ? " " : "") + items->Item(i)->Subject();
  return all;
}

void Make_Small_Store(const std::filesystem::path& path) {
  Add_Numbered(*Embedded_Store::Create(path, "Small"), "Inbox", 3);
}

}  // namespace tidyfold
