// One store file of the program's own: an information store with its folders and items, kept in SQLite.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "outlook/object_model.h"
#include "outlook/store_writer.h"
#include "stores/sqlite/store_open_error.h"

namespace tidyfold {

namespace sqlite {
class Store;
}

enum class Store_Mode {
  Read_Write,  // nobody else can have the file open meanwhile
  Read_Only,   // changes no byte and leaves no file behind; several readers may share a file
};

// Folders and items that were handed out keep the file open (and locked) until the last of them is gone.
// Changes last from the next Commit_Pending on, at the latest after a hundred of them; what a crash finds
// uncommitted has not happened. All calls come from one thread.
class Embedded_Store {
 public:
  // Throws Store_Open_Error.
  static std::shared_ptr<Embedded_Store> Open(const std::filesystem::path& path, Store_Mode mode);
  // Makes a store whose top folder bears the name, with the ten default folders, empty, and opens it for
  // writing. A file that exists is never touched. Throws Store_Open_Error.
  static std::shared_ptr<Embedded_Store> Create(const std::filesystem::path& path,
                                                const std::string& store_name);

  explicit Embedded_Store(std::shared_ptr<sqlite::Store> store);
  Embedded_Store(const Embedded_Store&) = delete;
  Embedded_Store& operator=(const Embedded_Store&) = delete;
  ~Embedded_Store();

  const std::filesystem::path& Path() const;
  Store_Mode Mode() const;
  std::string StoreID() const;
  MAPIFolder_Ptr Top_Folder();

  // Adding outside of Begin and Commit is a change like any other. On a store opened for reading only every
  // call that adds throws Automation_Error (no_access).
  Store_Writer& Writer();

  // Ends the group of changes under way, if there is one. Does nothing between the writer's Begin and Commit.
  // Throws Automation_Error when the changes could not be kept: all of the group have then not happened.
  void Commit_Pending();

  // What is wrong with the file, one line each; empty for a sound store. Reads all of it, which takes
  // seconds for a large one.
  std::vector<std::string> Check();

  // For the automation object that shows several stores as one session.
  const std::shared_ptr<sqlite::Store>& Inner() const { return store_; }

 private:
  std::shared_ptr<sqlite::Store> store_;
  std::unique_ptr<Store_Writer> writer_;
};

}  // namespace tidyfold
