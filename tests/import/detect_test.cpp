#include "import/import_fixture.h"

namespace tidyfold {
namespace {

using ::testing::Test;

class Detect_Test : public Import_Test {};

TEST_F(Detect_Test, Tells_Kinds_By_Content_Whatever_The_Name) {
  const std::pair<std::string_view, Source_Kind> cases[] = {
      {"!BDN....", Source_Kind::Pst},
      {"From a@b Fri Aug 23 02:32:53 2002\nSubject: x\n\n", Source_Kind::Mbox},
      {"From - \r\nSubject: x\r\n\r\n", Source_Kind::Mbox},
      {"\n\nFrom a@b Fri Aug 23 02:32:53 2002\nSubject: x\n\n", Source_Kind::Mbox},
      {"Return-Path: <a@b>\nX-Odd: y\n\tand on\n\nbody", Source_Kind::Eml},
      {"\xEF\xBB\xBFSubject: x\r\n\r\nbody", Source_Kind::Eml},
      {"From : a@b\n\nbody", Source_Kind::Eml},  // an old way to write a header, no separator
  };
  for (const auto& [content, kind] : cases) {
    EXPECT_EQ(Detect_Source(Write("source.txt", content)), kind) << content;
  }
  std::filesystem::create_directories(directory / "mail.pst" / "cur");
  std::filesystem::create_directories(directory / "mail.pst" / "new");
  EXPECT_EQ(Detect_Source(directory / "mail.pst"), Source_Kind::Maildir);
}

TEST_F(Detect_Test, Refuses_What_Is_No_Source_And_Changes_Nothing) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"", "is empty"},
      {std::string_view("\0\x01\xFFjunk\n", 8), "none that can be imported"},
      {"From the beginning it was: text\nand no mail.\n", "none that can be imported"},
      {"#!/bin/sh\necho From: a\n", "none that can be imported"},
      {"Name: x\nColour: y\n\n", "none that can be imported"},  // fields, but of no mail
      {"!BDN and then something else, long enough for a header", "cut off"},
      {std::string_view("!BD", 3), "none that can be imported"},
  };
  for (const auto& [content, part] : cases) {
    const std::string error = Error_Of(Write("odd.mbox", content));
    EXPECT_NE(error.find(part), std::string::npos) << error;
    EXPECT_NE(error.find("odd.mbox: "), std::string::npos) << error;
  }
  EXPECT_NE(Error_Of(directory / "gone.pst").find("no such file"), std::string::npos);
  EXPECT_NE(Error_Of(directory).find("no Maildir"), std::string::npos);
  EXPECT_NE(Error_Of("/dev/null").find("neither a file nor a folder"), std::string::npos);
  EXPECT_EQ(writer.commits, 0);
}

}  // namespace
}  // namespace tidyfold
