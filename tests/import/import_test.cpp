// What holds for every kind of source: where it goes, all or nothing, and who is told.
#include <gtest/gtest.h>

#include "import/import_fixture.h"

namespace tidyfold {
namespace {

std::string Mbox(int count) {
  std::string mbox;
  for (int i = 0; i < count; ++i) mbox += "From a@b Fri Aug 23 02:32:53 2002\nSubject: s\n\nbody\n\n";
  return mbox;
}

TEST_F(Import_Test, Goes_Into_The_Folder_Named_Or_One_Named_After_The_Source) {
  const auto source = Write("Old mail.2003.mbox", Mbox(1));
  Import(source);
  EXPECT_EQ(Items_In({"Old mail.2003"}), 1);
  Import(source);
  EXPECT_EQ(Items_In({"Old mail.2003"}), 2);

  Import_Options options;
  options.folder_path = {"Inbox", "a/b", "two\nlines", "bad\xFF"};
  Import(source, options);
  EXPECT_EQ(Items_In({"Inbox", "a/b", "two lines", "bad\uFFFD"}), 1);
  options.folder_path = {"inbox"};  // names count by the letter
  Import(source, options);
  EXPECT_EQ(Items_In({"Inbox"}), 0);
  EXPECT_EQ(Items_In({"inbox"}), 1);
  options.folder_path.emplace();  // the top folder
  Import(source, options);
  EXPECT_EQ(Items_In({}), 1);
}

TEST_F(Import_Test, Takes_The_First_Of_Folders_With_The_Same_Name) {
  const auto first = store.Add_Folder(*store.Top_Folder(), "mail", item_type::mail);
  store.Add_Folder(*store.Top_Folder(), "mail", item_type::mail);
  Import(Write("mail", Mbox(2)));
  EXPECT_EQ(first->Items()->Count(), 2);
}

TEST_F(Import_Test, Bad_Messages_Do_Not_Keep_The_Rest_Out) {
  const std::string bad = "From a@b Fri Aug 23 02:32:53 2002\n>From x\n\nno header\n\n";
  const Import_Report report = Import(Write("mail", Mbox(1) + bad + Mbox(1)));
  EXPECT_EQ(report.found, 3);
  EXPECT_EQ(report.imported, 2);
  ASSERT_EQ(report.failures.size(), 1U);
  EXPECT_EQ(report.failures[0].where, "message 2, at byte 52");
}

TEST_F(Import_Test, A_Store_That_Cannot_Be_Written_Is_Left_As_It_Was) {
  writer.items_until_full = 2;
  EXPECT_THROW(Import(Write("mail", Mbox(3))), Automation_Error);
  EXPECT_EQ(writer.roll_backs, 1);
  EXPECT_EQ(writer.commits, 0);
  EXPECT_EQ(store.Top_Folder()->Folders()->Count(), 10);
}

TEST_F(Import_Test, Progress_Is_Told_And_Can_Cancel) {
  // Enough to take longer than one period of progress on any machine.
  const auto source = Write("mail", Mbox(5000));
  std::int64_t last = 0;
  Import_Options options;
  options.progress = [&](std::int64_t found, std::optional<std::int64_t> total) {
    EXPECT_GE(found, last);
    EXPECT_FALSE(total);
    last = found;
    return true;
  };
  EXPECT_EQ(Import(source, options).imported, 5000);
  EXPECT_GT(last, 0);

  options.progress = [](std::int64_t, std::optional<std::int64_t>) { return false; };
  const Import_Report report = Import(source, options);
  EXPECT_TRUE(report.cancelled);
  EXPECT_EQ(report.found, 0);
  EXPECT_EQ(writer.roll_backs, 1);
  EXPECT_EQ(Items_In({"mail"}), 5000);
}

TEST_F(Import_Test, Cancels_In_The_Middle_Of_One_Long_Message) {
  std::string message = "Subject: long\nContent-Type: text/html\n\n";
  while (message.size() < 8'000'000) message += "<p>a line of <b>text</b> &amp; more</p>\n";
  Import_Options options;
  options.progress = [](std::int64_t found, std::optional<std::int64_t> total) {
    EXPECT_EQ(found, 0);
    EXPECT_EQ(total, 1);
    return false;
  };
  EXPECT_TRUE(Import(Write("long.eml", message), options).cancelled);
  EXPECT_TRUE(writer.written.empty());
}

TEST_F(Import_Test, A_Failing_Progress_Callback_Rolls_Back_Too) {
  Import_Options options;
  options.progress = [](std::int64_t, std::optional<std::int64_t>) -> bool {
    throw std::runtime_error("window gone");
  };
  EXPECT_THROW(Import(Write("mail", Mbox(5000)), options), std::runtime_error);
  EXPECT_EQ(writer.roll_backs, 1);
}

}  // namespace
}  // namespace tidyfold
