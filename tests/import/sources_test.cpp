// Trees of mail in the ways of many programs, and sources that are no mail.
#include "import/calendar_item.h"
#include "import/import_fixture.h"
#include "import/mapi_recurrence.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

class Sources_Test : public Import_Test {
 protected:
  static std::string Corpus(const std::string& name) {
    return Bytes_Of(fs::path(TIDYFOLD_FUZZ_CORPUS) / name);
  }
  const New_Item& Imported(const std::string& name) {
    writer.written.clear();
    const Import_Report report = Import(Write("source", Corpus(name)));
    EXPECT_EQ(report.failed, 0) << name;
    return writer.written.at(0).item;
  }
};

constexpr const char* mail = "From: a@b\nSubject: s\n\n";

std::string Mbox(const std::string& subject) {
  return "From a@b Fri Aug 23 02:32:53 2002\nSubject: " + subject + "\n\n";
}

TEST_F(Sources_Test, Trees_Keep_Their_Folders) {
  Write("Mail/Inbox", Mbox("1"));
  Write("Mail/Inbox.msf", "// <!-- <mdb:mork:z -->");
  Write("Mail/Inbox.sbd/Lists", Mbox("2"));
  Write("Mail/Inbox.sbd/Empty", "");
  Write("Mail/Inbox.sbd/Empty.msf", "x");
  Write("Mail/.KMail.directory/below/cur/1:2,S", mail);
  Write("Mail/Apple.mbox/mbox", Mbox("3"));
  Write("Mail/New.mbox/1B-2C/Data/4/Messages/4.emlx",
        "22\nFrom: a@b\nSubject: 4\n\n<?xml?><key>flags</key><integer>17");
  Write("Mail/New.mbox/1B-2C/Data/4/Attachments/4/2/letter.eml", mail);
  Write("Mail/New.mbox/Sub.mbox/Messages/5.emlx",
        "22\nFrom: a@b\nSubject: 5\n\n<?xml?><key>flags</key><integer>2");
  Write("Mail/saved/1.eml", "From: a@b\nSubject: 6\n\n");
  Write("Mail/saved/notes.doc", "no mail at all");
  Write("Mail/saved/meeting", Corpus("msg/series"));
  Write("Mail/saved/calendar", Corpus("calendar/for-ever.ics"));
  Write("Mail/saved/people", Corpus("contacts/three.vcf"));
  const Import_Report report = Import(directory / "Mail");
  EXPECT_EQ(Counts_Of(report), "14 items found, 12 imported, 0 failed, 2 left out");
  EXPECT_EQ(Items_In({"Mail", "Inbox"}), 1);
  EXPECT_EQ(Items_In({"Mail", "Inbox", "Lists"}), 1);
  EXPECT_EQ(Items_In({"Mail", "Inbox", "Empty"}), 0);
  EXPECT_EQ(Items_In({"Mail", "KMail", "below"}), 1);
  EXPECT_EQ(Items_In({"Mail", "Apple"}), 1);
  EXPECT_EQ(Items_In({"Mail", "New"}), 1);
  EXPECT_EQ(Items_In({"Mail", "saved"}), 7);
  const std::vector<std::string> details = Details_Of(report);
  ASSERT_EQ(details.size(), 2U);
  EXPECT_NE(details[0].find("1 left out: it was deleted"), std::string::npos);
  EXPECT_NE(details[1].find("notes.doc"), std::string::npos);
}

// Apple Mail takes attachments out of a message and keeps them beside it, in one of two ways, or not at all.
TEST_F(Sources_Test, Attachments_That_Lie_Beside_A_Message_Are_Put_Back) {
  const std::string taken_out = "Content-Transfer-Encoding: base64\nX-Apple-Content-Length: 9\n";
  const std::string message = "Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\n" + taken_out +
                              "Content-Disposition: attachment; filename=a\n\n--b\n"
                              "Content-Type: multipart/mixed; boundary=c\n\n--c\n" +
                              taken_out + "Content-Disposition: attachment; filename=b\n\n\n--c--\n\n--b\n" +
                              taken_out + "Content-Disposition: attachment; filename=c\n\n\n--b--\n";
  Write("Mail/Box.mbox/Messages/7.partial.emlx", std::to_string(message.size()) + "\n" + message);
  Write("Mail/Box.mbox/Messages/7.2.emlxpart", "c2Vjb25k");
  Write("Mail/Box.mbox/Attachments/7/3.1/b.txt", "third");
  const Import_Report report = Import(directory / "Mail");
  EXPECT_EQ(Counts_Of(report), "1 items found, 1 imported, 0 failed");
  const New_Item& item = writer.written.at(0).item;
  std::string attached;
  for (const auto& attachment : item.attachments)
    attached += attachment.name + " " + std::to_string(attachment.size) + "; ";
  EXPECT_EQ(attached, "a 6; b 5; c 0; ");
  const std::vector<std::string> details = Details_Of(report);
  ASSERT_EQ(details.size(), 1U);
  EXPECT_NE(details[0].find("without 1 of its attachments"), std::string::npos) << details[0];
}

TEST_F(Sources_Test, What_Cannot_Be_Read_In_A_Tree_Does_Not_Keep_The_Rest_Out) {
  Write("Mail/1.eml", mail);
  Write("Mail/2.msg", "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1 and no more");
  Write("Mail/3.pst", "!BDN");
  fs::create_symlink("nowhere", directory / "Mail" / "4.eml");
  fs::create_directory_symlink("loop", directory / "Mail" / "loop");
  fs::create_directories(directory / "Mail" / "box" / "cur");
  Write("Mail/box/new", "a file");
  const Import_Report report = Import(directory / "Mail");
  EXPECT_EQ(report.imported, 1);
  EXPECT_EQ(report.failed, static_cast<std::int64_t>(report.failures.size()));
  std::string failures;
  for (const Import_Failure& failure : report.failures)
    failures += fs::path(failure.where).filename().string() + " ";
  EXPECT_EQ(failures, "2.msg 3.pst 4.eml loop new ");
}

TEST_F(Sources_Test, Items_Of_Outlook_Get_The_Forms_Of_Their_Classes) {
  const New_Item letter = Imported("msg/mail");
  EXPECT_EQ(letter.message_id, "id@example.org");
  EXPECT_EQ(letter.sender_address, "s@example.org");
  EXPECT_EQ(letter.recipients, "Reader");
  EXPECT_TRUE(letter.flagged && letter.answered && !letter.unread);
  EXPECT_EQ(letter.attachments.at(0).name, "note.txt");
  EXPECT_NE(letter.raw_message.find("To: Reader <r@example.org>\r\n"), std::string::npos);
  EXPECT_NE(letter.raw_message.find("Subject: Inner\r\n"), std::string::npos);
  EXPECT_NE(letter.raw_message.find("ZGF0YQ=="), std::string::npos);  // "data"

  const auto expect_lines = [](const New_Item& item, std::initializer_list<std::string> lines) {
    for (const std::string& line : lines)
      EXPECT_NE(item.raw_message.find("\r\n" + line + "\r\n"), std::string::npos) << line;
  };
  const New_Item series = Imported("msg/series");
  EXPECT_EQ(series.item_class, item_class::appointment);
  expect_lines(series, {"SUMMARY:Weekly", "RRULE:FREQ=WEEKLY;COUNT=4;BYDAY=TU;WKST=SU",
                        "DTSTART;TZID=Berlin:20020820T100000", "EXDATE;TZID=Berlin:20020903T100000",
                        "RECURRENCE-ID;TZID=Berlin:20020827T100000", "SUMMARY:Moved"});
  EXPECT_DOUBLE_EQ(series.end, Day(37509, 5, 30));  // 2002-09-10, 11:30 in Berlin

  expect_lines(Imported("msg/contact"),
               {"FN:Ann Example", "N:Example;Ann;;;", "ORG:Firm\\; Sons;", "EMAIL:ann@example.org"});
}

// A directory that is one long list: its library would recurse along it.
TEST_F(Sources_Test, A_Compound_File_Of_Countless_Parts_Is_Refused) {
  constexpr std::uint32_t entries = 320'000, sector = 4096, sectors = entries / 32,
                          lists = sectors / 1024 + 1;
  const auto number = [](std::uint32_t value) {
    return std::string{static_cast<char>(value), static_cast<char>(value >> 8),
                       static_cast<char>(value >> 16), static_cast<char>(value >> 24)};
  };
  std::string file = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(16, '\0') + number(0x4003E) +
                     number(0xCFFFE) + number(6) + std::string(8, '\0') + number(lists) + number(lists);
  file.resize(60);
  file += number(~1U) + number(0) + number(~1U) + number(0);
  for (std::uint32_t i = 0; i < 109; ++i) file += number(i < lists ? i : ~0U);
  file.resize(sector);
  for (std::uint32_t i = 0; i < lists * 1024; ++i) file += number(i < lists ? ~2U : i + 1);
  for (std::uint32_t i = 0; i < entries; ++i) {
    std::string entry{static_cast<char>('a' + i % 26)};
    entry.resize(64);
    entry += std::string{4, 0, static_cast<char>(i == 0 ? 5 : 1), 1} + number(~0U) +
             number(i == 0 || i + 1 == entries ? ~0U : i + 1) + number(i == 0 ? 1 : ~0U);
    entry.resize(128);
    file += entry;
  }
  EXPECT_NE(Error_Of(Write("long.msg", file)).find("too many parts"), std::string::npos);
}

TEST_F(Sources_Test, Patterns_Of_Outlook_S_Series) {
  const std::pair<const char*, const char*> cases[] = {
      {"series/weekly", "FREQ=WEEKLY;BYDAY=TU;WKST=SU"},
      {"series/monthly-last", "FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1"},
      {"series/yearly-day-30", "FREQ=YEARLY;BYMONTH=8;BYMONTHDAY=28,29,30;BYSETPOS=-1"},
      {"series/task-daily", "FREQ=DAILY;INTERVAL=2"},
  };
  for (const auto& [name, rule] : cases) {
    const std::string pattern = Corpus(name);
    const auto series = Read_Mapi_Series(pattern, std::string_view(name) != "series/task-daily");
    ASSERT_TRUE(series) << name;
    EXPECT_EQ(series->rule, rule);
    for (std::size_t cut = 0; cut < 40; ++cut)
      EXPECT_FALSE(Read_Mapi_Series(pattern.substr(0, cut), false)) << cut;
  }
}

TEST_F(Sources_Test, Calendars_Keep_Their_Bytes) {
  const std::string calendar = Corpus("calendar/series.ics");
  EXPECT_EQ(Import(Write("c.ics", calendar)).imported, 2);
  const New_Item& series = writer.written[0].item;
  EXPECT_EQ(series.subject, "Weekly, with a longer line that is folded");
  EXPECT_EQ(series.body, "One\nTwo");
  EXPECT_EQ(series.sender, "A; B");
  EXPECT_EQ(series.recipients, "C");
  EXPECT_DOUBLE_EQ(series.end,
                   Day(37504, 6));  // the occurrence that was moved to 2002-09-05, 12:00 in Berlin
  const std::size_t task = calendar.find("BEGIN:VTODO");
  EXPECT_EQ(series.raw_message, calendar.substr(0, task) + "END:VCALENDAR\r\n");
  const New_Item& todo = writer.written[1].item;
  EXPECT_EQ(todo.item_class, item_class::task);
  EXPECT_DOUBLE_EQ(todo.due, Day(37500));
  EXPECT_DOUBLE_EQ(todo.completed, Day(37498, 8));
  EXPECT_EQ(todo.raw_message.find("TZID"), std::string::npos);
  EXPECT_TRUE(todo.raw_message.find(calendar.substr(task)) != std::string::npos);
}

TEST_F(Sources_Test, A_Series_Is_Dated_By_The_End_Of_Its_Last_Occurrence) {
  const std::pair<const char*, Date> cases[] = {
      {"", Day(37488, 11)},
      {"RRULE:FREQ=WEEKLY", no_date},
      {"RRULE:FREQ=DAILY;COUNT=3", Day(37490, 11)},
      {"RRULE:FREQ=DAILY;COUNT=3\nEXDATE:20020822T100000", Day(37489, 11)},
      {"RRULE:FREQ=DAILY;COUNT=2\nRDATE:20020901T100000", Day(37500, 11)},
      {"RRULE:FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30;COUNT=2", no_date},  // never comes
      // Too many to walk through: never earlier than the end, and at no cost.
      {"RRULE:FREQ=SECONDLY;UNTIL=20500101T000000Z", Day(54789, 20)},
      {"RRULE:FREQ=DAILY;BYHOUR=0,1,2,3;BYMINUTE=0,1,2,3;BYSECOND=1,2,3;BYMONTH=2;BYMONTHDAY=30;COUNT=9",
       no_date},
      {"RRULE:FREQ=DAILY;COUNT=30000\nRRULE:FREQ=DAILY;COUNT=30001", no_date},
      {"RRULE:nonsense", Day(37488, 11)},
  };
  for (const auto& [rule, end] : cases) {
    const std::string calendar =
        "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:20020820T100000\nDTEND:20020820T110000\n" +
        std::string(rule) + "\nEND:VEVENT\nEND:VCALENDAR\n";
    EXPECT_DOUBLE_EQ(Read_Calendar_Item(calendar).end, end) << rule;
  }
}

TEST_F(Sources_Test, Address_Books_Of_Each_Version) {
  const std::string cards = Corpus("contacts/three.vcf");
  EXPECT_EQ(Import(Write("a.vcf", cards + "BEGIN:VCARD\nFN:cut")).failed, 1);
  EXPECT_EQ(Subjects(), (std::vector<std::string>{"Dr. Jörg Müller", "Long name, folded", "All"}));
  EXPECT_EQ(writer.written[0].item.body, "One\r\nTwo");
  EXPECT_DOUBLE_EQ(writer.written[0].item.last_modified, Day(37490, 22, 32, 53));
  EXPECT_EQ(writer.written[2].item.item_class, item_class::distribution_list);
  std::string raw;
  for (const auto& written : writer.written) raw += written.item.raw_message;
  EXPECT_EQ(raw, cards);
}

}  // namespace
}  // namespace tidyfold
