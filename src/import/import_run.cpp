#include "import/import_run.h"

#include "base/text.h"
#include "import/charset.h"
#include "outlook/default_folders.h"

namespace tidyfold {

Import_Run::Import_Run(const std::filesystem::path& source, Store_Writer& writer,
                       const Import_Options& options)
    : writer_(writer), options_(options), last_tick_(std::chrono::steady_clock::now()) {
  report_.source = Valid_Utf8(source.string());
  // "mail/" and "." have no file name.
  std::filesystem::path whole = std::filesystem::absolute(source).lexically_normal();
  if (!whole.has_filename()) whole = whole.parent_path();
  default_folder_ = std::filesystem::is_directory(whole) ? whole.filename().string() : whole.stem().string();
  if (default_folder_.empty()) default_folder_ = "Imported";
  top_ = writer_.Top_Folder();
}

MAPIFolder_Ptr Import_Run::Target_Folder() {
  if (!options_.folder_path) return Folder(top_, default_folder_, item_type::mail);
  MAPIFolder_Ptr folder = top_;
  for (const std::string& name : *options_.folder_path) folder = Folder(folder, name, item_type::mail);
  return folder;
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

MAPIFolder_Ptr Import_Run::Deleted_Items() {
  return Folder(top_, deleted_items_name, item_type::mail);
}

void Import_Run::Add(MAPIFolder& folder, const New_Item& item) {
  writer_.Add_Item(folder, item);
  ++report_.found;
  ++report_.imported;
  Tick();
}

void Import_Run::Fail(std::string_view where, std::string_view why) {
  report_.failures.push_back({One_Line(where), One_Line(why)});
  ++report_.found;
  ++report_.failed;
  Tick();
}

void Import_Run::Doubt(std::string_view where, std::string_view why) {
  report_.doubts.push_back({One_Line(where), One_Line(why)});
}

void Import_Run::Leave_Out(std::string_view where, std::string_view why) {
  report_.left_out.push_back({One_Line(where), One_Line(why)});
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
