// Messages: where they begin and end in mbox files, and what is in them.
#include "import/import_fixture.h"
#include "import/mbox_reader.h"
#include "import/mime_message.h"

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

class Mime_Test : public Import_Test {
 protected:
  // Through the importer, which initialises the library.
  New_Item Read(std::string_view message) {
    writer.written.clear();
    Import(Write("message.eml", message));
    return writer.written.at(0).item;
  }
};

TEST_F(Mime_Test, Headers) {
  struct Case {
    std::string_view headers, sender, recipients, subject;
  };
  const Case cases[] = {
      {"From: Ann <a@x>\nTo: \"Lee, Bo\" <b@x>, c@x\nSubject: plain", "Ann", "Lee, Bo; c@x", "plain"},
      {"From: =?windows-1251?B?yOLg7Q==?= <i@x>\nSubject: =?utf-8?q?=C3=A9?=\n =?utf-8?q?t=C3=A9?=", "Иван",
       "", "été"},
      {"From: M\xFCller <m@x>\nSubject: caf\xE9", "Müller", "", "café"},
      {"From: m@x\nSubject: =?no-such-set?Q?caf=E9?= =?utf-8?q?a=0Ab?=", "m@x", "", "caféa b"},
      {"From: x!y!z\nTo: undisclosed:;\nSubject:", "x!y!z", "undisclosed", ""},
      {"Sender: S <s@x>\nSubject: folded\n\tline", "S", "", "folded line"},
  };
  for (const Case& c : cases) {
    const New_Item item = Read(std::string(c.headers) + "\n\nbody\n");
    EXPECT_EQ(item.sender, c.sender);
    EXPECT_EQ(item.recipients, c.recipients);
    EXPECT_EQ(item.subject, c.subject);
    EXPECT_EQ(item.body, "body\n");
  }
}

TEST_F(Mime_Test, Is_Dated_By_Its_Arrival) {
  const std::string date = "Date: Fri, 23 Aug 2002 06:32:53 +0000\n";
  const std::pair<std::string, Date> cases[] = {
      {date, Day(37491, 2, 32, 53)},
      {"Received: from x by y;\n Sat, 24 Aug 2002 10:00:00 +0200\nReceived: from a; Sun, 25 Aug 2002 1:00:00 "
       "+0000\n" +
           date,
       Day(37492, 4)},
      {"Received: from x with no date\n" + date, Day(37491, 2, 32, 53)},
      {"Received: by y; the day before\n" + date, Day(37491, 2, 32, 53)},
      {"Date: 23 Aug 02 02:32:53 EDT\n", Day(37491, 2, 32, 53)},
      {"Date: yesterday\n", no_date},
      {"Subject: undated\n", no_date},
  };
  for (const auto& [headers, expected] : cases) {
    const New_Item item = Read(headers + "From: a@b\n\n");
    EXPECT_DOUBLE_EQ(item.received, expected) << headers;
    EXPECT_DOUBLE_EQ(item.last_modified, expected) << headers;
  }
}

TEST_F(Mime_Test, Is_Unread_Unless_It_Says_Otherwise) {
  const std::pair<std::string_view, bool> cases[] = {
      {"", true},
      {"Status: RO\n", false},
      {"Status: O\n", true},
      {"X-Mozilla-Status: 0011\n", false},
      {"X-Mozilla-Status: 8010\n", true},
      {"X-Gmail-Labels: Archived,Opened\n", false},
      {"X-Gmail-Labels: Inbox,Unread\n", true},
  };
  for (const auto& [headers, unread] : cases) {
    EXPECT_EQ(Read(std::string(headers) + "From: a@b\n\n").unread, unread) << headers;
  }
}

TEST_F(Mime_Test, Body_Is_The_Plain_Text_Or_What_Html_Shows) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"Content-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: quoted-printable\n\ncaf=E9 "
       "=\nau lait",
       "café au lait"},
      {"Content-Type: text/html\n\n<meta charset=koi8-r><p>\xF0\xD2\xC9</p>", "При"},
      {"Content-Type: multipart/alternative; boundary=b\n\n--b\nContent-Type: "
       "text/html\n\n<b>rich</b>\n--b\n\nplain\n--b--\n",
       "plain"},
      {"Content-Type: multipart/alternative; boundary=b\n\n--b\n\n\n--b\nContent-Type: "
       "text/html\n\n<b>rich</b>\n--b--\n",
       "rich"},
      {"Content-Type: multipart/mixed; boundary=b\n\n--b\nContent-Type: multipart/related; "
       "boundary=c\n\n--c\nContent-Type: "
       "text/html\n\n<p>seen\n--c\nContent-Type: "
       "text/plain\n\nunseen\n--c--\n--b\n\nfooter\n--b\nContent-Disposition: "
       "attachment\n\nfile\n--b--\n",
       "seen\nfooter"},
      {"Content-Type: multipart/mixed; boundary=never\n\nno part at all\n", "no part at all\n"},
      {"Content-Type: text\n\nodd type\n", "odd type\n"},
  };
  for (const auto& [message, body] : cases) EXPECT_EQ(Read("From: a@b\n" + std::string(message)).body, body);
}

TEST_F(Mime_Test, Attachments_Have_Names_And_Sizes) {
  const New_Item item = Read(
      "From: a@b\nContent-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\nContent-Type: "
      "application/pdf\n"
      "Content-Disposition: attachment; filename*0*=utf-8''r%C3%A9; filename*1=sume.pdf\n"
      "Content-Transfer-Encoding: base64\n\naGVsbG8=\n--b\nContent-Type: "
      "image/gif\n\nGIF\n--b\nContent-Type: "
      "message/rfc822\n\nSubject: inner\n\nx\n--b\nContent-Type: text/x-log; name=\"a/b\n "
      "c.log\"\n\nlog\n--b--\n");
  ASSERT_EQ(item.attachments.size(), 4U);
  EXPECT_EQ(item.attachments[0].name, "résume.pdf");
  EXPECT_EQ(item.attachments[0].size, 5);
  EXPECT_EQ(item.attachments[1].name, "");
  EXPECT_EQ(item.attachments[1].size, 3);
  EXPECT_EQ(item.attachments[2].name, "inner");
  EXPECT_EQ(item.attachments[3].name, "a/b c.log");
  EXPECT_EQ(item.body, "text");
}

TEST_F(Mime_Test, Class_Follows_Calendar_And_Report_Parts) {
  const std::string calendar = "Content-Type: text/calendar";
  const std::string reply = "\n\nBEGIN:VCALENDAR\nMETHOD:REPLY\nATTENDEE;CN=x;PARTS\n TAT=";
  const std::pair<std::string, std::int32_t> cases[] = {
      {calendar + "; method=REQUEST\n\nBEGIN:VCALENDAR\n", item_class::meeting_request},
      {calendar + "\n\nBEGIN:VCALENDAR\r\nMETHOD:CANCEL\r\n", item_class::meeting_cancellation},
      {calendar + reply + "DECLINED:mailto:x\n", item_class::meeting_response_negative},
      {calendar + reply + "accepted:mailto:x\n", item_class::meeting_response_positive},
      {calendar + reply + "TENTATIVE;X=y:mailto:x\n", item_class::meeting_response_tentative},
      {calendar + reply + "NEEDS-ACTION:mailto:x\n", item_class::mail},
      {calendar + "; method=PUBLISH\n\n", item_class::mail},
      {"Content-Disposition: attachment\n" + calendar + "; method=REQUEST\n\n", item_class::mail},
      {"Content-Type: multipart/alternative; boundary=b\n\n--b\n\ntext\n--b\n" + calendar +
           "; method=request\n\nx\n--b--\n",
       item_class::meeting_request},
      {"Content-Type: multipart/report; boundary=b\n\n--b\n\nfailed\n--b--\n", item_class::report},
  };
  for (const auto& [message, expected] : cases) {
    EXPECT_EQ(Read("From: a@b\n" + message).item_class, expected) << message;
  }
}

TEST_F(Mime_Test, Keeps_The_Message_As_It_Came_However_Deep_Or_Long) {
  std::string message = "From: a@b\nSubject: " + std::string(100000, 's') + "\n";
  for (int i = 0; i < 3000; ++i) {
    const std::string boundary = "b" + std::to_string(i);
    message += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
  }
  const New_Item item = Read(message + "\ntext\n");
  EXPECT_EQ(item.subject.size(), 100000U);
  EXPECT_EQ(item.raw_message, message + "\ntext\n");
  EXPECT_EQ(item.size, static_cast<std::int64_t>(item.raw_message.size()));
}

}  // namespace
}  // namespace tidyfold
