#include "stores/sqlite/embedded_outlook.h"

#include "stores/sqlite/other_process.h"
#include "stores/sqlite/temporary_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

class Outlook_Test : public testing::Test {
 protected:
  Outlook_Test() {
    for (const auto& file : {a_, b_}) Make_Small_Store(file);
  }
  std::shared_ptr<NameSpace> Session() {
    return outlook_.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
  }
  static MAPIFolder_Ptr Inbox_Of(const std::shared_ptr<NameSpace>& session, std::int32_t store) {
    return session->Folders()->Item(store)->Folders()->Item(5);
  }
  Temporary_Directory directory_;
  const fs::path a_ = directory_ / "a.tfs", b_ = directory_ / "b.tfs";
  Embedded_Outlook outlook_;
};

TEST_F(Outlook_Test, Opens_All_Or_None) {
  const auto session = Session();
  const fs::path missing = directory_ / "missing", again = directory_.Path() / "." / "a.tfs";
  EXPECT_EQ(Refusal(missing, [&] { outlook_.Open({a_, missing}); }), Reason::Missing);
  EXPECT_EQ(Refusal(again, [&] { outlook_.Open({a_, again}); }), Reason::Locked);
  EXPECT_EQ(session->Folders()->Count(), 0);
  outlook_.Open({b_});
  EXPECT_EQ(Refusal(b_, [&] { outlook_.Open({b_}); }), Reason::Locked);
  outlook_.Open({a_});
  EXPECT_EQ(Refusal(missing, [&] { outlook_.Replace({a_, missing}); }), Reason::Missing);
  EXPECT_EQ(session->Folders()->Count(), 2);
  EXPECT_EQ(outlook_.Stores()[1]->Path(), a_);
}

// A loop over a store must be able to end after another store has replaced it.
TEST_F(Outlook_Test, Objects_Outlive_The_Replacement_Of_Their_Store) {
  outlook_.Open({a_});
  const auto session = Session();
  auto folder = Inbox_Of(session, 1);
  const std::string id = folder->Items()->Item(2)->EntryID(), old_store = folder->StoreID();
  outlook_.Replace({b_});
  folder->Items()->Item(1)->Delete();
  EXPECT_EQ(folder->Items()->Item(1)->Subject(), "2");
  EXPECT_NE(session->Folders()->Item(1)->StoreID(), old_store);
  EXPECT_EQ(Error_Of([&] { session->GetItemFromID(id, old_store); }), automation_error::not_found);
  // Back again, while the old objects are still held.
  outlook_.Replace({a_, b_});
  EXPECT_EQ(session->GetItemFromID(id, old_store)->Subject(), "2");
  EXPECT_EQ(Inbox_Of(session, 1)->Items()->Count(), 2);
  outlook_.Replace({});
  EXPECT_EQ(Refusal(a_, Store_Mode::Read_Only), Reason::Locked);
  folder.reset();
  EXPECT_EQ(Subjects_Of(*Embedded_Store::Open(a_, Store_Mode::Read_Only), "Inbox"), "2 3");
}

TEST_F(Outlook_Test, A_Store_That_Leaves_Keeps_Its_Deletions) {
  EXPECT_EQ(In_Killed_Process([&] {
              outlook_.Open({a_, b_});
              const auto first = Inbox_Of(Session(), 1), second = Inbox_Of(Session(), 2);
              first->Items()->Remove(1);
              second->Items()->Remove(1);
              outlook_.Replace({b_});
              second->Items()->Remove(1);
              return second->Items()->Count();
            }),
            1);
  EXPECT_EQ(Subjects_Of(*Embedded_Store::Open(a_, Store_Mode::Read_Only), "Inbox"), "2 3");
  EXPECT_EQ(Subjects_Of(*Embedded_Store::Open(b_, Store_Mode::Read_Only), "Inbox"), "2 3");
}

// A backup copy has the identity of its original.
TEST_F(Outlook_Test, A_Copy_Beside_Its_Original_Is_Another_Store) {
  const fs::path copy = directory_ / "copy.tfs";
  fs::copy_file(a_, copy);
  outlook_.Open({a_});
  outlook_.Replace({copy, a_});
  const auto session = Session();
  const auto from_copy = Inbox_Of(session, 1), from_original = Inbox_Of(session, 2);
  EXPECT_EQ(from_copy->EntryID(), from_original->EntryID());
  ASSERT_NE(from_copy->StoreID(), from_original->StoreID());
  session->GetItemFromID(from_copy->Items()->Item(2)->EntryID(), from_copy->StoreID())->Delete();
  EXPECT_EQ(from_copy->Items()->Count(), 2);
  EXPECT_EQ(from_original->Items()->Count(), 3);
  EXPECT_EQ(outlook_.Place_Of_Store(from_original->StoreID()), a_.string());
}

}  // namespace
}  // namespace tidyfold
