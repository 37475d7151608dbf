// Where messages begin and end in mbox files, and which of them go in.
#include "import/mbox_reader.h"

#include "import/import_fixture.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

constexpr std::string_view separator = "From a@b Fri Aug 23 02:32:53 2002\n";

class Mbox_Test : public Import_Test {
 protected:
  std::vector<std::string> Messages(const std::string& mbox) {
    Source_File file(Write("mbox", mbox));
    Mbox_Reader reader(file, [] {});
    std::vector<std::string> messages;
    while (const auto message = reader.Next()) {
      messages.push_back(reader.Text(*message));
      cut = message->cut;
    }
    return messages;
  }
  Mbox_Cut cut = Mbox_Cut::None;
};

std::string Message(std::string_view content) {
  return std::string(separator).append(content);
}

TEST_F(Mbox_Test, Finds_The_Messages) {
  using Texts = std::vector<std::string>;
  const std::string lengthy =
      "S: 1\nContent-Length: 40\n\n\nFrom a@b Fri Aug 23 02:32:53 2002\nX: y\n";  // 40 of body
  const std::string resembling =
      "S: 1\n\nFrom: x\nFrom a@b\n\nFrom the desk\nN: x\n\nFrom noon on Tue Mar 3 12:30 it broke, in "
      "2003\nFrom Ann Fri\nx" +
      Message("S: x\n");
  const std::pair<std::string, Texts> cases[] = {
      {Message("S: 1\n\none\n\n") + Message("S: 2\n\ntwo\n\n"), {"S: 1\n\none\n", "S: 2\n\ntwo\n"}},
      // No blank line before the separator, which has only "-".
      {"From - \nS: 1\n\none\nFrom - \nS: 2\n\n", {"S: 1\n\none\n", "S: 2\n\n"}},
      {Message("S: 1\n\n") + "From b@c\nS: 2\n\n" +
           "From MAILER-DAEMON Fri Jul  8 12:08:34 2011 +0200\nS: 3\n\n",
       {"S: 1\n\n", "S: 2\n\n", "S: 3\n\n"}},
      // Body lines that only resemble separators.
      {Message(resembling), {resembling}},
      {Message("S: 1\n\n>From x\n>>From y\n> From z\n>Fromage\n"),
       {"S: 1\n\nFrom x\n>From y\n> From z\n>Fromage\n"}},
      {Message(">From remote Fri Aug 23\nS: 1\n\nx\n"), {">From remote Fri Aug 23\nS: 1\n\nx\n"}},
      // Separators whose message has a broken header, or none.
      {Message("\none\n\n") + Message("broken\nS: 2\n\ntwo\n\n") + Message("no field\n\n") +
           Message("S: 4\n\n"),
       {"\none\n", "broken\nS: 2\n\ntwo\n", "no field\n\n", "S: 4\n\n"}},
      {Message("S: 1\nno blank line\n") + Message("S: 2\n\n"), {"S: 1\nno blank line\n", "S: 2\n\n"}},
      // With a correct length all else is body; a wrong one is ignored.
      {Message(lengthy) + "\n" + Message("S: 2\n\n"), {lengthy, "S: 2\n\n"}},
      {Message("S: 1\nContent-Length: 2\n\none\n\n") + Message("S: 2\n\n"),
       {"S: 1\nContent-Length: 2\n\none\n", "S: 2\n\n"}},
      {Message("S: 1\nContent-length:99999999999999999999\n\none\n\n") + Message("S: 2\n\n"),
       {"S: 1\nContent-length:99999999999999999999\n\none\n", "S: 2\n\n"}},
      // A writer that gives lengths and still quotes.
      {Message("S: 1\nContent-Length: 8\n\n>From x\n\n") + Message("S: 2\n\n"),
       {"S: 1\nContent-Length: 8\n\nFrom x\n", "S: 2\n\n"}},
  };
  for (const auto& [mbox, texts] : cases) {
    EXPECT_EQ(Messages(mbox), texts) << mbox;
    EXPECT_EQ(cut, Mbox_Cut::None) << mbox;
  }
}

TEST_F(Mbox_Test, Finds_Separators_Across_The_Window) {
  // Separators at various places around the end of a read block.
  for (const int shift : {0, 1, 3, 5, 6, 17, 40, 60}) {
    const std::string body((1 << 20) - 100 + static_cast<std::size_t>(shift), 'x');
    const auto messages = Messages(Message("S: 1\n\n" + body + "\n\n") + Message("S: 2\n\ntwo\n"));
    ASSERT_EQ(messages.size(), 2U) << shift;
    EXPECT_EQ(messages[0], "S: 1\n\n" + body + "\n");
    EXPECT_EQ(messages[1], "S: 2\n\ntwo\n");
  }
}

TEST_F(Mbox_Test, What_Is_Whole_Goes_In_And_What_Was_Cut_Off_Is_Named) {
  const std::string whole = Message("S: 1\nContent-Length: 4\n\none\n\n");
  const std::string lying = Message("S: 1\nContent-Length: 90\n\none\n\n");
  struct Case {
    std::string last;
    Mbox_Cut cut;
    bool fails, doubted;
  };
  const Case cases[] = {
      {"S: 2\n\nno last line end", Mbox_Cut::Line, false, true},
      {"S: 2\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\nhal", Mbox_Cut::Line, true, false},
      {"S: 2\nTo: x\n", Mbox_Cut::Header, true, false},
      {"S: 2\nContent-Length: 9\n\nhalf\n", Mbox_Cut::Length, true, false},
      // CR LF became LF five times.
      {"S: 1\nContent-Length: 15\n\n1\n2\n3\n4\n5\n", Mbox_Cut::None, false, false},
      {"S: 2\n\nno way to tell\n", Mbox_Cut::None, false, false},
  };
  for (const Case& c : cases) {
    const std::string mbox = whole + Message(c.last);
    Messages(mbox);
    EXPECT_EQ(cut, c.cut) << mbox;
    Import_Options options;
    options.again = true;
    const Import_Report report = Import(Write("cut.mbox", mbox), options);
    EXPECT_EQ(report.imported, c.fails ? 1 : 2) << mbox;
    ASSERT_EQ(report.failures.size(), c.fails ? 1U : 0U) << mbox;
    if (c.fails) {
      EXPECT_EQ(report.failures[0].where, "message 2, at byte 63");
    }
    EXPECT_EQ(report.doubts.size(), c.doubted ? 1U : 0U) << mbox;
  }
  // Where other lengths are wrong too, the last one proves nothing.
  Messages(lying + Message("S: 2\nContent-Length: 9\n\nfull\n"));
  EXPECT_EQ(cut, Mbox_Cut::None);
}

TEST_F(Mbox_Test, Finds_Every_Message_Where_No_Length_Is_Right) {
  // Not one blank line either. import_bench shows the time.
  std::string mbox;
  std::size_t count = 0;
  for (; mbox.size() < 3'000'000; ++count) mbox += Message("S: x\nContent-Length: 3000000\n");
  EXPECT_EQ(Messages(mbox).size(), count);
}

TEST_F(Mbox_Test, Deleted_And_Bad_Mail_Stays_Out) {
  const Import_Report report =
      Import(Write("x.mbox", Message("S: 1\nX-Mozilla-Status: 0009\n\n") + Message("S: 2\nStatus: RO\n\n") +
                                 Message("S: 3\nStatus: RD\n\n") + Message(">From x\n\nno header\n\n")));
  EXPECT_EQ(Counts_Of(report), "4 items found, 1 imported, 1 failed, 2 left out");
  EXPECT_EQ(report.left_out[0].where, "message 1, at byte 0");
}

TEST_F(Mbox_Test, A_Message_Without_A_Date_Takes_The_Separator_S) {
  Import(Write("x.mbox", Message("Subject: 1\n\n\n") + Message("Date: Sat, 24 Aug 2002 06:00:00 +0000\n\n")));
  EXPECT_DOUBLE_EQ(writer.written.at(0).item.received, Day(37491, 2, 32, 53));
  EXPECT_DOUBLE_EQ(writer.written.at(1).item.received, Day(37492, 2));
}

TEST_F(Mbox_Test, Real_Files) {
  REQUIRE_SHARED_FILE(simple, "simple.mbox");
  REQUIRE_SHARED_FILE(lengths, "content-length.mbox");
  EXPECT_EQ(Import(simple).imported, 3);
  // 25 lengths are right; the other 4 fall short of the next separator.
  EXPECT_EQ(Import(lengths).imported, 29);
  EXPECT_EQ(Items_In({"content-length"}), 29);
  EXPECT_EQ(writer.written.at(3 + 4).item.raw_message.size(), 748519U);
  const Import_Report half = Import(Write("half.mbox", Bytes_Of(lengths).substr(0, 467636)));
  EXPECT_EQ(Counts_Of(half), "5 items found, 4 imported, 1 failed");
}

}  // namespace
}  // namespace tidyfold
