// A mailbox on a server behind the object model. The server is Dovecot, over a pipe.
#include <gmock/gmock.h>

#include <algorithm>
#include <future>
#include <map>
#include <set>

#include "errors/automation_error.h"
#include "stores/imap/dovecot.h"
#include "stores/opening/accounts.h"

namespace tidyfold::imap {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// What a run is told of its changes.
class Noted_Groups : public Group_Watcher {
 public:
  void Group_Ending() override { ++begun; }
  void Not_Kept(const std::string&, const std::string& entry_id, const std::string& reason) override {
    not_kept[entry_id] = reason;
  }
  void Renamed(const std::string&, const std::string& entry_id, const std::string& new_entry_id) override {
    renamed[entry_id] = new_entry_id;
  }
  void Group_Ended(const std::string&, bool kept) override {
    ++ended;
    EXPECT_TRUE(kept);
  }
  int begun = 0, ended = 0;
  std::map<std::string, std::string> not_kept, renamed;
};

class Imap_Store : public testing::Test {
 protected:
  void SetUp() override { REQUIRE_OR_SKIP(Dovecot::Is_Installed(), "Dovecot is not installed."); }
  void Open(Store_Mode mode = Store_Mode::Read_Write) {
    store_.reset();
    Account_Settings settings;
    settings.connect = [this](const Interruption&) {
      return std::make_unique<Wired_Transport>(dovecot_.Start(), wire_);
    };
    settings.patience = std::chrono::seconds(20);
    settings.trust = std::chrono::milliseconds(0);
    store_ = Open_Account(Read_Store_Address("imap://tester@localhost/"), mode, std::move(settings),
                          dovecot_.Directory() / "cache" / "headers");
    groups_ = std::make_shared<Noted_Groups>();
    store_->Set_Watcher(groups_);
  }
  MAPIFolder_Ptr Folder(const std::string& name) {
    const Folders_Ptr folders = store_->Top_Folder()->Folders();
    for (std::int32_t i = 1; i <= folders->Count(); ++i)
      if (folders->Item(i)->Name() == name) return folders->Item(i);
    throw std::runtime_error("no folder " + name);
  }
  std::vector<Table_Row> Rows(const std::string& folder) {
    const Table_Ptr table = Folder(folder)->GetTable();
    std::vector<Table_Row> all;
    for (auto rows = table->GetArray(3); !rows.empty(); rows = table->GetArray(3))
      all.insert(all.end(), rows.begin(), rows.end());
    return all;
  }
  std::string Id(const std::string& folder, const std::string& subject) {
    for (const Table_Row& row : Rows(folder))
      if (row.Subject == subject) return row.EntryID;
    throw std::runtime_error("no item " + subject);
  }
  std::int32_t Error_Of(const std::function<void()>& call) {
    try {
      call();
    } catch (const Automation_Error& error) {
      EXPECT_NE(error.Description(), "");
      return error.Number();
    }
    return 0;
  }

  static constexpr int most_messages = 120;  // then the account is full
  Dovecot dovecot_{Dovecot::Special_Folders::Yes,
                   "mail_plugins = quota\nplugin {\n  quota = maildir\n  "
                   "quota_rule = *:messages=" +
                       std::to_string(most_messages) + "\n}\n"};
  Wire wire_;
  std::shared_ptr<Noted_Groups> groups_;
  std::shared_ptr<Mail_Store> store_;
};

TEST_F(Imap_Store, Shows_Folders_Roles_And_Rows_And_Opens_Again_With_What_Has_Changed) {
  Other_Client other(dovecot_);
  other.Do("CREATE Lists/Entw&APw-rfe");
  other.Append("INBOX", Mail("=?iso-8859-1?q?Gr=FC=DFe?="), "\\Seen \\Flagged", "01-Jan-2021 00:30:00 +0000");
  const std::string meeting = "Content-Type: text/calendar; method=REQUEST\r\n\r\nBEGIN:VCALENDAR\r\n";
  other.Append("INBOX", Mail("plain"));
  other.Append("INBOX",
               Mail("meeting", "multipart/mixed; boundary=b", "--b\r\n" + meeting + "\r\n--b--\r\n"));
  other.Append("INBOX", Mail("report", "multipart/report; boundary=b", "--b\r\n\r\nx\r\n--b--\r\n"));
  other.Append("INBOX", Mail("answer", "text/calendar; method=REPLY",
                             "BEGIN:VCALENDAR\r\nMETHOD:REPLY\r\nATTENDEE;PARTSTAT=DECLINED:x\r\n"));
  for (const std::vector<std::string>& hidden :
       {std::vector<std::string>{}, {"QRESYNC"}, {"QRESYNC", "CONDSTORE", "ESEARCH", "LIST-STATUS"}}) {
    SCOPED_TRACE(hidden.size());
    wire_.hidden = hidden;
    std::filesystem::remove_all(dovecot_.Directory() / "cache");
    for (const bool again : {false, true}) {
      SCOPED_TRACE(again);
      Open();
      EXPECT_EQ(store_->GetDefaultFolder(default_folder_deleted_items)->Name(), "Papierkorb");
      EXPECT_EQ(store_->GetDefaultFolder(default_folder_inbox)->Name(), "Inbox");
      EXPECT_EQ(Error_Of([&] { store_->GetDefaultFolder(default_folder_junk); }),
                automation_error::not_found);
      EXPECT_EQ(Folder("Lists")->Folders()->Item(1)->Name(), "Entwürfe");
      EXPECT_EQ(Folder("Inbox")->Items()->Count(), 5);
      const auto rows = Rows("Inbox");
      ASSERT_EQ(rows.size(), 5U);
      EXPECT_EQ(rows[0].Subject, "Grüße");
      EXPECT_EQ(rows[0].SenderOrText, "Zoë");
      EXPECT_FALSE(rows[0].UnRead);
      EXPECT_EQ(rows[0].FlagStatus, flag_status::marked);
      EXPECT_NEAR(rows[0].ReceivedTime, 44197.02, 0.6);
      EXPECT_TRUE(rows[1].UnRead);
      EXPECT_GT(rows[1].Size, 100);
      EXPECT_EQ(rows[2].Class, item_class::meeting_request);
      EXPECT_EQ(rows[3].Class, item_class::report);
      EXPECT_EQ(rows[4].Class, item_class::meeting_response_negative);
      const Item_Ptr item = store_->GetItemFromID(rows[1].EntryID);
      EXPECT_EQ(item->Body(), "Text\r\n");
      EXPECT_EQ(item->Parent()->EntryID(), Folder("Inbox")->EntryID());
      EXPECT_EQ(Folder("Inbox")->Items()->Item(2)->EntryID(), rows[1].EntryID);
    }
    // While nobody looks, one is read, one goes and one comes.
    store_.reset();
    other.Do("SELECT INBOX");
    other.Do("UID STORE 2 +FLAGS (\\Seen)");
    other.Append("INBOX", Mail("new"));
    other.Do("STORE 5 +FLAGS (\\Deleted)");
    other.Do("EXPUNGE");
    Open();
    const auto rows = Rows("Inbox");
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_FALSE(rows[1].UnRead);
    EXPECT_EQ(rows[4].Subject, "new");
    // And the same while it is open.
    const std::string gone = rows[4].EntryID;
    other.Do("UID STORE 2 -FLAGS (\\Seen)");
    other.Do("STORE 5 +FLAGS (\\Deleted)");
    other.Do("EXPUNGE");
    other.Append("INBOX", Mail("answer", "text/calendar; method=REPLY",
                               "BEGIN:VCALENDAR\r\nMETHOD:REPLY\r\nPARTSTAT=DECLINED\r\n"));
    EXPECT_EQ(Folder("Inbox")->Items()->Count(), 5);
    EXPECT_TRUE(store_->GetItemFromID(rows[1].EntryID)->UnRead());
    EXPECT_EQ(Error_Of([&] { store_->GetItemFromID(gone); }), automation_error::not_found);
  }
}

// Whatever the server can do: what was chosen goes, nothing else does, and each change is told as it was.
TEST_F(Imap_Store, Changes_Are_Sent_When_Their_Group_Ends_And_Told_One_By_One) {
  struct Case {
    std::vector<std::string> hidden;
    bool moves, expunges;
  };
  const Case cases[] = {{{}, true, true},           {{"QRESYNC"}, true, true},
                        {{"MOVE"}, true, true},     {{"QRESYNC", "CONDSTORE", "MOVE", "LITERAL"}, true, true},
                        {{"UIDPLUS"}, true, false}, {{"MOVE", "UIDPLUS"}, false, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.hidden));
    Other_Client other(dovecot_);
    for (const char* mailbox : {"INBOX", "Papierkorb"}) other.Empty(mailbox);
    for (const char* subject : {"a", "b", "c", "d", "e", "f"}) other.Append("INBOX", Mail(subject), "\\Seen");
    other.Append("INBOX", Mail("marked"), "\\Deleted");
    wire_.hidden = c.hidden;
    Open();
    std::map<std::string, std::string> ids;
    for (const Table_Row& row : Rows("Inbox")) ids[row.Subject] = row.EntryID;
    ASSERT_EQ(ids.size(), 7U);
    const MAPIFolder_Ptr trash = Folder("Papierkorb");
    // a and b are moved, c and d go for good; meanwhile b and d have become unread, and f has gone.
    const Item_Ptr moved = store_->GetItemFromID(ids["a"])->Move(*trash);
    EXPECT_EQ(moved->EntryID(), ids["a"]) << "nothing is sent before the group ends";
    store_->GetItemFromID(ids["b"])->Move(*trash);
    store_->GetItemFromID(ids["c"])->Move(*trash)->Delete();
    store_->GetItemFromID(ids["d"])->Move(*trash)->Delete();
    store_->GetItemFromID(ids["f"])->Move(*trash);
    EXPECT_EQ(Error_Of([&] { store_->GetItemFromID(ids["a"]); }), automation_error::not_found);
    EXPECT_EQ(groups_->begun, 0);
    other.Do("SELECT INBOX");
    other.Do("STORE 2,4 -FLAGS (\\Seen)");
    other.Do("UID STORE " +
             ids["f"].substr(ids["f"].find(':', 5) + 1, ids["f"].rfind(':') - ids["f"].find(':', 5) - 1) +
             " +FLAGS (\\Deleted)");
    if (c.expunges)
      other.Do("UID EXPUNGE " +
               ids["f"].substr(ids["f"].find(':', 5) + 1, ids["f"].rfind(':') - ids["f"].find(':', 5) - 1));
    store_->Commit_Pending();
    EXPECT_EQ(groups_->begun, 1);
    EXPECT_EQ(groups_->ended, 1);
    std::set<std::string> kept, expected{ids["b"], ids["d"]};
    for (const auto& [id, reason] : groups_->not_kept) kept.insert(id);
    if (c.expunges) expected.insert(ids["f"]);
    if (!c.moves) expected.insert({ids["a"], ids["f"]});
    if (!c.expunges) expected.insert(ids["c"]);
    EXPECT_EQ(kept, expected);
    if (!c.expunges) {
      EXPECT_THAT(groups_->not_kept[ids["c"]], HasSubstr("UIDPLUS"));
    }
    std::vector<std::string> inbox = other.Subjects("INBOX"), in_trash = other.Subjects("Papierkorb");
    EXPECT_EQ(std::count(inbox.begin(), inbox.end(), "marked"), 1) << "another's mark is no order to expunge";
    EXPECT_EQ(std::count(inbox.begin(), inbox.end(), "a"), c.moves ? 0 : 1);
    EXPECT_EQ(std::count(in_trash.begin(), in_trash.end(), "a"), c.moves ? 1 : 0);
    EXPECT_EQ(std::count(inbox.begin(), inbox.end(), "b"), 1);
    EXPECT_EQ(std::count(inbox.begin(), inbox.end(), "c"), c.expunges ? 0 : 1);
    EXPECT_EQ(std::count(inbox.begin(), inbox.end(), "d"), 1);
    EXPECT_EQ(std::count(inbox.begin(), inbox.end(), "e"), 1);
    if (!c.moves || !c.expunges) continue;
    // Taken back by the identity that it got.
    ASSERT_TRUE(groups_->renamed.contains(ids["a"]));
    const Item_Ptr back = store_->GetItemFromID(groups_->renamed[ids["a"]]);
    EXPECT_EQ(back->Subject(), "a");
    back->Move(*Folder("Inbox"));
    store_->Commit_Pending();
    inbox = other.Subjects("INBOX");
    EXPECT_EQ(std::count(inbox.begin(), inbox.end(), "a"), 1);
    EXPECT_THAT(other.Subjects("Papierkorb"), IsEmpty());
  }
}

// Wherever the connection drops, each message lies where the run says that it lies, nothing else has moved,
// and no mark is left that another program's expunge would heed. Where it drops again and again, the run says
// what it does not know.
TEST_F(Imap_Store, A_Connection_That_Drops_At_Any_Byte_Loses_Nothing_And_Tells_The_Truth) {
  Other_Client other(dovecot_);
  int drops = 0, not_done = 0;
  for (int round = 0; round < 36; ++round) {
    const std::int64_t cut = 1 + round * 11;
    const bool for_good = round % 2 == 0, for_ever = round % 3 == 0, copies = round % 4 == 1;
    SCOPED_TRACE(testing::Message() << cut << (for_good ? " for good" : "") << (for_ever ? " for ever" : "")
                                    << (copies ? " by copies" : ""));
    for (const char* mailbox : {"INBOX", "Papierkorb"}) other.Empty(mailbox);
    for (const char* subject : {"a", "b", "c", "stays"}) other.Append("INBOX", Mail(subject), "\\Seen");
    wire_ = {};
    if (copies) wire_.hidden = {"MOVE"};
    Open();
    std::map<std::string, std::string> ids;
    for (const Table_Row& row : Rows("Inbox")) ids[row.Subject] = row.EntryID;
    const int before = wire_.connections;
    for (const char* subject : {"a", "b", "c"}) {
      const Item_Ptr moved = store_->GetItemFromID(ids[subject])->Move(*Folder("Papierkorb"));
      if (for_good) moved->Delete();
    }
    wire_.bytes_left = cut;
    if (for_ever) wire_.and_again = cut;
    const std::int32_t error = Error_Of([&] { store_->Commit_Pending(); });
    if (error != 0) {
      EXPECT_TRUE(for_ever && error == automation_error::unavailable);
    }
    wire_.bytes_left = wire_.and_again = -1;
    drops += wire_.connections - before;
    Folder("Inbox")->Items()->Count();
    const auto inbox = other.Subjects("INBOX"), trash = other.Subjects("Papierkorb");
    for (const auto& [subject, id] : ids) {
      const auto in_inbox = std::count(inbox.begin(), inbox.end(), subject);
      const auto in_trash = std::count(trash.begin(), trash.end(), subject);
      if (subject == "stays") {
        EXPECT_EQ(in_inbox, 1);
        EXPECT_EQ(in_trash, 0);
      } else if (!groups_->not_kept.contains(id)) {
        EXPECT_EQ(in_inbox, 0) << subject;
        EXPECT_EQ(in_trash, for_good ? 0 : 1) << subject;
      } else {
        ++not_done;
        EXPECT_TRUE(for_ever || copies) << "one drop is made good: " << groups_->not_kept[id];
        if (error == 0) {
          EXPECT_EQ(in_inbox, 1) << subject;
        }
        if (!for_good) {
          EXPECT_GE(in_inbox + in_trash, 1) << subject;
        }
      }
    }
    EXPECT_EQ(other.Count("INBOX", "DELETED"), 0U);
  }
  EXPECT_GT(drops, 30) << "the cuts met too little";
  EXPECT_GT(not_done, 0);
}

TEST_F(Imap_Store, Changes_Wait_For_Each_Other_And_Go_In_Few_Commands) {
  Other_Client other(dovecot_);
  for (int number = 0; number < most_messages; ++number) other.Append("INBOX", Mail("x"), "\\Seen");
  Open();
  const std::vector<Table_Row> rows = Rows("Inbox");
  const MAPIFolder_Ptr inbox = Folder("Inbox"), trash = Folder("Papierkorb");
  bool waited = false;
  for (std::size_t at = 0; at < rows.size(); at += 2) {
    store_->GetItemFromID(rows[at].EntryID)->Move(*trash);
    waited = !store_->Commit_Due() || waited;
  }
  EXPECT_TRUE(waited);
  EXPECT_EQ(inbox->Items()->Count(), most_messages / 2) << "what is on its way counts as gone";
  store_->Commit_Pending();
  EXPECT_TRUE(store_->Commit_Due());
  EXPECT_EQ(groups_->renamed.size(), rows.size() / 2);
  EXPECT_EQ(other.Subjects("Papierkorb").size(), rows.size() / 2);
  std::size_t commands = 0;
  for (std::size_t at = 0; (at = wire_.sent.find("UID MOVE", at)) != std::string::npos; ++at) ++commands;
  EXPECT_GE(commands, 1U);
  EXPECT_LE(commands, rows.size() / 10);
}

// Copies need room in an account that is full.
TEST_F(Imap_Store, A_Server_That_Is_Full_Is_Asked_Again_As_Long_As_The_Person_Wants) {
  for (const bool retries : {true, false}) {
    SCOPED_TRACE(retries);
    Other_Client other(dovecot_);
    for (const char* mailbox : {"INBOX", "Papierkorb"}) other.Empty(mailbox);
    for (const char* subject : {"a", "b"}) other.Append("INBOX", Mail(subject), "\\Seen");
    for (int number = 2; number < most_messages; ++number) other.Append("Sent", Mail("x"));
    wire_.hidden = {"MOVE"};
    Open();
    int asked = 0;
    store_->Ask_When_Busy([&](const std::string& words) {
      EXPECT_THAT(words, HasSubstr("says: Quota exceeded"));
      if (++asked == 2) other.Empty("Sent");
      return retries;
    });
    for (const Table_Row& row : Rows("Inbox"))
      store_->GetItemFromID(row.EntryID)->Move(*Folder("Papierkorb"));
    const std::int32_t error = Error_Of([&] { store_->Commit_Pending(); });
    EXPECT_EQ(error, retries ? 0 : automation_error::unavailable);
    EXPECT_EQ(asked, retries ? 2 : 1);
    EXPECT_EQ(groups_->not_kept.size(), retries ? 0U : 2U);
    EXPECT_THAT(other.Subjects(retries ? "Papierkorb" : "INBOX"), ElementsAre("a", "b"));
    EXPECT_THAT(other.Subjects(retries ? "INBOX" : "Papierkorb"), IsEmpty());
    other.Empty("Sent");
  }
}

TEST_F(Imap_Store, A_Trash_That_Is_Made_Takes_What_Is_Deleted) {
  wire_.hidden = {"SPECIAL-USE", "\\Trash"};
  Open();
  EXPECT_EQ(Error_Of([&] { store_->GetDefaultFolder(default_folder_deleted_items); }),
            automation_error::not_found);
  const MAPIFolder_Ptr made = store_->Top_Folder()->Folders()->Add("Trash", item_type::mail);
  EXPECT_EQ(store_->GetDefaultFolder(default_folder_deleted_items)->EntryID(), made->EntryID());
}

// An account logs in again by its own copy, on its own thread, where nobody can be asked.
TEST(Account_Passwords, Each_Account_Has_Its_Own_And_Finds_It_At_A_Later_Login) {
  int asked = 0;
  const auto passwords = Account_Passwords(
      {.command = [](const Store_Address& a) { return a.host == "c" ? std::string("echo by command") : ""; },
       .given = [&](const Store_Address& a) { return ++asked, "given for " + a.host; },
       .ask = [](const Store_Address&) { return std::nullopt; },
       .wait = {}});
  const auto later = passwords;
  for (const int before : {0, 1, 2})
    for (const char* host : {"a", "b", "c"})
      EXPECT_EQ((before == 0 ? passwords : later)(Read_Store_Address(std::string("imaps://x@") + host + "/"),
                                                  before),
                *host == 'c' ? "by command" : std::string("given for ") + host);
  EXPECT_EQ(asked, 2);
}

// To others a password never goes without encryption.
TEST(Store_Address, Only_This_Machine_Is_On_This_Machine) {
  const std::pair<const char*, bool> hosts[] = {{"localhost", true},        {"127.0.0.1", true},
                                                {"127.8.9.1", true},        {"::1", true},
                                                {"127.example.com", false}, {"127.0.0.1.example.com", false},
                                                {"localhost.com", false},   {"10.127.0.1", false},
                                                {"mail.example.com", false}};
  for (const auto& [host, here] : hosts) {
    Store_Address address;
    address.host = host;
    EXPECT_EQ(address.Is_On_This_Machine(), here) << host;
  }
}

// Plays a server.
class Scripted_Transport : public Transport {
 public:
  Scripted_Transport(std::string begin, std::string again)
      : text_(std::move(begin)), again_(std::move(again)) {}
  std::optional<std::size_t> Read(char* buffer, std::size_t size) override {
    if (at_ == text_.size()) {
      text_ = again_;
      at_ = 0;
    }
    const std::size_t got = std::min(size, text_.size() - at_);
    text_.copy(buffer, got, at_);
    at_ += got;
    return got;
  }
  std::size_t Write(std::string_view bytes) override { return bytes.size(); }
  int Read_Descriptor() const override { return 0; }

 private:
  std::string text_, again_;
  std::size_t at_ = 0;
};

TEST(Imap_Server, What_Is_No_Mail_Server_Is_Refused_With_A_Sentence) {
  using namespace std::string_literals;
  using Reason = Store_Open_Error::Reason;
  const std::string hello = "* PREAUTH [CAPABILITY IMAP4rev1 LIST-STATUS] hi\r\n";
  struct Case {
    std::string begin, again;
    Reason reason;
    const char* words;
  };
  const Case cases[] = {
      {"", "", Reason::Not_Reached, "closed"},
      {"* BYE Too many connections\r\n", "", Reason::Not_Reached, "Too many connections"},
      {"HTTP/1.1 400 Bad\r\n\r\n", "", Reason::Not_Reached, "no IMAP"},
      {hello, "", Reason::Not_Reached, "closed"},
      {hello, std::string(1 << 20, 'x'), Reason::Not_Reached, "without an end"},
      {hello, "* LIST () \"/\" {999999999999}\r\n", Reason::Not_Reached, "more at once"},
      {hello, "* LIST () \"/\" {99999999999999999999999}\r\n", Reason::Not_Reached, "impossible"},
      {hello, "* LIST " + std::string(10000, '(') + "\r\n", Reason::Not_Reached, "nested"},
      {hello, "* 99999999999 EXISTS\r\n", Reason::Not_Reached, "impossible number"},
      {hello, "* LIST () \"/\" a\0b\r\n"s, Reason::Not_Reached, "no IMAP"},
      {hello, "T1 NO [LIMIT] Not now\r\n", Reason::Not_Reached, "Not now"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.words);
    Account_Settings settings;
    settings.connect = [&](const Interruption&) {
      return std::make_unique<Scripted_Transport>(c.begin, c.again);
    };
    const Temporary_Directory cache;
    try {
      Open_Account(Read_Store_Address("imap://tester@localhost/"), Store_Mode::Read_Write, settings,
                   cache / "x");
      ADD_FAILURE() << "it opened";
    } catch (const Store_Open_Error& error) {
      EXPECT_EQ(error.Why(), c.reason) << error.what();
      EXPECT_THAT(error.what(), HasSubstr(c.words));
    }
  }
}

void Expect_Cancelled(const Account_Settings& settings) {
  const Temporary_Directory cache;
  Store_Opening opening;
  int served = 0;
  opening.wait = [&] { return [&] { return ++served < 5; }; };
  try {
    Open_Account(Read_Store_Address("imap://tester@localhost/"), opening, settings, cache / "x");
    ADD_FAILURE() << "it opened";
  } catch (const Store_Open_Error& error) {
    EXPECT_EQ(error.Why(), Store_Open_Error::Reason::Cancelled);
  }
  EXPECT_GE(served, 5);
}

// A server that says nothing, and a command for the password, are given up when the person says so, and
// within a second.
TEST(Imap_Server, A_Silent_Server_Is_Left_When_The_Wait_Is_Cancelled) {
  Account_Settings settings;
  std::promise<std::string> told;
  settings.login.secret = [secret = told.get_future().share()] { return secret.get(); };
  for (const char* words : {"cat", "echo '* OK [CAPABILITY IMAP4rev1 AUTH=PLAIN] hi\r'; cat"}) {
    settings.connect = [&](const Interruption&) { return Start_Program({"/bin/sh", "-c", words}); };
    Expect_Cancelled(settings);
  }
  told.set_value("late");
}

TEST(Imap_Server, No_Error_Repeats_A_Password) {
  Account_Settings settings;
  settings.login = {"tester", [] { return std::string("geheim"); }, Mechanism::Password};
  const std::string script =
      "* OK [CAPABILITY IMAP4rev1 AUTH=PLAIN SASL-IR] hi\r\nT1 NO [AUTHENTICATIONFAILED] geheim is wrong\r\n";
  settings.connect = [&](const Interruption&) { return std::make_unique<Scripted_Transport>(script, ""); };
  const Temporary_Directory cache;
  try {
    Open_Account(Read_Store_Address("imap://tester@localhost/"), Store_Mode::Read_Write, settings,
                 cache / "x");
    ADD_FAILURE() << "it opened";
  } catch (const Store_Open_Error& error) {
    EXPECT_EQ(error.Why(), Store_Open_Error::Reason::Not_Let_In);
    EXPECT_THAT(error.what(), HasSubstr("is wrong"));
    EXPECT_THAT(error.what(), testing::Not(HasSubstr("geheim")));
  }
}

}  // namespace
}  // namespace tidyfold::imap
