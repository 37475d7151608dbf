// Runs on a mail account whose calls fail, and whose server has no room. The server is Dovecot, over a pipe.
#include <map>
#include <set>

#include "app/window_fixture.h"
#include "outlook/store_session.h"
#include "stores/imap/dovecot.h"

namespace tidyfold::imap {

namespace {

const char* const taken_from[] = {"INBOX", "Old"};

class Imap_Cleaning : public testing::Test {
 protected:
  using Subjects = std::map<std::string, std::set<std::string>>;  // by mailbox

  void SetUp() override { REQUIRE_OR_SKIP(Dovecot::Is_Installed(), "Dovecot is not installed."); }
  // Others of the folder are unread, and those of Sent are in nobody's way.
  void Deliver(Other_Client& other) {
    for (const char* mailbox : {"INBOX", "Old", "Papierkorb", "Sent"}) other.Empty(mailbox);
    for (const char* mailbox : {"INBOX", "Old", "Sent"})
      for (const char* subject : {"a", "b", "unread"})
        other.Append(mailbox, Mail(std::string(subject) + mailbox), *subject == 'u' ? "" : "\\Seen");
  }
  Subjects All(Other_Client& other) {
    Subjects all;
    for (const char* mailbox : {"INBOX", "Old", "Papierkorb", "Sent"})
      for (std::set<std::string>& in = all[mailbox]; const std::string& subject : other.Subjects(mailbox))
        in.insert(subject);
    return all;
  }

  Dovecot dovecot_{Dovecot::Special_Folders::Yes,
                   "mail_plugins = quota\nplugin {\n  quota = maildir\n  quota_rule = *:messages=10\n}\n"};
};

// The program over the account.
struct Account_Run : Test_Surroundings {
  Wire wire;
  Store_Session session{nullptr};
  Fault_Plan plan;
  Faulty_Automation automation{session, plan};
  MainWindow window;
  App app{window, Around(automation)};

  Account_Run(const Dovecot& dovecot, const std::vector<std::string>& hidden) {
    wire.hidden = hidden;
    Account_Settings settings;
    settings.connect = [this, &dovecot](const Interruption&) {
      return std::make_unique<Wired_Transport>(dovecot.Start(), wire);
    };
    session.Add(Open_Account(Read_Store_Address("imap://tester@localhost/"), Store_Mode::Read_Write, settings,
                             dovecot.Directory() / "cache" / "headers"));
    box.Answer_Anything();
    app.Form_Load();
    window.chkShowAllFolders.Set_Value(1);
    TreeView& tree = window.trvFolders;
    for (int node = 1; node <= tree.Upper_Bound(); ++node)
      if (tree.Exists(node) && (tree.Text(node).find("Inbox") == 0 || tree.Text(node).find("Old") == 0))
        tree.Tick(node, true), tree.MouseUp();
  }
};

}  // namespace

TEST_F(Imap_Cleaning, A_Call_That_Fails_Costs_What_It_Was_About_And_No_More) {
  Other_Client other(dovecot_);
  other.Do("CREATE Old");
  int met = 0;
  for (const bool for_good : {false, true})
    for (const char* member :
         {"NameSpace.GetItemFromID", "Item.Subject", "Item.ReceivedTime", "Item.Move", "Item.Delete"})
      for (const int number : {0, 2}) {  // 0: always
        SCOPED_TRACE(std::string(member) + std::to_string(number) + (for_good ? " for good" : ""));
        Deliver(other);
        const Subjects before = All(other);
        Account_Run f(dovecot_, {});
        if (for_good) f.window.chkPermanentDelete.Set_Value(1);
        if (number == 0) f.plan.Fail_Always(member, {1, "it fails", "store"});
        f.plan.Fail_Call(member, number, {1, "it fails", "store"});
        f.window.cmdRun.Click();
        f.session.Commit_Pending();
        const bool failed = f.plan.Thrown() > 0;
        met += failed ? 1 : 0;
        const Subjects after = All(other);
        int done = 0;
        for (const auto& [mailbox, subjects] : before)
          for (const std::string& subject : subjects) {
            const bool stays = after.at(mailbox).contains(subject);
            const bool in_trash = after.at("Papierkorb").contains(subject);
            const bool chosen =
                subject == "aINBOX" || subject == "bINBOX" || subject == "aOld" || subject == "bOld";
            EXPECT_TRUE(stays || chosen) << subject;
            EXPECT_TRUE(stays || in_trash || for_good) << subject;
            // For good it goes by way of the wastebasket, and may be left there.
            if (!stays && in_trash != for_good) ++done;
          }
        EXPECT_EQ(f.app.run.ProcessedCount, done);
        EXPECT_EQ(done == 4, !f.app.run.NotAllDeleted);
        EXPECT_TRUE(!f.app.run.NotAllDeleted || f.box.Count("it fails") > 0) << "said without a reason";
        EXPECT_EQ(other.Count("INBOX", "DELETED") + other.Count("Old", "DELETED"), 0U);
        EXPECT_EQ(f.window.cmdRun.Caption(), "&Clean");
      }
  EXPECT_GT(met, 10);
}

// Copies need room in an account that is full.
TEST_F(Imap_Cleaning, A_Server_Without_Room_Is_Asked_Again_Or_Left_As_The_Person_Says) {
  Other_Client other(dovecot_);
  other.Do("CREATE Old");
  for (const bool retries : {true, false}) {
    SCOPED_TRACE(retries);
    Deliver(other);
    Account_Run f(dovecot_, {"MOVE"});
    f.box.Expect("Quota exceeded", Buttons::Retry_Stop, retries ? Answer::Retry : Answer::Cancel, [&] {
      if (retries) other.Empty("Sent");
    });
    f.window.cmdRun.Click();
    const int asked = f.box.Count("Stop ends what is under way; what has been done by then stays done.");
    EXPECT_EQ(asked, 1);
    const Subjects after = All(other);
    std::size_t left = 0;
    for (const char* mailbox : taken_from) left += after.at(mailbox).size();
    EXPECT_EQ(f.app.run.ProcessedCount, 6 - static_cast<int>(left));
    EXPECT_EQ(left, retries ? 2U : 6U);
    EXPECT_EQ(after.at("Papierkorb").size(), 6 - left);
    EXPECT_EQ(other.Count("INBOX", "DELETED") + other.Count("Old", "DELETED"), 0U);
    EXPECT_EQ(f.window.cmdRun.Caption(), "&Clean");
  }
}

}  // namespace tidyfold::imap
