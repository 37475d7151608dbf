// Rows that are fetched while those in front of them are read. The server is Dovecot, over a pipe.
#include "errors/automation_error.h"
#include "stores/imap/dovecot.h"

namespace tidyfold::imap {
namespace {

constexpr int messages = 120, first_portion = 100;

struct Opened_Account {
  Wire wire;
  bool goes_on = true;
  std::shared_ptr<Mail_Store> store;

  Opened_Account(const Dovecot& dovecot, std::int64_t bytes_left) {
    Account_Settings settings;
    settings.connect = [&](const Interruption&) {
      return std::make_unique<Wired_Transport>(dovecot.Start(), wire);
    };
    Store_Opening opening(Store_Mode::Read_Write);
    opening.wait = [this] { return [this] { return goes_on; }; };
    const std::filesystem::path cache = dovecot.Directory() / "cache";
    std::filesystem::remove_all(cache);
    store =
        Open_Account(Read_Store_Address("imap://tester@localhost/"), opening, settings, cache / "headers");
    wire.bytes_left = bytes_left;
  }
};

}  // namespace

TEST(Imap_Read_Ahead, Rows_Come_Though_The_Connection_Drops_And_A_Wait_For_Them_Ends_When_Cancelled) {
  REQUIRE_OR_SKIP(Dovecot::Is_Installed(), "Dovecot is not installed.");
  const Dovecot dovecot;
  Other_Client other(dovecot);
  for (int number = 0; number < messages; ++number) other.Append("INBOX", Mail(std::to_string(number)));
  constexpr std::int64_t plenty = 1 << 30;
  std::int64_t all = 0;
  for (int cut = 0; cut < 12; ++cut) {
    SCOPED_TRACE(cut);
    Opened_Account account(dovecot, cut == 0 ? plenty : all * cut / 12);
    const Table_Ptr table = account.store->GetDefaultFolder(default_folder_inbox)->GetTable();
    int number = 0;
    for (auto rows = table->GetArray(7); !rows.empty(); rows = table->GetArray(7))
      for (const Table_Row& row : rows) EXPECT_EQ(row.Subject, std::to_string(number++));
    EXPECT_EQ(number, messages);
    EXPECT_EQ(account.wire.connections, cut == 0 ? 1 : 2);
    if (cut == 0) all = plenty - account.wire.bytes_left;
  }
  // In the middle of the last rows.
  Opened_Account account(dovecot, all - 3000);
  account.wire.falls_silent = true;
  const Table_Ptr table = account.store->GetDefaultFolder(default_folder_inbox)->GetTable();
  EXPECT_EQ(table->GetArray(messages).size(), std::size_t{first_portion});
  account.goes_on = false;
  try {
    table->GetArray(messages);
    ADD_FAILURE() << "rows came";
  } catch (const Automation_Error& error) {
    EXPECT_EQ(error.Number(), automation_error::unavailable);
  }
  account.goes_on = true;
  account.wire.falls_silent = false;
  account.wire.bytes_left = -1;
  EXPECT_EQ(table->GetArray(messages).size(), std::size_t{messages - first_portion});
}

}  // namespace tidyfold::imap
