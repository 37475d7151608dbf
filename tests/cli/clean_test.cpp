#include <set>

#include "program.h"

namespace tidyfold::cli {
namespace {

// Items by identity and place.
std::set<std::string> Places(const Json& items) {
  std::set<std::string> places;
  for (const Json& item : items)
    places.insert(item["entry_id"].get<std::string>() + " in " + item["folder"].get<std::string>());
  return places;
}

struct Run_Case {
  const char* name;
  Words words;
  bool moves = false;
  // What was done to the store before, so that not all of it can be deleted.
  const char* spoilt = nullptr;
};

class Clean : public Program_Test, public testing::WithParamInterface<Run_Case> {};

TEST_P(Clean, takes_exactly_what_the_dry_run_lists) {
  Make_Sample();
  if (GetParam().spoilt != nullptr) Alter(GetParam().spoilt);
  const std::string bytes = Bytes_Of(store_);
  const std::set<std::string> before = Places(All_Items());
  const Words clean = Words{"clean"} + GetParam().words;

  const Json dry = On_Store(clean + Words{"--dry-run", "--json"}).Document();
  const std::string text = On_Store(clean + Words{"--dry-run"}).out;
  EXPECT_EQ(Bytes_Of(store_), bytes);
  EXPECT_TRUE(text.starts_with("Dry run")) << text;
  EXPECT_TRUE(dry["dry_run"]);
  EXPECT_EQ(dry["messages"], Json::array());
  const std::set<std::string> taken = Places(dry["items"]);
  ASSERT_FALSE(taken.empty());
  ASSERT_LT(taken.size(), before.size());

  const Outcome outcome = On_Store(clean + Words{"--yes", "--json"});
  EXPECT_EQ(outcome.status, GetParam().spoilt == nullptr ? 0 : 1) << outcome.err;
  const Json run = outcome.Document();
  EXPECT_EQ(run["processed"], dry["processed"]);
  EXPECT_EQ(run["not_all_deleted"], GetParam().spoilt != nullptr);
  EXPECT_FALSE(run.contains("items"));
  std::set<std::string> expected = before;
  for (const std::string& place : taken) {
    expected.erase(place);
    if (GetParam().moves) expected.insert(place.substr(0, place.find(" in ")) + " in Deleted Items");
  }
  EXPECT_EQ(Places(All_Items()), expected);
  EXPECT_EQ(On_Store({"check"}).status, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Runs, Clean,
    testing::Values(
        Run_Case{"moved", {"--folder", "Inbox", "Sent Items", "--cutoff", "2015-12-31"}, true},
        Run_Case{"everywhere_but_deleted_items", {"--folder", "/", "--sub-folders", "--type", "mail"}, true},
        Run_Case{"for_good", {"--folder", "/", "--sub-folders", "--permanent", "--subject", "re:"}},
        Run_Case{"from_deleted_items", {"--folder", "Deleted Items", "Tasks", "--permanent"}},
        Run_Case{"turbo", {"--folder", "Inbox/Lists", "Deleted Items", "--sub-folders", "--turbo"}},
        Run_Case{"folders", {"--folder", "Projects", "Family", "--delete-folders"}},
        Run_Case{"folders_but_one_that_may_not_go",
                 {"--folder", "Projects", "--delete-folders"},
                 false,
                 "UPDATE folder SET name = 'Drafts' WHERE name = 'Drawings'"}),
    [](const auto& test) { return test.param.name; });

class Clean_Run : public Program_Test {
 protected:
  void SetUp() override {
    Make_Sample();
    before_ = Bytes_Of(store_);
  }
  std::string before_;
};

TEST_F(Clean_Run, says_everything_that_the_window_says) {
  const Words clean = Split("clean --folder Tasks --subject nothing-begins-so --permanent --yes");
  const std::string question = "Permanently delete items in selected folders?";
  const Outcome outcome = On_Store(clean);
  EXPECT_EQ(outcome.out,
            "0 items in 1 folder identified for cleaning.\n\nTasks: 0 items, for good\n\nOptions: Permanent "
            "Delete; subject begins with \"nothing-begins-so\"; read items only.\n[OK/Cancel] OK\n" +
                question + "\n[Yes/No] Yes\nNo items were processed.\n");
  EXPECT_EQ(outcome.err, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(On_Store(clean + Words{"--json"}).Document()["messages"][1],
            Json({{"text", question}, {"buttons", {"Yes", "No"}}, {"answer", "Yes"}}));
}

TEST_F(Clean_Run, is_not_begun_where_nobody_can_be_asked) {
  for (const char* option : {"", " --permanent", " --turbo", " --confirm-items"}) {
    const Outcome outcome = On_Store(Split(std::string("clean --folder Inbox --json") + option));
    EXPECT_EQ(outcome.status, 3);
    EXPECT_NE(outcome.err.find("--yes"), std::string::npos) << outcome.err;
    const Json document = outcome.Document();
    EXPECT_EQ(document["processed"], 0);
    for (const Json& message : document["messages"]) EXPECT_NE(message["answer"], "Yes");
    EXPECT_EQ(Bytes_Of(store_), before_);
  }
}

TEST_F(Clean_Run, is_refused_in_the_words_of_the_window) {
  const std::pair<Words, const char*> cases[] = {
      {{"--folder", "Inbox", "--delete-folders"},
       "Cannot mark a default folder while \" Delete Folders\" is marked."},
      {{"--folder", "/", "--delete-folders"},
       "Cannot select a root folder while \" Delete Folders\" is marked."},
      {{"--folder", "Archive", "Deleted Items"},
       "Cannot marked \"Deleted Items\" folder if Permanent Delete box is unchecked."},
      {{"--folder", "Inbox", "--subject", " "}, "Subject required!"}};
  for (const auto& [words, text] : cases) {
    for (const char* how : {"--yes", "--dry-run"}) {
      const Outcome outcome = On_Store(Words{"clean", how, "--json"} + words);
      EXPECT_EQ(outcome.status, 3) << text;
      EXPECT_EQ(outcome.Document()["messages"].back()["text"], text);
      EXPECT_EQ(outcome.Document()["processed"], 0);
      EXPECT_EQ(outcome.Document().value("items", Json::array()), Json::array());
      EXPECT_NE(outcome.err.find(text), std::string::npos) << outcome.err;
      EXPECT_EQ(Bytes_Of(store_), before_);
    }
  }
}

}  // namespace
}  // namespace tidyfold::cli
