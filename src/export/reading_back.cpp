#include "export/reading_back.h"

#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>

#include "errors/automation_error.h"
#include "import/import_run.h"
#include "import/mail_tree.h"
#include "mail/item_identity.h"

namespace tidyfold {
namespace {

[[noreturn]] void Refuse() {
  throw Automation_Error(automation_error::not_supported, "This folder only stands for others.", "Tidyfold");
}

// All folders are one: whatever is added to it is compared.
class Any_Folder final : public MAPIFolder, public Folders {
 public:
  MAPIFolder_Ptr Parent() override { return {}; }
  std::int32_t DefaultItemType() override { return item_type::mail; }
  std::string EntryID() override { return {}; }
  std::string StoreID() override { return {}; }
  std::string Name() override { return {}; }
  Folders_Ptr Folders() override { return std::make_shared<Any_Folder>(); }
  Items_Ptr Items() override { Refuse(); }
  Table_Ptr GetTable() override { Refuse(); }
  Store_Ptr Store() override { Refuse(); }
  std::int32_t Count() override { return 0; }
  MAPIFolder_Ptr Item(std::int32_t) override { Refuse(); }
  MAPIFolder_Ptr Add(const std::string&, std::int32_t) override { return std::make_shared<Any_Folder>(); }
  void Remove(std::int32_t) override { Refuse(); }
};

class Comparing_Writer final : public Store_Writer {
 public:
  explicit Comparing_Writer(std::vector<Written_Item> written) {
    for (Written_Item& item : written) expected_.emplace(item.fingerprint, std::move(item.where));
  }

  MAPIFolder_Ptr Top_Folder() override { return std::make_shared<Any_Folder>(); }
  MAPIFolder_Ptr Add_Folder(MAPIFolder&, const std::string&, std::int32_t) override { return Top_Folder(); }
  std::string Add_Item(MAPIFolder&, const New_Item& item) override {
    const auto found = expected_.find(Item_Fingerprint(item));
    if (found != expected_.end()) expected_.erase(found);
    return {};
  }
  std::int64_t Count_Of(std::int64_t) override { return 0; }
  void Begin() override {}
  void Commit() override {}
  void Roll_Back() override {}

  std::vector<Written_Item> Missing() const {
    std::vector<Written_Item> missing;
    for (const auto& [fingerprint, where] : expected_) missing.push_back({fingerprint, where});
    return missing;
  }

 private:
  std::unordered_multimap<std::int64_t, std::string> expected_;
};

}  // namespace

std::vector<Written_Item> Missing_In(const std::filesystem::path& directory,
                                     std::vector<Written_Item> written, const std::function<bool()>& tick) {
  Comparing_Writer writer(std::move(written));
  Import_Options options;
  options.merge = options.again = true;
  options.progress = [&](std::int64_t, std::optional<std::int64_t>) { return tick(); };
  try {
    Import_Run run(directory, writer, options);
    Import_Directory(directory, run);
  } catch (const Import_Cancelled&) {
    return {};
  }
  return writer.Missing();
}

}  // namespace tidyfold
