// Which files are taken for what, and what holds for every kind; Maildir folders.
#include <functional>

#include "import/import_fixture.h"
#include "import/import_run.h"
#include "mail/maildir.h"

namespace tidyfold {
namespace {

std::string Mbox(int count) {
  std::string mbox;
  for (int i = 0; i < count; ++i) mbox += "From a@b Fri Aug 23 02:32:53 2002\nSubject: s\n\nbody\n\n";
  return mbox;
}

TEST_F(Import_Test, Kinds_Are_Told_By_Content_Whatever_The_Name) {
  const std::pair<std::string_view, Source_Kind> cases[] = {
      {"!BDN....", Source_Kind::Pst},
      {"From a@b Fri Aug 23 02:32:53 2002\nSubject: x\n\n", Source_Kind::Mbox},
      {"\n\nFrom a@b Fri Aug 23 02:32:53 2002\nSubject: x\n\n", Source_Kind::Mbox},
      {"Return-Path: <a@b>\nX-Odd: y\n\tand on\n\nbody", Source_Kind::Message},
      {"\xEF\xBB\xBFSubject: x\r\n\r\nbody", Source_Kind::Message},
      {"From : a@b\n\nbody", Source_Kind::Message},  // an old header form, not a separator
      {"\nbegin:vcalendar\r\n", Source_Kind::Calendar},
      {"\r\nBEGIN:VCARD\nVERSION:2.1", Source_Kind::Contacts},
      {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", Source_Kind::Msg},
  };
  for (const auto& [content, kind] : cases) {
    EXPECT_EQ(Detect_Source(Write("source.txt", content)), kind) << content;
  }
  std::filesystem::create_directories(directory / "mail.pst" / "cur");
  EXPECT_EQ(Detect_Source(directory / "mail.pst"), Source_Kind::Tree);
}

TEST_F(Import_Test, What_Is_No_Source_Or_Cut_Off_Is_Refused_And_Changes_Nothing) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", "is empty"},
      {std::string_view("\0\x01\xFFjunk\n", 8), "none that can be imported"},
      {"From the beginning it was: text\nand no mail.\n", "none that can be imported"},
      {"Name: x\nColour: y\n\n", "none that can be imported"},  // header fields, but none of mail
      {"!BDN and then something else, long enough for a header", "cut off"},
  };
  for (const auto& [content, part] : cases) {
    const std::string error = Error_Of(Write("odd.mbox", content));
    EXPECT_NE(error.find(part), std::string::npos) << error;
    EXPECT_NE(error.find("odd.mbox: "), std::string::npos) << error;
  }
  EXPECT_NE(Error_Of(directory / "gone.pst").find("no such file"), std::string::npos);
  std::filesystem::create_directory(directory / "empty");
  EXPECT_NE(Error_Of(directory / "empty").find("nothing in the folder"), std::string::npos);
  EXPECT_NE(Error_Of("/dev/null").find("neither a file nor a folder"), std::string::npos);
  EXPECT_EQ(writer.commits, 0);
  EXPECT_EQ(store.Top_Folder()->Folders()->Count(), 10);
}

TEST_F(Import_Test, Goes_Into_The_Folder_Named_Or_One_Named_After_The_Source) {
  const auto source = Write("Old mail.2003.mbox", Mbox(1));
  for (int twin = 0; twin < 2; ++twin)
    store.Add_Folder(*store.Top_Folder(), "Old mail.2003", item_type::mail);
  Import(source);
  EXPECT_EQ(Items_In({"Old mail.2003"}), 1);

  Import_Options options;
  options.again = true;
  options.folder_path = {"Inbox", "a/b", "two\nlines", "bad\xFF"};
  Import(source, options);
  EXPECT_EQ(Items_In({"Inbox", "a/b", "two lines", "bad\uFFFD"}), 1);
  options.folder_path = {"inbox"};  // names are case-sensitive
  Import(source, options);
  EXPECT_EQ(Items_In({"Inbox"}), 0);
  EXPECT_EQ(Items_In({"inbox"}), 1);
  options.folder_path.emplace();  // the top folder
  Import(source, options);
  EXPECT_EQ(Items_In({}), 1);

  options.folder_path.reset();
  Import(Write("inbox.mbox", Mbox(1)), options);
  EXPECT_EQ(Items_In({"inbox (imported)"}), 1);
}

TEST_F(Import_Test, What_Is_There_Already_Stays_Out) {
  const std::string other = "From a@b Fri Aug 23 02:32:53 2002\nMessage-ID: <1@b>\nSubject: other\n\n";
  // Twins of a source go in both.
  EXPECT_EQ(Counts_Of(Import(Write("mail", Mbox(2) + other), {})), "3 items found, 3 imported, 0 failed");
  // Marks of mail programs and line ends make no other mail.
  const std::string marked =
      "From - \r\nStatus: RO\r\nX-Mozilla-Status: 0005\r\nMessage-ID: <1@b>\r\nSubject: other\r\n\r\n\r\n";
  EXPECT_EQ(Counts_Of(Import(Write("else", Mbox(3) + marked), {})),
            "4 items found, 1 imported, 0 failed, 3 there already");
  EXPECT_EQ(Import(Write("mail", other)).imported, 1);
}

TEST_F(Import_Test, Goes_On_Where_A_Cancelled_Or_Failed_Import_Ended) {
  std::string many;  // more than one portion
  for (int i = 0; i < 40; ++i) {
    many += "From a@b Fri Aug 23 02:32:53 2002\nSubject: " + std::to_string(i) + "\n\n" +
            std::string(1'100'000, 'x') + "\n";
  }
  const auto source = Write("mail", many);
  writer.items_until_full = 2;
  EXPECT_THROW(Import(source), Automation_Error);
  EXPECT_EQ(writer.roll_backs, 1);
  EXPECT_EQ(store.Top_Folder()->Folders()->Count(), 10);
  writer.items_until_full = 20;
  const Import_Report full = Import(source, {});
  EXPECT_EQ(full.ended_by, "The disk is full.");
  EXPECT_EQ(full.imported, 16);
  EXPECT_EQ(Items_In({"mail"}), 16);
  writer.items_until_full = -1;
  Import_Options options;
  options.progress = [](std::int64_t found, std::optional<std::int64_t>) { return found < 20; };
  const Import_Report cancelled = Import(source, options);
  EXPECT_TRUE(cancelled.cancelled);
  EXPECT_EQ(cancelled.there_already, 16);
  EXPECT_EQ(Items_In({"mail"}), 16 + cancelled.imported);
  const Import_Report rest = Import(source, {});
  EXPECT_EQ(rest.found, 40);
  EXPECT_EQ(rest.imported, 24 - cancelled.imported);
}

TEST_F(Import_Test, Progress_Is_Told_And_Can_Cancel) {
  // Takes longer than one progress period on any machine.
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

  options.progress = [](std::int64_t, std::optional<std::int64_t>) -> bool {
    throw std::bad_function_call();
  };
  EXPECT_THROW(Import(source, options), std::bad_function_call);
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

class Maildir_Test : public Import_Test {
 protected:
  void Message(const std::string& name, const std::string& subject) const {
    Write("box/" + name, "Subject: " + subject + "\n\n");
  }
  void Make(const std::string& name) const {
    for (const char* part : {"cur", "new", "tmp"})
      std::filesystem::create_directories(directory / "box" / name / part);
  }
};

TEST_F(Maildir_Test, File_Names_Tell_Flags_And_Delivery) {
  struct Case {
    std::string_view name;
    bool is_new;
    std::string_view flags;  // seen, trashed, flagged, answered
    Date delivered;
  };
  const Case cases[] = {
      {"1030084373.M1P2.host:2,FRST", false, "STFR", Day(37491, 2, 32, 53)},
      {"1030084373.host;2,S", false, "S", Day(37491, 2, 32, 53)},
      {"1030084373.STST", false, "", Day(37491, 2, 32, 53)},
      // Nothing in new/ is seen.
      {"1030084373.host:2,S", true, "", Day(37491, 2, 32, 53)},
      {"12345678901234567890.x", false, "", no_date},
  };
  for (const Case& c : cases) {
    const Maildir_Message message = Read_Maildir_Name(std::string(c.name), c.is_new);
    const std::string flags = std::string(message.seen, 'S') + std::string(message.trashed, 'T') +
                              std::string(message.flagged, 'F') + std::string(message.answered, 'R');
    EXPECT_EQ(flags, c.flags) << c.name;
    EXPECT_DOUBLE_EQ(message.delivered, c.delivered) << c.name;
  }
}

TEST_F(Maildir_Test, Comes_In_With_Flags_And_Sub_Folders) {
  // The last one lies below a folder that is no Maildir.
  for (const char* name : {"", ".Sent", ".Lists.Entw&APw-rfe", "plain/below", "plain", "bare/.Only.Here"})
    Make(name);
  std::filesystem::remove_all(directory / "box/bare/.Only.Here/new");
  Message("bare/.Only.Here/cur/1.x:2,FR", "bare");
  Message("cur/1030084374.b:2,S", "second");
  Message("new/1030084373.a", "first");
  Message("cur/1030084375.c:2,T", "trash");
  Message("tmp/1030084376.d", "unfinished");
  Message("cur/.hidden", "hidden");
  Message(".Sent/cur/1.x:2,S", "sent");
  Message(".Lists.Entw&APw-rfe/new/1.x", "draft");
  Message("plain/below/cur/1.x:2,", "deep");
  std::filesystem::create_directory_symlink(directory / "box", directory / "box" / "loop");
  const Import_Report report = Import(directory / "box" / "");
  EXPECT_EQ(Counts_Of(report), "7 items found, 6 imported, 0 failed, 1 left out");
  EXPECT_EQ(Subjects(), (std::vector<std::string>{"first", "second", "draft", "sent", "bare", "deep"}));
  EXPECT_TRUE(writer.written[4].item.flagged && writer.written[4].item.answered);
  EXPECT_TRUE(writer.written[0].item.unread);
  EXPECT_FALSE(writer.written[1].item.unread);
  EXPECT_DOUBLE_EQ(writer.written[0].item.received, Day(37491, 2, 32, 53));
  EXPECT_EQ(Items_In({"box"}), 2);
  EXPECT_EQ(Items_In({"box", "bare", "Only", "Here"}), 1);
  EXPECT_EQ(Items_In({"box", "Lists", "Entwürfe"}), 1);
  EXPECT_EQ(Items_In({"box", "plain", "below"}), 1);
}

TEST_F(Maildir_Test, What_Cannot_Be_Read_Is_Counted_And_Named) {
  Make("");
  Message("cur/1.good", "good");
  Write("box/cur/2.empty", "");
  Write("box/cur/3.junk", std::string_view("\0\xFF\n", 3));
  std::filesystem::create_directory(directory / "box" / "cur" / "4.directory");
  std::filesystem::create_symlink("nowhere", directory / "box" / "cur" / "5.dangling");
  Write("box/cur/6.\xFFinvalid", "");
  const Import_Report report = Import(directory / "box");
  EXPECT_EQ(Counts_Of(report), "6 items found, 1 imported, 5 failed");
  ASSERT_EQ(report.failures.size(), 5U);
  EXPECT_TRUE(report.failures[0].where.ends_with("2.empty"));
  EXPECT_EQ(report.failures[1].why, "it has no message headers");
  EXPECT_TRUE(report.failures[4].where.ends_with("6.\uFFFDinvalid"));
}

}  // namespace
}  // namespace tidyfold
