#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <regex>
#include <set>

#include "help/chm_book.h"
#include "help/context_ids.h"
#include "help/file_names.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

std::set<std::string> Found(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at)
    found.insert((*at)[1]);
  return found;
}

std::string Replaced(const std::string& text, const std::string& pattern, const std::string& by) {
  return std::regex_replace(text, std::regex(pattern), by);
}

// The book as a reader unpacks it that has nothing to do with the program's own.
class Book_Test : public testing::Test {
 protected:
  void SetUp() override {
    if (*SEVEN_ZIP == '\0') GTEST_SKIP() << "7z is not installed; it is the independent reader.";
    ASSERT_EQ(
        std::system((SEVEN_ZIP " x -bd -o'" + folder_.string() + "' '" TIDYFOLD_BOOK "' >/dev/null").c_str()),
        0);
  }
  void TearDown() override { fs::remove_all(folder_); }
  std::optional<std::string> Page(const std::string& name) { return File_Text((folder_ / name).string()); }

  fs::path folder_ = fs::temp_directory_path() / ("tidyfold-book-" + std::to_string(std::random_device{}()));
};

TEST_F(Book_Test, Holds_Every_Topic_That_Whats_This_Names_And_The_Viewer_Reads_The_Same) {
  const Chm_Book book(TIDYFOLD_BOOK);
  for (const Context_Topic& topic : context_topics) {
    const std::optional<std::string> page = Page(std::string(topic.page));
    ASSERT_TRUE(page) << topic.page;
    EXPECT_NE(page->find("<h1>"), std::string::npos) << topic.page;
    EXPECT_EQ(book.Read(topic.page), page) << topic.page;
  }
  EXPECT_EQ(book.Read("controls/nothing.html"), std::nullopt);
  for (const std::string& file : book.Files()) EXPECT_TRUE(Page(file)) << file;
  EXPECT_TRUE(Page(book.Default_Page())) << "of " << book.Title();
  EXPECT_NE(book.Project().find("tidyfold.hhc\nIndex file=tidyfold.hhk"), std::string::npos);
}

TEST_F(Book_Test, Every_Page_Is_In_The_Contents_And_Every_Link_Leads_Somewhere) {
  const auto contents = Found(Page("tidyfold.hhc").value(), "\"Local\" value=\"([^\"]+)");
  for (const std::string& page : Found(Page("tidyfold.hhk").value(), "\"Local\" value=\"([^\"]+)"))
    EXPECT_TRUE(contents.contains(page)) << page;
  std::set<std::string> pages;
  for (const auto& entry : fs::recursive_directory_iterator(folder_)) {
    if (entry.path().extension() != ".html") continue;
    pages.insert(entry.path().lexically_relative(folder_).generic_string());
    const std::string text = File_Text(entry.path().string()).value();
    for (const std::string& link : Found(text, "href=\"([^\"]+)")) {
      const std::string file = link.substr(0, link.find('#'));
      const auto target =
          File_Text((file.empty() ? entry.path() : entry.path().parent_path() / file).string());
      ASSERT_TRUE(target) << entry.path() << " -> " << link;
      const auto mark = link.find('#');
      const std::string anchor = mark == std::string::npos ? "" : "name=\"" + link.substr(mark + 1) + '"';
      EXPECT_NE(target->find(anchor), std::string::npos) << link;
    }
  }
  EXPECT_EQ(pages, contents);
}

TEST(Context_Topics, No_Control_Lacks_A_Topic_And_No_Topic_An_Owner) {
  const std::string header = File_Text(TIDYFOLD_SOURCES "/controls/main_window.h").value();
  auto controls = Found(header, "\\{\"([a-z]+[A-Z]\\w+|cmddebug)\"");
  controls.merge(Found(header, "(\\{4\\d|\\{26), CheckBox\\{\"chkType"));
  // Lines are no targets, and these belong to other windows.
  for (const char* other :
       {"linOptions1", "linOptions2", "frmMessageBox", "lblMessage", "frmAbout", "chkType"})
    EXPECT_EQ(controls.erase(other), 1u) << other;
  std::set<std::string> owners;
  std::set<std::int32_t> ids;
  for (const Context_Topic& topic : context_topics) {
    owners.insert(topic.index < 0 ? std::string(topic.control) : "{" + std::to_string(topic.index));
    ids.insert(topic.id);
  }
  EXPECT_EQ(owners, controls);
  EXPECT_EQ(ids.size(), std::size(context_topics));
}

TEST_F(Book_Test, Explains_Messages_In_The_Words_In_Which_The_Program_Says_Them) {
  std::string sources;
  for (const auto& entry : fs::recursive_directory_iterator(TIDYFOLD_SOURCES))
    if (entry.path().extension() == ".cpp") sources += File_Text(entry.path().string()).value();
  // As a reader sees them: literals joined, breaks and blanks as one blank.
  sources = Replaced(Replaced(sources, "\"\\s*\n\\s*\"", ""), "\\\\\"", "\"");
  sources = Replaced(sources, "(\\\\r|\\\\n|\\\\t|\\s)+", " ");
  int messages = 0;
  for (const char* group : {"loading", "options", "run", "errors", "files"}) {
    const std::string page = Page("messages-" + std::string(group) + ".html").value();
    for (const std::string& message : Found(page, "<p class=\"message\"><b>([^<]+)</b>")) {
      ++messages;
      for (const std::string& part :
           Found(Replaced(message, "\\s+", " ") + "...", " ?(.*?) ?\"?\\.\\.\\.\"?"))
        EXPECT_NE(sources.find(part), std::string::npos) << message;
    }
  }
  EXPECT_GT(messages, 50);
}

TEST(Chm_Book, A_Book_That_Was_Cut_Off_Is_An_Error_And_Never_A_Crash) {
  const std::string bytes = File_Text(TIDYFOLD_BOOK).value();
  const fs::path file = fs::temp_directory_path() / ("tidyfold-" + std::to_string(std::random_device{}()));
  const auto read = [&] {
    const Chm_Book book(file.string());
    for (const std::string& name : book.Files()) book.Read(name);
  };
  EXPECT_THROW(read(), Chm_Error) << "there is none";
  for (std::size_t length = 0; length < bytes.size() / 2; length += bytes.size() / 9) {
    std::ofstream(file, std::ios::binary) << bytes.substr(0, length);
    EXPECT_THROW(read(), Chm_Error) << length;
  }
  fs::remove(file);
}

}  // namespace
}  // namespace tidyfold
