// What went out and comes in again is the same.
#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

#include "doubles/requirements.h"
#include "export/export_fixture.h"
#include "mail/mime_message.h"
#include "stores/sqlite/sample_store.h"

namespace tidyfold {
namespace {

constexpr Date day = 41'703.5;  // 2014-03-05 12:00

using Change = void (*)(New_Item&);

New_Item Mail(
    const std::string& raw, Change change = [](New_Item&) {}) {
  New_Item item = raw.empty() ? New_Item() : Read_Mime_Message(raw);
  item.unread = false;
  change(item);
  return item;
}

New_Item Other(
    std::int32_t item_class, const std::string& subject, const std::string& body,
    Change change = [](New_Item&) {}) {
  New_Item item;
  item.item_class = item_class;
  item.subject = subject;
  item.body = body;
  item.last_modified = day;
  change(item);
  return item;
}

const std::string header =
    "From: Anna <anna@example.org>\nSubject: Dinner\nDate: Wed, 5 Mar 2014 12:00:00 +0000\n";
const std::string with_cr = "From: Anna <anna@example.org>\r\nSubject: Dinner\r\n\r\nText\r\n";

std::vector<New_Item> Messages() {
  const auto flagged = [](New_Item& item) { item.flagged = true; };
  const auto unread = [](New_Item& item) { item.unread = true; };
  return {
      Mail(header + "\nText\n"),
      Mail(header + "\nText without an end", unread),
      Mail(header + "\nText\n\n\n", flagged),
      Mail(header + "\nFrom me to you\n>From here\n>>From there\nFrom a@b.org Wed Mar  5 12:00:00 2014\nTo: "
                    "x\n\nY\n",
           [](New_Item& item) { item.flagged = item.answered = item.unread = true; }),
      Mail(with_cr, [](New_Item& item) { item.answered = true; }),
      Mail("\xEF\xBB\xBF\n" + header + "\nText\n"),
      Mail("From anna@example.org Wed Mar  5 12:00:00 2014\n" + header + "\nText\n"),
      Mail(header),
      Mail(header + "Content-Length: 4711\nStatus: RO\nX-Status: D\nX-Mozilla-Status: 0009\n\nText\n",
           unread),
      Mail(header + "\nText\n",
           [](New_Item& item) {
             item.raw_message = "X-Tidyfold-Export:1\nX-Tidyfold-Class:post\n" + item.raw_message;
           }),
      Mail(header + "\nText\n", [](New_Item& item) { item.received = 30'000.25; }),
      Mail("Subject: Dinner\n\nNo date\n",
           [](New_Item& item) { item.received = item.last_modified = no_date; }),
      Mail("Subject: \xC4rger\nContent-Type: text/plain; charset=iso-8859-1\n\n\xC4\n"),
      Mail("Subject: NUL\n\nA" + std::string(1, '\0') + "B\r\rC\n"),
      Mail({},
           [](New_Item& item) {
             item.body = "No message of its own\n\xC3\xA4\n";
             item.attachments = {{"plan.txt", 4, "Plan"},
                                 {"r\xC3\xA9sum\xC3\xA9.pdf", 3, std::string("\0\r\n", 3)}};
           }),
      Other(item_class::meeting_request, "Meeting", "Come\n",
            [](New_Item& item) { item.received = item.last_modified = day; }),
      Other(item_class::report, "Undeliverable", "Nobody there\n", unread),
      Other(item_class::post, "=?utf-8?q?Not=20encoded?=", "begin 644 no.txt\nText\n",
            [](New_Item& item) { item.received = day; }),
      Other(item_class::task_request, "Task: \xE6\x97\xA5\xE6\x9C\xAC", std::string(200, 'x') + "\n.\n",
            flagged),
  };
}

std::vector<New_Item> Other_Items() {
  return {
      Other(item_class::note, " Ideas  ", "Ideas\r\n\r\n  more  \x01\n",
            [](New_Item& item) {
              item.attachments = {{"a/b.txt", 2, "ab"}, {"lost.bin", 99}};
            }),
      Other(item_class::journal, "Call", "Spoke to Ben", [](New_Item& item) { item.end = day + 0.125; }),
      Other(item_class::appointment, "Lunch; at, noon\\", "Bring: cake\nand tea",
            [](New_Item& item) {
              item.end = day + 1.0 / 24;
              item.attachments = {{"menu, \"new\".pdf", 3, std::string("\1\2\3", 3)}};
            }),
      Other(item_class::appointment, "Never ends", "", [](New_Item& item) { item.end = no_date; }),
      Other(item_class::appointment, "Weekly", "",
            [](New_Item& item) {
              item.raw_message =
                  "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nUID:1\nDTSTAMP:20140305T120000Z\nSUMMARY:"
                  "Weekly\n"
                  "DTSTART:20140305T100000\nDTEND:20140305T110000\nRRULE:FREQ=WEEKLY;COUNT=3\nEND:"
                  "VEVENT\nEND:VCALENDAR\n";
              item.end = day + 14 - 1.0 / 24;
            }),
      Other(item_class::task, "Paint", "",
            [](New_Item& item) {
              item.due = day + 3;
              item.completed = day + 2.25;
              item.flagged = true;
            }),
      Other(item_class::contact, "Ode, Ben", "Met at the\nfair; twice",
            [](New_Item& item) {
              item.sender_address = "ben@example.org";
              item.attachments = {{"photo.jpg", 3, "JPG"}, {"photo.jpg", 4, "JPEG"}};
            }),
      Other(item_class::contact, "", ""),
      Other(item_class::distribution_list, "Everybody", ""),
  };
}

class Round_Trip : public Export_Test {
 protected:
  void Go(const Store_Ptr_To_File& store) {
    const std::vector<std::string> before = Content(store);
    for (const auto& [form, name] :
         {std::pair{Export_Form::Maildir, "maildir"}, std::pair{Export_Form::Mbox, "mbox"},
          std::pair{Export_Form::Eml, "eml"}}) {
      SCOPED_TRACE(name);
      const auto where = directory / (std::string(name) + std::to_string(++number_));
      const Export_Report out = Export(store, where, form);
      EXPECT_TRUE(out.Is_Whole()) << Counts_Of(out) << "\n"
                                  << (out.failures.empty() ? out.ended_by : Details_Of(out).front());
      const auto back = New_Store(where.filename().string());
      const Import_Report in = Import(where, back);
      EXPECT_EQ(in.imported, out.exported);
      EXPECT_EQ(in.failed, 0) << (in.failures.empty() ? ""
                                                      : in.failures.front().where + in.failures.front().why);
      const auto after = Content(back);
      EXPECT_THAT(Missing(before, after), ::testing::IsEmpty());
      EXPECT_EQ(Import(where, back, false).imported, 0) << "all of it is there already";
    }
  }

  static std::vector<std::string> Missing(const std::vector<std::string>& before,
                                          const std::vector<std::string>& after) {
    std::vector<std::string> missing;
    std::set_difference(before.begin(), before.end(), after.begin(), after.end(),
                        std::back_inserter(missing));
    return missing;
  }

 private:
  int number_ = 0;
};

TEST_F(Round_Trip, Of_Awkward_Items_And_Names) {
  const auto store = New_Store("Awkward");
  Store_Writer& writer = store->Writer();
  const auto fill = [&](MAPIFolder& folder, const std::vector<New_Item>& items) {
    for (const New_Item& item : items) writer.Add_Item(folder, item);
  };
  const MAPIFolder_Ptr top = store->Top_Folder();
  const MAPIFolder_Ptr mixed = writer.Add_Folder(*top, "Mixed: all/kinds", item_type::mail);
  fill(*mixed, Messages());
  fill(*mixed, Other_Items());
  MAPIFolder_Ptr folder = mixed;
  for (const char* name : {"..", "cur", ".hidden", "CON", "a.mbox", "x.sbd", "\xC3\x84", " blank ", "a\\b"}) {
    folder = writer.Add_Folder(*folder, name, item_type::task);
    fill(*folder, {Other_Items().front()});
  }
  for (const char* name : {"Twins", "twins", "TWINS"})
    fill(*writer.Add_Folder(*top, name, item_type::contact), {Messages().front()});
  Go(store);
}

TEST_F(Round_Trip, Of_A_Sample_Store) {
  const auto file = directory / "sample.tidyfold";
  ASSERT_TRUE(Make_Sample(file, "Sample", 2000, 7, {}));
  Go(Embedded_Store::Open(file, Store_Mode::Read_Only));
}

TEST_F(Round_Trip, Of_Other_Programs_Files) {
  const std::filesystem::path data = TIDYFOLD_SHARED_DATA;
  REQUIRE_OR_SKIP(std::filesystem::exists(data), data << " is missing");
  for (const auto& file : std::filesystem::directory_iterator(data)) {
    SCOPED_TRACE(file.path().filename().string());
    const auto store = New_Store("from " + file.path().filename().string());
    try {
      Import(file.path(), store);
    } catch (const Import_Error&) {
      continue;  // not mail
    }
    Go(store);
  }
}

}  // namespace
}  // namespace tidyfold
