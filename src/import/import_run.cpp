#include "import/import_run.h"

#include <algorithm>
#include <iterator>

#include "base/text.h"
#include "mail/charset.h"
#include "mail/item_identity.h"
#include "outlook/default_folders.h"

namespace tidyfold {

Import_Run::Import_Run(const std::filesystem::path& source, Store_Writer& writer,
                       const Import_Options& options)
    : writer_(writer), options_(options), last_tick_(std::chrono::steady_clock::now()) {
  report_.source = Valid_Utf8(source.string());
  // "mail/" and "." have no file name.
  std::filesystem::path whole = std::filesystem::absolute(source).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  // A folder's name may hold dots; only that of an Apple mailbox ends in a suffix.
  const bool whole_name = std::filesystem::is_directory(whole) && whole.extension() != ".mbox";
  default_folder_ = whole_name ? whole.filename().string() : whole.stem().string();
  if (default_folder_.empty()) default_folder_ = "Imported";
  // Mail from elsewhere does not mix with the store's own unasked.
  const bool is_default = std::any_of(
      std::begin(default_folders), std::end(default_folders),
      [&](const Default_Folder& folder) { return Upper_Case(folder.name) == Upper_Case(default_folder_); });
  if (!options.merge && is_default) default_folder_ += " (imported)";
  top_ = writer_.Top_Folder();
}

MAPIFolder_Ptr Import_Run::Target_Folder(std::int32_t default_item_type) {
  if (target_) return target_;
  if (!options_.folder_path) return target_ = Folder(top_, default_folder_, default_item_type);
  MAPIFolder_Ptr folder = top_;
  for (const std::string& name : *options_.folder_path) folder = Folder(folder, name, default_item_type);
  return target_ = folder;
}

MAPIFolder_Ptr Import_Run::Tree_Folder() {
  return options_.merge ? top_ : Target_Folder();
}

MAPIFolder_Ptr Import_Run::Folder(const MAPIFolder_Ptr& parent, std::string_view name,
                                  std::int32_t default_item_type) {
  const auto [found, unread] = children_.try_emplace(parent->EntryID());
  Children& children = found->second;
  if (unread) {
    const Folders_Ptr folders = parent->Folders();
    const std::int32_t count = folders->Count();
    for (std::int32_t i = 1; i <= count; ++i) {
      const MAPIFolder_Ptr child = folders->Item(i);
      children.try_emplace(child->Name(), child);
      Tick();
    }
  }
  const std::string line = One_Line(name);
  MAPIFolder_Ptr& child = children[line];
  if (!child) child = writer_.Add_Folder(*parent, line, default_item_type);
  return child;
}

// An item that lies in the source twice goes in twice, and neither copy goes in again: the n-th is there
// already if the store had n of them before.
bool Import_Run::Is_There_Already(const New_Item& item) {
  if (options_.again || item.identity == 0) return false;
  const auto [found, first] = copies_.try_emplace(item.identity);
  Copies& copies = found->second;
  if (first) copies.before = static_cast<std::int32_t>(writer_.Count_Of(item.identity));
  return ++copies.met <= copies.before;
}

void Import_Run::Add(MAPIFolder& folder, New_Item item) {
  item.identity = Item_Identity(item);
  if (Is_There_Already(item)) {
    ++report_.there_already;
  } else {
    writer_.Add_Item(folder, item);
    ++report_.imported;
    ++items_in_portion_;
    bytes_in_portion_ += item.size;
  }
  ++report_.found;
  if (items_in_portion_ >= portion_items || bytes_in_portion_ >= portion_bytes) {
    End_Portion();
  }
  Tick();
}

void Import_Run::End_Portion() {
  writer_.Commit();
  has_committed_ = true;
  items_in_portion_ = bytes_in_portion_ = 0;
  writer_.Begin();
}

Import_Report Import_Run::Report_Of_Committed() const {
  Import_Report report = report_;
  report.found -= items_in_portion_;
  report.imported -= items_in_portion_;
  return report;
}

std::string Import_Run::In_File(std::string_view where) const {
  if (file_.empty()) return One_Line(where);
  return One_Line(where.empty() ? file_ : file_ + ", " + std::string(where));
}

void Import_Run::Fail(std::string_view where, std::string_view why) {
  report_.failures.push_back({In_File(where), One_Line(why)});
  ++report_.found;
  ++report_.failed;
  Tick();
}

void Import_Run::Doubt(std::string_view where, std::string_view why) {
  report_.doubts.push_back({In_File(where), One_Line(why)});
}

void Import_Run::Leave_Out(std::string_view where, std::string_view why) {
  report_.left_out.push_back({In_File(where), One_Line(why)});
  ++report_.found;
  Tick();
}

void Import_Run::Tick() {
  if (!options_.progress) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - last_tick_ < period) return;
  const bool go_on = options_.progress(report_.found, total_);
  last_tick_ = std::chrono::steady_clock::now();
  if (!go_on) throw Import_Cancelled{};
}

}  // namespace tidyfold
