#include "stores/sqlite/embedded_outlook.h"
#include "stores/sqlite/temporary_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

class Two_Embedded_Stores : public Store_Under_Test {
 public:
  Two_Embedded_Stores() {
    for (const char* name : {"One", "Two"}) {
      auto store = Embedded_Store::Create(directory_ / name, name);
      const auto folders = store->Top_Folder()->Folders();
      while (folders->Count() > 0) folders->Remove(folders->Count());
      outlook_.Add(std::move(store));
    }
  }
  Automation& Outlook() override { return outlook_; }
  Store_Writer& Writer(int number) override {
    return outlook_.Stores()[static_cast<std::size_t>(number - 1)]->Writer();
  }

 private:
  Temporary_Directory directory_;
  Embedded_Outlook outlook_;
};

INSTANTIATE_TEST_SUITE_P(
    Stores, Store_Contract,
    testing::Values(Store_Kind{"Sqlite", [] { return std::make_unique<Two_Embedded_Stores>(); }},
                    Store_Kind{"Faulty_Sqlite",
                               [] { return Decorated(std::make_unique<Two_Embedded_Stores>()); }}),
    Kind_Name);

}  // namespace
}  // namespace tidyfold
