#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
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

TEST_F(Clean_Run, is_refused_beyond_its_limits_and_in_the_words_of_the_window) {
  struct Refusal {
    const char* words;
    int status;
    Words told;
  };
  const Refusal cases[] = {
      {"--folder Inbox --max 3", 3, {"items, and --max allows 3."}},
      {"--folder Projects --delete-folders --max 1", 3, {"folders, and --max allows 1."}},
      {"--folder Inbox --deleted-items-limit 2", 3, {"Deleted Items Folder Overflow", "Total Allowed:  2"}},
      {"--folder Inbox --delete-folders",
       3,
       {"Cannot mark a default folder while \" Delete Folders\" is marked."}},
      {"--folder Archive --folder=Deleted_Items",
       3,
       {"Cannot marked \"Deleted Items\" folder if Permanent Delete box is unchecked."}},
      {"--folder Inbox --subject _", 3, {"Subject required!"}},
      {"--folder Inbox --max 600 --deleted-items-limit 0", 0, {}}};
  for (const Refusal& refusal : cases) {
    for (const char* how : {"--dry-run", "--yes"}) {
      Words words = Split("clean --json " + std::string(refusal.words));
      for (std::string& word : words) std::replace(word.begin(), word.end(), '_', ' ');
      const Outcome outcome = On_Store(words + Words{how});
      EXPECT_EQ(outcome.status, refusal.status) << refusal.words << how << outcome.err;
      for (const std::string& told : refusal.told)
        EXPECT_NE(outcome.err.find(told), std::string::npos) << outcome.err;
      if (refusal.status == 0) continue;
      EXPECT_EQ(Bytes_Of(store_), before_);
      EXPECT_EQ(outcome.Document()["processed"], 0);
      EXPECT_EQ(outcome.Document().value("items", Json::array()), Json::array());
    }
  }
}

// Without identities, which another import gives anew.
std::multiset<std::string> Contents(const Json& items) {
  std::multiset<std::string> contents;
  for (Json item : items) {
    item.erase("entry_id");
    contents.insert(item.dump());
  }
  return contents;
}

TEST_F(Clean_Run, keeps_a_copy_first_that_brings_everything_back) {
  const Words all = Split("clean --folder / --sub-folders --permanent --unread --flagged --yes --backup");
  Write_Bytes(Path("file"), "in the way");
  const Outcome failed = On_Store(all + Words{Path("file")});
  EXPECT_EQ(failed.status, 1) << failed.err;
  EXPECT_NE(failed.out.find("before anything was deleted"), std::string::npos) << failed.out;

  const auto before = Contents(All_Items());
  const Outcome outcome = On_Store(all + Words{Path("copies")});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(All_Items(), Json::array());
  const std::string copy = std::filesystem::directory_iterator(Path("copies"))->path().string();
  EXPECT_NE(outcome.out.find(copy), std::string::npos) << outcome.out;
  EXPECT_EQ(On_Store({"import", "--merge", copy}).status, 0);
  EXPECT_EQ(Contents(All_Items()), before);
}

TEST_F(Clean_Run, exports_folders_that_come_in_again) {
  const auto before =
      Contents(On_Store(Split("items --folder Inbox --sub-folders --unread --json")).Document());
  for (const std::string form : {"maildir", "mbox", "eml"}) {
    const Outcome outcome =
        On_Store({"export", Path(form), "--folder", "Inbox/Lists", "--folder", "Inbox", "--as", form});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    const std::string number = std::to_string(before.size());
    EXPECT_EQ(outcome.out, Path(form) + ": " + number + " items found, " + number + " exported, 0 failed\n");
    const std::string store = Path(form + ".tidyfold");
    EXPECT_EQ(Run({"--store", store, "import", "--merge", Path(form)}).status, 0);
    Words items = Split("items --folder Inbox --sub-folders --unread --json");
    EXPECT_EQ(Contents(Run(Words{"--store", store} + items).Document()), before) << form;
  }
  EXPECT_EQ(Bytes_Of(store_), before_);
  EXPECT_EQ(On_Store({"export", Path("x"), "--as", "pst"}).status, 2);
  EXPECT_EQ(On_Store({"export", store_}).status, 2);
}

class Clean_Plan_File : public Clean_Run {
 protected:
  void SetUp() override {
    Clean_Run::SetUp();
    ASSERT_EQ(Save(plan_).status, 0);
  }
  Outcome Save(const std::string& file, const std::string& options = "") {
    return On_Store(Split("clean --folder Inbox --sub-folders --cutoff 2015-12-31" + options) +
                    Words{"--dry-run", "--save-plan", file});
  }
  Json Plan() const { return Json::parse(Bytes_Of(plan_)); }
  Outcome Clean_By(const std::string& file, const std::string& options = "") {
    return On_Store(Words{"clean", "--plan", file} + Split(options));
  }
  const std::string plan_ = Path("plan.json");
};

TEST_F(Clean_Plan_File, takes_what_it_names_but_what_has_changed) {
  EXPECT_EQ(Bytes_Of(store_), before_);
  std::vector<std::string> ids;
  std::set<std::string> expected = Places(All_Items());
  const Json plan = Plan();
  for (const Json& stop : plan["stops"])
    for (const Json& item : stop["items"]) {
      ids.push_back(item["entry_id"]);
      if (ids.size() > 5) {
        EXPECT_EQ(expected.erase(ids.back() + " in " + stop["folder"].get<std::string>()), 1u);
      }
    }
  ASSERT_GT(ids.size(), 8u);
  EXPECT_EQ(plan["count"], ids.size());
  // One kind of change each; then a newcomer that would pass the filters as well.
  const char* changes[] = {
      "UPDATE item SET subject = 'another' WHERE id = ", "UPDATE item SET unread = 1 WHERE id = ",
      "UPDATE item SET class = 44 WHERE id = ",
      "UPDATE item SET received = 30000, last_modified = 30000 WHERE id = ", "DELETE FROM item WHERE id = "};
  for (std::size_t i = 0; i < 5; ++i) Alter((changes[i] + ids[i].substr(1)).c_str());
  Alter(("UPDATE item SET folder = " + plan["stops"].back()["entry_id"].get<std::string>().substr(1) +
         ", position = 100000, received = 30000, unread = 0 WHERE id = (SELECT max(id) FROM item)")
            .c_str());
  const std::size_t before = All_Items().size();

  const Outcome outcome = Clean_By(plan_, "--yes --json");
  EXPECT_EQ(outcome.status, 1) << outcome.err;
  EXPECT_EQ(outcome.Document()["processed"], ids.size() - 5);
  for (const char* reason : {"Its subject", "become unread", "another type", "Its date", "no longer there"})
    EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.out.find("5 items were kept"), std::string::npos) << outcome.out;
  const Json items = All_Items();
  EXPECT_EQ(items.size(), before);
  const std::set<std::string> moved(ids.begin() + 5, ids.end());
  for (const Json& item : items)
    if (moved.contains(item["entry_id"])) {
      EXPECT_EQ(item["folder"], "Deleted Items");
    }
  Json logged = Run({"runs", "1", "--json"}).Document();
  EXPECT_EQ(std::count_if(logged.begin(), logged.end(),
                          [](const Json& item) { return item["result"] == "changed since it was shown"; }),
            5);
}

TEST_F(Clean_Plan_File, takes_nothing_of_a_protected_folder_and_neither_does_a_run) {
  const auto in_lists = [](const Json& folder) {
    return folder["path"].get<std::string>().starts_with("Inbox/Lists");
  };
  const auto listed = [&] { return On_Store({"folders", "--json"}).Document(); };
  ASSERT_EQ(On_Store({"protect", "--folder", "Inbox/Lists", "Family"}).out,
            "Inbox/Lists: protected\nFamily: protected\n");
  for (const Json& folder : listed())
    EXPECT_EQ(folder["protected"],
              in_lists(folder) || folder["path"].get<std::string>().starts_with("Family"));
  const std::string protected_bytes = Bytes_Of(store_);
  const std::string child = "Inbox/Lists/Cycling";
  const Words refused[] = {{"Inbox/Lists"},
                           {"Inbox", child},
                           {"Projects", "Family", "--delete-folders"},
                           {"Inbox/Lists", "--turbo"}};
  for (const Words& words : refused) {
    const Outcome outcome = On_Store(Words{"clean", "--yes", "--json", "--folder"} + words);
    EXPECT_EQ(outcome.status, 3) << outcome.err;
    EXPECT_NE(outcome.err.find("protected"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find(words[0] == "Projects" ? "protect --folder \"Family\" --off"
                                                      : "protect --folder \"Inbox/Lists\" --off"),
              std::string::npos)
        << outcome.err;
    EXPECT_EQ(outcome.Document()["processed"], 0);
  }
  EXPECT_EQ(On_Store({"clean", "--yes", "--folder", "Inbox", "--delete-folders"}).status, 3);
  EXPECT_EQ(Bytes_Of(store_), protected_bytes);
  // A plan from before knows nothing of it; a run over the branch names what it leaves out.
  std::set<std::string> kept =
      Places(On_Store(Split("items --folder Inbox/Lists --sub-folders --json --unread "
                            "--flagged"))
                 .Document());
  ASSERT_GT(kept.size(), 10u);
  const Outcome by_plan = Clean_By(plan_, "--yes");
  EXPECT_EQ(by_plan.status, 1) << by_plan.err;
  EXPECT_NE(by_plan.err.find("Its folder is protected."), std::string::npos) << by_plan.err;
  const Outcome over = On_Store(Split("clean --folder / --sub-folders --yes --turbo"));
  EXPECT_EQ(over.status, 0) << over.err;
  for (const char* folder : {"Inbox/Lists", "Family"})
    EXPECT_NE(over.err.find("The folder \"" + std::string(folder) + "\" is protected and is left out"),
              std::string::npos)
        << over.err;
  std::set<std::string> left;
  for (const Json& item : All_Items()) {
    const std::string folder = item["folder"];
    EXPECT_TRUE(folder.starts_with("Inbox/Lists") || folder.starts_with("Family")) << folder;
    left.insert(item["entry_id"].get<std::string>() + " in " + folder);
  }
  EXPECT_TRUE(std::includes(left.begin(), left.end(), kept.begin(), kept.end()));
  // What went for good gives its room back; what is left stays as it is.
  const Json folders = listed();
  const auto full = std::filesystem::file_size(store_);
  const Outcome compacted = On_Store({"compact"});
  EXPECT_EQ(compacted.status, 0) << compacted.err;
  EXPECT_LT(std::filesystem::file_size(store_), full / 2);
  EXPECT_TRUE(
      std::regex_match(compacted.out, std::regex(".*store.tidyfold: [0-9.]+ [KM]B -> [0-9.]+ [KM]B\n")))
      << compacted.out;
  EXPECT_EQ(Places(All_Items()), left);
  EXPECT_EQ(listed(), folders);
  EXPECT_EQ(On_Store({"protect", "--off", "--folder", child}).out,
            child + ": still protected, because it lies below \"Inbox/Lists\"\n");
  EXPECT_EQ(On_Store({"protect", "--folder", "Inbox/Lists", "--off"}).status, 0);
  EXPECT_EQ(On_Store(Split("clean --folder Inbox/Lists --yes")).status, 0);
}

TEST_F(Clean_Plan_File, is_refused_where_it_does_not_fit) {
  const auto altered = [&](const char* field, const Json& value) {
    Json plan = Plan();
    plan[Json::json_pointer(field)] = value;
    std::ofstream(Path("altered.json")) << plan;
    return Clean_By(Path("altered.json"), "--yes");
  };
  std::ofstream(Path("text")) << "no plan";
  ASSERT_EQ(Run({"sample", Path("other"), "--items", "10", "--seed", "2"}).status, 0);
  Json twice = Plan()["stops"];
  twice.push_back(twice[0]);
  const std::pair<Outcome, const char*> cases[] = {
      {Save(plan_), "there already"},
      {Save(Path("new"), " --delete-folders"), "names items"},
      {On_Store({"clean", "--folder", "Inbox", "--yes", "--save-plan", Path("new")}), "--dry-run"},
      {Clean_By(plan_, "--yes --unread"), "--unread"},
      {Clean_By(plan_, "--yes --folder Inbox"), "--folder"},
      {Clean_By(Path("text")), "no plan"},
      {altered("/version", 2), "newer version"},
      {altered("/options/permanent", true), "do not agree"},
      {altered("/stops", twice), "twice"},
      {Run({"--store", Path("other"), "clean", "--plan", plan_, "--yes"}), "not open"}};
  for (const auto& [outcome, told] : cases) {
    EXPECT_EQ(outcome.status, 2) << told << outcome.err;
    EXPECT_NE(outcome.err.find(told), std::string::npos) << told << ": " << outcome.err;
  }
  EXPECT_FALSE(std::filesystem::exists(Path("new")));
  EXPECT_EQ(Clean_By(plan_).status, 3);
  EXPECT_EQ(Clean_By(plan_, "--yes --max 2").status, 3);
  EXPECT_EQ(Bytes_Of(store_), before_);
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

}  // namespace
}  // namespace tidyfold::cli
