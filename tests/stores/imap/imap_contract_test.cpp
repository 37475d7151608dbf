#include "stores/imap/dovecot.h"
#include "stores/imap/message_id.h"
#include "stores/store_under_test.h"

namespace tidyfold::imap {
namespace {

MAPIFolder_Ptr Find_Below(const MAPIFolder_Ptr& folder, const std::string& wire_name) {
  const Folders_Ptr children = folder->Folders();
  for (std::int32_t i = 1; i <= children->Count(); ++i) {
    const MAPIFolder_Ptr child = children->Item(i);
    const std::string name = Read_Folder_Id(child->EntryID())->mailbox;
    if (name == wire_name) return child;
    if (wire_name.starts_with(name + "/")) return Find_Below(child, wire_name);
  }
  throw std::runtime_error("no folder " + wire_name);
}

// Another program makes the folders and delivers the mail.
class Client_Writer : public Store_Writer {
 public:
  Client_Writer(std::shared_ptr<Mail_Store> store, const Dovecot& dovecot)
      : store_(std::move(store)), client_(dovecot) {}
  MAPIFolder_Ptr Top_Folder() override { return store_->Top_Folder(); }
  MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name, std::int32_t) override {
    std::string wire_name = Read_Folder_Id(parent.EntryID())->mailbox;
    // The account has an Inbox already.
    wire_name += wire_name.empty() ? (name == "Inbox" ? "Incoming" : name) : "/" + name;
    client_.Do("CREATE \"" + wire_name + "\"");
    return Find_Below(Top_Folder(), wire_name);
  }
  std::string Add_Item(MAPIFolder& folder, const New_Item& item) override {
    const std::string mailbox = Read_Folder_Id(folder.EntryID())->mailbox;
    const std::string flags = item.unread ? "" : "\\Seen";
    const auto [validity, uid] = client_.Append(mailbox, Mail(item.subject, "text/plain", item.body), flags);
    return Text_Of({validity, uid, mailbox});
  }
  std::int64_t Count_Of(std::int64_t) override { return 0; }
  void Begin() override {}
  void Commit() override {}
  void Roll_Back() override {}

 private:
  std::shared_ptr<Mail_Store> store_;
  Other_Client client_;
};

class Two_Accounts : public Store_Under_Test {
 public:
  // On servers that do not seem to know these extensions.
  explicit Two_Accounts(const std::vector<std::string>& hidden) {
    wire_.hidden = hidden;
    for (int number = 0; number < 2; ++number) {
      const Dovecot& dovecot = servers_[number];
      Account_Settings settings;
      settings.connect = [this, &dovecot](const Interruption&) {
        return std::make_unique<Wired_Transport>(dovecot.Start(), wire_);
      };
      settings.trust = std::chrono::milliseconds(0);
      auto store = Open_Account(Read_Store_Address("imap://" + std::to_string(number) + "@localhost/"),
                                Store_Mode::Read_Write, settings, dovecot.Directory() / "headers");
      writers_.push_back(std::make_unique<Client_Writer>(store, dovecot));
      outlook_.Add(std::move(store));
    }
  }
  Automation& Outlook() override { return outlook_; }
  Store_Writer& Writer(int number) override { return *writers_[static_cast<std::size_t>(number - 1)]; }
  bool Is_Own_Store() const override { return false; }
  int Fixed_Folders() const override { return 1; }
  bool Keeps_EntryIDs() const override { return false; }
  void Carry_Out_Changes() override { outlook_.Commit_Pending(); }
  int Deepest() const override { return 15; }

 private:
  Dovecot servers_[2] = {Dovecot(Dovecot::Special_Folders::No), Dovecot(Dovecot::Special_Folders::No)};
  Wire wire_;
  std::vector<std::unique_ptr<Store_Writer>> writers_;
  Store_Session outlook_{nullptr};
};

// None where Dovecot is not installed; the other tests of accounts say so then.
std::vector<Store_Kind> Kinds() {
  std::vector<Store_Kind> kinds;
  const auto add = [&](const char* name, const std::vector<std::string>& hidden) {
    kinds.push_back({name, [hidden] { return std::make_unique<Two_Accounts>(hidden); }});
  };
  if (!Dovecot::Is_Installed()) return kinds;
  add("Imap", {});
  add("Imap_Without_Extensions", {"QRESYNC", "CONDSTORE", "ESEARCH", "MOVE", "LIST-"});
  return kinds;
}

INSTANTIATE_TEST_SUITE_P(Stores, Store_Contract, testing::ValuesIn(Kinds()), Kind_Name);

}  // namespace
}  // namespace tidyfold::imap
