#include "import/mbox_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "import/import_fixture.h"

namespace tidyfold {
namespace {

constexpr std::string_view separator = "From a@b Fri Aug 23 02:32:53 2002\n";

class Mbox_Test : public Import_Test {
 protected:
  std::vector<std::string> Messages(const std::string& mbox) {
    Source_File file(Write("mbox", mbox));
    Mbox_Reader reader(file, [] {});
    std::vector<std::string> messages;
    while (const auto message = reader.Next()) messages.push_back(reader.Text(*message));
    cut = reader.Cut();
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
  const std::pair<std::string, Texts> cases[] = {
      {Message("S: 1\n\none\n\n") + Message("S: 2\n\ntwo\n\n"), {"S: 1\n\none\n", "S: 2\n\ntwo\n"}},
      {Message("S: 1\r\n\r\none\r\n\r\n") + Message("S: 2\r\n\r\ntwo\r\n"),
       {"S: 1\r\n\r\none\r\n", "S: 2\r\n\r\ntwo\r\n"}},
      // No blank line before the separator, which has only "-".
      {"From - \nS: 1\n\none\nFrom - \nS: 2\n\n", {"S: 1\n\none\n", "S: 2\n\n"}},
      {Message("S: 1\n\n") + "From b@c\nS: 2\n\n" +
           "From MAILER-DAEMON Fri Jul  8 12:08:34 2011 +0200\nS: 3\n\n",
       {"S: 1\n\n", "S: 2\n\n", "S: 3\n\n"}},
      // Body lines that only resemble separators.
      {Message("S: 1\n\nFrom here on\nFrom: x\nFrom a@b\n\nFrom the desk\nNote: x\nxFrom a@b Fri Aug 23 "
               "02:32:53 2002\nS: x\n"),
       {"S: 1\n\nFrom here on\nFrom: x\nFrom a@b\n\nFrom the desk\nNote: x\nxFrom a@b Fri Aug 23 02:32:53 "
        "2002\nS: x\n"}},
      {Message("S: 1\n\n>From x\n>>From y\n> From z\n>Fromage\n"),
       {"S: 1\n\nFrom x\n>From y\n> From z\n>Fromage\n"}},
      {Message(">From remote Fri Aug 23\nS: 1\n\nx\n"), {">From remote Fri Aug 23\nS: 1\n\nx\n"}},
      // With a correct length all else is body; a wrong one is ignored.
      {Message(lengthy) + "\n" + Message("S: 2\n\n"), {lengthy, "S: 2\n\n"}},
      {Message("S: 1\nContent-Length: 3\n\none\n\n") + Message("S: 2\n\n"),
       {"S: 1\nContent-Length: 3\n\none", "S: 2\n\n"}},
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

TEST_F(Mbox_Test, Tells_A_File_That_Was_Cut_Off) {
  const std::string whole = Message("S: 1\nContent-Length: 4\n\none\n\n");
  const std::string lying = Message("S: 1\nContent-Length: 90\n\none\n\n");
  const std::pair<std::string, Mbox_Cut> cases[] = {
      {whole + Message("S: 2\n\nhalf a li"), Mbox_Cut::Line},
      {whole + Message("S: 2\nTo: x\n"), Mbox_Cut::Headers},
      {whole + Message("S: 2\nContent-Length: 9\n\nhalf\n"), Mbox_Cut::Length},
      {Message("S: 1\nContent-Length: 50\n\nhalf\n"), Mbox_Cut::Length},
      {lying + Message("S: 2\nContent-Length: 9\n\nfull\n"), Mbox_Cut::None},
      // CR LF became LF five times.
      {Message("S: 1\nContent-Length: 15\n\n1\n2\n3\n4\n5\n"), Mbox_Cut::None},
      {whole + Message("S: 2\n\nno way to tell\n"), Mbox_Cut::None},
  };
  for (const auto& [mbox, expected] : cases) {
    Messages(mbox);
    EXPECT_EQ(cut, expected) << mbox;
  }
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
  EXPECT_NE(Error_Of(Write("half.mbox", Bytes_Of(lengths).substr(0, 467636))).find("cut off"),
            std::string::npos);
}

}  // namespace
}  // namespace tidyfold
