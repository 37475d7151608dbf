#include <gtest/gtest.h>

#include "import/import_fixture.h"
#include "import/maildir.h"

namespace tidyfold {
namespace {

using Strings = std::vector<std::string>;

class Maildir_Test : public Import_Test {
 protected:
  std::filesystem::path Message(const std::string& name, const std::string& subject) const {
    return Write("box/" + name, "Subject: " + subject + "\n\n");
  }
  void Make(const std::string& name) const {
    for (const char* part : {"cur", "new", "tmp"})
      std::filesystem::create_directories(directory / "box" / name / part);
  }
};

TEST_F(Maildir_Test, File_Names_Tell_Flags_And_Delivery) {
  struct Case {
    std::string_view name;
    bool is_new, seen, trashed;
    Date delivered;
  };
  const Case cases[] = {
      {"1030084373.M1P2.host:2,FRS", false, true, false, Day(37491, 2, 32, 53)},
      {"1030084373.host:2,ST", false, true, true, Day(37491, 2, 32, 53)},
      {"1030084373.host;2,S", false, true, false, Day(37491, 2, 32, 53)},
      {"1030084373.host!2,", false, false, false, Day(37491, 2, 32, 53)},
      {"1030084373.STST", false, false, false, Day(37491, 2, 32, 53)},
      {"1030084373.host:2,S", true, false, false, Day(37491, 2, 32, 53)},  // nothing in new/ was seen
      {"msg.1", false, false, false, no_date},
      {"12345678901234567890.x", false, false, false, no_date},
  };
  for (const Case& c : cases) {
    const Maildir_Message message = Read_Maildir_Name(std::string(c.name), c.is_new);
    EXPECT_EQ(message.seen, c.seen) << c.name;
    EXPECT_EQ(message.trashed, c.trashed) << c.name;
    EXPECT_DOUBLE_EQ(message.delivered, c.delivered) << c.name;
  }
}

TEST_F(Maildir_Test, Comes_In_With_Flags_And_Sub_Folders) {
  Make("");
  Make(".Sent");
  Make(".Lists.Entw&APw-rfe");
  Make("plain/below");
  Make("plain");
  Make(".Odd&name");
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
  EXPECT_EQ(report.imported, 6);
  EXPECT_EQ(report.found, 6);
  EXPECT_EQ(Subjects(), (Strings{"first", "second", "trash", "draft", "sent", "deep"}));
  EXPECT_TRUE(writer.written[0].item.unread);
  EXPECT_FALSE(writer.written[1].item.unread);
  EXPECT_DOUBLE_EQ(writer.written[0].item.received, Day(37491, 2, 32, 53));
  EXPECT_EQ(Items_In({"box"}), 2);
  EXPECT_EQ(Items_In({"Deleted Items"}), 1);
  EXPECT_EQ(Items_In({"box", "Lists", "Entwürfe"}), 1);
  EXPECT_EQ(Items_In({"box", "Sent"}), 1);
  EXPECT_EQ(Items_In({"box", "plain", "below"}), 1);
  EXPECT_EQ(Items_In({"box", "Odd&name"}), 0);
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
  EXPECT_EQ(report.found, 6);
  EXPECT_EQ(report.imported, 1);
  EXPECT_EQ(report.failed, 5);
  ASSERT_EQ(report.failures.size(), 5U);
  EXPECT_TRUE(report.failures[0].where.ends_with("2.empty"));
  EXPECT_EQ(report.failures[0].why, "it is empty");
  EXPECT_EQ(report.failures[1].why, "it has no message headers");
  EXPECT_TRUE(report.failures[4].where.ends_with("6.\uFFFDinvalid"));
}

}  // namespace
}  // namespace tidyfold
