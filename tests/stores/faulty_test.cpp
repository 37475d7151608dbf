#include <memory>
#include <string>

#include "stores/faulty/faulty_automation.h"
#include "stores/memory/memory_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

class Faulty_Store : public testing::Test {
 protected:
  Faulty_Store() {
    for (const char* subject : {"a", "b", "c"}) {
      New_Item item;
      item.subject = subject;
      last_id_ = store_.Add_Item(*store_.Folder({"Inbox"}), item);
    }
  }
  Items_Ptr Inbox() { return session_->GetDefaultFolder(default_folder_inbox)->Items(); }

  const Automation_Error error_{automation_error::busy, "Planned.", "Test"};
  Memory_Outlook outlook_;
  Memory_Store& store_ = outlook_.Add_Store("One");
  Fault_Plan plan_;
  Faulty_Automation faulty_{outlook_, plan_};
  std::shared_ptr<NameSpace> session_ = faulty_.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
  std::string last_id_;
};

TEST_F(Faulty_Store, Fails_The_Planned_Call_And_No_Other) {
  const auto items = Inbox();
  items->Item(1)->Delete();
  plan_.Fail_Call("Item.Delete", 2, error_);
  items->Item(1)->Delete();
  EXPECT_EQ(Error_Of([&] { items->Item(1)->Delete(); }), error_.Number());
  EXPECT_EQ(items->Count(), 1) << "a call that fails does nothing";
  items->Item(1)->Delete();
  EXPECT_EQ(items->Count(), 0);
  EXPECT_EQ(plan_.Calls("Item.Delete"), 4);
  EXPECT_EQ(plan_.Thrown(), 1);
}

TEST_F(Faulty_Store, Knows_An_Item_By_Whatever_Way_It_Came) {
  plan_.Fail_Where([&](const Store_Call& call) { return call.entry_id == last_id_; }, error_);
  const auto item = Inbox()->Item(3);
  EXPECT_EQ(Error_Of([&] { item->Subject(); }), error_.Number());
  EXPECT_EQ(Error_Of([&] { session_->GetItemFromID(last_id_, store_.StoreID()); }), error_.Number());
  store_.Folder({"Inbox"})->Items()->Remove(3);
  EXPECT_EQ(Error_Of([&] { item->Delete(); }), error_.Number()) << "even when it is gone";
  EXPECT_EQ(Inbox()->Item(2)->Subject(), "b");
  plan_.Forget_Faults();
  EXPECT_EQ(Error_Of([&] { item->Delete(); }), automation_error::not_found);
}

TEST_F(Faulty_Store, Decorates_What_Is_Reached_Through_Others) {
  plan_.Fail_Always("MAPIFolder.StoreID", error_);
  const auto item = Inbox()->Item(1);
  EXPECT_EQ(Error_Of([&] { item->Parent()->StoreID(); }), error_.Number());
  EXPECT_EQ(Error_Of([&] { item->Parent()->Parent()->Folders()->Item(1)->StoreID(); }), error_.Number());
  plan_.Fail_Where([](const Store_Call& call) { return call.member == "Items.Item" && call.index == 2; },
                   error_);
  EXPECT_EQ(Error_Of([&] { item->Parent()->Items()->Item(2); }), error_.Number());
}

TEST_F(Faulty_Store, Lets_Another_Program_Act_In_Front_Of_A_Call) {
  int seen = 0;
  plan_.on_call = [&](const Store_Call& call) {
    if (call.member != "Item.Delete") return;
    ++seen;
    Inbox()->Item(1)->Delete();  // another program's call, which is not shown to the hook
    plan_.on_call = nullptr;
  };
  const auto items = Inbox();
  const auto item = items->Item(1);
  EXPECT_EQ(item->Subject(), "a");
  item->Delete();
  EXPECT_EQ(Error_Of([&] { item->Subject(); }), automation_error::not_found)
      << "moved by the other program, and then removed from Deleted Items";
  EXPECT_EQ(items->Count(), 2);
  EXPECT_EQ(seen, 1);
}

}  // namespace
}  // namespace tidyfold
