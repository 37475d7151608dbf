#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "doubles/temporary_directory.h"
#include "help/chm_book.h"
#include "help/context_ids.h"
#include "help/file_names.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

std::set<std::string> Found(const std::string& text, const char* pattern) {
  const std::regex expression(pattern);
  std::set<std::string> found;
  for (std::sregex_iterator at(text.begin(), text.end(), expression), end; at != end; ++at)
    found.insert((*at)[1]);
  return found;
}

TEST(Book, Every_Topic_Is_There_As_Written_And_Every_Link_Leads_Somewhere) {
  const Chm_Book book(TIDYFOLD_BOOK);
  std::set<std::string> pages;
  for (const std::string& file : book.Files()) {
    const fs::path path = file;
    if (path.extension() != ".html") continue;
    pages.insert(file);
    const std::string text = book.Read(file).value();
    EXPECT_EQ(text, File_Text(TIDYFOLD_HELP_TOPICS "/" + file)) << file;
    for (const std::string& link : Found(text, "href=\"([^\"]+)")) {
      const auto mark = std::min(link.find('#'), link.size());
      const fs::path target = mark == 0 ? path : path.parent_path() / link.substr(0, mark);
      const auto page = book.Read(target.lexically_normal().generic_string());
      ASSERT_TRUE(page) << path << " -> " << link;
      const std::string anchor = mark == link.size() ? "" : "name=\"" + link.substr(mark + 1) + '"';
      EXPECT_NE(page->find(anchor), std::string::npos) << path << " -> " << link;
    }
  }
  const auto contents = Found(book.Read(book.Contents_File()).value(), "\"Local\" value=\"([^\"]+)");
  EXPECT_EQ(pages, contents);
  for (const std::string& page : Found(book.Read(book.Index_File()).value(), "\"Local\" value=\"([^\"]+)"))
    EXPECT_TRUE(contents.contains(page)) << page;
  EXPECT_TRUE(pages.contains(book.Default_Page())) << "of " << book.Title();
  EXPECT_NE(book.Project().find("tidyfold.hhc\nIndex file=tidyfold.hhk"), std::string::npos);
  std::set<std::int32_t> ids;
  for (const Context_Topic& topic : context_topics) {
    EXPECT_TRUE(pages.contains(std::string(topic.page))) << topic.page;
    EXPECT_TRUE(ids.insert(topic.id).second) << topic.id;
  }
}

TEST(Book, A_File_That_Was_Cut_Off_Is_An_Error_And_Never_A_Crash) {
  const std::string bytes = File_Text(TIDYFOLD_BOOK).value();
  const Temporary_Directory directory;
  const fs::path file = directory / "cut.chm";
  const auto read = [&] {
    const Chm_Book book(file.string());
    for (const std::string& name : book.Files()) book.Read(name);
  };
  EXPECT_THROW(read(), Chm_Error) << "there is none";
  for (std::size_t length = 0; length < bytes.size() / 2; length += bytes.size() / 9) {
    Write_Bytes(file, bytes.substr(0, length));
    EXPECT_THROW(read(), Chm_Error) << length;
  }
}

}  // namespace
}  // namespace tidyfold
