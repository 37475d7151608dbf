#include "stores/imap/response.h"

#include <gtest/gtest.h>

#include "stores/imap/mailbox_name.h"
#include "stores/imap/message_data.h"
#include "stores/imap/uid_set.h"

namespace tidyfold::imap {
namespace {

TEST(Imap_Response, Takes_Every_Form_Of_Value_Apart) {
  const Response response(
      "* 3 FETCH (A NIL \"q \\\"\\\\\" {3}\r\nx)y (B BODY[HEADER.FIELDS (\"TO\")]<0> ()))");
  EXPECT_EQ(response.Number(), 3U);
  const auto values = response.Arguments().at(0).List();
  ASSERT_EQ(values.size(), 5U);
  EXPECT_TRUE(values[0].Is("A"));
  EXPECT_TRUE(values[1].Is_Nil());
  EXPECT_EQ(values[2].Text(), "q \"\\");
  EXPECT_EQ(values[3].Text(), "x)y");
  const auto inner = values[4].List();
  ASSERT_EQ(inner.size(), 3U);
  EXPECT_EQ(inner[1].Text(), "BODY[HEADER.FIELDS (\"TO\")]<0>");
  EXPECT_TRUE(inner[2].Is_List() && inner[2].List().empty());
  const Response status("T7 OK [copyuid 38505 304,319:320 3956:3958] Done {3}");
  EXPECT_EQ(status.Tag(), "T7");
  EXPECT_EQ(status.Code(), "COPYUID");
  EXPECT_EQ(status.Arguments().at(1).Text(), "304,319:320");
  EXPECT_EQ(status.Text(), "Done {3}");
}

TEST(Imap_Response, Names_And_Sets_Come_Back_As_They_Were) {
  const std::pair<const char*, const char*> names[] = {{"Entw&APw-rfe", "Entwürfe"},
                                                       {"A &- B", "A & B"},
                                                       {"&ZeVnLIqe-", "日本語"},
                                                       {"&2D3eAA-", "😀"},
                                                       {"Bad &Jjo!", "Bad &Jjo!"}};
  for (const auto& [wire, name] : names) EXPECT_EQ(Decode_Mailbox_Name(wire), name);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(Encode_Mailbox_Name(names[i].second), names[i].first);
  EXPECT_EQ(Parse_Uid_Set("7,3:5,9:8"), (std::vector<Uid>{7, 3, 4, 5, 8, 9}));
  EXPECT_EQ(Format_Uid_Set({7, 3, 4, 5, 4294967295}), "7,3:5,4294967295");
  for (const char* wrong : {"0", "*", "1:*", "1:4294967295", "4294967296", "1,,2", "a", "-1"})
    EXPECT_THROW(Parse_Uid_Set(wrong), Protocol_Error) << wrong;
  EXPECT_EQ(Read_Internal_Date("17-Jul-1996 02:44:25 -0700"), 837596665);
  EXPECT_EQ(Read_Internal_Date(" 7-Jul-1996 02:44:25 +0000"), 836707465);
  for (const char* wrong : {"", "31-Feb-2020 00:00:00 +0000", "17-Xxx-1996 02:44:25 -0700", "x"})
    EXPECT_FALSE(Read_Internal_Date(wrong)) << wrong;
}

}  // namespace
}  // namespace tidyfold::imap
