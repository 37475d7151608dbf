#include "doubles/temporary_directory.h"
#include "mail/maildir.h"
#include "outlook/store_session.h"
#include "stores/maildir/mail_program.h"
#include "stores/maildir/maildir_store.h"
#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

MAPIFolder_Ptr Find_Below(const MAPIFolder_Ptr& folder, const std::string& entry_id) {
  if (folder->EntryID() == entry_id) return folder;
  const Folders_Ptr children = folder->Folders();
  for (std::int32_t i = 1; i <= children->Count(); ++i)
    if (const MAPIFolder_Ptr found = Find_Below(children->Item(i), entry_id)) return found;
  return nullptr;
}

// Another program makes the folders and delivers the mail.
class Program_Writer : public Store_Writer {
 public:
  Program_Writer(std::shared_ptr<Maildir_Store> store, Mail_Program program, bool dotted)
      : store_(std::move(store)), program_(std::move(program)), dotted_(dotted) {}
  MAPIFolder_Ptr Top_Folder() override { return store_->Top_Folder(); }
  MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name, std::int32_t) override {
    const std::string above = parent.EntryID().substr(1);
    const std::string directory = above + (dotted_ ? "." : above.empty() ? "" : "/") + To_Maildir_Name(name);
    program_.Make_Folder(directory);
    return Find_Below(Top_Folder(), "F" + directory);
  }
  std::string Add_Item(MAPIFolder& folder, const New_Item& item) override {
    const std::string directory = folder.EntryID().substr(1);
    return "M" + program_.Deliver(directory, item.subject, item.unread ? "" : "S",
                                  "From: " + item.sender + " <x@example.org>\n", item.body);
  }
  std::int64_t Count_Of(std::int64_t) override { return 0; }
  void Begin() override {}
  void Commit() override {}
  void Roll_Back() override {}

 private:
  std::shared_ptr<Maildir_Store> store_;
  Mail_Program program_;
  bool dotted_;
};

class Two_Maildirs : public Store_Under_Test {
 public:
  // Folders beside each other with dots, or in one another.
  explicit Two_Maildirs(bool dotted) {
    for (const char* name : {"One", "Two"}) {
      std::filesystem::create_directory(directory_ / name);
      Store_Address address(directory_ / name);
      address.kind = Store_Address::Kind::Maildir;
      auto store = Maildir_Store::Open(
          address, {.cache_folder = directory_ / "cache", .make_trash = false, .may_be_empty = true});
      writers_.push_back(std::make_unique<Program_Writer>(store, Mail_Program(address.path), dotted));
      outlook_.Add(std::move(store));
    }
  }
  Automation& Outlook() override { return outlook_; }
  Store_Writer& Writer(int number) override { return *writers_[static_cast<std::size_t>(number - 1)]; }
  bool Is_Own_Store() const override { return false; }
  int Deepest() const override { return 50; }

 private:
  Temporary_Directory directory_;
  Store_Session outlook_{nullptr};
  std::vector<std::unique_ptr<Store_Writer>> writers_;
};

const auto nested = [] { return std::make_unique<Two_Maildirs>(false); };
const auto dotted = [] { return std::make_unique<Two_Maildirs>(true); };

INSTANTIATE_TEST_SUITE_P(Stores, Store_Contract,
                         testing::Values(Store_Kind{"Maildir_Nested", nested},
                                         Store_Kind{"Maildir_Dotted", dotted},
                                         Store_Kind{"Faulty_Maildir", [] { return Decorated(dotted()); }}),
                         Kind_Name);

}  // namespace
}  // namespace tidyfold
