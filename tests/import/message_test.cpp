// Messages: where they begin and end in mbox files, and what is in them.
#include <ctime>

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
      // Separators whose message has a broken header, or none.
      {Message("\none\n\n") + Message("broken\nS: 2\n\ntwo\n\n") + Message("no field\n\n") +
           Message("S: 4\n\n"),
       {"\none\n", "broken\nS: 2\n\ntwo\n", "no field\n\n", "S: 4\n\n"}},
      {Message("S: 1\n\none\n") + Message("broken\nS: 2\n\n"), {"S: 1\n\none\n", "broken\nS: 2\n\n"}},
      {Message("S: 1\n\n\nFrom noon on Tue Mar 3 12:30 it broke, in 2003\nFrom Ann Fri\n"),
       {"S: 1\n\n\nFrom noon on Tue Mar 3 12:30 it broke, in 2003\nFrom Ann Fri\n"}},
      {Message("S: 1\nno blank line\n") + Message("S: 2\n\n"), {"S: 1\nno blank line\n", "S: 2\n\n"}},
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

TEST_F(Mbox_Test, Takes_Time_In_Proportion_To_Its_Size) {
  // Neither a blank line nor a right length anywhere.
  std::string mbox;
  while (mbox.size() < 8'000'000) mbox += Message("S: x\nContent-Length: 3000000\n");
  const std::clock_t begin = std::clock();
  Messages(mbox);
  EXPECT_LT(std::clock() - begin, 5 * CLOCKS_PER_SEC);
}

TEST_F(Mbox_Test, Deleted_Mail_Stays_Out) {
  const Import_Report report =
      Import(Write("x.mbox", Message("S: 1\nX-Mozilla-Status: 0009\n\n") + Message("S: 2\nStatus: RO\n\n") +
                                 Message("S: 3\nStatus: RD\n\n") + Message("S: 4\nX-Status: D\n\n")));
  EXPECT_EQ(report.imported, 1);
  ASSERT_EQ(report.left_out.size(), 3U);
  EXPECT_EQ(report.left_out[0].where, "message 1, at byte 0");
  EXPECT_EQ(report.found, 4);
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
  EXPECT_EQ(half.failed, 1);
  EXPECT_EQ(half.found, 5);
}

class Mime_Test : public Import_Test {
 protected:
  // Through the importer, which initialises the library.
  New_Item Read(std::string_view message) {
    writer.written.clear();
    Import_Options options;
    options.again = true;
    Import(Write("message.eml", message), options);
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
      // Each word padded, characters cut in half, words in pieces, with and without blanks between them.
      {"From: =?UTF-8?B?YWI=?= =?UTF-8?B?Y2Rl?= <a@x>\nSubject: =?UTF-8?B?YWI=?=\n =?UTF-8?B?Y2Rl?= f",
       "abcde", "", "abcde f"},
      {"From: =?utf-8?B?0Ys=?=\n =?utf-8?Q?_=D1?= =?utf-8?q?=8B?= <a@x>\nSubject: =?utf-8?B?0A==?= "
       "=?utf-8?B?hg==?=",
       "ы ы", "", "І"},
      {"From: a@x\nSubject: =?utf-8?B?YWJj?= =?utf-8?B?ZGV?= =?utf-8?B?m?= =?iso-2022-jp?B?GyRCJCIbKEI=?= x",
       "a@x", "", "abcdefあ x"},
      {"From: \"=?utf-8?Q?Lee,_Bo?=\" <a@x>\nTo: =?utf-8?Q?Lee,_Al?= <b@x>, c@x (Cy (C.) D)\nSubject: "
       "=?utf-8?Q?a b?= "
       "=?x",
       "Lee, Bo", "Lee, Al; Cy (C.) D", "a b =?x"},
      {"From: Unclosed \" <a@x\nTo: a: b:c: d@x; e@x, <@r,@s:f@x>, Just A Name\nSubject: =?utf-8?B?YQ?=",
       "Unclosed", "a; e@x; f@x; Just A Name", "a"},
      // Raw text is in the charset of the body.
      {"From: a@x\nSubject: \x1B$B$\"\x1B(B\nContent-Type: text/plain; charset=ISO-2022-JP", "a@x", "", "あ"},
      {"From: \xC8\xE2\xE0\xED <i@x>\nSubject: \xD0\xB9\nContent-Type: text/plain; charset=windows-1251",
       "Иван", "", "й"},
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
      {"Status: DRAFT\n", true},  // a word, not flags
  };
  for (const auto& [headers, unread] : cases) {
    EXPECT_EQ(Read(std::string(headers) + "From: a@b\n\n").unread, unread) << headers;
  }
}

TEST_F(Mime_Test, Has_The_Identities_And_Flags_Of_Its_Header) {
  const New_Item item =
      Read("From: Ann <a@x>\nMessage-ID:\n <1@x>\nList-Id: The list <l.x>\nX-Status: AF\n\nx\n");
  EXPECT_EQ(item.sender_address, "a@x");
  EXPECT_EQ(item.message_id, "1@x");
  EXPECT_EQ(item.list_id, "l.x");
  EXPECT_TRUE(item.answered && item.flagged && item.unread);
  const New_Item other = Read("From: a@x\nX-Mozilla-Status: 0002\n\n");
  EXPECT_TRUE(other.answered && !other.flagged);
  EXPECT_TRUE(Read("From: a@x\nX-Mozilla-Status: 0004\n\n").flagged);
}

TEST_F(Mime_Test, What_Stands_Before_Or_In_A_Header_Does_Not_Keep_A_Mail_Out) {
  const std::string mail = "Subject: s\nFrom: a@b\n\nFrom x\n>From y\n";
  for (const std::string before :
       {"\xEF\xBB\xBF", "\r\n\n", "no field\n", "From a@b Fri Aug 23 02:32:53 2002\n"}) {
    const New_Item item = Read(before + mail);
    EXPECT_EQ(item.subject, "s") << before;
    EXPECT_EQ(item.body, "From x\n>From y\n") << before;
    EXPECT_EQ(item.raw_message, before + mail);
  }
  EXPECT_EQ(Read("From: a@b\nno field\nSubject: s\n\n").subject, "s");
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
      // The start of related parts, and a body of several padded blocks.
      {"Content-Type: multipart/related; boundary=b; start=\"<2@x>\"\n\n--b\nContent-ID: "
       "<1@x>\n\nunseen\n--b\n"
       "Content-ID: <2@x>\nContent-Transfer-Encoding: base64\n\nYWI=\nY2Rl\n--b--\n",
       "abcde"},
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

TEST_F(Mime_Test, Files_In_Tnef_And_In_Uuencoded_Text_Are_Attachments) {
  // The text "plain body" and one file.
  const std::string tnef =
      "eJ8+"
      "IgEAAQyAAgALAAAAcGxhaW4gYm9keQDiAwICkAYAAgAAAAEAAQACBZAGACgAAAACAAAAHgABMAEAAAAFAAAAbmFtZQAAAAACAQE3AQ"
      "AAAAQAAABkYXRh0gMCDw==";
  struct Case {
    std::string message, body, name;
    std::int64_t size;
  };
  const Case cases[] = {
      {"Content-Type: application/ms-tnef\nContent-Transfer-Encoding: base64\n\n" + tnef, "plain body",
       "name", 4},
      {"Content-Type: multipart/mixed; boundary=b\n\n--b\n\nown\n--b\nContent-Type: application/x; "
       "name=WINMAIL.DAT\nContent-Transfer-Encoding: base64\n\n" +
           tnef + "\n--b--\n",
       "own", "name", 4},
      {"Content-Type: application/ms-tnef; name=winmail.dat\n\nno such thing", "", "winmail.dat", 13},
      {"\nbefore\nbegin 644 a b.txt\n#86)C\n`\nend\nafter\nbegin 644 never ends\n",
       "before\nafter\nbegin 644 never ends\n", "a b.txt", 3},
  };
  for (const Case& c : cases) {
    const New_Item item = Read("From: a@b\n" + c.message);
    EXPECT_EQ(item.body, c.body) << c.message;
    ASSERT_EQ(item.attachments.size(), 1U) << c.message;
    EXPECT_EQ(item.attachments[0].name, c.name);
    EXPECT_EQ(item.attachments[0].size, c.size);
  }
}

TEST_F(Mime_Test, Reads_What_Outlook_Sent) {
  REQUIRE_SHARED_FILE(five, "winmail.dat");
  const New_Item item = Read("From: a@b\nContent-Type: application/ms-tnef\n\n" + Bytes_Of(five));
  EXPECT_NE(item.body.find("These are five files."), std::string::npos);
  ASSERT_EQ(item.attachments.size(), 5U);
  EXPECT_EQ(item.attachments[2].name, "quick.pdf");
  EXPECT_EQ(item.attachments[2].size, 18638);
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

// The whole value many times over.
std::string Repeat(std::string_view text, std::size_t times) {
  std::string all;
  for (std::size_t i = 0; i < times; ++i) all += text;
  return all;
}

TEST_F(Mime_Test, Keeps_The_Message_As_It_Came_However_Deep_Or_Long) {
  std::string nested;
  for (int i = 0; i < 3000; ++i) {
    const std::string boundary = "b" + std::to_string(i);
    nested += "Content-Type: multipart/mixed; boundary=" + boundary + "\n\n--" + boundary + "\n";
  }
  const std::string parts = "Content-Type: multipart/mixed; boundary=b\n\n" + Repeat("--b\n\n", 1'000'000);
  const std::string cases[] = {
      nested + "\ntext\n",
      "To: " + Repeat("a:", 40'000) + "\n\n",
      "To: " + Repeat("(", 80'000) + Repeat("<", 80'000) + Repeat("\"\\", 80'000) + "\n\n",
      "X: " + Repeat("=?utf-8?Q?a ", 100'000) + "\n\n",
      "Content-Type: text/plain" + Repeat("; a*0*=\"", 100'000) + "\n\n",
      Repeat("a: b\n", 8'000'000) + "\n",
      parts,
      Repeat("--b\nContent-Type: message/rfc822\n\n", 1000),
      "Content-Type: text/html\n\n" + Repeat("<a =\"&aa<!--", 100'000)};
  for (const std::string& text : cases) {
    const std::clock_t begin = std::clock();
    const std::string message = "From: a@b\nSubject: " + std::string(100'000, 's') + "\n" + text;
    const New_Item item = Read_Mime_Message(message);
    EXPECT_EQ(item.subject.size(), 100'000U);
    EXPECT_TRUE(item.raw_message == message);
    EXPECT_EQ(item.size, static_cast<std::int64_t>(message.size()));
    EXPECT_LE(item.attachments.size(), 10'000U);
    EXPECT_LT(std::clock() - begin, 10 * CLOCKS_PER_SEC) << text.substr(0, 40);
  }
}

}  // namespace
}  // namespace tidyfold
