#include <algorithm>
#include <limits>
#include <map>
#include <set>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "stores/store_under_test.h"

namespace tidyfold {

using automation_error::bad_index;
using automation_error::not_found;

TEST_P(Store_Contract, Indexes_Count_From_One) {
  const auto inbox = Add_Folder(1, "Inbox");
  for (const char* subject : {"a", "b", "c"}) Add_Item(1, inbox, subject);
  for (const char* name : {"first", "second"}) Add_Folder(1, name, inbox);
  const auto folder = Open(1, {1});
  EXPECT_EQ(Subjects(folder), "a b c");
  EXPECT_EQ(folder->Folders()->Item(2)->Name(), "second");
  constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
  constexpr auto highest = std::numeric_limits<std::int32_t>::max();
  for (const std::int32_t index : {lowest, -1, 0, 4, highest}) {
    EXPECT_EQ(Error_Of([&] { folder->Items()->Item(index); }), bad_index) << index;
    EXPECT_EQ(Error_Of([&] { folder->Items()->Remove(index); }), bad_index) << index;
    EXPECT_EQ(Error_Of([&] { folder->Folders()->Item(index); }), bad_index) << index;
    EXPECT_EQ(Error_Of([&] { folder->Folders()->Remove(index); }), bad_index) << index;
    EXPECT_EQ(Error_Of([&] { session_->Folders()->Item(index); }), bad_index) << index;
  }
  EXPECT_EQ(folder->Items()->Count(), 3);
  EXPECT_EQ(folder->Folders()->Count(), 2);
}

// Enough items for stores that read ahead or in batches.
TEST_P(Store_Contract, Collections_Are_Live_While_Items_Come_And_Go) {
  constexpr int count = 700;
  Add_Folder(1, "Deleted Items");
  const auto inbox = Add_Folder(1, "Inbox");
  for (int number = 1; number <= count; ++number) Add_Item(1, inbox, std::to_string(number));
  const Items_Ptr items = Open(1, {2})->Items();
  const Items_Ptr others = Open(1, {2})->Items();
  // Forwards, while another program removes what has just been read ahead.
  EXPECT_EQ(items->Item(1)->Subject(), "1");
  EXPECT_EQ(items->Item(2)->Subject(), "2");
  others->Remove(3);
  others->Remove(1);
  EXPECT_EQ(items->Item(2)->Subject(), "4");
  EXPECT_EQ(items->Count(), count - 2);
  Add_Item(1, inbox, "new");
  EXPECT_EQ(items->Item(items->Count())->Subject(), "new");
  // Backwards, alternately for good and into Deleted Items; every third stays.
  for (std::int32_t index = items->Count(); index >= 1; --index) {
    const std::int32_t before = items->Count();
    if (index % 3 == 1) items->Remove(index);
    if (index % 3 == 2) items->Item(index)->Delete();
    if (index > count - 6) stores_->Carry_Out_Changes();
    EXPECT_EQ(items->Count(), index % 3 == 0 ? before : before - 1) << index;
  }
  EXPECT_EQ(items->Count(), (count - 1) / 3);
  EXPECT_EQ(items->Item(2)->Subject(), "8");
  EXPECT_EQ(items->Item(items->Count())->Subject(), "new");
  EXPECT_EQ(Open(1, {1})->Items()->Item(1)->Subject(), "700") << "what is moved goes to the end";
  while (items->Count() > 0) items->Item(1)->Delete();
  EXPECT_EQ(Open(1, {1})->Items()->Count(), 233 + 233);
}

TEST_P(Store_Contract, Items_Of_Every_Class_Keep_Every_Property) {
  if (!stores_->Is_Own_Store()) GTEST_SKIP() << "holds mail only";
  const auto utils = stores_->Outlook().Create_Mapi_Utils("TidyDll.TidyMAPIUtils");
  const auto folder = Add_Folder(1, "Everything", nullptr, item_type::task);
  const std::int32_t classes[] = {26, 40, 42, 43, 44, 45, 46, 48, 49, 50, 51, 52, 53, 54, 55, 56, 57, 69};
  for (const std::int32_t item_class : classes) {
    New_Item item;
    item.item_class = item_class;
    item.sender = "Zoë";
    item.subject = "Subject " + std::to_string(item_class);
    item.body = "Text";
    item.unread = item_class % 2 == 0;
    item.flagged = item_class % 3 == 1;
    item.size = 1000 + item_class;
    if (item_class % 4 == 0) item.attachments = {{"file.txt", 5}};
    // Each date is missing in some class; no two dates are equal.
    Date* dates[] = {&item.received, &item.last_modified, &item.completed, &item.due, &item.end};
    for (int date = 0; date < 5; ++date) {
      if (item_class % 5 != date) *dates[date] = 45000 + item_class + date * 0.125;
    }
    const std::string id = stores_->Writer(1).Add_Item(*folder, item);
    const Item_Ptr read = Open(1, {1})->Items()->Item(Open(1, {1})->Items()->Count());
    SCOPED_TRACE(item_class);
    EXPECT_EQ(read->EntryID(), id);
    EXPECT_EQ(read->Class(), item_class);
    EXPECT_EQ(read->Subject(), item.subject);
    EXPECT_EQ(read->Body(), "Text");
    EXPECT_EQ(read->UnRead(), item.unread);
    EXPECT_EQ(read->FlagStatus(), item.flagged ? flag_status::marked : flag_status::none);
    EXPECT_EQ(read->Size(), stores_->Tells_Sizes() ? item.size : 0);
    EXPECT_EQ(read->ReceivedTime(), item.received);
    EXPECT_EQ(read->LastModificationTime(), item.last_modified);
    EXPECT_EQ(read->DateCompleted(), item.completed);
    EXPECT_EQ(read->DueDate(), item.due);
    EXPECT_EQ(read->End(), item.end);
    EXPECT_EQ(read->Parent()->EntryID(), folder->EntryID());
    EXPECT_EQ(utils->HrGetOneProp(*read->MAPIOBJECT(), sender_name_tag), "Zoë");
    EXPECT_EQ(utils->HrGetOneProp(*read->MAPIOBJECT(), 0x1234001E), "") << "an absent property";
    const Table_Row row = Rows(Open(1, {1})).back();
    EXPECT_EQ(row.EntryID, id);
    EXPECT_EQ(row.Class, item_class);
    EXPECT_EQ(row.Subject, item.subject);
    EXPECT_EQ(row.SenderOrText, item_class == item_class::mail ? "Zoë" : "Text");
    EXPECT_EQ(row.UnRead, item.unread);
    EXPECT_EQ(row.FlagStatus, item.flagged ? flag_status::marked : flag_status::none);
    EXPECT_EQ(row.Size, item.size);
    EXPECT_EQ(row.HasAttachments, !item.attachments.empty());
    EXPECT_EQ(row.ReceivedTime, item.received);
    EXPECT_EQ(row.LastModificationTime, item.last_modified);
    EXPECT_EQ(row.DateCompleted, item.completed);
    EXPECT_EQ(row.DueDate, item.due);
    EXPECT_EQ(row.End, item.end);
  }
}

// Three items go and three come while the table is read: what stays has one row, and what is new comes last.
TEST_P(Store_Contract, A_Table_Gives_Each_Item_That_Stays_Once_And_In_Order) {
  Add_Folder(1, "Deleted Items");
  const auto inbox = Add_Folder(1, "Inbox");
  std::vector<std::string> ids;
  for (int number = 0; number < 300; ++number) ids.push_back(Add_Item(1, inbox, std::to_string(number)));
  const auto folder = Open(1, {2});
  const Table_Ptr table = folder->GetTable();
  std::vector<Table_Row> rows = table->GetArray(100);
  ASSERT_EQ(rows.size(), 100U);
  for (const int gone : {250, 99, 5}) {
    folder->Items()->Remove(gone + 1);
    ids[static_cast<std::size_t>(gone)] = "";
    ids.push_back(Add_Item(1, inbox, "new"));
  }
  for (std::vector<Table_Row> more = table->GetArray(7); !more.empty(); more = table->GetArray(90))
    rows.insert(rows.end(), more.begin(), more.end());
  ids.push_back(Add_Item(1, inbox, "late"));
  for (const Table_Row& late : table->GetArray(90)) rows.push_back(late);
  std::vector<std::string> given;
  for (const Table_Row& row : rows)
    if (std::find(ids.begin(), ids.end(), row.EntryID) != ids.end()) given.push_back(row.EntryID);
  std::erase(ids, "");
  EXPECT_EQ(given, ids);
  EXPECT_LE(rows.size(), ids.size() + 3);
  EXPECT_EQ(Rows(Open(1, {1})).size(), 0U) << "an empty folder";
}

// Only the Deleted Items on the store's top level receives items and removes them for good.
TEST_P(Store_Contract, Delete_Moves_To_Deleted_Items_Unless_The_Item_Lies_There) {
  const auto deleted = Add_Folder(1, "Deleted Items");
  const auto inbox = Add_Folder(1, "Inbox");
  const auto nested = Add_Folder(1, "Deleted Items", inbox);
  const auto below = Add_Folder(1, "Below", deleted);
  const std::string first = Add_Item(1, deleted, "first");
  const Item_Ptr held = session_->GetItemFromID(first, deleted->StoreID());
  int number = 0;
  for (const auto& folder : {inbox, nested, below}) {
    const std::string subject = "moved" + std::to_string(++number);
    const std::string id = Add_Item(1, folder, subject);
    const Item_Ptr deleted_item = session_->GetItemFromID(id, folder->StoreID());
    deleted_item->Delete();
    stores_->Carry_Out_Changes();
    EXPECT_EQ(folder->Items()->Count(), 0);
    if (stores_->Keeps_EntryIDs()) {
      EXPECT_EQ(deleted_item->EntryID(), id);
    }
    const Item_Ptr moved = session_->GetItemFromID(deleted_item->EntryID(), folder->StoreID());
    EXPECT_EQ(moved->Parent()->EntryID(), deleted->EntryID());
  }
  EXPECT_EQ(Subjects(Open(1, {1})), "first moved1 moved2 moved3");
  held->Delete();
  EXPECT_EQ(Error_Of([&] { held->Delete(); }), not_found);
  EXPECT_EQ(Error_Of([&] { session_->GetItemFromID(first, deleted->StoreID()); }), not_found);
  EXPECT_EQ(Subjects(Open(1, {1})), "moved1 moved2 moved3");
}

TEST_P(Store_Contract, A_Moved_Item_Is_The_Last_Of_Its_New_Folder_And_Stays_Itself) {
  const auto deleted = Add_Folder(1, "Deleted Items"), inbox = Add_Folder(1, "Inbox");
  const auto lists = Open(1)->Folders()->Add("Lists", item_type::mail);
  std::map<std::string, std::string> ids;
  for (const char* subject : {"a", "b", "c", "d", "e"}) ids[subject] = Add_Item(1, inbox, subject);
  ids["x"] = Add_Item(1, lists, "x");
  const auto get = [&](const std::string& subject) {
    return session_->GetItemFromID(ids[subject], inbox->StoreID());
  };
  struct Move {
    std::string subject;
    int to;
    const char *in_deleted, *in_inbox, *in_lists;
  };
  const Move moves[] = {{"b", 3, "", "a c d e", "x b"}, {"e", 3, "", "a c d", "x b e"},
                        {"a", 1, "a", "c d", "x b e"},  {"b", 1, "a b", "c d", "x e"},
                        {"a", 2, "b", "c d a", "x e"},  {"c", 2, "b", "d a c", "x e"}};
  for (const Move& move : moves) {
    SCOPED_TRACE(move.subject + " to " + std::to_string(move.to));
    const Item_Ptr moved = get(move.subject)->Move(*Open(1, {move.to}));
    stores_->Carry_Out_Changes();
    ids[move.subject] = moved->EntryID();
    for (const Item_Ptr& item : {moved, get(move.subject)}) {
      EXPECT_EQ(item->Subject(), move.subject);
      EXPECT_EQ(item->Parent()->EntryID(), Open(1, {move.to})->EntryID());
    }
    EXPECT_EQ(Subjects(Open(1, {1})), move.in_deleted);
    EXPECT_EQ(Subjects(Open(1, {2})), move.in_inbox);
    EXPECT_EQ(Subjects(Open(1, {3})), move.in_lists);
  }
  const auto foreign = Add_Folder(2, "Inbox"), gone = Open(1, {3});
  EXPECT_EQ(Error_Of([&] { get("d")->Move(*foreign); }), automation_error::not_supported);
  Remove_Top_Folder(3);
  EXPECT_EQ(Error_Of([&] { get("d")->Move(*gone); }), not_found);
  EXPECT_EQ(Subjects(Open(1, {2})), "d a c");
  EXPECT_EQ(foreign->Items()->Count(), 0);
}

TEST_P(Store_Contract, An_Added_Folder_Is_Empty_And_Holds_What_It_Was_Made_For) {
  const Folders_Ptr folders = Add_Folder(1, "Upper")->Folders();
  const std::int32_t last = stores_->Is_Own_Store() ? item_type::note : item_type::mail;
  for (std::int32_t type = item_type::mail; type <= last; ++type) {
    const std::string name = "Folder " + std::to_string(type);
    const auto added = folders->Add(name, type), found = folders->Item(folders->Count());
    EXPECT_EQ(added->EntryID(), found->EntryID());
    EXPECT_EQ(found->Name(), name);
    EXPECT_EQ(found->DefaultItemType(), type);
    EXPECT_EQ(found->Items()->Count() + found->Folders()->Count(), 0);
  }
  EXPECT_EQ(folders->Count(), last + 1);
  EXPECT_NE(Error_Of([&] { session_->Folders()->Add("Store", item_type::mail); }), 0);
  EXPECT_EQ(session_->Folders()->Count(), 2);
}

// Whoever asks, and whatever other folders have the same name.
TEST_P(Store_Contract, A_Default_Folder_Is_The_First_Of_Its_Name_On_The_Top_Level) {
  if (!stores_->Is_Own_Store()) GTEST_SKIP() << "siblings have names of their own";
  const auto first = Add_Folder(1, "Deleted Items"), second = Add_Folder(1, "Deleted Items");
  Add_Folder(1, "deleted items");
  const auto inbox = Add_Folder(1, "Inbox");
  Add_Folder(1, "Deleted Items", inbox);
  constexpr std::int32_t type = default_folder_deleted_items;
  Add_Item(1, second, "kept");
  second->Items()->Item(1)->Delete();
  EXPECT_EQ(Subjects(first), "kept");
  for (const auto& expected : {first, second}) {
    EXPECT_EQ(session_->GetDefaultFolder(type)->EntryID(), expected->EntryID());
    EXPECT_EQ(Open(1, {1})->Store()->GetDefaultFolder(type)->EntryID(), expected->EntryID());
    Add_Item(1, inbox, "item");
    inbox->Items()->Item(1)->Delete();
    const std::int32_t count = expected->Items()->Count();
    EXPECT_EQ(expected->Items()->Item(count)->Subject(), "item");
    expected->Items()->Item(count)->Delete();
    EXPECT_EQ(expected->Items()->Count(), count - 1) << "it lay there already";
    Remove_Top_Folder(1);
  }
  EXPECT_EQ(Error_Of([&] { session_->GetDefaultFolder(type); }), not_found);
  EXPECT_EQ(Error_Of([&] { Open(2)->Store()->GetDefaultFolder(type); }), not_found);
}

TEST_P(Store_Contract, Delete_Without_Deleted_Items_Fails_And_Keeps_The_Item) {
  Add_Folder(1, "Deleted Items");
  Add_Folder(2, "deleted items");
  const auto inbox = Add_Folder(2, "Inbox");
  const auto nested = Add_Folder(2, "Deleted Items", inbox);
  for (const auto& folder : {inbox, nested}) {
    Add_Item(2, folder, "kept");
    EXPECT_NE(Error_Of([&] { folder->Items()->Item(1)->Delete(); }), 0);
    EXPECT_EQ(Subjects(folder), "kept");
  }
  EXPECT_EQ(Open(1, {1})->Items()->Count(), 0) << "the other store's folder is none of this item's business";
  Open(2, {2})->Items()->Remove(1);
  EXPECT_EQ(inbox->Items()->Count(), 0);
}

TEST_P(Store_Contract, A_Removed_Folder_Takes_All_Below_It_And_Nothing_Else) {
  // Three of one name; the middle one goes.
  std::vector<std::string> ids;
  for (int number = 1; number <= 3; ++number) {
    const auto folder = Add_Folder(1, stores_->Is_Own_Store() ? "Twin" : "Twin " + std::to_string(number));
    Add_Item(1, folder, "upper" + std::to_string(number));
    ids.push_back(Add_Item(1, Add_Folder(1, "Below", folder), "lower" + std::to_string(number)));
  }
  const auto folder = Open(1, {2}), below = Open(1, {2, 1});
  const auto store = folder->StoreID();
  const auto folders = folder->Folders();
  const auto items = below->Items();
  const auto table = below->GetTable();
  const auto item = items->Item(1);
  const auto message = item->MAPIOBJECT();
  const auto parent = folder->Parent();
  Remove_Top_Folder(2);
  EXPECT_EQ(parent->Folders()->Count(), stores_->Fixed_Folders() + 2);
  EXPECT_EQ(Subjects(Open(1, {1})) + Subjects(Open(1, {2})), "upper1upper3");
  EXPECT_EQ(session_->GetItemFromID(ids[0], store)->Subject(), "lower1");
  EXPECT_EQ(session_->GetItemFromID(ids[2], store)->Subject(), "lower3");
  const auto root = Open(1);
  const std::function<void()> calls_on_the_dead[] = {
      [&] { folder->Name(); },        [&] { folder->DefaultItemType(); },
      [&] { folder->Parent(); },      [&] { below->Items()->Count(); },
      [&] { folders->Count(); },      [&] { folders->Item(1); },
      [&] { folders->Remove(1); },    [&] { folders->Add("x", 0); },
      [&] { below->Name(); },         [&] { items->Count(); },
      [&] { items->Item(1); },        [&] { items->Remove(1); },
      [&] { table->GetArray(1); },    [&] { below->GetTable()->GetArray(1); },
      [&] { item->Subject(); },       [&] { item->Body(20); },
      [&] { item->Delete(); },        [&] { item->Move(*root); },
      [&] { item->Display(); },       [&] { message->String_Property(sender_name_tag); },
      [&] { Add_Item(1, below, ""); }};
  for (std::size_t call = 0; call < std::size(calls_on_the_dead); ++call) {
    EXPECT_EQ(Error_Of(calls_on_the_dead[call]), not_found) << "call " << call;
  }
  EXPECT_EQ(Error_Of([&] { session_->GetItemFromID(ids[1], store); }), not_found);
}

TEST_P(Store_Contract, Texts_Come_Back_As_They_Were) {
  if (!stores_->Is_Own_Store()) GTEST_SKIP() << "texts are those of a header";
  using namespace std::string_literals;
  const std::string texts[] = {""s,          std::string(20000, 'n'),   "'; DROP TABLE items; --\""s,
                               "nul\0byte"s, "line\r\nbreak\ttab \\/"s, "Grüße 日本 😀"s};
  for (const std::string& text : texts) {
    New_Item item;
    item.sender = item.subject = item.body = text;
    stores_->Writer(1).Add_Item(*Add_Folder(1, text), item);
    const auto folder = Open(1, {1});
    const auto read = folder->Items()->Item(1);
    EXPECT_EQ(folder->Name(), text);
    EXPECT_EQ(read->Subject(), text);
    EXPECT_EQ(read->Body(), text);
    const Table_Row row = Rows(folder).at(0);
    EXPECT_EQ(row.Subject, text);
    EXPECT_EQ(row.SenderOrText, stores_->Sender_As_Kept(text));
    for (const std::size_t length : {1, 8, 11, 12, 99})
      EXPECT_EQ(read->Body(length), First_Characters(text, length));
    EXPECT_EQ(read->MAPIOBJECT()->String_Property(sender_name_tag), stores_->Sender_As_Kept(text));
    Remove_Top_Folder(1);
  }
  // Invalid UTF-8 may be replaced; the rest stays readable.
  const auto folder = Add_Folder(1, "a\xff\x80z");
  EXPECT_EQ(Valid_Utf8(folder->Name()), Valid_Utf8("a\xff\x80z"));
}

TEST_P(Store_Contract, Trees_May_Be_A_Thousand_Deep) {
  auto& writer = stores_->Writer(1);
  const int deepest = stores_->Deepest();
  writer.Begin();
  auto folder = Add_Folder(1, "1");
  for (int depth = 2; depth <= deepest; ++depth) folder = Add_Folder(1, std::to_string(depth), folder);
  const std::string id = Add_Item(1, folder, "deep");
  writer.Commit();
  folder = Open(1, {1});
  int depth = 1;
  for (; folder->Folders()->Count() == 1; ++depth) folder = folder->Folders()->Item(1);
  EXPECT_EQ(depth, deepest);
  EXPECT_EQ(Subjects(folder), "deep");
  for (; folder->Parent() != nullptr; --depth) folder = folder->Parent();
  EXPECT_EQ(depth, 0);
  Remove_Top_Folder(1);
  EXPECT_EQ(folder->Folders()->Count(), stores_->Fixed_Folders());
  EXPECT_EQ(Error_Of([&] { session_->GetItemFromID(id, folder->StoreID()); }), not_found);
}

TEST_P(Store_Contract, Several_Stores_Are_Kept_Apart) {
  EXPECT_EQ(session_->Folders()->Count(), 2);
  EXPECT_EQ(Error_Of([&] { session_->GetDefaultFolder(default_folder_drafts); }), not_found);
  Add_Folder(1, "Drafts", Add_Folder(1, "Upper"));
  const auto foreign = Add_Folder(2, "Drafts");
  EXPECT_EQ(Error_Of([&] { session_->GetDefaultFolder(default_folder_drafts); }), not_found);
  const auto drafts = Add_Folder(1, "Drafts");
  EXPECT_EQ(session_->GetDefaultFolder(default_folder_drafts)->EntryID(), drafts->EntryID());

  const auto first = Open(1)->StoreID(), second = Open(2)->StoreID();
  EXPECT_NE(first, second);
  const std::string id = Add_Item(2, foreign, "two");
  EXPECT_EQ(session_->GetItemFromID(id, second)->Parent()->StoreID(), second);
  EXPECT_EQ(Error_Of([&] { session_->GetItemFromID(id, first); }), not_found);
  EXPECT_EQ(Error_Of([&] { session_->GetItemFromID(id, second + "x"); }), not_found);
  for (const std::string& wrong :
       {std::string(), id + "0", "0" + id, " " + id, id + " x", drafts->EntryID()}) {
    EXPECT_EQ(Error_Of([&] { session_->GetItemFromID(wrong, second); }), not_found) << wrong;
  }
  EXPECT_EQ(Open(1)->Parent(), nullptr);
  EXPECT_NE(Error_Of([&] { session_->Folders()->Remove(1); }), 0) << "a store is not removed like a folder";
  EXPECT_EQ(session_->Folders()->Count(), 2);
}

// With a reused identifier a caller would delete another item than the one it remembers.
TEST_P(Store_Contract, Identifiers_Are_Never_Given_Twice) {
  std::set<std::string> ids{Open(1)->EntryID()};
  std::size_t given = 1;
  for (int round = 0; round < 3; ++round) {
    const auto folder = Add_Folder(1, stores_->Is_Own_Store() ? "Again" : "Again " + std::to_string(round));
    ids.insert(folder->EntryID());
    ids.insert(Add_Item(1, folder, "one"));
    ids.insert(Add_Item(1, folder, "two"));
    Open(1, {1})->Items()->Remove(2);
    ids.insert(Add_Item(1, folder, "three"));
    EXPECT_EQ(ids.size(), given += 4);
    Remove_Top_Folder(1);
  }
}

TEST_P(Store_Contract, A_Transaction_Is_Kept_Or_Lost_As_One) {
  if (!stores_->Is_Own_Store()) GTEST_SKIP() << "nothing is added in transactions";
  auto& writer = stores_->Writer(1);
  const auto inbox = Add_Folder(1, "Inbox");
  Add_Item(1, inbox, "old");
  writer.Begin();
  const auto lost = Add_Folder(1, "lost");
  Add_Item(1, lost, "lost");
  Add_Item(1, inbox, "lost");
  EXPECT_EQ(Subjects(Open(1, {1})), "old lost") << "visible before it is certain";
  writer.Roll_Back();
  EXPECT_EQ(Open(1)->Folders()->Count(), 1);
  EXPECT_EQ(Subjects(Open(1, {1})), "old");
  EXPECT_EQ(Error_Of([&] { lost->Name(); }), not_found);
  writer.Begin();
  Add_Item(1, Add_Folder(1, "kept"), "inside");
  Add_Item(1, inbox, "new");
  writer.Commit();
  EXPECT_EQ(Subjects(Open(1, {1})), "old new");
  EXPECT_EQ(Subjects(Open(1, {2})), "inside");
}

}  // namespace tidyfold
