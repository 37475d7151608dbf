// The whole program, and single calls, over real COM.
// First, since it undefines a macro of the system headers.
#include "stores/automation/com.h"

#include <sddl.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <tuple>

#include "clean/run_fixture.h"
#include "companion/registration.h"
#include "errors/automation_error.h"
#include "stores/store_under_test.h"
#include "test_outlook.h"

namespace tidyfold {
namespace {

using namespace std::chrono_literals;

const std::string size_property = "http://schemas.microsoft.com/mapi/proptag/0x0E080003";

// A store of the test server, and Outlook as the program sees it.
struct Served_Store {
  explicit Served_Store(const char* name = "Personal") { server.Tell("AddStore", name, true); }
  Window_Fixture::Instead Instead() { return {&outlook, &writer}; }
  std::shared_ptr<NameSpace> Open() {
    return outlook.GetObject("", "Outlook.Application")->GetNamespace("MAPI");
  }
  // Calls to Outlook so far, and those of GetIDsOfNames.
  std::pair<int, int> Calls() { return {server.Calls_Of(""), server.Calls_Of("GetIDsOfNames")}; }

  Test_Outlook server;
  Outlook_Automation outlook{300ms};
  Test_Writer writer{server, 1};
};

}  // namespace

TEST(Automation, Every_Kind_Of_Run_Takes_What_Was_Chosen) {
  for (const Kind_Of_Run& way : ways) {
    SCOPED_TRACE(way.name);
    Served_Store store;
    Kind_Run f(way, 1, store.Instead());
    f.Run();
    f.Expect_Nothing_Else();
    EXPECT_EQ(f.Everything(), f.expected);
    EXPECT_EQ(f.box.Count("rror") + f.box.Count("Not all items"), 0);
    f.Expect_Agreement();
  }
}

// In stores that behave as Memory_Store::Behave says, or refuse the table or one of its columns: the numbers
// of calls are printed, for a look at what a run costs in each.
TEST(Automation, Every_Kind_Of_Run_Keeps_To_It_In_Every_Kind_Of_Store) {
  for (const std::string behaviour : {"new ids", "local names", "no Deleted Items", "moves what is removed",
                                      "two texts", "no table", "no column"})
    for (const Kind_Of_Run& way : ways) {
      SCOPED_TRACE(behaviour + ", " + way.name);
      Served_Store store;
      Kind_Run f(way, 1, store.Instead());
      if (behaviour == "no table") store.server.Tell("Forget", "MAPIFolder.GetTable");
      if (behaviour == "no column") store.server.Tell("RefuseColumn", "Size");
      if (behaviour == "no column") store.server.Tell("RefuseColumn", size_property);
      store.server.Tell("Behave", 1, behaviour);
      int before_run = 0;
      f.before_run = [&] { before_run = store.Calls().first; };
      f.Run();
      const int calls = store.Calls().first - before_run;
      f.Expect_As_Foreseen_In(behaviour);
      std::cout << behaviour << ", " << way.name << ": " << f.app.run.ProcessedCount << " processed, "
                << calls << " calls\n";
      if (behaviour == "no Deleted Items" || f.box.Count("items were moved") == 0) continue;
      const bool lost = behaviour == "new ids" && way == "turbo";
      EXPECT_EQ(f.app.taking_back.Take_Back_Run(std::nullopt).put_back, lost ? 0 : f.to_take);
    }
}

TEST(Automation, A_Series_Goes_By_Its_Last_Occurrence) {
  for (const bool by_table : {true, false}) {
    Served_Store store;
    if (!by_table) store.server.Tell("Forget", "MAPIFolder.GetTable");
    Window_Fixture f(store.Instead());
    const std::pair<const char*, Date> ends[] = {{"once", 44000.75},
                                                 {"series of a year", 44365.9},
                                                 {"series past midnight", 44366.02},
                                                 {"series", no_date}};
    for (const auto& [subject, end] : ends) {
      New_Item item;
      item.item_class = item_class::appointment;
      item.subject = subject;
      item.received = 44000.5;
      item.end = end;
      f.Add("Calendar", item);
    }
    f.Do("load");
    const FolderData& calendar = f.Record(f.Node("Calendar"));
    for (int i = 0; i < 4; ++i)
      EXPECT_EQ(calendar.Cached(i + 1).ItemDate, std::floor(ends[i].second)) << ends[i].first;
    EXPECT_EQ(store.server.Calls_Of("Item.GetRecurrencePattern"), 3) << "only a series is asked for it";
  }
}

// One refused name has another in its place; what is refused under both costs the table, and no item.
TEST(Automation, A_Column_Goes_By_Name_Or_By_Property) {
  const std::string tag = "http://schemas.microsoft.com/mapi/proptag/";
  struct Case {
    std::vector<std::string> refused;
    bool by_table;
  };
  const Case cases[] = {
      {{}, true},
      {{tag + "0x10900003"}, true},
      {{"ReceivedTime", "LastModificationTime", "DateCompleted", "DueDate", "End", "Size"}, true},
      {{tag + "0x10900003", "FlagStatus"}, false},
      {{tag + "0x0C1A001F"}, false}};
  for (const auto& [refused, by_table] : cases) {
    Served_Store store;
    for (const std::string& name : refused) store.server.Tell("RefuseColumn", name);
    Window_Fixture f(store.Instead());
    New_Item item;
    item.sender = "Ann";
    item.flagged = true;
    item.received = 44000.0 + 1.0 / 24;
    f.Add("Inbox", item);
    item.item_class = item_class::task;
    item.due = 44100;
    f.Add("Inbox", item);
    f.Do("load");
    const FolderData& inbox = f.Record(f.Node("Inbox"));
    EXPECT_EQ(inbox.Cached(1).SenderOrText, "Ann");
    EXPECT_TRUE(inbox.Cached(1).Flagged);
    EXPECT_EQ(inbox.Cached(1).ItemDate, 44000);
    EXPECT_EQ(inbox.Cached(2).ItemDate, 44100);
    EXPECT_EQ(store.server.Calls_Of("Item.Subject"), by_table ? 0 : 2) << refused.size();
  }
}

TEST(Automation, A_Name_May_Have_Another_Id_In_Each_Class_Of_Item) {
  for (const bool ids_unlike : {false, true}) {
    Served_Store store;
    if (ids_unlike) store.server.Tell("UnlikeIds");
    Window_Fixture f(store.Instead());
    const std::int32_t classes[] = {item_class::mail, item_class::note, item_class::task,
                                    item_class::contact};
    for (int i = 0; i < 8; ++i) {
      New_Item item;
      item.item_class = classes[i % 4];
      item.subject = std::to_string(i);
      f.Add("Inbox", item);
    }
    f.Do("load; tick Inbox");
    f.Expect_Agreement();
    const FolderData& inbox = f.Record(f.Node("Inbox"));
    for (int i = 0; i < 8; ++i) {
      EXPECT_EQ(inbox.Cached(i + 1).ItemClass, classes[i % 4]);
      EXPECT_EQ(inbox.Cached(i + 1).Subject, std::to_string(i));
    }
    f.Clean({{"8 items in 1 folder identified for cleaning.", OK},
             {" 8 items were moved to the \"Deleted Items\" folder.", OK}});
  }
}

TEST(Automation, Attaches_To_What_Runs_And_Starts_What_Does_Not) {
  for (const bool running : {true, false}) {
    if (!running) Test_Outlook::Stop();
    if (running) Test_Outlook();
    ASSERT_EQ(Test_Outlook::Is_Running(), running);
    Outlook_Automation outlook;
    Window_Fixture f({&outlook, nullptr}, "", 0);
    f.box.Answer_Anything();
    f.app.Form_Load();
    EXPECT_EQ(f.plan.Calls("Automation.CreateObject"), running ? 0 : 1);
    EXPECT_EQ(f.box.Boxes().back().text, "No folders were loaded.") << "there is no store open in it";
    EXPECT_TRUE(Test_Outlook::Is_Running());
  }
}

// The marginal cost of a mail in calls, to read it and to delete it.
TEST(Automation, Calls_Stay_Within_Their_Budget) {
  struct Cost {
    int read, deleted, ids;
  };
  const auto measure = [](int items, const std::string& options, bool by_table) {
    Served_Store store;
    if (!by_table) store.server.Tell("Forget", "MAPIFolder.GetTable");
    Kind_Run f({"", options, ""}, 0, store.Instead());
    // Rows are picked in a branch of twenty folders that is not expanded.
    for (int below = 0; below < 20; ++below) f.Folder("Inbox/Below " + std::to_string(below));
    f.Add("Inbox", "to go", items);
    f.Add("Inbox", "unread", 2);  // stays
    const int at_first = store.Calls().first;
    f.app.Form_Load();
    const int loaded = store.Calls().first;
    f.Do(options == "rows" ? "tick Inbox; set SelectByRow" : options + "; tick Inbox");
    const int ticked = store.Calls().first;
    f.window.cmdRun.Click();
    const auto [calls, ids] = store.Calls();
    EXPECT_EQ(f.app.run.ProcessedCount, items);
    EXPECT_LE(store.server.Tell("MostOpen", "Item").Number(), 2) << "items are released one by one";
    return Cost{loaded - at_first, calls - ticked, ids};
  };
  for (const bool by_table : {true, false})
    for (const std::string options : {"", "set PermanentDelete", "rows"}) {
      const int fewer = by_table ? 100 : 10, larger = by_table ? 1100 : 30;
      const Cost few = measure(fewer, options, by_table), more = measure(larger, options, by_table);
      const double items = larger - fewer, read = (more.read - few.read) / items,
                   deleted = (more.deleted - few.deleted) / items;
      std::cout << "calls for a mail" << (by_table ? " by table: " : ": ") << read << " to read it, "
                << deleted << " for a run (" << (options.empty() ? "moved, and read again" : options)
                << ")\n";
      const double budget = by_table ? 0.02 : 9;
      EXPECT_LE(read, budget);
      // A run asks each item once more whether it is unread. Moved items are read again in Deleted Items.
      EXPECT_LE(deleted, 6 + (options == "set PermanentDelete" ? 0 : budget));
      const int methods = options == "set PermanentDelete" ? 2 : 1;  // Move, and Delete
      EXPECT_EQ(more.ids - few.ids, methods * (larger - fewer)) << "ids of properties are asked for once";
    }
}

// How much faster a table is. TIDYFOLD_MEASURED_MAILS sets how many mails are read, 2,000 by default.
TEST(Automation, A_Table_Reads_The_Same_In_A_Fraction_Of_The_Calls) {
  const char* const wanted = std::getenv("TIDYFOLD_MEASURED_MAILS");
  const int mails = wanted != nullptr ? std::atoi(wanted) : 2000;
  std::vector<std::string> read[2];
  for (const bool by_table : {true, false}) {
    Served_Store store;
    if (!by_table) store.server.Tell("Forget", "MAPIFolder.GetTable");
    Window_Fixture f(store.Instead());
    const MAPIFolder_Ptr inbox = f.Folder("Inbox");
    store.server.Tell("AddMails", 1, inbox->StoreID(), inbox->EntryID(), mails);
    const int before = store.Calls().first;
    const auto begin = std::chrono::steady_clock::now();
    f.Do("load");
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - begin;
    const int calls = store.Calls().first - before;
    std::cout << mails << " mails " << (by_table ? "by table" : "one by one") << ": " << seconds.count()
              << " s, " << calls << " calls\n";
    const FolderData& record = f.Record(f.Node("Inbox"));
    EXPECT_EQ(record.CachedCount, mails);
    EXPECT_LE(calls, by_table ? mails / 40 + 400 : 9.1 * mails + 400);
    for (std::int32_t item = 1; item <= record.CachedCount; ++item) {
      const ItemData& data = record.Cached(item);
      read[by_table ? 1 : 0].push_back(data.EntryID + data.Subject + data.SenderOrText +
                                       Format_Date(data.ItemDate));
    }
  }
  EXPECT_EQ(read[0], read[1]);
}

TEST(Automation, What_Is_Busy_Is_Asked_Again_For_A_While) {
  Served_Store store;
  const MAPIFolder_Ptr inbox = store.Open()->GetDefaultFolder(default_folder_inbox);
  store.server.Tell("Busy", 3);
  EXPECT_EQ(inbox->Name(), "Inbox");
  int asked = 0;
  for (const int retries : {0, 2}) {
    store.server.Tell("Busy", 1000);
    if (retries > 0) store.outlook.Ask_When_Busy([&](const std::string&) { return ++asked <= retries; });
    try {
      inbox->Name();
      ADD_FAILURE();
    } catch (const Automation_Error& error) {
      EXPECT_EQ(error.Number(), automation_error::unavailable);
      EXPECT_TRUE(error.Description().starts_with("Outlook is busy")) << error.Description();
    }
    EXPECT_EQ(asked, retries == 0 ? 0 : retries + 1);
  }
  store.outlook.Ask_When_Busy([&](const std::string&) { return store.server.Tell("Busy", 0), true; });
  store.server.Tell("Busy", 1000);
  EXPECT_EQ(inbox->Name(), "Inbox") << "free again when it is asked once more";
}

// Retry goes on where it was; Stop ends the refresh and leaves the window.
TEST(Automation, An_Outlook_That_Stays_Busy_Closes_Nothing) {
  for (const Answer answer : {Answer::Retry, Answer::Cancel}) {
    Served_Store store;
    Window_Fixture f(store.Instead(), "add Inbox/a; load");
    store.server.Tell("Busy", 1000);
    f.box.Answer_Anything();
    f.box.Expect("Outlook is busy", Buttons::Retry_Stop, answer,
                 [&] { store.server.Tell("Busy", answer == Answer::Retry ? 0 : 1000); });
    f.window.mnuRefresh.Click();
    f.box.Verify();
    EXPECT_TRUE(f.window.frmRemoveItems.Loaded());
    EXPECT_FALSE(f.window.frmMessageBox.Visible());
    store.server.Tell("Busy", 0);
    f.window.mnuRefresh.Click();
    f.Expect_Agreement();
  }
}

TEST(Automation, Failures_Come_As_They_Were_Told) {
  Served_Store store;
  Window_Fixture f(store.Instead(), "add Inbox/a");
  const Item_Ptr item = store.Open()->GetDefaultFolder(default_folder_inbox)->Items()->Item(1);
  store.server.Tell("Fail", "Item.Subject", 1, automation_error::no_access);
  const auto expect = [](auto&& call, std::int32_t number, const char* description, const char* source) {
    try {
      call();
      ADD_FAILURE() << "did not fail";
    } catch (const Automation_Error& error) {
      EXPECT_EQ(error.Number(), number);
      EXPECT_NE(error.Description().find(description), std::string::npos) << error.Description();
      EXPECT_NE(error.Description(), "");
      EXPECT_EQ(error.Source(), source);
    }
  };
  expect([&] { item->Subject(); }, automation_error::no_access, "Outlook says no to Item.Subject.",
         "Test Outlook");
  EXPECT_EQ(item->Subject(), "a");
  expect([] { com::Fail(E_ACCESSDENIED); }, automation_error::no_access, "", "Outlook");
  const auto told = [](SCODE scode, WORD code) {
    EXCEPINFO info{};
    info.scode = scode;
    info.wCode = code;
    info.bstrDescription = com::Variant("in words").Detach().bstrVal;
    com::Fail(DISP_E_EXCEPTION, &info);
  };
  expect([&] { told(E_ACCESSDENIED, 0); }, automation_error::no_access, "in words", "Outlook");
  expect([&] { told(0, 1004); }, 1004, "in words", "Outlook");
  expect([&] { told(RPC_E_DISCONNECTED, 0); }, automation_error::unavailable, "closed", "Outlook");
  for (const char* member : {"Store.GetDefaultFolder", "MAPIFolder.Store"}) {
    store.server.Tell("Forget", member);
    Outlook_Automation another;
    const auto top = another.GetObject("", "Outlook.Application")->GetNamespace("MAPI")->Folders()->Item(1);
    expect([&] { top->Store()->GetDefaultFolder(default_folder_inbox); }, automation_error::not_supported,
           "too old", "Outlook");
  }
}

TEST(Automation, Outlook_That_Ends_In_The_Middle_Is_Told_Of_Once) {
  int number = 1;
  for (const Kind_Of_Run& way : ways) {
    SCOPED_TRACE(way.name + " " + std::to_string(number));
    Served_Store store;
    Kind_Run f(way, 1, store.Instead());
    f.before_run = [&] { store.server.Tell("Vanish", number); };
    f.Run();
    EXPECT_FALSE(Test_Outlook::Is_Running());
    EXPECT_EQ(f.box.Count("Outlook has been closed"), 1);
    EXPECT_EQ(f.box.Count("rror"), 0);
    EXPECT_EQ(f.window.cmdRun.Caption(), "&Clean");
    EXPECT_FALSE(f.app.phase.Processing());
    number += 5;
  }
}

TEST(Companion, Reads_Texts_Of_A_Message_Through_Its_Program_Id) {
  Served_Store store;
  Window_Fixture f(store.Instead());
  New_Item mail;
  mail.sender = "Zoë";
  f.Add("Inbox", mail);
  const auto message = store.Open()->GetDefaultFolder(default_folder_inbox)->Items()->Item(1)->MAPIOBJECT();
  const auto companion = store.outlook.Create_Mapi_Utils("TidyDll.TidyMAPIUtils");
  const std::tuple<std::uint32_t, bool, const char*> cases[] = {{sender_name_tag, false, "Zoë"},
                                                                {sender_name_tag + 1, false, "Zoë"},
                                                                {sender_name_tag, true, "Zoë"},
                                                                {0x1234001E, false, ""},
                                                                {0x1234001F, true, ""}};
  for (const auto& [tag, eight_bit_only, text] : cases) {
    SetEnvironmentVariableW(L"TIDYFOLD_TEST_8_BIT", eight_bit_only ? L"1" : nullptr);
    EXPECT_EQ(companion->HrGetOneProp(*message, tag), text) << std::hex << tag;
  }
  SetEnvironmentVariableW(L"TIDYFOLD_TEST_8_BIT", nullptr);
  EXPECT_NE(Error_Of([&] { companion->HrGetOneProp(*message, 0x0C1A0003); }), 0) << "a number is no text";
}

TEST(Companion, Without_It_Mail_Is_Shown_All_The_Same) {
  Served_Store store;
  store.server.Tell("Forget", "MAPIFolder.GetTable");
  Window_Fixture f(store.Instead(), "add Inbox/a");
  f.box.Answer_Anything();
  ASSERT_TRUE(Test_Outlook::Register_Companion(false));
  f.app.Form_Load();
  f.window.mnuRefresh.Click();
  ASSERT_TRUE(Test_Outlook::Register_Companion(true));
  EXPECT_EQ(f.box.Count("regsvr32 TidyDll.dll"), 1);
  EXPECT_EQ(f.box.Count("rror"), 0);
  EXPECT_EQ(f.grid.Rows(), 2);
}

// A key without write access stands in for HKEY_LOCAL_MACHINE.
TEST(Companion, Is_Registered_For_The_User_Where_The_Machine_Is_Out_Of_Reach) {
  ASSERT_TRUE(Test_Outlook::Register_Companion(false));
  const wchar_t* const place = L"Software\\Tidyfold test machine";
  std::array<wchar_t, 39> id{};
  StringFromGUID2(companion::class_id, id.data(), static_cast<int>(id.size()));
  const auto create = [](HKEY above, const std::wstring& name) {
    HKEY key = nullptr;
    RegCreateKeyExW(above, name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
    return key;
  };
  const HKEY machine = create(HKEY_CURRENT_USER, place);
  const HKEY locked = create(machine, std::wstring(L"Software\\Classes\\CLSID\\") + id.data());
  const auto allow_everybody = [&](const wchar_t* rights) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    ConvertStringSecurityDescriptorToSecurityDescriptorW(rights, SDDL_REVISION_1, &descriptor, nullptr);
    RegSetKeySecurity(locked, DACL_SECURITY_INFORMATION, descriptor);
    LocalFree(descriptor);
  };
  const auto user_has_it = [] {
    DWORD size = 0;
    return RegGetValueW(HKEY_CURRENT_USER, L"Software\\Classes\\TidyDll.TidyMAPIUtils\\CLSID", nullptr,
                        RRF_RT_REG_SZ, nullptr, nullptr, &size) == ERROR_SUCCESS;
  };
  allow_everybody(L"D:(A;;KR;;;WD)");
  const HMODULE library = LoadLibraryW(TIDYFOLD_COMPANION);
  const auto call = [&](const char* name) {
    return reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(library, name)))();
  };
  EXPECT_FALSE(user_has_it());
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
  EXPECT_EQ(call("DllRegisterServer"), S_OK);
  RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
  EXPECT_TRUE(user_has_it());
  EXPECT_EQ(call("DllUnregisterServer"), S_OK);
  EXPECT_FALSE(user_has_it());
  allow_everybody(L"D:(A;;KA;;;WD)");
  for (const HKEY key : {locked, machine}) RegCloseKey(key);
  RegDeleteTreeW(HKEY_CURRENT_USER, place);
  ASSERT_TRUE(Test_Outlook::Register_Companion(true));
}

}  // namespace tidyfold
