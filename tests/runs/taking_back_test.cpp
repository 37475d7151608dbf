#include "errors/automation_error.h"
#include "runs/taking_back_fixture.h"
#include "stores/faulty/faulty_automation.h"
#include "stores/memory/memory_store.h"

namespace tidyfold {
namespace {

using Ending = Taking_Back_Report::Ending;

struct Stores {
  Memory_Outlook outlook;
  Memory_Store& store = outlook.Add_Store("Personal");
  Fault_Plan plan;
  Faulty_Automation automation{outlook, plan};
};

class Taking_Back_Test : public Stores, public Taking_Back_Fixture {
 protected:
  Taking_Back_Test() : Taking_Back_Fixture(Stores::automation) {
    lists = store.Add_Folder(*store.Folder({"Inbox"}), "Lists", item_type::appointment);
    cooking = store.Add_Folder(*lists, "Cook/ing", item_type::note);
    ids = Add_Items(store, *cooking, 5);
  }
  std::string Place(const std::string& id) const { return Taking_Back_Fixture::Place(id, store.StoreID()); }
  std::int64_t Clean_All(Item_Action action = Item_Action::Moved, Item_Result result = Item_Result::Done) {
    return Clean(ids, store.StoreID(), action, result);
  }
  static void Remove(MAPIFolder& parent, const std::string& name) {
    for (std::int32_t i = parent.Folders()->Count(); i >= 1; --i)
      if (parent.Folders()->Item(i)->Name() == name) parent.Folders()->Remove(i);
  }
  void Expect_All_Back(const std::string& path = "Inbox/Lists/Cook\\/ing") {
    for (const std::string& id : ids) EXPECT_EQ(Place(id), path) << id;
  }

  MAPIFolder_Ptr lists, cooking;
  std::vector<std::string> ids;
};

TEST_F(Taking_Back_Test, PutsEverythingBackOnceAndInOrder) {
  const std::int64_t run = Clean_All();
  EXPECT_EQ(Place(ids[0]), "Deleted Items");
  Confirm(Answer::Cancel);
  EXPECT_EQ(taking_back.Take_Back_Run().ending, Ending::Refused);
  EXPECT_EQ(Place(ids[0]), "Deleted Items");

  Confirm();
  Expect_Told("5 items were put back.");
  const Taking_Back_Report report = taking_back.Take_Back_Run();
  EXPECT_EQ(report.ending, Ending::Done);
  EXPECT_TRUE(report.Complete());
  EXPECT_EQ(cooking->Items()->Count(), 5);
  for (int i = 1; i <= 5; ++i)
    EXPECT_EQ(cooking->Items()->Item(i)->EntryID(), ids[static_cast<std::size_t>(i - 1)]);
  EXPECT_EQ(log.Run(run)->taken_back, report.run);
  EXPECT_EQ(log.Run(report.run)->outcome.processed, 5);
  EXPECT_EQ(Items(log, report.run)[4].result, Item_Result::Done);

  Expect_Told("There is no run to take back.");
  EXPECT_EQ(taking_back.Take_Back_Run().ending, Ending::Nothing_To_Do);
  Expect_Told("5 items were put back before.");
  EXPECT_EQ(taking_back.Take_Back_Run(run).ending, Ending::Nothing_To_Do);
  Expect_Told("Only a run that deleted can be taken back.");
  EXPECT_EQ(taking_back.Take_Back_Run(report.run).ending, Ending::Refused);
}

TEST_F(Taking_Back_Test, MakesFoldersAgainOnlyWhereTheyAreGone) {
  struct Case {
    std::function<void()> change;
    const char* path;
    bool made;
  };
  const MAPIFolder_Ptr inbox = store.Folder({"Inbox"}), trash = store.Folder({"Deleted Items"});
  const Case cases[] = {
      {[&] { store.Rename_Folder(*cooking, "Kitchen"); }, "Inbox/Lists/Kitchen", false},
      {[&] { store.Move_Folder(*cooking, *inbox); }, "Inbox/Kitchen", false},
      {[&] { store.Move_Folder(*cooking, *trash); }, "Inbox/Kitchen", true},
      {[&] { store.Add_Folder(*inbox, "Kitchen", item_type::mail); }, "Inbox/Kitchen", false},
      {[&] { Remove(*inbox, "Kitchen"), Remove(*inbox, "Kitchen"); }, "Inbox/Kitchen", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    Clean_All();
    c.change();
    Confirm();
    Expect_Told("5 items were put back.");
    const Taking_Back_Report report = taking_back.Take_Back_Run();
    EXPECT_TRUE(report.Complete());
    EXPECT_EQ(report.folders_made, c.made);
    Expect_All_Back(c.path);
    EXPECT_EQ(session.name_space->GetItemFromID(ids[0], store.StoreID())->Parent()->DefaultItemType(),
              item_type::note);
  }
}

TEST_F(Taking_Back_Test, MakesAWholeBranchAgain) {
  std::vector<std::string> all = Add_Items(store, *lists, 1);
  all.insert(all.begin(), ids.begin(), ids.end());
  Clean(all, store.StoreID());
  Remove(*store.Folder({"Inbox"}), "Lists");
  // The first folder that was made again goes while the items come back.
  events.At_Yield(2, [&] { Remove(*store.Folder({"Inbox", "Lists"}), "Cook/ing"); });
  Confirm();
  Expect_Told("6 items were put back.");
  const Taking_Back_Report report = taking_back.Take_Back_Run();
  EXPECT_TRUE(report.folders_made);
  EXPECT_EQ(Place(ids[4]), "Inbox/Lists/Cook\\/ing");
  EXPECT_EQ(Place(all[5]), "Inbox/Lists");
  EXPECT_EQ(store.Folder({"Inbox", "Lists"})->DefaultItemType(), item_type::appointment);
  EXPECT_EQ(store.Folder({"Inbox", "Lists", "Cook/ing"})->DefaultItemType(), item_type::note);
}

TEST_F(Taking_Back_Test, NamesWhatCannotBePutBack) {
  struct Case {
    const char* reason;
    std::function<void(const std::string& id)> change;
    Item_Result result = Item_Result::Failed;
  };
  const auto changed = [&](auto&& change) {
    return [this, change](const std::string& id) { store.Change_Item(id, change); };
  };
  const Case cases[] = {
      {"its subject is another", changed([](New_Item& item) { item.subject = "New"; }), Item_Result::Changed},
      {"its type is another", changed([](New_Item& item) { item.item_class = item_class::post; }),
       Item_Result::Changed},
      {"It lies in \"Inbox\" now.",
       [&](const std::string& id) { store.Move_Item(id, *store.Folder({"Inbox"})); }},
      {"no longer there", [&](const std::string& id) { store.Item(id)->Delete(); }},
      {"Planned.",
       [&](const std::string& id) {
         plan.Fail_Where(
             [id](const Store_Call& call) { return call.member == "Item.Move" && call.entry_id == id; },
             Automation_Error(automation_error::busy, "Planned.", "Test"));
       }},
  };
  ids = Add_Items(store, *cooking, static_cast<int>(std::size(cases)) + 1);
  Clean_All();
  for (std::size_t i = 0; i < std::size(cases); ++i) cases[i].change(ids[i]);
  Confirm();
  Expect_Told("1 item was put back.\r\n\r\n5 items could not be put back:\r\nCook/ing 1: ");
  const Taking_Back_Report report = taking_back.Take_Back_Run();
  EXPECT_EQ(Place(ids.back()), "Inbox/Lists/Cook\\/ing");
  ASSERT_EQ(report.not_put_back.size(), std::size(cases));
  const std::vector<Logged_Item> noted = Items(log, report.run);
  ASSERT_EQ(noted.size(), ids.size());
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_NE(report.not_put_back[i].reason.find(cases[i].reason), std::string::npos)
        << report.not_put_back[i].reason << " for " << cases[i].reason;
    EXPECT_EQ(noted[i].result, cases[i].result) << cases[i].reason;
    EXPECT_EQ(noted[i].reason, report.not_put_back[i].reason);
  }
  EXPECT_EQ(log.Last_To_Take_Back()->run, report.undo_of) << "What failed can be tried again.";
}

TEST_F(Taking_Back_Test, OfAKilledRunPutsBackWhatWasMoved) {
  // The last two were noted, but not changed any more.
  const std::vector<std::string> stay(ids.end() - 2, ids.end());
  Clean_All(Item_Action::Moved, Item_Result::Begun);
  for (const std::string& id : stay) store.Move_Item(id, *cooking);
  Confirm();
  Expect_Told("3 items were put back.");
  EXPECT_TRUE(taking_back.Take_Back_Run().Complete());
  Expect_All_Back();

  // One lies in Deleted Items on its way out, the others have gone.
  Clean_All(Item_Action::Deleted, Item_Result::Begun);
  ids = Add_Items(store, *cooking, 1);
  const std::int64_t run = log.Begin({}, now);
  Logged_Item on_its_way = Describe(*store.Item(ids[0]));
  on_its_way.action = Item_Action::Deleted;
  log.Note(on_its_way);
  log.End({}, now);
  store.Item(ids[0])->Delete();
  Confirm();
  Expect_Told("1 item was put back.");
  EXPECT_TRUE(taking_back.Take_Back_Run(run).Complete());
  Expect_All_Back();
  Confirm();
  Expect_Told("5 items were deleted for good");
  const Taking_Back_Report report = taking_back.Take_Back_Run(run - 1);
  EXPECT_EQ(report.gone_for_good, 5);
  EXPECT_FALSE(report.Complete());
}

TEST_F(Taking_Back_Test, CanBeCancelledAndGoneOnWith) {
  const std::int64_t run = Clean_All();
  events.At_Yield(2, [&] {
    EXPECT_EQ(taking_back.Take_Back_Run().run, 0) << "One at a time.";
    taking_back.Cancel();
  });
  Confirm();
  Expect_Told("2 items were put back.\r\nCancelled");
  EXPECT_EQ(taking_back.Take_Back_Run().ending, Ending::Cancelled);
  EXPECT_EQ(log.Run(run)->taken_back, 0);
  Confirm();
  Expect_Told("3 items were put back.");
  EXPECT_TRUE(taking_back.Take_Back_Run().Complete());
  EXPECT_NE(box.last_review.Text().find("2 items were put back before."), std::string::npos);
  Expect_All_Back();
}

TEST_F(Taking_Back_Test, EndsWithTheStoreAndWithTheLog) {
  Clean_All();
  const Automation_Error gone(automation_error::unavailable, "Outlook was closed.", "Test");
  plan.Fail_Call("Item.Move", 3, gone);
  Confirm();
  Expect_Told("2 items were put back.");
  Expect_Told("Outlook was closed.");
  EXPECT_EQ(taking_back.Take_Back_Run().ending, Ending::Broken_Off);
  events.At_Yield(events.Yields() + 1, [&] { Run_Sql(file, "DROP TABLE result"); });
  Confirm();
  Expect_Told("It ended early: The log of runs");
  const Taking_Back_Report report = taking_back.Take_Back_Run();
  EXPECT_EQ(report.ending, Ending::Broken_Off);
  EXPECT_LT(report.put_back, 3);
  EXPECT_EQ(Place(ids[4]), "Deleted Items");
}

TEST_F(Taking_Back_Test, PutsSingleItemsBackWithoutAQuestion) {
  Clean_All();
  const std::vector<std::string> others = Add_Items(store, *store.Folder({"Deleted Items"}), 1);
  EXPECT_TRUE(taking_back.Put_Back({{ids[1], store.StoreID()}, {ids[3], store.StoreID()}}).Complete());
  EXPECT_EQ(Place(ids[1]), "Inbox/Lists/Cook\\/ing");
  EXPECT_EQ(Place(ids[0]), "Deleted Items");
  Expect_Told("Deleted Items 1: The log of runs does not tell where it came from.");
  EXPECT_FALSE(taking_back.Put_Back({{others[0], store.StoreID()}}).Complete());
  Confirm();
  Expect_Told("3 items were put back.");
  EXPECT_TRUE(taking_back.Take_Back_Run().Complete());
  Expect_All_Back();
}

}  // namespace
}  // namespace tidyfold
