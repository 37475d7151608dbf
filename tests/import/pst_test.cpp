#include <gtest/gtest.h>

#include "import/import_fixture.h"
#include "import/mapi_item.h"

namespace tidyfold {
namespace {

class Pst_Test : public Import_Test {
 protected:
  const New_Item& Item(std::size_t number) { return writer.written.at(number - 1).item; }
};

TEST(Pst_Classes, Follow_The_Nearest_Known_Parent) {
  const std::pair<std::string_view, std::int32_t> cases[] = {
      {"IPM.Note.SMIME.MultipartSigned", item_class::mail},
      {"ipm.appointment.Live Meeting", item_class::appointment},
      {"IPM.Tasks", item_class::mail},
      {"IPM.Schedule.Meeting.Resp.Tent", item_class::meeting_response_tentative},
      {"IPM.TaskRequest.Decline", item_class::task_request_decline},
      {"REPORT.IPM.Note.NDR", item_class::report},
      {"...", item_class::mail},
  };
  for (const auto& [name, number] : cases) EXPECT_EQ(Item_Class_Of(name), number) << name;
  EXPECT_EQ(Item_Type_Of("IPF.Appointment.Birthday"), item_type::appointment);
}

TEST_F(Pst_Test, Mail_With_Its_Attachment) {
  REQUIRE_SHARED_FILE(source, "sample1.pst");
  EXPECT_EQ(Import(source).imported, 1);
  EXPECT_EQ(Items_In({"sample1", "Sample1"}), 1);
  EXPECT_EQ(Item(1).subject, "Here is a sample message");
  EXPECT_EQ(Item(1).sender, "Terry Mahaffey");
  EXPECT_TRUE(Item(1).body.starts_with("With a sample attachment. It’s my daughter"));
  EXPECT_FALSE(Item(1).unread);
  EXPECT_DOUBLE_EQ(Item(1).received, Day(40252, 13, 12, 7));
  EXPECT_DOUBLE_EQ(Item(1).last_modified, Day(40256, 16, 8, 6));
  ASSERT_EQ(Item(1).attachments.size(), 1U);
  EXPECT_EQ(Item(1).attachments[0].name, "leah_thumper.jpg");
  EXPECT_EQ(Item(1).attachments[0].size, 93142);

  // The rebuilt message equals the original.
  const New_Item item = Item(1);
  Import(Write("rebuilt.eml", item.raw_message));
  EXPECT_EQ(Item(2).subject, item.subject);
  EXPECT_EQ(Item(2).sender, item.sender);
  EXPECT_EQ(Item(2).body, item.body);
  EXPECT_DOUBLE_EQ(Item(2).received, item.received);
  ASSERT_EQ(Item(2).attachments.size(), 1U);
  EXPECT_EQ(Item(2).attachments[0].size, 93142);
}

TEST_F(Pst_Test, Calendar_And_Contacts) {
  REQUIRE_SHARED_FILE(source, "dist-list.pst");
  REQUIRE_SHARED_FILE(ansi, "ansi-calendar.pst");
  EXPECT_EQ(Import(source).found, 3);
  EXPECT_EQ(Item(1).item_class, item_class::appointment);
  EXPECT_EQ(Item(1).end, no_date);           // a series that goes on for ever
  EXPECT_TRUE(Item(1).attachments.empty());  // only the exceptions of the series are attached
  EXPECT_NE(Item(1).raw_message.find("\r\nRRULE:FREQ=WEEKLY;BYDAY=TU;WKST=SU\r\n"), std::string::npos);
  EXPECT_EQ(Item(2).item_class, item_class::distribution_list);
  EXPECT_NE(Item(2).raw_message.find("MEMBER;X-CN=\"contact name 1\":mailto:contact1@rjohnson.id.au\r\n"),
            std::string::npos);
  EXPECT_EQ(Item(3).item_class, item_class::contact);
  EXPECT_DOUBLE_EQ(Item(3).last_modified, Day(41784, 9, 58, 28));
  EXPECT_EQ(Items_In({"dist-list", "Calendar"}), 1);
  EXPECT_EQ(Items_In({"dist-list", "Contacts"}), 2);
  EXPECT_EQ(store.Folder({"dist-list"})->Folders()->Count(), 12);  // no search folders
  EXPECT_EQ(Import(source, {}).there_already, 3);

  Import_Options merge;
  merge.merge = true;
  EXPECT_EQ(Import(ansi, merge).found, 1);
  EXPECT_EQ(Items_In({"Calendar"}), 1);
  EXPECT_DOUBLE_EQ(Item(4).end, Day(38218, 15, 30));
}

TEST_F(Pst_Test, An_Exchange_Mailbox_Is_Found_Beside_Public_Folders) {
  REQUIRE_SHARED_FILE(source, "exchange.ost");
  Import_Options options;
  options.folder_path = {"Old", "Work"};
  EXPECT_EQ(Counts_Of(Import(source, options)), "92 items found, 92 imported, 0 failed");
  EXPECT_EQ(Items_In({"Old", "Work", "Inbox", "sub2"}), 29);
}

TEST_F(Pst_Test, A_Damaged_Item_Is_Named_And_The_Rest_Goes_In) {
  REQUIRE_SHARED_FILE(source, "dist-list.pst");
  std::string damaged = Bytes_Of(source);
  damaged.replace(45056, 64, 64, '\xFF');  // within the appointment's properties
  const Import_Report report = Import(Write("damaged.pst", damaged));
  EXPECT_EQ(Counts_Of(report), "3 items found, 2 imported, 1 failed");
  ASSERT_EQ(report.failures.size(), 1U);
  EXPECT_EQ(report.failures[0].where, "Calendar, item 1");
}

TEST_F(Pst_Test, Files_That_Cannot_Be_Read_Change_Nothing) {
  REQUIRE_SHARED_FILE(source, "dist-list.pst");
  const std::string whole = Bytes_Of(source);
  const std::pair<std::string, std::string_view> cases[] = {
      {whole.substr(0, whole.size() - 1), "cut off"},
      {whole.substr(0, whole.size() / 8) + std::string(whole.size() - whole.size() / 8, 'Z'),
       "cannot be read"},
      {std::string(whole).replace(8, 4, 4, '\xFF'), "header is damaged"},
  };
  for (const auto& [content, part] : cases) {
    const std::string error = Error_Of(Write("bad.pst", content));
    EXPECT_NE(error.find(part), std::string::npos) << error;
    EXPECT_NE(error.find("bad.pst: "), std::string::npos) << error;
  }
  EXPECT_EQ(writer.roll_backs, static_cast<int>(std::size(cases)));
  EXPECT_EQ(writer.commits, 0);
}

}  // namespace
}  // namespace tidyfold
