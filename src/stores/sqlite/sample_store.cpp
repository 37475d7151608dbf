#include "stores/sqlite/sample_store.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <random>
#include <string_view>
#include <vector>

#include "outlook/object_model.h"
#include "stores/sqlite/sample_texts.h"
#include "stores/sqlite/store.h"

namespace tidyfold {

namespace {

namespace cls = item_class;

// 1999-01-04 and 2026-06-30 as day counts.
constexpr int first_day = 36164, last_day = 46203;

// Frequent enough for a progress bar; commits keep the write-ahead log small.
constexpr std::int32_t items_per_progress = 1000, items_per_commit = 20000;

struct Own_Folder {
  const char* path;  // below the top folder; parents come before their children
  std::int32_t type;
};

constexpr Own_Folder own_folders[] = {{"Inbox/Lists", item_type::mail},
                                      {"Inbox/Lists/Cycling", item_type::mail},
                                      {"Inbox/Lists/Gardening", item_type::mail},
                                      {"Inbox/Orders & Invoices", item_type::mail},
                                      {"Calendar/Team Holidays", item_type::appointment},
                                      {"Contacts/Suppliers", item_type::contact},
                                      {"Tasks/House", item_type::task},
                                      {"Projects", item_type::mail},
                                      {"Projects/Harbour Bridge", item_type::mail},
                                      {"Projects/Harbour Bridge/Drawings", item_type::mail},
                                      {"Projects/Straßenfest", item_type::mail},
                                      {"Family", item_type::mail},
                                      {"Family/Recipes", item_type::mail},
                                      {"Archive", item_type::mail},
                                      {"Archive/Not Used Any More", item_type::mail}};

// The classes of items in each folder, with weights. The first items take one line each, in this order.
struct Kind {
  const char* folder;
  std::int32_t item_class;
  unsigned weight;
};

constexpr Kind kinds[] = {{"Inbox", cls::mail, 260},
                          {"Inbox", cls::meeting_request, 18},
                          {"Inbox", cls::meeting_cancellation, 5},
                          {"Inbox", cls::meeting_response_positive, 10},
                          {"Inbox", cls::meeting_response_negative, 4},
                          {"Inbox", cls::meeting_response_tentative, 4},
                          {"Inbox", cls::task_request, 6},
                          {"Inbox", cls::task_request_update, 2},
                          {"Inbox", cls::task_request_accept, 2},
                          {"Inbox", cls::task_request_decline, 2},
                          {"Inbox", cls::report, 8},
                          {"Inbox/Lists", cls::mail, 30},
                          {"Inbox/Lists/Cycling", cls::mail, 60},
                          {"Inbox/Lists/Cycling", cls::post, 8},
                          {"Inbox/Lists/Gardening", cls::mail, 60},
                          {"Inbox/Orders & Invoices", cls::mail, 40},
                          {"Outbox", cls::mail, 2},
                          {"Sent Items", cls::mail, 130},
                          {"Drafts", cls::mail, 8},
                          {"Calendar", cls::appointment, 70},
                          {"Calendar/Team Holidays", cls::appointment, 15},
                          {"Contacts", cls::contact, 30},
                          {"Contacts", cls::distribution_list, 3},
                          {"Contacts/Suppliers", cls::contact, 12},
                          {"Journal", cls::journal, 20},
                          {"Notes", cls::note, 20},
                          {"Tasks", cls::task, 25},
                          {"Tasks/House", cls::task, 12},
                          {"Projects", cls::mail, 10},
                          {"Projects/Harbour Bridge", cls::mail, 40},
                          {"Projects/Harbour Bridge/Drawings", cls::mail, 15},
                          {"Projects/Straßenfest", cls::mail, 20},
                          {"Family", cls::mail, 30},
                          {"Family/Recipes", cls::post, 10},
                          {"Archive", cls::mail, 60},
                          {"Deleted Items", cls::mail, 60},
                          {"Deleted Items", cls::appointment, 4},
                          {"Deleted Items", cls::task, 3},
                          {"Deleted Items", cls::contact, 2},
                          {"Deleted Items", cls::note, 2}};

std::string Replaced(std::string_view text, std::string_view word) {
  std::string result(text);
  if (const auto at = result.find('%'); at != std::string::npos) result.replace(at, 1, word);
  return result;
}

// "Mon, 04 Jan 1999 09:30:00 +0000"
std::string Message_Date(Date date) {
  constexpr std::array days{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  constexpr std::array months{"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  constexpr int unix_epoch = 25569;
  const auto whole = static_cast<int>(date);
  const int minutes = static_cast<int>(std::lround((date - whole) * 1440));
  const std::chrono::sys_days day{std::chrono::days{whole - unix_epoch}};
  const std::chrono::year_month_day calendar{day};
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s, %02u %s %d %02d:%02d:00 +0000",
                days[std::chrono::weekday{day}.c_encoding()], static_cast<unsigned>(calendar.day()),
                months[static_cast<unsigned>(calendar.month()) - 1], static_cast<int>(calendar.year()),
                minutes / 60, minutes % 60);
  return text.data();
}

// The engine's numbers are the same on all platforms, those of the standard distributions are not. As the
// order of evaluation is not fixed either, no expression may draw more than one number.
class Random {
 public:
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  unsigned Below(unsigned limit) { return static_cast<unsigned>(engine_() % limit); }
  bool Chance(unsigned percent) { return Below(100) < percent; }
  template <class List>
  const char* One_Of(const List& list) {
    return list[Below(static_cast<unsigned>(list.size()))];
  }
  std::uint64_t Bits() { return engine_(); }

 private:
  std::mt19937_64 engine_;
};

class Item_Maker {
 public:
  explicit Item_Maker(Random& random) : random_(random) {}

  // `age` runs from 0 (oldest) to 1 (newest).
  New_Item Make(std::int32_t item_class, std::string_view folder, double age) {
    New_Item item;
    item.item_class = item_class;
    item.last_modified = Moment(age);
    topic_ = random_.One_Of(sample::topics);
    switch (item_class) {
      case cls::appointment:
        Make_Appointment(item);
        break;
      case cls::contact:
        item.subject = Person();
        item.body = random_.Chance(50) ? "Met at the " + topic_ + "." : "";
        break;
      case cls::distribution_list:
        item.subject = "Everybody: " + topic_;
        break;
      case cls::task:
        Make_Task(item);
        break;
      case cls::journal:
        item.subject = "Phone call: " + topic_;
        item.end = item.last_modified;
        item.body = Text(1);
        break;
      case cls::note:
        item.body = Replaced(random_.One_Of(sample::note_starts), topic_) + "\r\n";
        item.body += Text(1);
        item.subject = item.body.substr(0, item.body.find("\r\n"));
        break;
      default:
        Make_Message(item, folder);
        break;
    }
    item.size = 600 + static_cast<std::int64_t>(item.body.size() + item.raw_message.size());
    for (const New_Attachment& attachment : item.attachments) item.size += attachment.size;
    return item;
  }

 private:
  // Later years have more items than earlier ones; the order varies by a few days.
  Date Moment(double age) {
    const double days = std::sqrt(age) * (last_day - first_day);
    const int day = std::clamp(first_day + static_cast<int>(days) - static_cast<int>(random_.Below(4)),
                               first_day, last_day);
    return day + (8 * 60 + random_.Below(600)) / 1440.0;
  }
  std::string Person() {
    const std::string first = random_.One_Of(sample::first_names);
    return first + " " + random_.One_Of(sample::last_names);
  }
  std::string Text(unsigned least) {
    std::string text;
    for (unsigned left = least + random_.Below(6); left > 0; --left) {
      text += random_.One_Of(sample::sentences);
      text += left % 3 == 0 ? "\r\n\r\n" : " ";
    }
    return text;
  }

  void Make_Appointment(New_Item& item) {
    item.subject = random_.Chance(30) ? "Lunch with " + Person() : "Meeting: " + topic_;
    const Date day = std::floor(item.last_modified) + random_.Below(20);
    item.end = day + (9 * 60 + 30 * random_.Below(18)) / 1440.0;
    item.body = random_.Chance(60) ? Text(0) : "";
  }

  void Make_Task(New_Item& item) {
    item.subject = "Take care of the " + topic_;
    item.body = random_.Chance(50) ? Text(0) : "";
    const Date day = std::floor(item.last_modified);
    if (random_.Chance(70)) item.due = day + random_.Below(60);
    if (random_.Chance(50)) item.completed = day + random_.Below(30);
  }

  void Make_Message(New_Item& item, std::string_view folder) {
    const bool own = folder == "Sent Items" || folder == "Drafts" || folder == "Outbox";
    const std::string other = random_.Chance(20) ? std::string(random_.One_Of(sample::companies)) : Person();
    const std::string me = "Alex Sample";
    item.sender = own ? me : other;
    item.recipients = own ? other : me;
    const std::string about = Replaced(random_.One_Of(sample::mail_subjects), topic_);
    item.subject = Subject_Start(item.item_class) + about;
    item.body = "Hello,\r\n\r\n" + Text(1) + "\r\n\r\n" + item.sender + "\r\n";
    item.received = item.last_modified;
    item.unread = !own && random_.Chance(15);
    if (random_.Chance(8)) {
      item.attachments.push_back({random_.One_Of(sample::attachment_names),
                                  20'000 + static_cast<std::int64_t>(random_.Below(900'000))});
    }
    if (item.item_class == cls::mail) item.raw_message = Raw_Message(item);
  }

  std::string Subject_Start(std::int32_t item_class) {
    switch (item_class) {
      case cls::mail:
        return random_.One_Of(sample::prefixes);
      case cls::meeting_cancellation:
        return "Canceled: ";
      case cls::meeting_response_positive:
        return "Accepted: ";
      case cls::meeting_response_negative:
        return "Declined: ";
      case cls::meeting_response_tentative:
        return "Tentative: ";
      case cls::task_request:
      case cls::task_request_update:
        return "Task: ";
      case cls::task_request_accept:
        return "Task Accepted: ";
      case cls::task_request_decline:
        return "Task Declined: ";
      case cls::report:
        return "Undeliverable: ";
      default:
        return "";
    }
  }

  std::string Raw_Message(const New_Item& item) {
    const std::string from = Address(item.sender), to = Address(item.recipients);
    return "From: " + from + "To: " + to + "Subject: " + item.subject +
           "\r\nDate: " + Message_Date(item.received) + "\r\nMessage-ID: <" + std::to_string(random_.Bits()) +
           "@example.org>\r\nMIME-Version: 1.0\r\nContent-Type: text/plain; charset=utf-8\r\n"
           "Content-Transfer-Encoding: 8bit\r\n\r\n" +
           item.body;
  }
  std::string Address(const std::string& name) {
    return "\"" + name + "\" <person" + std::to_string(random_.Below(500)) + "@example.org>\r\n";
  }

  Random& random_;
  std::string topic_;
};

std::string Store_Id(Random& random) {
  std::array<char, 17> half{};
  std::string id;
  for (int i = 0; i < 2; ++i) {
    std::snprintf(half.data(), half.size(), "%016llX", static_cast<unsigned long long>(random.Bits()));
    id += half.data();
  }
  return id;
}

std::uint64_t Mixed(std::uint64_t seed, std::string_view name, std::int32_t items) {
  std::uint64_t mixed = seed * 0x9E3779B97F4A7C15u + static_cast<std::uint64_t>(items);
  for (const char byte : name) mixed = (mixed ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
  return mixed;
}

std::int64_t Folder_Number(sqlite::Store& store, std::string_view path) {
  const sqlite::Folder_Record* folder = &store.Top();
  while (!path.empty()) {
    const auto end = std::min(path.find('/'), path.size());
    const auto name = path.substr(0, end);
    folder = *std::find_if(folder->children.begin(), folder->children.end(),
                           [&](const auto* child) { return child->name == name; });
    path.remove_prefix(std::min(end + 1, path.size()));
  }
  return folder->id;
}

void Add_Own_Folders(sqlite::Store& store) {
  for (const auto& [path, type] : own_folders) {
    const std::string_view whole = path;
    const auto slash = whole.rfind('/');
    const bool top = slash == std::string_view::npos;
    const std::int64_t parent = top ? store.Top().id : Folder_Number(store, whole.substr(0, slash));
    store.Add_Folder(parent, std::string(top ? whole : whole.substr(slash + 1)), type);
  }
}

// False when `progress` cancelled.
bool Fill(sqlite::Store& store, Random& random, std::int32_t items,
          const std::function<bool(std::int32_t written)>& progress) {
  store.Begin();
  Add_Own_Folders(store);
  std::vector<std::int64_t> folders;
  std::vector<std::size_t> kind_of_ticket;
  for (const Kind& kind : kinds) {
    kind_of_ticket.insert(kind_of_ticket.end(), kind.weight, folders.size());
    folders.push_back(Folder_Number(store, kind.folder));
  }
  Item_Maker maker(random);
  for (std::int32_t i = 0; i < items; ++i) {
    const auto turn = static_cast<std::size_t>(i);
    const std::size_t number =
        turn < std::size(kinds) ? turn
                                : kind_of_ticket[random.Below(static_cast<unsigned>(kind_of_ticket.size()))];
    const double age = static_cast<double>(i) / items;
    store.Add_Item(folders[number], maker.Make(kinds[number].item_class, kinds[number].folder, age));
    if ((i + 1) % items_per_commit == 0) {
      store.Commit();
      store.Begin();
    }
    if ((i + 1) % items_per_progress == 0 && progress && !progress(i + 1)) return false;
  }
  store.Commit();
  return true;
}

}  // namespace

bool Make_Sample(const std::filesystem::path& path, const std::string& name, std::int32_t items,
                 std::uint64_t seed, const std::function<bool(std::int32_t written)>& progress) {
  Random random(Mixed(seed, name, items));
  std::shared_ptr<sqlite::Store> store = sqlite::Store::Create(path, name, Store_Id(random));
  store->Seed_Log(seed);
  try {
    if (Fill(*store, random, items, progress)) return true;
  } catch (...) {
    store.reset();
    sqlite::Remove_File(path);
    throw;
  }
  store.reset();
  sqlite::Remove_File(path);
  return false;
}

}  // namespace tidyfold
