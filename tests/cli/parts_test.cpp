// Parts that are tested without starting the program.
#include <csignal>

#include "cli/arguments.h"
#include "cli/choice.h"
#include "cli/folder_path.h"
#include "cli/session.h"
#include "cli/terminal.h"
#include "program.h"

namespace tidyfold::cli {
namespace {

TEST(Folder_Path, leads_to_names_and_back) {
  const std::pair<const char*, Words> cases[] = {{"Inbox", {"Inbox"}},
                                                 {"Inbox/Lists", {"Inbox", "Lists"}},
                                                 {R"(a\/b\\c/d)", {R"(a/b\c)", "d"}},
                                                 {"x//y", {"x", "", "y"}},
                                                 {"line\nbreak/\"quoted\"", {"line\nbreak", "\"quoted\""}}};
  for (const auto& [path, names] : cases) {
    EXPECT_EQ(Parse_Folder_Path(path), names) << path;
    std::string joined;
    for (const std::string& name : names)
      joined += (&name == names.data() ? "" : "/") + Escape_Folder_Name(name);
    EXPECT_EQ(joined, path);
  }
  EXPECT_EQ(Parse_Folder_Path("/"), Words{});
}

TEST(Arguments, lists_may_be_given_at_once_or_one_by_one) {
  const Arguments at_once =
      Read_Arguments({"--store", "a", "b", "items", "--folder", "[Gmail]", "folders", "--csv"});
  const Arguments one_by_one = Read_Arguments(
      {"items", "--store=a", "--folder=[Gmail]", "--csv", "--folder", "folders", "--store", "b"});
  for (const Arguments& arguments : {at_once, one_by_one}) {
    EXPECT_EQ(Store_Files(arguments), (std::vector<std::filesystem::path>{"a", "b"}));
    EXPECT_EQ(arguments.folders, (Words{"[Gmail]", "folders"}));
    EXPECT_EQ(arguments.form, Form::Csv);
  }
}

TEST(Arguments, sources_are_never_taken_for_folders_or_options) {
  const Arguments arguments =
      Read_Arguments({"--store", "check", "import", "[a]", "--folder", "Inbox", "b", "--", "--c", "check"});
  EXPECT_EQ(arguments.command, Command::Import);
  EXPECT_EQ(arguments.sources, (std::vector<std::filesystem::path>{"[a]", "b", "--c", "check"}));
  EXPECT_EQ(arguments.target, "Inbox");
}

TEST(Printable, steers_no_terminal) {
  EXPECT_EQ(Printable("a\r\nb\tc\x1B[2J\rd\xC2\x9B\xFF ü"), "a\nb\tc�[2J�d�� ü");
  EXPECT_EQ(Printable_Line("a\r\n\r\n\tb  c"), "a b  c");
}

class Interrupt : public Program_Test {};

TEST_F(Interrupt, cancels_a_run_as_the_button_does) {
  Make_Sample();
  Terminal terminal;
  Arguments arguments;
  arguments.stores = {std::filesystem::path(store_)};
  Session session(arguments, Store_Mode::Read_Write, terminal, Answering::Agree, true);
  session.Load();
  Choice(session).Mark(Find_Folder(session.Folders(), "Inbox"));
  std::raise(SIGINT);
  session.Window().cmdRun.Click();
  EXPECT_TRUE(session.Program().run.Cancelled);
  EXPECT_EQ(session.Program().run.ProcessedCount, 0);
  ASSERT_EQ(session.Messages().Shown().size(), 3u);
  EXPECT_EQ(session.Messages().Shown()[1].text, "Quit processing records?");
}

}  // namespace
}  // namespace tidyfold::cli
