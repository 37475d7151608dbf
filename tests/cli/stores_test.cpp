#include <algorithm>
#include <set>

#include "doubles/requirements.h"
#include "program.h"

namespace tidyfold::cli {
namespace {

namespace fs = std::filesystem;

class Folders : public Program_Test {};

TEST_F(Folders, are_listed_with_what_is_in_them) {
  Make_Sample();
  const Json folders = On_Store({"folders", "--json"}).Document();
  const Json items = All_Items();
  std::set<std::string> paths;
  for (const Json& folder : folders) {
    const std::string path = folder["path"];
    const auto slash = path.rfind('/');
    const bool top = path == "/" || slash == std::string::npos;
    EXPECT_TRUE(top || paths.contains(path.substr(0, slash))) << path;
    EXPECT_TRUE(paths.insert(path).second) << path;
    const auto here = [&](const Json& item) { return item["folder"] == path; };
    const auto unread = [&](const Json& item) { return here(item) && item["unread"].get<bool>(); };
    EXPECT_EQ(folder["items"], std::count_if(items.begin(), items.end(), here)) << path;
    EXPECT_EQ(folder["unread"], std::count_if(items.begin(), items.end(), unread)) << path;
  }
  EXPECT_EQ(items.size(), 600u);
}

TEST_F(Folders, of_several_stores_begin_with_the_store) {
  Make_Sample();
  const std::string other = Path("other");
  ASSERT_EQ(Run({"sample", other, "--name", "Arch/ive", "--items", "100"}).status, 0);
  const Words both{"--store", store_, "--store", other};
  const Json items =
      Run(both + Words{"items", "--folder", R"(Arch\/ive)", "--sub-folders", "--unread", "--json"})
          .Document();
  EXPECT_EQ(items.size(), 100u);
  for (const char* path : {"Inbox", "/"})
    EXPECT_EQ(Run(both + Words{"items", "--folder", path}).status, 2) << path;
}

std::string Subject(const Json& item) {
  return item["subject"];
}

const std::pair<const char*, bool (*)(const Json& item)> filter_cases[] = {
    {"", [](const Json& item) { return !item["unread"].get<bool>(); }},
    {"--unread", [](const Json&) { return true; }},
    {"--unread --type mail --type tasks",
     [](const Json& item) { return item["class"] == 43 || item["class"] == 48; }},
    {"--unread --cutoff 2012-06-30", [](const Json& item) { return item["date"] <= "2012-06-30"; }},
    {"--unread --subject meeting:", [](const Json& item) { return Subject(item).starts_with("Meeting:"); }},
    {"--unread --subject re: --match-case",
     [](const Json& item) { return Subject(item).starts_with("re:"); }},
    {"--unread --subject re: --match-word", [](const Json&) { return false; }},
};

class Items : public Program_Test {};

TEST_F(Items, are_those_that_pass_the_filters) {
  Make_Sample();
  const Json all = All_Items();
  for (const auto& [filter, passes] : filter_cases) {
    Json expected = Json::array();
    for (const Json& item : all)
      if (passes(item)) expected.push_back(item);
    const Words items = Split("items --folder / --sub-folders --json");
    EXPECT_EQ(On_Store(items + Split(filter)).Document(), expected) << filter;
  }
}

TEST_F(Items, have_the_same_order_and_texts_in_every_form) {
  Make_Sample();
  Alter("UPDATE item SET subject = CAST(x'22FF0A1B2C' AS TEXT) WHERE id = 1");
  const Words inbox{"items", "--folder", "Inbox", "--cutoff", "2005-12-31"};
  const Json json = On_Store(inbox + Words{"--json"}).Document();
  ASSERT_EQ(json[0]["subject"], "\"�\n\x1B,");
  const std::string csv = On_Store(inbox + Words{"--csv"}).out;
  EXPECT_NE(csv.find("\nInbox,43,Mail,"), std::string::npos) << csv;
  EXPECT_NE(csv.find(",\"\"\"�\n\x1B,\",1999"), std::string::npos) << csv;
  const std::string text = On_Store(inbox).out;
  EXPECT_EQ(text.find('\x1B'), std::string::npos);
  EXPECT_TRUE(text.ends_with("\n" + std::to_string(json.size()) + " items\n")) << text;
}

constexpr const char* letter =
    "From: A <a@example.org>\nSubject: Hello\nDate: Mon, 1 Jan 2001 10:00:00 +0000\n\nText.\n";

class Import : public Program_Test {
 protected:
  std::string Write(const std::string& name, const std::string& text) {
    std::ofstream(Path(name), std::ios::binary) << text;
    return Path(name);
  }
};

TEST_F(Import, goes_to_the_folder_of_the_store_that_the_path_names) {
  const std::string source = Write("[letter].eml", letter), other = Path("other.tidyfold");
  Make_Sample(50);
  const Words stores{"--store", store_, "--store", other, "import", source, "--folder"};
  EXPECT_EQ(Run(stores + Words{"Inbox"}).status, 2);
  EXPECT_FALSE(fs::exists(other));
  const Outcome outcome = Run(stores + Words{R"(other/Inbox/a\/b)"});
  EXPECT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(outcome.out, source + ": 1 items found, 1 imported, 0 failed\n");
  const Words items{"--store", other, "items", "--folder", R"(Inbox/a\/b)", "--unread", "--json"};
  EXPECT_EQ(Run(items).Document().at(0)["subject"], "Hello");
  EXPECT_EQ(All_Items().size(), 50u);
}

TEST_F(Import, leaves_nothing_behind_of_what_is_no_source_and_goes_on_after_it) {
  fs::create_directory(Path("empty"));
  const std::string cut = Write("cut.pst", "!BDN and no more"), good = Write("good.eml", letter);
  for (const std::string& source : {cut, Write("void.mbox", ""), Path("empty"), Path("nowhere.eml")}) {
    const Outcome outcome = On_Store({"import", source});
    EXPECT_EQ(outcome.status, 2) << source;
    EXPECT_TRUE(outcome.err.starts_with("tidyfold-cli: ")) << outcome.err;
    EXPECT_NE(outcome.err.find(source), std::string::npos) << outcome.err;
    EXPECT_FALSE(fs::exists(store_)) << source;
  }
  const Outcome outcome = On_Store({"import", cut, good});
  EXPECT_EQ(outcome.status, 1) << outcome.err;
  EXPECT_EQ(outcome.out, good + ": 1 items found, 1 imported, 0 failed\n");
  EXPECT_NE(outcome.err.find(cut), std::string::npos);
}

// A store of an older version does not know what its items are by.
TEST_F(Import, finds_what_is_there_already_in_an_older_store_too) {
  const std::string source = Write("good.eml", letter);
  EXPECT_EQ(On_Store({"import", source}).status, 0);
  Alter("UPDATE content SET identity = 0");
  EXPECT_EQ(On_Store({"import", source}).out,
            source + ": 1 items found, 0 imported, 0 failed, 1 there already\n");
}

TEST_F(Import, takes_what_other_programs_wrote) {
  REQUIRE_OR_SKIP(fs::exists(TIDYFOLD_SHARED_DATA), TIDYFOLD_SHARED_DATA " is missing");
  long imported = 0;
  for (const auto& entry : fs::directory_iterator(TIDYFOLD_SHARED_DATA)) {
    const fs::path kind = entry.path().extension();
    if (kind == ".md" || kind == ".dat" || kind == ".tnef") continue;  // no sources
    const std::string source = entry.path().string();
    const Outcome outcome = On_Store({"import", source});
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    ASSERT_TRUE(outcome.out.starts_with(source)) << outcome.out;
    long found = 0, taken = 0, failed = 0;
    std::sscanf(outcome.out.c_str() + source.size(), ": %ld items found, %ld imported, %ld failed", &found,
                &taken, &failed);
    EXPECT_GT(found, 0) << outcome.out;
    EXPECT_EQ(found, taken + failed) << outcome.out;
    imported += taken;
  }
  long kept = 0;
  for (const Json& folder : On_Store({"folders", "--json"}).Document()) kept += folder["items"].get<long>();
  EXPECT_EQ(kept, imported);
  EXPECT_EQ(On_Store({"check"}).status, 0);
}

// Arguments, and a part of the error. STORE stands for the store's file.
const std::pair<const char*, const char*> bad_cases[] = {
    {"--store STORE", "--help"},
    {"--store STORE clean --yes", "--folder"},
    {"--store /dev/null check", "/dev/null"},
    {"--store STORE import STORE --folder Inbox/", "empty name"},
    {"sample STORE", "exists"},
    {"--store STORE clean --folder Inbox --forever", "--forever"},
    {"--store STORE clean --folder Inbox Outbox/x --yes", "Outbox/x"},
    {"--store STORE clean --folder Twin --yes", "more than one folder"},
    {"--store STORE items --folder In\\box", "In\\box"},
    {"--store STORE clean --folder Inbox --yes --cutoff 2023-02-30", "2023-02-30"},
    {"--store STORE clean --folder Inbox --yes --turbo --subject x", "--subject"},
    {"--store STORE clean --folder Projects --delete-folders --confirm-items", "--confirm-items"},
    {"--store STORE clean --folder Projects --yes --turbo --delete-folders", "--turbo"},
    {"--store STORE items --folder Inbox --match-case", "--match-case"},
};

class Bad_Input : public Program_Test {};

TEST_F(Bad_Input, is_named_and_changes_nothing) {
  Make_Sample(60);
  Alter("UPDATE folder SET name = 'Twin' WHERE name IN ('Archive', 'Family')");
  const std::string before = Bytes_Of(store_);
  for (const auto& [said, told] : bad_cases) {
    Words words = Split(said);
    std::replace(words.begin(), words.end(), std::string("STORE"), store_);
    const Outcome outcome = Run(words);
    EXPECT_EQ(outcome.status, 2) << said;
    EXPECT_EQ(outcome.out, "") << said;
    EXPECT_TRUE(outcome.err.starts_with("tidyfold-cli: ")) << outcome.err;
    EXPECT_NE(outcome.err.find(told), std::string::npos) << outcome.err;
    EXPECT_EQ(Bytes_Of(store_), before) << said;
  }
}

TEST_F(Bad_Input, is_a_damaged_store) {
  Make_Sample(60);
  std::string bytes = Bytes_Of(store_);
  std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(bytes.size() / 3), bytes.end(), 'U');
  Write_Bytes(store_, bytes);
  for (const char* words : {"check", "clean --folder Inbox --yes"}) {
    const Outcome outcome = On_Store(Split(words));
    EXPECT_EQ(outcome.status, 2) << words;
    EXPECT_NE(outcome.err.find("damaged"), std::string::npos) << outcome.err;
  }
  EXPECT_EQ(Bytes_Of(store_), bytes);
}

}  // namespace
}  // namespace tidyfold::cli
