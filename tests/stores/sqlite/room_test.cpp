#include <vector>

#include "stores/sqlite/fault_vfs.h"
#include "stores/sqlite/other_process.h"
#include "stores/sqlite/temporary_store.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

// What the current format has and format 1 had not goes; texts are as Add_Numbered writes them.
constexpr const char* to_format_1 = R"(
DROP TABLE content;
CREATE TABLE content (item INTEGER PRIMARY KEY REFERENCES item (id) ON DELETE CASCADE, sender TEXT NOT NULL,
  recipients TEXT NOT NULL, body TEXT NOT NULL);
INSERT INTO content SELECT id, '', 'You', 'Body of ' || subject FROM item;
CREATE TABLE message (item INTEGER PRIMARY KEY REFERENCES item (id) ON DELETE CASCADE, raw BLOB NOT NULL);
INSERT INTO message SELECT id, CAST('Raw ' || subject AS BLOB) FROM item;
ALTER TABLE attachment DROP COLUMN packed;
ALTER TABLE item DROP COLUMN flag;
ALTER TABLE folder DROP COLUMN protected;
ALTER TABLE store DROP COLUMN log;
ALTER TABLE store DROP COLUMN log_before;
PRAGMA user_version = 1;)";

class Room : public Store_File {
 protected:
  void Make_Format_1() {
    Make_Small_Store(file_, 500);
    Open()->Top_Folder()->Folders()->Item(5)->Items()->Item(500)->Delete();
    ASSERT_EQ(Run_Sql(file_, to_format_1), SQLITE_OK);
  }
  // Opens a copy, so that the file stays as it is.
  void Expect_Brought_Up_To_Date() const {
    const Temporary_Directory elsewhere;
    fs::copy_file(file_, elsewhere / "copy");
    const auto store = Embedded_Store::Open(elsewhere / "copy", Store_Mode::Read_Write);
    EXPECT_EQ(Subjects_Of(*store, "Inbox"), Numbers(1, 499));
    EXPECT_EQ(Subjects_Of(*store, "Deleted Items"), "500");
    const New_Item item = store->Read_Whole_Item("I7");
    EXPECT_EQ(item.body + "|" + item.raw_message + "|" + item.recipients, "Body of 7|Raw 7|You");
    EXPECT_EQ(item.attachments.at(0).size, 7);
    EXPECT_EQ(store->Check(), std::vector<std::string>());
    EXPECT_EQ(store->Writer().Add_Item(*store->Top_Folder(), {}), "I501") << "no number is given twice";
  }
  // The first two thirds of it are room that nothing uses.
  void Make_Roomy() {
    const auto store = Embedded_Store::Create(file_, "Roomy");
    const auto inbox = Folder_Named(*store, "Inbox");
    New_Item item;
    for (int number = 1; number <= 300; ++number) {
      item.subject = std::to_string(number);
      item.body = Incompressible(3000 + static_cast<std::size_t>(number));
      store->Writer().Add_Item(*inbox, item);
    }
    for (int i = 0; i < 200; ++i) inbox->Items()->Remove(1);
  }
};

TEST_F(Room, A_Store_Of_Format_1_Is_Brought_Up_To_Date_Whenever_It_Is_Killed) {
  Make_Format_1();
  int killed = 0;
  for (int writing = 1;; writing += 2, ++killed) {
    SCOPED_TRACE(writing);
    const int result = In_Killed_Process([&] {
      Fault_Vfs disk;
      disk.Kill_At_Writing(writing);
      Open();
      return 1;
    });
    Expect_Brought_Up_To_Date();
    if (result == 1) break;
    EXPECT_EQ(result, -1);
  }
  EXPECT_GT(killed, 10);
  EXPECT_EQ(All_Files(directory_.Path()).size(), 1U) << "no draft is left";
}

TEST_F(Room, A_Store_Of_Format_1_That_Cannot_Be_Brought_Up_To_Date_Stays_As_It_Is) {
  Make_Format_1();
  const auto before = All_Files(directory_.Path());
  const auto expect_refused = [&](Store_Mode mode, const Store_Progress& progress, Reason reason) {
    EXPECT_EQ(Refusal(file_, [&] { Embedded_Store::Open(file_, mode, progress); }), reason);
    EXPECT_EQ(All_Files(directory_.Path()), before);
  };
  expect_refused(Store_Mode::Read_Only, {}, Reason::Older_Version);
  expect_refused(
      Store_Mode::Read_Write, [](auto done, auto total) { return done < total / 2; }, Reason::Cancelled);
  Fault_Vfs disk("-new");
  disk.Fail_Writing(9, SQLITE_FULL, ENOSPC);
  expect_refused(Store_Mode::Read_Write, {}, Reason::Cannot_Write);
  disk.Repair();
  Expect_Brought_Up_To_Date();
}

// With room for a compact copy, and without: then its writing fails.
TEST_F(Room, Compacting_Gives_Unused_Room_Back_And_Keeps_Everything) {
  for (const bool room : {true, false}) {
    for (const bool cancelled : {true, false}) {
      SCOPED_TRACE(std::to_string(room) + std::to_string(cancelled));
      fs::remove(file_);
      Make_Roomy();
      Fault_Vfs disk("-new");
      if (!room) disk.Fail_Writing(1, SQLITE_FULL, ENOSPC);
      {
        const auto store = Open();
        const auto items = Folder_Named(*store, "Inbox")->Items();
        EXPECT_EQ(items->Item(1)->Subject(), "201");
        EXPECT_GT(store->Unused_Bytes(), 300'000);
        int told = 0;
        const Compacted result = store->Compact([&](auto, auto) { return ++told > 0 && !cancelled; });
        EXPECT_EQ(result.cancelled, cancelled && told > 0);
        EXPECT_EQ(static_cast<std::uintmax_t>(result.after), fs::file_size(file_));
        if (!cancelled) {
          EXPECT_LT(result.after, result.before / 2);
          EXPECT_EQ(store->Unused_Bytes(), 0);
        }
        items->Item(100)->Delete();
      }
      Expect_Kept(Numbers(201, 299), "300");
      EXPECT_EQ(All_Files(directory_.Path()).size(), 1U);
    }
  }
}

TEST_F(Room, Compacting_That_Is_Killed_Leaves_The_Store_Whole) {
  for (const bool room : {true, false}) {
    fs::remove(file_);
    Make_Roomy();
    const std::string roomy = Bytes_Of(file_);
    int killed = 0;
    for (int writing = 1;; writing += room ? 37 : 5, ++killed) {
      Write_Bytes(file_, roomy);
      const int result = In_Killed_Process([&] {
        Fault_Vfs disk(room ? "" : "-wal");
        const auto store = Open();
        disk.Kill_At_Writing(writing);
        // Without room for a copy, it is done within the file.
        if (!room) fs::create_directories(directory_ / "a.tfs-new" / "not empty");
        store->Compact();
        return 1;
      });
      fs::remove_all(directory_ / "a.tfs-new");
      Expect_Kept(Numbers(201, 300));
      if (result == 1) break;
    }
    EXPECT_GT(killed, 2) << room;
  }
}

TEST_F(Room, A_New_Store_Is_Whole_Or_Not_There) {
  for (int writing = 1, result = 0; result != 1 && writing < 100; ++writing) {
    fs::remove(file_);
    result = In_Killed_Process([&] {
      Fault_Vfs disk;
      disk.Kill_At_Writing(writing);
      Embedded_Store::Create(file_, "New");
      return 1;
    });
    EXPECT_TRUE(!fs::exists(file_) || Open()->Top_Folder()->Folders()->Count() == 10);
  }
  EXPECT_TRUE(fs::exists(file_));
}

// A backup copy is laid over a store whose writer has crashed.
TEST_F(Room, A_Log_That_Belongs_To_Another_File_Is_Not_Replayed) {
  Make_Small_Store(file_);
  const std::string backup = Bytes_Of(file_);
  Add_Numbered(*Open(), "Inbox", 300);
  EXPECT_EQ(In_Killed_Process([&] {
              Embedded_Store& store = Left_Open(Open());
              Folder_Named(store, "Inbox")->Items()->Remove(1);
              store.Commit_Pending();
              return 0;
            }),
            0);
  const std::string log = Bytes_Of(directory_ / "a.tfs-wal");
  Write_Bytes(file_, backup);
  EXPECT_EQ(Subjects_Of(*Open(Store_Mode::Read_Only), "Inbox"), "1 2 3");
  EXPECT_EQ(Bytes_Of(directory_ / "a.tfs-wal"), log);
  Expect_Kept("1 2 3");
  EXPECT_EQ(Bytes_Of(directory_ / "a.tfs-wal-set-aside-1"), log);
}

TEST_F(Room, An_Item_Comes_Back_Whole) {
  New_Item mail;
  mail.sender = "Zoë";
  mail.sender_address = "zoe@example.org";
  mail.message_id = "1@example.org";
  mail.list_id = "list.example.org";
  mail.recipients = "You";
  mail.body = Incompressible(300'000);
  mail.raw_message = "Subject: x\r\n\r\n" + mail.body;
  mail.flagged = mail.answered = mail.unread = true;
  mail.identity = -5;
  mail.attachments = {{"a.pdf", 5, std::string("a\0b\xFF", 4)}, {"b.pdf", 7}};
  const auto folder = Folder_Named(*Embedded_Store::Create(file_, "New"), "Inbox")->EntryID();
  {
    const auto store = Open();
    for (const New_Item* item : {&mail, &mail})
      store->Writer().Add_Item(*Folder_Named(*store, "Inbox"), *item);
    store->Set_Protected(folder, true);
  }
  EXPECT_LT(fs::file_size(file_), 3 * mail.body.size()) << "a text that the raw message holds takes no room";
  const auto store = Open(Store_Mode::Read_Only);
  EXPECT_TRUE(store->Is_Protected(folder));
  EXPECT_FALSE(store->Is_Protected(Folder_Named(*store, "Drafts")->EntryID()));
  EXPECT_EQ(store->Writer().Count_Of(-5), 2);
  EXPECT_EQ(store->Writer().Count_Of(0), 0) << "not known";
  const New_Item read = store->Read_Whole_Item("I1");
  const auto all_of = [](const New_Item& item) {
    return std::tie(item.sender, item.sender_address, item.message_id, item.list_id, item.recipients,
                    item.body, item.raw_message, item.flagged, item.answered, item.unread);
  };
  EXPECT_EQ(all_of(read), all_of(mail));
  EXPECT_EQ(read.attachments.at(0).content, mail.attachments[0].content);
}

}  // namespace
}  // namespace tidyfold
