// Where the exporter writes, and what it says.
#include "export/export_fixture.h"

#include <chrono>
#include <thread>

#include "errors/automation_error.h"
#include "export/item_form.h"
#include "export/reading_back.h"
#include "export/safe_name.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

TEST(Safe_Names, Stay_Within_Their_Directory) {
  for (const auto& [name, safe] : {std::pair{"Inbox", "Inbox"},
                                   {"../../etc", "_._.._etc"},
                                   {"..", "_"},
                                   {".", "_"},
                                   {"", "_"},
                                   {"a/b\\c:d", "a_b_c_d"},
                                   {"dot.", "dot"},
                                   {" both ", "both"},
                                   {".Parent.Child", "_Parent.Child"},
                                   {"con.txt", "_con.txt"},
                                   {"new", "_new"},
                                   {"x.mbox", "x.mbox_"},
                                   {"tab\tline\n", "tab_line_"}})
    EXPECT_EQ(Safe_Name(name), safe) << name;
  EXPECT_EQ(Safe_Name("\xC3\xA4\xC3\xA4", 3), "\xC3\xA4");
}

class Exporting : public Export_Test {
 protected:
  Exporting() {
    New_Item item;
    item.subject = "Hello";
    item.raw_message = "Subject: Hello\n\nText\n";
    Store_Writer& writer = store->Writer();
    lists = writer.Add_Folder(*store->Top_Folder(), "Lists", item_type::mail);
    writer.Add_Item(*lists, item);
  }

  Store_Ptr_To_File store = New_Store("Store");
  MAPIFolder_Ptr lists;
  fs::path where = directory / "out";
};

TEST_F(Exporting, Overwrites_Nothing_And_Follows_No_Link) {
  fs::create_directories(where);
  fs::create_directories(directory / "elsewhere");
  fs::create_directory_symlink(directory / "elsewhere", where / "Lists");
  Write_Bytes(where / "Inbox", "a file of this name");
  for (int i = 0; i < 3; ++i) EXPECT_EQ(Export(store, where, Export_Form::Eml).exported, 1);
  EXPECT_TRUE(fs::is_empty(directory / "elsewhere"));
  EXPECT_EQ(Bytes_Of(where / "Inbox"), "a file of this name");
  for (const char* folder : {"Lists (2)", "Lists (3)", "Lists (4)"})
    EXPECT_EQ(Bytes_Of(where / folder / "Hello,S.eml"), "Subject: Hello\n\nText\n") << folder;
  EXPECT_THROW(Export(store, where / "Inbox"), Export_Error);
}

TEST_F(Exporting, Says_What_Does_Not_Read_Back) {
  Export(store, where);
  const auto as_read = [](New_Item& read) { read.unread = false; };
  const New_Item hello = store->Read_Whole_Item(lists->Items()->Item(1)->EntryID());
  const std::int64_t fingerprint = Message_Form(hello, as_read, false).fingerprint;
  const auto missing =
      Missing_In(where / "Lists", {{fingerprint, "there"}, {fingerprint, "twice"}, {1, "not there"}},
                 [] { return true; });
  EXPECT_EQ(missing.size(), 2U);
  EXPECT_TRUE(Missing_In(where / "Lists", {{fingerprint, "there"}}, [] { return true; }).empty());
}

TEST_F(Exporting, Names_What_Cannot_Be_Read_And_Goes_On) {
  auto folders = Folders_To_Export(store->Top_Folder(), {}, [](const std::string&) -> New_Item {
    throw Automation_Error(automation_error::corrupt_data, "The item is damaged.", "test");
  });
  const Export_Report report = Export_Folders(folders, where);
  EXPECT_EQ(Counts_Of(report), "1 items found, 0 exported, 1 failed");
  EXPECT_EQ(Details_Of(report), std::vector<std::string>{"Lists: The item is damaged."});
}

TEST_F(Exporting, Divides_An_Mbox_Where_Messages_Begin_And_Nowhere_Else) {
  New_Item item;
  item.subject = "Quoted";
  item.raw_message = "Subject: Quoted\n\nFrom a@b.org Wed Mar  5 12:00:00 2014\n>From c\n";
  store->Writer().Add_Item(*lists, item);
  EXPECT_EQ(Export(store, where, Export_Form::Mbox).exported, 2);
  const std::string mbox = "\n" + Bytes_Of(where / "Lists" / "Lists.mbox");
  std::size_t separators = 0;
  for (std::size_t at = 0; (at = mbox.find("\nFrom ", at)) != std::string::npos; ++at) ++separators;
  EXPECT_EQ(separators, 2U);
  EXPECT_NE(mbox.find("\n>>From c\n"), std::string::npos);

  item.subject = "Divided";
  item.raw_message = "Subject: Divided\nFrom me\n\nText\n";
  store->Writer().Add_Item(*lists, item);
  EXPECT_EQ(Export(store, where / "mbox", Export_Form::Mbox).failed, 1);
  EXPECT_EQ(Export(store, where / "eml", Export_Form::Eml).failed, 0);
}

TEST_F(Exporting, Stops_When_Told_To) {
  store->Writer().Add_Item(*lists, New_Item());
  Export_Options options;
  options.progress = [](std::int64_t, std::int64_t) { return false; };
  const auto read_slowly = [&](const std::string& id) {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return store->Read_Whole_Item(id);
  };
  const auto folders = Folders_To_Export(store->Top_Folder(), {}, read_slowly);
  EXPECT_TRUE(Export_Folders(folders, where, options).cancelled);
}

}  // namespace
}  // namespace tidyfold
