// What is in a message.

#include "import/import_fixture.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

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
      {"From: m@x\nSubject: =?no-such-set?Q?caf=E9?= =?utf-8?q?a=0Ab?=", "m@x", "", "caféa b"},
      {"From: x!y!z\nTo: undisclosed:;\nSubject:", "x!y!z", "undisclosed", ""},
      // Each word padded, characters cut in half, words in pieces, with and without blanks between them.
      {"From: =?UTF-8?B?YWI=?= =?UTF-8?B?Y2Rl?= <a@x>\nSubject: =?UTF-8?B?YWI=?=\n =?UTF-8?B?Y2Rl?= f",
       "abcde", "", "abcde f"},
      {"From: =?utf-8?B?0Ys=?=\n =?utf-8?Q?_=D1?= =?UTF-8?B?iw==?= <a@x>\nSubject: =?utf-8?B?0A==?= "
       "=?utf-8?B?hg==?=",
       "ы ы", "", "І"},
      {"From: \"=?utf-8?Q?Lee,_Bo?=\" <a@x>\nTo: =?utf-8?Q?Lee,_Al?= <b@x>, c@x (Cy (C.) D)\nSubject: "
       "=?utf-8?Q?a b?= "
       "=?x",
       "Lee, Bo", "Lee, Al; Cy (C.) D", "a b =?x"},
      {"From: Unclosed \" <a@x\nTo: a: b:c: d@x; e@x, <@r,@s:f@x>, Just A Name\nSubject: =?utf-8?B?YQ?=",
       "Unclosed", "a; e@x; f@x; Just A Name", "a"},
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
      {"Received: by y; the day before\n" + date, Day(37491, 2, 32, 53)},
      {"Date: 23 Aug 02 02:32:53 EDT\n", Day(37491, 2, 32, 53)},
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
      {"X-Mozilla-Status: 0011\n", false},
      {"X-Gmail-Labels: Archived,Opened\n", false},
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
  EXPECT_EQ(item.attachments[1].size, 3);
  EXPECT_EQ(item.attachments[2].name, "inner");
  EXPECT_EQ(item.attachments[3].name, "a/b c.log");
  EXPECT_EQ(item.body, "text");
}

TEST_F(Mime_Test, Files_In_Tnef_And_In_Uuencoded_Text_Are_Attachments) {
  const std::string tnef = Bytes_Of(std::filesystem::path(TIDYFOLD_FUZZ_CORPUS) / "tnef/text.tnef");
  struct Case {
    std::string message, body, name;
    std::int64_t size;
  };
  const Case cases[] = {
      {"Content-Type: application/ms-tnef\n\n" + tnef, "plain body", "name", 4},
      {"Content-Type: multipart/mixed; boundary=b\n\n--b\n\nown\n--b\nContent-Type: application/x; "
       "name=WINMAIL.DAT\n\n" +
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

TEST_F(Mime_Test, Class_Follows_Calendar_And_Report_Parts) {
  const std::string calendar = "Content-Type: text/calendar";
  const std::string reply = "\n\nBEGIN:VCALENDAR\nMETHOD:REPLY\nATTENDEE;CN=x;PARTS\n TAT=";
  const std::pair<std::string, std::int32_t> cases[] = {
      {calendar + "; method=REQUEST\n\nBEGIN:VCALENDAR\n", item_class::meeting_request},
      {calendar + "\n\nBEGIN:VCALENDAR\r\nMETHOD:CANCEL\r\n", item_class::meeting_cancellation},
      {calendar + reply + "DECLINED:mailto:x\n", item_class::meeting_response_negative},
      {calendar + reply + "NEEDS-ACTION:mailto:x\n", item_class::mail},
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
  const std::string cases[] = {
      nested + "\ntext\n",
      "To: " + Repeat("a:", 40'000) + "\n\n",
      "To: " + Repeat("(", 80'000) + Repeat("<", 80'000) + Repeat("\"\\", 80'000) + "\n\n",
      "X: " + Repeat("=?utf-8?Q?a ", 100'000) + "\n\n",
      "Content-Type: text/plain" + Repeat("; a*0*=\"", 100'000) + "\n\n",
      Repeat("a: b\n", 8'000'000) + "\n",
      "Content-Type: multipart/mixed; boundary=b\n\n" + Repeat("--b\n\n", 1'000'000),
      Repeat("--b\nContent-Type: message/rfc822\n\n", 1000),
      "Content-Type: text/html\n\n" + Repeat("<a =\"&aa<!--", 100'000)};
  for (const std::string& text : cases) {
    const std::string message = "From: a@b\nSubject: " + std::string(100'000, 's') + "\n" + text;
    const New_Item item = Read_Mime_Message(message);
    EXPECT_EQ(item.subject.size(), 100'000U) << text.substr(0, 40);
    EXPECT_TRUE(item.raw_message == message);
    EXPECT_EQ(item.size, static_cast<std::int64_t>(message.size()));
    EXPECT_LE(item.attachments.size(), 10'000U);
  }
}

}  // namespace
}  // namespace tidyfold
