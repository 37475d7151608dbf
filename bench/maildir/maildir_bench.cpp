// What it costs to read and clean a Maildir, beside opening every file, and beside mblaze where it is
// installed (https://github.com/leahneukirchen/mblaze).
//
//     maildir_bench DIRECTORY [MAILS [ROUNDS]]
//
// Makes the mails below DIRECTORY, which must not exist; 100,000 by default. Each round measures everything
// once, turn by turn; the numbers are milliseconds by the clock, then of the processors (with those of the
// system, of other threads and of the programs beside), each with its median last.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <vector>

#include "stores/maildir/maildir_store.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

// One mail in about twenty is an offer.
bool Is_Offer(int number) {
  return number % 20 == 7 || number % 1500 == 0;
}

void Make_Mail(const fs::path& maildir, int number) {
  char name[64];
  std::snprintf(name, sizeof name, "%d.M%dP77.example:2,S", 1500000000 + number, number);
  std::ofstream file(maildir / "cur" / name, std::ios::binary);
  const std::string digits = std::to_string(number);
  file << "Return-Path: <sender" << number % 977 << "@example.org>\n"
       << "Received: from mx.example.org (mx.example.org [192.0.2.1])\n"
       << "\tby mail.example.net (Postfix) with ESMTPS id 4Q" << digits << "\n"
       << "\tfor <me@example.net>; Mon, " << 1 + number % 28 << " May 2023 10:" << 10 + number % 50
       << ":07 +0200 (CEST)\n"
       << "From: \"Sender " << number % 977 << "\" <sender" << number % 977 << "@example.org>\n"
       << "To: Me <me@example.net>\n"
       << "Subject: " << (Is_Offer(number) ? "Offer " : "Minutes of meeting ") << digits << "\n"
       << "Message-ID: <" << digits << ".77@example.org>\n"
       << "Date: Mon, " << 1 + number % 28 << " May 2023 08:" << 10 + number % 50 << ":05 +0000\n"
       << "MIME-Version: 1.0\nContent-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: 8bit\n\n"
       << std::string(static_cast<std::size_t>(500 + number % 37 * 100), 'x') << "\n";
}

double Milliseconds(const std::function<void()>& work) {
  const auto began = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - began).count();
}

// Of all threads, and of programs that have ended.
double Processor_Milliseconds() {
  double milliseconds = 0;
  for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage used = {};
    ::getrusage(who, &used);
    for (const timeval& time : {used.ru_utime, used.ru_stime})
      milliseconds += static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  }
  return milliseconds;
}

void Run(const std::string& command) {
  if (std::system(command.c_str()) != 0) std::cerr << "failed: " << command << "\n";
}

class Bench {
 public:
  Bench(fs::path place, int mails) : place_(std::move(place)), maildir_(place_ / "Mail"), mails_(mails) {
    for (const char* part : {"cur", "new", "tmp"})
      for (const char* folder : {"", ".Trash"}) fs::create_directories(maildir_ / folder / part);
    for (int number = 0; number < mails; ++number) Make_Mail(maildir_, number);
    has_mblaze_ = std::system("command -v mlist >/dev/null") == 0;
  }

  void Round() {
    Measure("open each file, read 4 KB", [&] { Read_Bare(); });
    fs::remove_all(Cache());
    Measure("first reading", [&] { Read(); });
    Measure("second opening", [&] { Read(); });
    const std::string list = "mlist '" + maildir_.string() + "'";
    if (has_mblaze_)
      Measure("mblaze: mlist | mscan", [&] { Run(list + " | mscan -f '%S %f %d %s' >/dev/null"); });
    Measure("select and move", [&] { Take(false); });
    Put_Back();
    const std::string pick = list + " | mpick -t 'subject =~ \"^Offer\"'";
    const std::string trash = "'" + (maildir_ / ".Trash").string() + "'";
    if (has_mblaze_) {
      Measure("mblaze: mlist | mpick | mrefile", [&] { Run(pick + " | mrefile " + trash + " >/dev/null"); });
      Put_Back();
    }
    // What goes for good is delivered again for the next one.
    Measure("select and delete for good", [&] { Take(true); });
    Deliver_Again();
    if (has_mblaze_) {
      Measure("mblaze: mlist | mpick | xargs rm", [&] { Run(pick + " | tr '\\n' '\\0' | xargs -0 rm"); });
      Deliver_Again();
    }
  }

  void Report() const {
    for (const std::string& name : order_) {
      std::printf("%-36s", name.c_str());
      for (const auto* const all : {&times_, &processor_times_}) {
        std::vector<double> times = all->at(name);
        for (const double time : times) std::printf(" %7.0f", time);
        std::sort(times.begin(), times.end());
        std::printf(" %7.0f  ", times[times.size() / 2]);
      }
      std::printf("\n");
    }
    std::printf("taken: %d of %d\n", taken_, mails_);
  }

 private:
  fs::path Cache() const { return place_ / "cache"; }

  void Measure(const std::string& name, const std::function<void()>& work) {
    if (!times_.contains(name)) order_.push_back(name);
    const double before = Processor_Milliseconds();
    times_[name].push_back(Milliseconds(work));
    processor_times_[name].push_back(Processor_Milliseconds() - before);
  }

  void Read_Bare() const {
    std::array<char, 4096> buffer;
    std::size_t bytes = 0;
    for (const auto& entry : fs::directory_iterator(maildir_ / "cur")) {
      const int file = ::open(entry.path().c_str(), O_RDONLY | O_CLOEXEC);
      bytes += static_cast<std::size_t>(std::max<ssize_t>(::read(file, buffer.data(), buffer.size()), 0));
      ::close(file);
    }
    if (bytes == 0) std::cerr << "nothing was read\n";
  }

  std::shared_ptr<Maildir_Store> Open() const {
    Store_Address address(maildir_);
    address.kind = Store_Address::Kind::Maildir;
    return Maildir_Store::Open(address, {.cache_folder = Cache()});
  }
  static MAPIFolder_Ptr Inbox(Maildir_Store& store) { return store.GetDefaultFolder(default_folder_inbox); }

  // The identities of the offers.
  std::vector<std::string> Read_Rows(Maildir_Store& store) const {
    std::vector<std::string> offers;
    const Table_Ptr table = Inbox(store)->GetTable();
    for (auto rows = table->GetArray(500); !rows.empty(); rows = table->GetArray(500))
      for (const Table_Row& row : rows)
        if (row.Subject.starts_with("Offer")) offers.push_back(row.EntryID);
    return offers;
  }
  void Read() const { Read_Rows(*Open()); }

  // As a run does: each item is fetched by its identity, compared, and moved.
  void Take(bool for_good) {
    const auto store = Open();
    const std::vector<std::string> offers = Read_Rows(*store);
    const MAPIFolder_Ptr trash = store->GetDefaultFolder(default_folder_deleted_items);
    taken_ = 0;
    for (const std::string& id : offers) {
      const Item_Ptr item = store->GetItemFromID(id);
      if (!item->Subject().starts_with("Offer") || item->UnRead()) continue;
      const Item_Ptr moved = item->Move(*trash);
      if (for_good) moved->Delete();
      if (++taken_ % 100 == 0) store->Commit_Pending();
    }
    store->Commit_Pending();
  }

  void Put_Back() const {
    for (const char* part : {"cur", "new"})
      for (const auto& entry : fs::directory_iterator(maildir_ / ".Trash" / part))
        fs::rename(entry.path(), maildir_ / "cur" / entry.path().filename());
  }
  void Deliver_Again() const {
    for (int number = 0; number < mails_; ++number)
      if (Is_Offer(number)) Make_Mail(maildir_, number);
  }

  fs::path place_, maildir_;
  int mails_;
  bool has_mblaze_ = false;
  int taken_ = 0;
  std::vector<std::string> order_;
  std::map<std::string, std::vector<double>> times_, processor_times_;
};

}  // namespace
}  // namespace tidyfold

int main(int count, char** words) {
  if (count < 2 || std::filesystem::exists(words[1])) {
    std::cerr << "maildir_bench DIRECTORY [MAILS [ROUNDS]]; the directory must not exist\n";
    return 2;
  }
  tidyfold::Bench bench(words[1], count > 2 ? std::atoi(words[2]) : 100'000);
  for (int round = count > 3 ? std::atoi(words[3]) : 3; round > 0; --round) bench.Round();
  bench.Report();
  std::filesystem::remove_all(words[1]);
}
