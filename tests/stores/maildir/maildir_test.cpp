#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "base/text.h"
#include "doubles/temporary_directory.h"
#include "errors/automation_error.h"
#include "outlook/store_session.h"
#include "stores/maildir/mail_program.h"
#include "stores/maildir/maildir_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

struct Watcher : Group_Watcher {
  void Group_Ending() override { told += "("; }
  void Not_Kept(const std::string&, const std::string& entry_id, const std::string& reason) override {
    told += " not " + entry_id;
    why = reason;
  }
  void Group_Ended(const std::string&, bool kept) override { told += kept ? " )" : " lost)"; }
  std::string told, why;
};

// Root may write everything, and becomes nobody for a while.
class As_Nobody {
 public:
  explicit As_Nobody(const std::filesystem::path& theirs) {
    constexpr uid_t nobody = 65534;
    if (::geteuid() != 0) return;
    bool given = ::lchown(theirs.c_str(), nobody, static_cast<gid_t>(-1)) == 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(theirs))
      given = given && ::lchown(entry.path().c_str(), nobody, static_cast<gid_t>(-1)) == 0;
    changed_ = given && ::seteuid(nobody) == 0;
  }
  As_Nobody(const As_Nobody&) = delete;
  As_Nobody& operator=(const As_Nobody&) = delete;
  ~As_Nobody() {
    if (changed_ && ::seteuid(0) != 0) std::abort();
  }

 private:
  bool changed_ = false;
};

class Maildir_Test : public testing::Test {
 protected:
  Maildir_Test() { program.Make_Folder(""); }
  void Open(Store_Mode mode = Store_Mode::Read_Write) {
    store.reset();
    const Begin_Wait wait = [this] { return [this] { return goes_on; }; };
    store = Maildir_Store::Open(Address(), {.mode = mode, .cache_folder = directory / "cache", .wait = wait});
    store->Set_Watcher(watcher);
  }
  Store_Address Address() {
    Store_Address address(program.Top());
    address.kind = Store_Address::Kind::Maildir;
    return address;
  }
  // The paths of all folders, with their numbers of mails.
  std::string Tree(const MAPIFolder_Ptr& folder = nullptr, const std::string& above = {}) {
    std::string all;
    const Folders_Ptr children = (folder == nullptr ? store->Top_Folder() : folder)->Folders();
    for (std::int32_t i = 1; i <= children->Count(); ++i) {
      const MAPIFolder_Ptr child = children->Item(i);
      const std::string path = above + child->Name();
      all += path + " " + std::to_string(child->Items()->Count()) + ", ";
      all += Tree(child, path + "/");
    }
    return all;
  }
  MAPIFolder_Ptr Folder(const std::string& name) {
    const Folders_Ptr children = store->Top_Folder()->Folders();
    for (std::int32_t i = 1; i <= children->Count(); ++i)
      if (children->Item(i)->Name() == name) return children->Item(i);
    return nullptr;
  }
  std::vector<Table_Row> Rows(const std::string& folder) {
    return Folder(folder)->GetTable()->GetArray(10000);
  }
  Item_Ptr Item(const std::string& unique) { return store->GetItemFromID("M" + unique); }
  std::string Where(const std::string& unique) {
    return std::filesystem::relative(program.Find(unique), program.Top()).string();
  }

  Temporary_Directory directory;
  Mail_Program program{directory / "Mail"};
  std::shared_ptr<Watcher> watcher = std::make_shared<Watcher>();
  bool goes_on = true;  // what takes long
  std::shared_ptr<Maildir_Store> store;
};

TEST_F(Maildir_Test, ShowsTheFoldersOfEveryForm) {
  for (const char* folder :
       {".Lists", ".Lists.C++", ".Archive.2023", ".Entw&APw-rfe", "Nested/Deep/Deeper", "plain"})
    program.Make_Folder(folder);
  std::filesystem::create_directory(program.Top() / "no mail");
  std::filesystem::create_directory(program.Top() / ".hidden");
  std::filesystem::create_directory_symlink("..", program.Top() / "Nested" / "cycle");
  program.Deliver("", "one");
  program.Deliver("", "new", "new");
  program.Deliver("", "marked as deleted", "ST");
  program.Deliver(".Lists.C++", "two");
  std::ofstream(program.Top() / "cur" / ".no mail") << "x";
  std::filesystem::create_directory(program.Top() / "cur" / "directory");
  Open();
  EXPECT_EQ(
      Tree(),
      "Archive 0, Archive/2023 0, Entw\u00fcrfe 0, Inbox 2, Lists 0, Lists/C++ 1, Nested 0, Nested/Deep 0, "
      "Nested/Deep/Deeper 0, plain 0, Trash 0, ");
  EXPECT_FALSE(std::filesystem::exists(program.Top() / ".Trash")) << "looking at it makes nothing";
  Open(Store_Mode::Read_Only);
  EXPECT_EQ(Tree().find("Trash"), std::string::npos);
  std::filesystem::remove_all(program.Top() / "cur");
  std::filesystem::remove_all(program.Top() / "new");
  std::filesystem::remove_all(program.Top() / "tmp");
  Open();
  EXPECT_EQ(Tree().find("Inbox"), std::string::npos) << "without mail of its own";
}

TEST_F(Maildir_Test, RowsAndItemsTellWhatFileAndNameTell) {
  const std::string plain = program.Deliver("", "=?utf-8?q?Gr=C3=BC=C3=9Fe?=", "FS");
  const std::string fresh = program.Deliver("", "fresh", "new");
  const std::string report =
      program.Deliver("", "report", "R", "From: d@example.org\nContent-Type: multipart/report; boundary=x\n");
  const std::string invitation = program.Deliver(
      "", "invitation", "S", "From: d@example.org\nContent-Type: text/calendar; method=REQUEST\n",
      "BEGIN:VCALENDAR\nMETHOD:REQUEST\nBEGIN:VEVENT\nEND:VEVENT\nEND:VCALENDAR\n");
  constexpr std::size_t more = 300;  // enough for several batches
  for (std::size_t i = 0; i < more; ++i) {
    const std::size_t length = i % 100 == 50 ? 2 * summary_bytes : i;
    program.Deliver("", "more " + std::to_string(i), "S", "X-Long: " + std::string(length, 'x') + "\n");
  }
  for (const char* how : {"from the files", "from the cache"}) {
    SCOPED_TRACE(how);
    Open();
    const std::vector<Table_Row> rows = Rows("Inbox");
    ASSERT_EQ(rows.size(), 4 + more);
    EXPECT_EQ(rows[0].EntryID, "M" + plain);
    EXPECT_EQ(rows[0].Subject, "Gr\u00fc\u00dfe");
    EXPECT_EQ(rows[0].SenderOrText, "Zoe");
    EXPECT_EQ(rows[0].FlagStatus, flag_status::marked);
    EXPECT_FALSE(rows[0].UnRead);
    EXPECT_TRUE(rows[1].UnRead);
    EXPECT_TRUE(rows[2].UnRead);
    EXPECT_EQ(rows[2].Class, item_class::report);
    EXPECT_EQ(rows[3].Class, item_class::meeting_request);
    for (const Table_Row& row : rows) {
      const Item_Ptr item = store->GetItemFromID(row.EntryID);
      EXPECT_EQ(item->Class(), row.Class) << row.Subject;
      EXPECT_EQ(item->Subject(), row.Subject);
      EXPECT_EQ(item->ReceivedTime(), row.ReceivedTime);
      EXPECT_EQ(item->UnRead(), row.UnRead);
      EXPECT_EQ(item->Size(), row.Size);
      EXPECT_EQ(store->Read_Whole_Item(row.EntryID).subject, row.Subject);
    }
  }
  EXPECT_EQ(Item(plain)->Body(), "Text");
  EXPECT_TRUE(store->Read_Whole_Item("M" + report).answered);
}

TEST_F(Maildir_Test, ADeletionWaitsForItsGroupAndKeepsTheMarks) {
  program.Make_Folder(".Sent");
  const std::string read = program.Deliver("", "read", "RS"), fresh = program.Deliver("", "fresh", "new"),
                    sent = program.Deliver(".Sent", "sent"), gone = program.Deliver("", "for good");
  Open();
  Tree();
  Item(read)->Delete();
  Item(fresh)->Delete();
  Item(sent)->Delete();
  const Item_Ptr through = Item(gone);
  through->Delete();
  through->Delete();
  EXPECT_EQ(Tree(), "Inbox 0, Sent 0, Trash 3, ");
  EXPECT_EQ(Where(read), "cur/" + read + ":2,RS") << "nothing has happened on the disk";
  EXPECT_EQ(watcher->told, "");
  store->Commit_Pending();
  EXPECT_EQ(watcher->told, "( )");
  EXPECT_EQ(Where(read), ".Trash/cur/" + read + ":2,RS");
  EXPECT_EQ(Where(fresh), ".Trash/cur/" + fresh + ":2,");
  EXPECT_TRUE(program.Find(gone).empty());
  EXPECT_TRUE(std::filesystem::exists(program.Top() / ".Trash" / "maildirfolder"));
  EXPECT_EQ(Item(read)->Move(*Folder("Sent"))->EntryID(), "M" + read);
  store->Commit_Pending();
  Open();
  EXPECT_EQ(Tree(), "Inbox 0, Sent 1, Trash 2, ");
}

TEST_F(Maildir_Test, RowsThatWereReadAheadHeedWhatHasHappenedSince) {
  std::vector<std::string> mails;
  for (int i = 0; i < 300; ++i) mails.push_back(program.Deliver("", "mail"));
  Open();
  const Table_Ptr table = Folder("Inbox")->GetTable();
  goes_on = false;
  EXPECT_EQ(Error_Of([&] { table->GetArray(10); }), automation_error::unavailable);
  goes_on = true;
  ASSERT_EQ(table->GetArray(10).size(), 10U);
  program.Mark(mails[200], "F");
  program.Delete(mails[250]);
  const std::vector<Table_Row> rows = table->GetArray(1000);
  ASSERT_EQ(rows.size(), 289U);
  EXPECT_EQ(rows[190].EntryID, "M" + mails[200]);
  EXPECT_TRUE(rows[190].UnRead && rows[190].FlagStatus == flag_status::marked);
  EXPECT_EQ(rows[240].EntryID, "M" + mails[251]);
}

TEST_F(Maildir_Test, TwoFilesOfOneUniqueNameAreTwoMails) {
  const std::string mail = program.Deliver("", "twins");
  std::filesystem::copy(program.Find(mail), program.Top() / "cur" / (mail + ":2,FS"));
  for (int opening = 0; opening < 2; ++opening) {
    Open();
    const std::vector<Table_Row> rows = Rows("Inbox");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].EntryID, "M" + mail);
    EXPECT_EQ(rows[1].EntryID, "M" + mail + "/2");
    for (const Table_Row& row : rows)
      EXPECT_EQ(store->GetItemFromID(row.EntryID)->FlagStatus(), row.FlagStatus);
    for (const char* id : {"/1", "/3", "/x", "/2x", "/"})
      EXPECT_EQ(Error_Of([&] { store->GetItemFromID("M" + mail + id); }), automation_error::not_found) << id;
  }
}

// Between the look and the deletion another program was faster.
TEST_F(Maildir_Test, WhatOtherProgramsDoMeanwhileIsHeeded) {
  program.Make_Folder(".Trash");
  program.Make_Folder(".Other");
  struct Case {
    std::string what, marks;
    std::function<void(const std::string&)> act;
    std::string lies_in;  // afterwards
    bool kept;
  };
  const Case cases[] = {
      {"answered", "S", [&](const std::string& mail) { program.Mark(mail, "RS"); }, ".Trash", false},
      {"flagged", "S", [&](const std::string& mail) { program.Mark(mail, "FS"); }, "cur", true},
      {"unread again", "S", [&](const std::string& mail) { program.Mark(mail, ""); }, "cur", true},
      {"read", "new", [&](const std::string& mail) { program.Mark(mail, "S"); }, ".Trash", false},
      {"moved", "S", [&](const std::string& mail) { program.Move(mail, ".Other"); }, ".Other", true},
      {"deleted", "S", [&](const std::string& mail) { program.Delete(mail); }, "", true}};
  std::vector<std::string> mails;
  for (const Case& each : cases) mails.push_back(program.Deliver("", each.what, each.marks));
  Open();
  Tree();
  for (const std::string& mail : mails) Item(mail)->Delete();
  std::string expected = "(";
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    cases[i].act(mails[i]);
    if (cases[i].kept) expected += " not M" + mails[i];
  }
  const std::string arrived = program.Deliver("", "arrived", "new");
  store->Commit_Pending();
  EXPECT_EQ(watcher->told, expected + " )");
  for (std::size_t i = 0; i < std::size(cases); ++i)
    EXPECT_TRUE((program.Find(mails[i]).empty() ? "" : Where(mails[i])).starts_with(cases[i].lies_in))
        << cases[i].what;
  EXPECT_EQ(Tree(), "Inbox 3, Other 1, Trash 2, ") << "and everything is known where it lies now";
  EXPECT_EQ(Item(arrived)->Subject(), "arrived");
}

// No file is ever replaced, and none that cannot be read is taken for one without marks.
TEST_F(Maildir_Test, NothingIsLostWhereItCannotBeWritten) {
  program.Make_Folder(".Trash");
  const std::string twin = program.Deliver("", "mine"), other = program.Deliver("", "other");
  std::filesystem::copy(program.Find(twin), program.Top() / ".Trash" / "cur");
  std::ofstream(program.Top() / "cur" / "1.noise:2,S", std::ios::binary) << std::string("\0\1\2 noise", 9);
  Open();
  EXPECT_EQ(Tree(), "Inbox 3, Trash 1, ");
  const std::vector<Table_Row> rows = Rows("Inbox");
  const auto noise =
      std::find_if(rows.begin(), rows.end(), [](const auto& row) { return row.EntryID == "M1.noise"; });
  ASSERT_NE(noise, rows.end());
  EXPECT_EQ(noise->FlagStatus, flag_status::marked) << "no run takes it";
  EXPECT_NE(Error_Of([&] { store->GetItemFromID("M1.noise")->Subject(); }), 0);
  Folder("Inbox")->Items()->Item(2)->Delete();
  store->Commit_Pending();
  EXPECT_EQ(watcher->told, "( not M" + twin + " )");
  EXPECT_EQ(Tree(), "Inbox 3, Trash 1, ");
  EXPECT_NE(watcher->why.find("same name"), std::string::npos) << watcher->why;
  const As_Nobody nobody(directory.Path());
  if (::geteuid() == 0) GTEST_SKIP() << "whoever may do everything cannot be refused";
  for (const char* closed : {"cur", ".Trash/cur"}) {
    watcher->told.clear();
    Item(other)->Delete();
    ::chmod((program.Top() / closed).c_str(), 0500);
    store->Commit_Pending();
    ::chmod((program.Top() / closed).c_str(), 0700);
    EXPECT_EQ(watcher->told, "( not M" + other + " )") << closed;
    EXPECT_NE(watcher->why.find("Change the permissions"), std::string::npos) << watcher->why;
    EXPECT_EQ(Tree(), "Inbox 3, Trash 1, ");
  }
}

TEST_F(Maildir_Test, AMaildirThatVanishesIsNotAnEmptyOne) {
  const std::string mail = program.Deliver("", "mail"), queued = program.Deliver("", "queued");
  Open();
  Tree();
  const auto inbox = Folder("Inbox");
  const auto item = Item(mail);
  Item(queued)->Delete();
  std::filesystem::rename(program.Top(), directory / "away");
  store->Commit_Pending();
  EXPECT_EQ(watcher->told, "( not M" + queued + " )");
  EXPECT_NE(watcher->why.find("can no longer be reached. Check"), std::string::npos) << watcher->why;
  EXPECT_FALSE(std::filesystem::exists(program.Top())) << "no Trash is made in its place";
  const std::function<void()> calls[] = {[&] { inbox->Items()->Count(); }, [&] { store->Top_Folder(); },
                                         [&] { inbox->GetTable()->GetArray(10); }, [&] { item->Subject(); },
                                         [&] { store->GetItemFromID("M1.x"); }};
  for (const auto& call : calls) EXPECT_EQ(Error_Of(call), automation_error::unavailable);
  std::filesystem::rename(directory / "away", program.Top());
  EXPECT_EQ(Tree(), "Inbox 2, Trash 0, ");
}

TEST_F(Maildir_Test, OnlyAMaildirIsOpened) {
  using Reason = Store_Open_Error::Reason;
  const std::filesystem::path file = directory / "file";
  Write_Bytes(file, "x");
  std::filesystem::create_directory(directory / "empty");
  const std::pair<std::filesystem::path, Reason> cases[] = {{directory / "missing", Reason::Missing},
                                                            {file, Reason::Not_A_Store},
                                                            {directory / "empty", Reason::Not_A_Store}};
  for (const auto& [path, reason] : cases) {
    try {
      Maildir_Store::Open(Store_Address(path), {});
      ADD_FAILURE() << path << " was opened";
    } catch (const Store_Open_Error& error) {
      EXPECT_EQ(error.Why(), reason) << path;
      EXPECT_NE(std::string(error.what()).find(path.string()), std::string::npos);
    }
  }
}

TEST_F(Maildir_Test, AFolderGoesWithAllBelowIt) {
  program.Make_Folder(".A");
  program.Make_Folder(".A.B");
  program.Make_Folder(".AB");
  program.Deliver(".A.B", "below");
  program.Deliver(".AB", "beside");
  Open();
  store->Top_Folder()->Folders()->Remove(1);
  EXPECT_EQ(Tree(), "AB 1, Inbox 0, Trash 0, ");
  for (const auto& entry : std::filesystem::directory_iterator(program.Top()))
    EXPECT_FALSE(entry.path().filename().string().starts_with(".A.") || entry.path().filename() == ".A" ||
                 entry.path().filename().string().starts_with(".."))
        << entry.path();
  EXPECT_EQ(Error_Of([&] { store->Top_Folder()->Folders()->Remove(2); }), automation_error::no_access)
      << "the inbox";
  Open(Store_Mode::Read_Only);
  EXPECT_EQ(Error_Of([&] { store->Top_Folder()->Folders()->Remove(1); }), automation_error::no_access);
}

}  // namespace
}  // namespace tidyfold
