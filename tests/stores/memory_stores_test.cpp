#include "stores/memory/memory_store.h"

#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

class Two_Memory_Stores : public Store_Under_Test {
 public:
  Two_Memory_Stores() {
    outlook_.Add_Store("One", Memory_Outlook::Default_Folders::None);
    outlook_.Add_Store("Two", Memory_Outlook::Default_Folders::None);
  }
  Automation& Outlook() override { return outlook_; }
  Store_Writer& Writer(int number) override { return outlook_.Store(static_cast<std::size_t>(number)); }

 private:
  Memory_Outlook outlook_;
};

INSTANTIATE_TEST_SUITE_P(
    Stores, Store_Contract,
    testing::Values(Store_Kind{"Memory", [] { return std::make_unique<Two_Memory_Stores>(); }},
                    Store_Kind{"Faulty_Memory",
                               [] { return Decorated(std::make_unique<Two_Memory_Stores>()); }}),
    Kind_Name);

TEST(Memory_Store, Lets_Another_Program_Move_And_Rename) {
  Memory_Outlook outlook;
  Memory_Store& store = outlook.Add_Store("One");
  const auto inbox = store.Folder({"Inbox"}), drafts = store.Folder({"Drafts"});
  const std::string id = store.Add_Item(*inbox, {});
  const Item_Ptr item = inbox->Items()->Item(1);
  store.Move_Item(id, *drafts);
  store.Move_Folder(*drafts, *inbox);
  store.Rename_Folder(*drafts, "Renamed");
  store.Change_Item(id, [](New_Item& changed) { changed.subject = "changed"; });
  EXPECT_EQ(item->Parent()->EntryID(), store.Folder({"Inbox", "Renamed"})->EntryID());
  EXPECT_EQ(store.Item(id)->Subject(), "changed");
  EXPECT_EQ(store.Reads(id), 1) << "only what Items.Item hands out counts";
  EXPECT_EQ(store.Top_Folder()->Folders()->Count(), 9);
  EXPECT_EQ(Error_Of([&] { store.Move_Folder(*inbox, *drafts); }), automation_error::call_failed);
}

}  // namespace
}  // namespace tidyfold
