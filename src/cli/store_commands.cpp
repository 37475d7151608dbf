// The commands that create and fill stores: sample, import.
#include <algorithm>
#include <optional>

#include "cli/commands.h"
#include "cli/folder_path.h"
#include "errors/automation_error.h"
#include "import/import.h"
#include "stores/sqlite/embedded_store.h"
#include "stores/sqlite/sample_store.h"
#include "stores/sqlite/store_draft.h"

namespace tidyfold::cli {

namespace {

class Import_Command {
 public:
  Import_Command(const Arguments& arguments, Terminal& terminal)
      : arguments_(arguments), terminal_(terminal) {}

  Exit_Status Run() {
    Read_Target();
    // Refuses bad sources before a store is created for them.
    for (const std::filesystem::path& source : arguments_.sources) Detect_Source(source);
    Find_Target();
    try {
      Check_Target();
      for (const std::filesystem::path& source : arguments_.sources) {
        Import(source);
        if (cancelled_) break;
      }
    } catch (...) {
      Put_Away();
      throw;
    }
    if (!keeps_any_) Put_Away();
    Report();
    if (cancelled_) {
      terminal_.Write_Error(
          "Cancelled; what was imported stays in the store. Import the same again to go on.");
      return Exit_Status::Cancelled;
    }
    if (!keeps_any_) return Exit_Status::Bad_Input;
    return failed_any_ ? Exit_Status::Not_All_Done : Exit_Status::Done;
  }

 private:
  void Read_Target() {
    if (arguments_.target) names_ = Parse_Folder_Path(*arguments_.target);
    if (std::any_of(names_.begin(), names_.end(), [](const std::string& name) { return name.empty(); }))
      Fail_Target(
          " has an empty name in it. Leave out a \"/\" at its end, and one of two that follow each other.");
  }

  // With several stores, the first name of the path is the store; without a path it is the first one.
  void Find_Target() {
    for (const std::filesystem::path& path : Store_Files(arguments_)) {
      if (arguments_.stores.size() == 1 || !arguments_.target) return Open(path);
      if (names_.empty()) break;
      const bool there = std::filesystem::exists(path);
      const auto candidate = there ? Embedded_Store::Open(path, Store_Mode::Read_Only) : nullptr;
      const std::string name = there ? candidate->Top_Folder()->Name() : path.stem().string();
      if (name != names_.front()) continue;
      if (!target_path_.empty()) Fail_Target(" fits more than one store. Name a single store.");
      target_path_ = path;
    }
    if (target_path_.empty())
      Fail_Target(" names no store. With several stores it begins with the name of a store's top folder.");
    names_.erase(names_.begin());
    Open(target_path_);
  }

  void Open(const std::filesystem::path& path) {
    target_path_ = path;
    // Open refuses anything else that exists there.
    created_ = !std::filesystem::exists(std::filesystem::symlink_status(path));
    store_ = created_ ? Embedded_Store::Create(path, path.stem().string())
                      : Embedded_Store::Open(path, Store_Mode::Read_Write,
                                             Told_On(terminal_, "Bringing the store up to date"));
  }

  [[noreturn]] void Fail_Target(const std::string& what) const {
    throw Failure(Exit_Status::Bad_Input, "The folder path \"" + *arguments_.target + "\"" + what);
  }

  // With equal names, mail could get into another folder than the one meant.
  void Check_Target() const {
    MAPIFolder_Ptr folder = store_->Top_Folder();
    for (const std::string& name : names_) {
      const Folders_Ptr children = folder->Folders();
      MAPIFolder_Ptr found;
      for (std::int32_t i = children->Count(); i >= 1; --i) {
        MAPIFolder_Ptr child = children->Item(i);
        if (child->Name() != name) continue;
        if (found != nullptr) Fail_Target(" leads to more than one folder. Choose another one.");
        found = std::move(child);
      }
      if (found == nullptr) return;
      folder = found;
    }
  }

  void Import(const std::filesystem::path& source) {
    Import_Options options;
    if (arguments_.target) options.folder_path = names_;
    options.merge = arguments_.merge;
    options.again = arguments_.again;
    options.progress = [&](std::int64_t found, std::optional<std::int64_t> total) {
      if (terminal_.Progress_Due()) {
        terminal_.Progress("Importing " + source.string() + "  " + std::to_string(found) +
                           (total ? " of " + std::to_string(*total) : ""));
      }
      return !terminal_.Interrupted();
    };
    try {
      reports_.push_back(Import_Source(source, store_->Writer(), options));
      const Import_Report& report = reports_.back();
      cancelled_ = report.cancelled;
      keeps_any_ = keeps_any_ || !cancelled_ || report.imported > 0;
      failed_any_ = failed_any_ || report.failed > 0 || !report.ended_by.empty();
      if (!report.ended_by.empty()) terminal_.Write_Error(source.string() + ": " + report.ended_by);
    } catch (const Import_Error& error) {
      terminal_.Write_Error(error.what());
      failed_any_ = true;
    } catch (const Automation_Error& error) {
      terminal_.Write_Error(source.string() + ": " + error.Description());
      failed_any_ = true;
    }
  }

  void Report() {
    for (const Import_Report& report : reports_) {
      const std::string source = Printable_Line(report.source) + ": ";
      terminal_.Write(source + Counts_Of(report) + "\n");
      for (const std::string& line : Details_Of(report))
        terminal_.Write(source + Printable_Line(line) + "\n");
    }
  }

  // Removes a store that was created in vain.
  void Put_Away() {
    store_.reset();
    if (created_) sqlite::Remove_File(target_path_);
  }

  const Arguments& arguments_;
  Terminal& terminal_;
  std::filesystem::path target_path_;
  std::vector<std::string> names_;  // of the target folder, below the store's top folder
  std::shared_ptr<Embedded_Store> store_;
  std::vector<Import_Report> reports_;
  bool created_ = false;
  bool keeps_any_ = false;  // of what was imported, so that the store stays
  bool failed_any_ = false;
  bool cancelled_ = false;
};

}  // namespace

Exit_Status Import(const Arguments& arguments, Terminal& terminal) {
  return Import_Command(arguments, terminal).Run();
}

Exit_Status Sample(const Arguments& arguments, Terminal& terminal) {
  const std::string file = arguments.sample_file.string();
  const auto progress = [&](std::int32_t written) {
    if (terminal.Progress_Due()) {
      terminal.Progress("Writing " + file + "  " + std::to_string(written) + " of " +
                        std::to_string(arguments.sample_items));
    }
    return !terminal.Interrupted();
  };
  if (!Make_Sample(arguments.sample_file, arguments.sample_name, arguments.sample_items,
                   arguments.sample_seed, progress)) {
    terminal.Write_Error("Cancelled; \"" + file + "\" was not written.");
    return Exit_Status::Cancelled;
  }
  terminal.Write(Printable_Line(file) + ": " + std::to_string(arguments.sample_items) + " items written\n");
  return Exit_Status::Done;
}

}  // namespace tidyfold::cli
