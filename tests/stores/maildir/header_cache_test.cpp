#include "stores/header_cache/header_cache.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "doubles/temporary_directory.h"

namespace tidyfold {
namespace {

class Header_Cache_Test : public testing::Test {
 protected:
  static Cached_Header Header(const std::string& subject) {
    Cached_Header header;
    header.stamp = 7;
    header.item_class = item_class::report;
    header.received = 45000.25;
    header.size = std::int64_t{1} << 40;
    header.marks = -1;
    header.subject = subject;
    header.sender = std::string("Zo\0e", 4);
    return header;
  }
  std::string Subjects(Header_Cache& cache, std::int64_t folder) {
    std::string all;
    cache.For_Each(folder, [&](std::string_view id, const Cached_Header& header) {
      all += std::string(id) + "=" + header.subject + " ";
    });
    return all;
  }
  std::filesystem::path File() {
    for (const auto& entry : std::filesystem::directory_iterator(directory.Path()))
      if (entry.path().extension() == ".cache") return entry.path();
    return {};
  }
  Temporary_Directory directory;
};

TEST_F(Header_Cache_Test, WhatWasPutComesBackByFolderGenerationAndId) {
  {
    Header_Cache cache(directory.Path(), "imaps://a@b/");
    const std::int64_t inbox = cache.Folder("INBOX", 1), lists = cache.Folder("Lists", 9);
    for (const char* id : {"b", "a", "c"}) cache.Put(inbox, id, Header(std::string("in ") + id));
    cache.Put(lists, "a", Header("list"));
    cache.Set_State(lists, "715");
    cache.Forget(inbox, "c");
  }
  Header_Cache cache(directory.Path(), "imaps://a@b/");
  const std::int64_t inbox = cache.Folder("INBOX", 1), lists = cache.Folder("Lists", 9);
  EXPECT_EQ(Subjects(cache, inbox), "a=in a b=in b ");
  EXPECT_EQ(cache.State(lists), "715");
  const auto found = cache.Find(lists, "a");
  ASSERT_TRUE(found);
  const Cached_Header wanted = Header("list");
  EXPECT_EQ(found->stamp, wanted.stamp);
  EXPECT_EQ(found->item_class, wanted.item_class);
  EXPECT_EQ(found->received, wanted.received);
  EXPECT_EQ(found->size, wanted.size);
  EXPECT_EQ(found->marks, wanted.marks);
  EXPECT_EQ(found->sender, wanted.sender);
  EXPECT_FALSE(cache.Find(lists, "b"));
  cache.Forget_Others(inbox, [](std::string_view id) { return id == "b"; });
  EXPECT_EQ(cache.Count(inbox), 1);
  EXPECT_EQ(Subjects(cache, cache.Folder("INBOX", 2)), "") << "another generation";
  EXPECT_EQ(Subjects(cache, lists), "a=list ");
}

// In any order, and with changes in between, although it is made for one order without any.
TEST_F(Header_Cache_Test, FindsWhatIsThereInAnyOrder) {
  Header_Cache cache(directory.Path(), "store");
  const std::int64_t folder = cache.Folder("", 0);
  std::set<std::string> there;
  std::minstd_rand random(1);
  std::uint_fast32_t number = 0;
  for (int step = 0; step < 20'000; ++step) {
    // Mostly the next one or one a few places on.
    number = random() % 50 == 0 ? random() % 300 : (number + random() % 3) % 300;
    const std::string id = std::to_string(100 + number);
    const bool changes = random() % 20 == 0;
    if (changes && there.insert(id).second) cache.Put(folder, id, Header(id));
    if (changes && random() % 3 == 0 && there.erase(id) > 0) cache.Forget(folder, id);
    if (random() % 500 == 0) cache.Keep();
    const auto found = cache.Find(folder, id);
    ASSERT_EQ(found ? found->subject : "", there.contains(id) ? id : "") << step;
  }
}

// Damage costs a reading, never a wrong header and never a failure.
TEST_F(Header_Cache_Test, DamageIsReadAgain) {
  {
    Header_Cache cache(directory.Path(), "store");
    const std::int64_t folder = cache.Folder("", 0);
    for (int number = 0; number < 2000; ++number)
      cache.Put(folder, std::to_string(number), Header("subject"));
  }
  const std::filesystem::path file = File();
  const std::string whole = Bytes_Of(file);
  const std::size_t at = whole.find("subject");
  ASSERT_NE(at, std::string::npos);
  const std::pair<std::size_t, std::string> damages[] = {{at, "SUBJECT"},
                                                         {0, "no cache"},
                                                         {4096, std::string(8192, 'x')},
                                                         {whole.size() / 2, std::string(40, '\0')}};
  for (const auto& [place, bytes] : damages) {
    std::string damaged = whole;
    damaged.replace(place, bytes.size(), bytes);
    Write_Bytes(file, damaged);
    Header_Cache cache(directory.Path(), "store");
    const std::int64_t folder = cache.Folder("", 0);
    for (int number = 0; number < 2000; ++number) {
      const auto found = cache.Find(folder, std::to_string(number));
      if (found) {
        ASSERT_EQ(found->subject, "subject");
      }
    }
    cache.Put(folder, "new", Header("new"));
    cache.Keep();
  }
}

TEST_F(Header_Cache_Test, WithoutAPlaceOrBesideAnotherProgramNothingIsKept) {
  Header_Cache first(directory.Path(), "store");
  first.Put(first.Folder("", 0), "a", Header("kept"));
  first.Keep();
  for (const auto& place : {directory.Path(), std::filesystem::path(), std::filesystem::path("/proc/none")}) {
    Header_Cache other(place, "store");
    const std::int64_t folder = other.Folder("", 0);
    other.Put(folder, "a", Header("lost"));
    other.Keep();
    EXPECT_FALSE(other.Find(folder, "a")) << place;
    EXPECT_EQ(other.Count(folder), 0);
  }
  EXPECT_EQ(first.Find(first.Folder("", 0), "a")->subject, "kept");
}

}  // namespace
}  // namespace tidyfold
