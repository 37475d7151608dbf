#include "stores/sqlite/check.h"

#include <cstdint>
#include <functional>

#include "errors/automation_error.h"
#include "stores/sqlite/entry_id.h"

namespace tidyfold::sqlite {

namespace {

constexpr std::size_t enough_of_a_kind = 100;

std::string Quoted(std::string_view name) {
  return "\"" + std::string(name) + "\"";
}

class Checker {
 public:
  Checker(Database& database, Folder_Tree& folders) : database_(database), folders_(folders) {}

  std::vector<std::string> Run() {
    File();
    Tree();
    Items();
    Counts();
    return std::move(faults_);
  }

 private:
  // One line for each row; an empty line is not a fault. Rows that cannot be read are a fault as well.
  void Each_Row(std::string_view sql, const std::function<std::string(const Statement&)>& fault) {
    try {
      Statement statement(database_, sql);
      for (std::size_t found = 0; found < enough_of_a_kind && statement.Step();) {
        std::string line = fault(statement);
        if (line.empty()) continue;
        faults_.push_back(std::move(line));
        ++found;
      }
    } catch (const Automation_Error& error) {
      if (error.Number() != automation_error::corrupt_data) throw;
      faults_.push_back(error.Description());
    }
  }

  void File() {
    Each_Row("PRAGMA quick_check(100)", [](const Statement& row) {
      const std::string line(row.Text(0));
      return line == "ok" ? std::string() : "File: " + line;
    });
  }

  void Tree() {
    Each_Row("SELECT id, name FROM folder WHERE removed = 0", [&](const Statement& row) {
      return folders_.Find(row.Integer(0)) != nullptr
                 ? std::string()
                 : "Folder " + Folder_Entry_Id(row.Integer(0)) + " " + Quoted(row.Text(1)) +
                       " does not hang below the top folder.";
    });
  }

  // Reads the table itself where an index could hide a fault.
  void Items() {
    Each_Row("SELECT id, subject, folder FROM item NOT INDEXED WHERE folder NOT IN (SELECT id FROM folder)",
             [](const Statement& row) {
               return "Item " + Item_Entry_Id(row.Integer(0)) + " " + Quoted(row.Text(1)) +
                      " lies in a folder that does not exist (" + Folder_Entry_Id(row.Integer(2)) + ").";
             });
    Each_Row(
        "SELECT folder, position, COUNT(*) FROM item NOT INDEXED GROUP BY folder, position "
        "HAVING COUNT(*) > 1",
        [](const Statement& row) {
          return std::to_string(row.Integer(2)) + " items have position " + std::to_string(row.Integer(1)) +
                 " in folder " + Folder_Entry_Id(row.Integer(0)) + ".";
        });
    Each_Row("SELECT id, subject FROM item NOT INDEXED WHERE id NOT IN (SELECT item FROM content)",
             [](const Statement& row) {
               return "Item " + Item_Entry_Id(row.Integer(0)) + " " + Quoted(row.Text(1)) +
                      " has lost its text.";
             });
    for (const char* table : {"content", "attachment"}) {
      Each_Row("SELECT DISTINCT item FROM " + std::string(table) + " WHERE item NOT IN (SELECT id FROM item)",
               [&](const Statement& row) {
                 return "The " + std::string(table) + " of item " + Item_Entry_Id(row.Integer(0)) +
                        " is there, the item is not.";
               });
    }
  }

  // Compares the table with the counts in memory, which come from the index.
  void Counts() {
    Each_Row(
        "SELECT f.id, f.name, COALESCE(n.items, 0) FROM folder AS f LEFT JOIN (SELECT folder, COUNT(*) AS "
        "items FROM item NOT INDEXED GROUP BY folder) AS n ON n.folder = f.id WHERE f.removed = 0",
        [&](const Statement& row) {
          const Folder_Record* folder = folders_.Find(row.Integer(0));
          if (folder == nullptr || folder->item_count == row.Integer(2)) return std::string();
          return "Folder " + Folder_Entry_Id(folder->id) + " " + Quoted(row.Text(1)) + " counts " +
                 std::to_string(folder->item_count) + " items, but holds " + std::to_string(row.Integer(2)) +
                 ".";
        });
  }

  Database& database_;
  Folder_Tree& folders_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> Check_Store(Database& database, Folder_Tree& folders) {
  return Checker(database, folders).Run();
}

}  // namespace tidyfold::sqlite
