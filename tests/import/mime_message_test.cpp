#include "import/mime_message.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "import/import_fixture.h"

namespace tidyfold {
namespace {

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
      {"Content-Type: multipart/mixed; boundary=never\n\nno part at all\n", ""},
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
