// What it costs to read and clean a mailbox on a server, beside the same commands sent by a few lines, and
// beside doveadm. The server is Dovecot's `imap` program, over a pipe.
//
//     imap_bench DIRECTORY [MAILS [ROUNDS [load]]]
//
// Makes the mails below DIRECTORY, which must not exist; 100,000 by default. Each round measures everything
// once, or loading alone, turn by turn; the numbers are milliseconds, the median last.
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "stores/imap/message_data.h"
#include "stores/imap/open_account.h"

namespace tidyfold::imap {
namespace {

namespace fs = std::filesystem;

constexpr const char* trash_name = "Trash";

// One mail in about twenty is an offer.
bool Is_Offer(int number) {
  return number % 20 == 7 || number % 1500 == 0;
}

double Milliseconds(const std::function<void()>& work) {
  const auto began = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - began).count();
}

// A conversation that understands nothing but where an answer ends.
class Bare_Client {
 public:
  explicit Bare_Client(std::unique_ptr<Transport> transport) : transport_(std::move(transport)) {
    Read_Until("* PREAUTH");
  }
  // Everything that the server says up to the answer.
  const std::string& Do(const std::string& command) {
    std::string line = "a " + command + "\r\n";
    for (std::string_view left = line; !left.empty();) left.remove_prefix(transport_->Write(left));
    Read_Until("a ");
    return said_;
  }

 private:
  void Read_Until(const std::string& beginning) {
    said_.clear();
    std::size_t line = 0;
    std::vector<char> buffer(1 << 16);
    for (;;) {
      for (std::size_t end = 0; (end = said_.find("\r\n", line)) != std::string::npos; line = end + 2)
        if (said_.compare(line, beginning.size(), beginning) == 0) return;
      pollfd readable{transport_->Read_Descriptor(), POLLIN, 0};
      poll(&readable, 1, -1);
      const auto got = transport_->Read(buffer.data(), buffer.size());
      if (got && *got == 0) throw std::runtime_error("the server has gone");
      said_.append(buffer.data(), got.value_or(0));
    }
  }

  std::unique_ptr<Transport> transport_;
  std::string said_;
};

class Bench {
 public:
  Bench(fs::path place, int mails) : place_(std::move(place)), mails_(mails) {
    fs::create_directories(place_);
    std::ofstream(place_ / "dovecot.conf")
        << "log_path = " << (place_ / "log").string()
        << "\nmail_location = mdbox:" << (place_ / "mail").string()
        << "\nbase_dir = " << (place_ / "run").string()
        << "\nstats_writer_socket_path =\nssl = no\nmaildir_very_dirty_syncs = yes\nmail_fsync = "
           "never\nnamespace inbox {\n  inbox = yes\n  separator = /\n"
        << "  mailbox Trash {\n    auto = create\n    special_use = \\Trash\n  }\n}\n";
    // It serves nobody's mail as the superuser.
    if (geteuid() == 0) {
      as_user_ = "/usr/bin/setpriv --reuid=65534 --regid=65534 --clear-groups ";
      Run("chown -R 65534:65534 '" + place_.string() + "'");
    }
    Deliver(true);
  }

  void Round(bool only_loading) {
    Warm_Up();
    Measure("bare SELECT, UID FETCH", [&] {
      Bare_Client bare(Start());
      bare.Do("SELECT INBOX");
      bare.Do("UID FETCH 1:* " + std::string(row_items));
    });
    fs::remove_all(Cache());
    Measure("first loading", [&] { Load(); });
    Measure("opened again", [&] { Load(); });
    if (only_loading) return;
    Measure("doveadm fetch", [&] {
      Doveadm("fetch 'uid flags date.received size.physical hdr.from hdr.subject' mailbox INBOX");
    });
    {
      Bare_Client bare(Start());
      const std::string set = Offers(bare, "INBOX");
      Measure("bare UID MOVE", [&] { bare.Do("UID MOVE " + set + " " + trash_name); });
      Put_Back(bare);
      Take("select and move", false);
      Put_Back(bare);
    }
    Measure("doveadm move", [&] { Doveadm("move Trash mailbox INBOX subject Offer"); });
    {
      Bare_Client bare(Start());
      Put_Back(bare);
      const std::string set = Offers(bare, "INBOX");
      Measure("bare UID STORE, UID EXPUNGE", [&] {
        bare.Do("UID STORE " + set + " +FLAGS.SILENT (\\Deleted)");
        bare.Do("UID EXPUNGE " + set);
      });
    }
    Deliver_Again();
    Take("select and delete for good", true);
    Deliver_Again();
    Measure("doveadm expunge", [&] { Doveadm("expunge mailbox INBOX subject Offer"); });
    Deliver_Again();
  }

  void Report() const {
    for (const std::string& name : order_) {
      std::vector<double> times = times_.at(name);
      std::printf("%-32s", name.c_str());
      for (const double time : times) std::printf(" %8.0f", time);
      std::sort(times.begin(), times.end());
      std::printf("   %8.0f\n", times[times.size() / 2]);
    }
    std::printf("taken: %zu of %d\nheader cache: %.1f MB\n", taken_, mails_,
                static_cast<double>(fs::file_size(Cache() / "headers")) / 1e6);
    std::printf("memory: %.1f MB more at most with the mailbox loaded than without\n", memory_ / 1e6);
  }

 private:
  fs::path Cache() const { return place_ / "cache"; }

  static std::string Mail(int number) {
    const std::string digits = std::to_string(number);
    const auto two = [](int value) { return std::to_string(value); };
    return "From: \"Sender " + two(number % 977) + "\" <sender" + two(number % 977) + "@example.org>\r\n" +
           "To: Me <me@example.net>\r\nSubject: " + (Is_Offer(number) ? "Offer " : "Minutes of meeting ") +
           digits + "\r\nMessage-ID: <" + digits + ".77@example.org>\r\nDate: Mon, " + two(1 + number % 28) +
           " May 2023 08:" + two(10 + number % 50) +
           ":05 +0000\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=utf-8\r\n"
           "Content-Transfer-Encoding: 8bit\r\n\r\n" +
           std::string(static_cast<std::size_t>(500 + number % 37 * 100), 'x') + "\r\n";
  }
  // Many with each command.
  void Deliver(bool all) const {
    Bare_Client bare(Start());
    std::string command;
    int count = 0;
    for (int number = 0; number <= mails_; ++number) {
      if (number == mails_ || count == 500) {
        if (count > 0) bare.Do(command);
        command.clear();
        count = 0;
      }
      if (number == mails_ || !(all || Is_Offer(number))) continue;
      const std::string mail = Mail(number);
      command += (count++ == 0 ? "APPEND INBOX" : "") + std::string(" (\\Seen) {") +
                 std::to_string(mail.size()) + "+}\r\n" + mail;
    }
  }

  void Measure(const std::string& name, const std::function<void()>& work) {
    if (!times_.contains(name)) order_.push_back(name);
    times_[name].push_back(Milliseconds(work));
    std::fprintf(stderr, "%s: %.0f ms\n", name.c_str(), times_[name].back());
  }

  static void Run(const std::string& command) {
    if (std::system(command.c_str()) != 0) std::cerr << "failed: " << command << "\n";
  }
  std::string In_Place(const std::string& program) const {
    return as_user_ + "/usr/bin/env USER=tester HOME=" + place_.string() + " " + program + " -c " +
           (place_ / "dovecot.conf").string() + " ";
  }
  void Doveadm(const std::string& words) const {
    Run(In_Place("/usr/bin/doveadm -f tab") + words + " >/dev/null");
  }
  std::unique_ptr<Transport> Start() const {
    return Start_Program({"/bin/sh", "-c", "exec " + In_Place("/usr/lib/dovecot/imap") + "2>/dev/null"});
  }

  // What the server makes once is there for everybody.
  void Warm_Up() const {
    Bare_Client bare(Start());
    bare.Do("SELECT INBOX");
    bare.Do("UID FETCH 1:* " + std::string(row_items));
  }
  static std::string Offers(Bare_Client& bare, const char* mailbox) {
    bare.Do(std::string("SELECT ") + mailbox);
    const std::string said = bare.Do("UID SEARCH RETURN (ALL) SUBJECT Offer");
    const std::size_t begin = said.find(" ALL ") + 5;
    return said.substr(begin, said.find("\r\n", begin) - begin);
  }
  static void Put_Back(Bare_Client& bare) {
    bare.Do(std::string("SELECT ") + trash_name);
    bare.Do("UID MOVE 1:* INBOX");
  }
  void Deliver_Again() const {
    Deliver(false);
    Warm_Up();
  }

  std::shared_ptr<Mail_Store> Open() const {
    Account_Settings settings;
    settings.connect = [this](const Interruption&) { return Start(); };
    return Open_Account(Read_Store_Address("imap://tester@localhost/"), Store_Mode::Read_Write, settings,
                        Cache() / "headers");
  }
  static std::vector<Table_Row> Read_Rows(Mail_Store& store, bool keep) {
    std::vector<Table_Row> all;
    const Table_Ptr table = store.GetDefaultFolder(default_folder_inbox)->GetTable();
    for (auto rows = table->GetArray(500); !rows.empty(); rows = table->GetArray(500))
      if (keep) std::move(rows.begin(), rows.end(), std::back_inserter(all));
    return all;
  }
  static double Resident() {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages >> pages;
    return static_cast<double>(pages) * static_cast<double>(sysconf(_SC_PAGESIZE));
  }
  void Load() {
    const double before = Resident();
    const auto store = Open();
    Read_Rows(*store, false);
    memory_ = std::max(memory_, Resident() - before);
  }

  // As a run does: each item is fetched by its identity, compared, and moved.
  void Take(const std::string& name, bool for_good) {
    const auto store = Open();
    const std::vector<Table_Row> rows = Read_Rows(*store, true);
    const MAPIFolder_Ptr trash = store->GetDefaultFolder(default_folder_deleted_items);
    taken_ = 0;
    Measure(name, [&] {
      for (const Table_Row& row : rows) {
        if (!row.Subject.starts_with("Offer")) continue;
        const Item_Ptr item = store->GetItemFromID(row.EntryID);
        if (item->Subject() != row.Subject || item->ReceivedTime() != row.ReceivedTime || item->UnRead())
          continue;
        const Item_Ptr moved = item->Move(*trash);
        if (for_good) moved->Delete();
        if (++taken_ % 100 == 0) store->Commit_Due();
      }
      store->Commit_Pending();
    });
  }

  fs::path place_;
  int mails_;
  std::string as_user_;
  std::size_t taken_ = 0;
  double memory_ = 0;
  std::vector<std::string> order_;
  std::map<std::string, std::vector<double>> times_;
};

}  // namespace
}  // namespace tidyfold::imap

int main(int count, char** words) try {
  if (count < 2 || std::filesystem::exists(words[1])) {
    std::cerr << "imap_bench DIRECTORY [MAILS [ROUNDS [load]]]; the directory must not exist\n";
    return 2;
  }
  tidyfold::imap::Bench bench(words[1], count > 2 ? std::atoi(words[2]) : 100'000);
  for (int round = count > 3 ? std::atoi(words[3]) : 3; round > 0; --round) bench.Round(count > 4);
  bench.Report();
  std::filesystem::remove_all(words[1]);
  return 0;
} catch (const std::exception& error) {
  std::cerr << error.what() << '\n';
  return 1;
}
