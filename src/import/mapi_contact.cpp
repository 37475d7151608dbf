#include "import/mapi_contact.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "mail/charset.h"
#include "mail/local_date.h"

namespace tidyfold {
namespace {

constexpr std::uint32_t given_name = 0x3A06, surname = 0x3A11, middle_name = 0x3A44, title_prefix = 0x3A45,
                        generation = 0x3A05, company = 0x3A16, department = 0x3A18, job_title = 0x3A17,
                        nickname = 0x3A4F, birthday = 0x3A42, home_page = 0x3A50, business_page = 0x3A51;

struct Phone {
  std::uint32_t property;
  const char* type;
};
constexpr std::array<Phone, 12> phones = {{{0x3A1A, "voice"},
                                           {0x3A08, "work,voice"},
                                           {0x3A1B, "work,voice"},
                                           {0x3A09, "home,voice"},
                                           {0x3A2F, "home,voice"},
                                           {0x3A1C, "cell"},
                                           {0x3A1F, "voice"},
                                           {0x3A1E, "voice"},
                                           {0x3A24, "work,fax"},
                                           {0x3A25, "home,fax"},
                                           {0x3A23, "fax"},
                                           {0x3A21, "pager"}}};

// Each of the three mail addresses has its kind, the address, and what it was before Exchange changed it.
struct Mail {
  Named_Property address, original;
};
constexpr std::array<Mail, 3> mails = {{{{mapi_set::address, 0x8083}, {mapi_set::address, 0x8084}},
                                        {{mapi_set::address, 0x8093}, {mapi_set::address, 0x8094}},
                                        {{mapi_set::address, 0x80A3}, {mapi_set::address, 0x80A4}}}};

struct Place {
  const char* type;
  std::uint32_t post_box, street, city, state, code, country;
};
constexpr std::array<Place, 3> places = {{{"work", 0x3A2B, 0x3A29, 0x3A27, 0x3A28, 0x3A2A, 0x3A26},
                                          {"home", 0x3A5E, 0x3A5D, 0x3A59, 0x3A5C, 0x3A5B, 0x3A5A},
                                          {"", 0x3A64, 0x3A63, 0x3A5F, 0x3A62, 0x3A61, 0x3A60}}};
// Newer programs keep the work address here.
constexpr std::array<Named_Property, 6> work_place = {{{mapi_set::address, 0x804A},
                                                       {mapi_set::address, 0x8045},
                                                       {mapi_set::address, 0x8046},
                                                       {mapi_set::address, 0x8047},
                                                       {mapi_set::address, 0x8048},
                                                       {mapi_set::address, 0x8049}}};

constexpr Named_Property list_name{mapi_set::address, 0x8053}, list_members{mapi_set::address, 0x8054},
    full_address_list{mapi_set::address, 0x8055}, instant_message{mapi_set::address, 0x8062};

constexpr std::int64_t filetime_second = 10'000'000, day_seconds = 86400;

std::string Escaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\r') continue;
    if (c == '\n') {
      escaped += "\\n";
      continue;
    }
    if (c == '\\' || c == ',' || c == ';') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

class Card {
 public:
  Card() { Line("BEGIN:VCARD\r\nVERSION:4.0"); }

  // A single value; nothing if it is empty.
  void Add(const std::string& name, std::string_view value) {
    if (!value.empty()) Line(name + ":" + Escaped(value));
  }
  // A value of several parts; nothing if all are empty.
  void Add_Parts(const std::string& name, const std::vector<std::string>& parts) {
    std::string value;
    bool any = false;
    for (const std::string& part : parts) {
      if (&part != &parts.front()) value += ';';
      value += Escaped(part);
      any = any || !part.empty();
    }
    if (any) Line(name + ":" + value);
  }
  // As it is.
  void Add_Raw(const std::string& name, const std::string& value) { Line(name + ":" + value); }

  std::string Text() const { return text_ + "END:VCARD\r\n"; }

 private:
  // At most 75 bytes on a line, and no character is cut in two.
  void Line(std::string_view line) {
    constexpr std::size_t longest = 75;
    for (std::size_t room = longest; line.size() > room; room = longest - 1) {
      std::size_t end = room;
      while (end > 1 && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80) --end;
      text_.append(line.substr(0, end)).append("\r\n ");
      line.remove_prefix(end);
    }
    text_.append(line).append("\r\n");
  }

  std::string text_;
};

struct Calendar_Day {
  std::int64_t year;
  int month, day;
};

Calendar_Day Day_Of(std::uint64_t filetime) {
  const auto days = static_cast<std::int64_t>(filetime / filetime_second) / day_seconds;
  // Counted from the start of March of the year 0; a period of 400 years has 146097 days.
  const std::int64_t from_march = days + 584'694;
  const std::int64_t period = from_march / 146'097, of_period = from_march % 146'097;
  const std::int64_t year = (of_period - of_period / 1460 + of_period / 36'524 - of_period / 146'096) / 365;
  const std::int64_t of_year = of_period - (365 * year + year / 4 - year / 100);
  const std::int64_t month = (5 * of_year + 2) / 153;
  return {year + 400 * period + (month < 10 ? 0 : 1), static_cast<int>(month < 10 ? month + 3 : month - 9),
          static_cast<int>(of_year - (153 * month + 2) / 5 + 1)};
}

void Add_Revision(const Mapi_Properties& properties, Card& card) {
  const auto time = properties.Time(mapi_property::last_modification_time);
  if (!time) return;
  const Calendar_Day day = Day_Of(*time);
  const auto seconds = static_cast<int>(*time / filetime_second % static_cast<std::uint64_t>(day_seconds));
  std::array<char, 48> text{};
  std::snprintf(text.data(), text.size(), "%04d%02d%02dT%02d%02d%02dZ", static_cast<int>(day.year), day.month,
                day.day, seconds / 3600, seconds / 60 % 60, seconds % 60);
  card.Add_Raw("REV", text.data());
}

void Add_Birthday(const Mapi_Properties& properties, Card& card) {
  const auto time = properties.Time(birthday);
  if (!time) return;
  const Calendar_Day day = Day_Of(*time);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%04d%02d%02d", static_cast<int>(day.year), day.month, day.day);
  card.Add_Raw("BDAY", text.data());
}

void Add_Mails(const Mapi_Properties& properties, Card& card) {
  for (const Mail& mail : mails) {
    const std::string address = properties.First_Text(mail.address),
                      original = properties.First_Text(mail.original);
    card.Add("EMAIL", Is_Internet_Address(address) || !Is_Internet_Address(original) ? address : original);
  }
  // Address books keep a single one.
  const std::string address = properties.First_Text(mapi_property::smtp_address, mapi_property::address);
  if (properties.First_Text(mails[0].address).empty() && Is_Internet_Address(address))
    card.Add("EMAIL", address);
}

void Add_Places(const Mapi_Properties& properties, Card& card) {
  for (const Place& place : places) {
    std::vector<std::string> parts;
    for (const std::uint32_t part :
         {place.post_box, place.street, place.city, place.state, place.code, place.country})
      parts.push_back(properties.First_Text(part));
    if (&place == &places.front()) {
      for (std::size_t i = 0; i < work_place.size(); ++i)
        if (parts[i].empty()) parts[i] = properties.First_Text(work_place[i]);
    }
    parts.insert(parts.begin() + 1, std::string());  // what comes before the street
    card.Add_Parts(*place.type == '\0' ? "ADR" : std::string("ADR;TYPE=") + place.type, parts);
  }
}

// A text in 16-bit or 8-bit characters up to its NUL.
std::string Take_Text(std::string_view& bytes, bool wide) {
  const std::size_t unit = wide ? 2 : 1;
  std::size_t end = 0;
  while (end + unit <= bytes.size() && Little_Endian(bytes.substr(end, unit)) != 0) end += unit;
  std::string text = One_Line(To_Utf8(bytes.substr(0, end), wide ? "UTF-16LE" : ""));
  bytes.remove_prefix(std::min(end + unit, bytes.size()));
  return text;
}

struct Member {
  std::string name, address;
};

// A member that is no contact of this file: flags, a mark, a version, and name, kind and address.
std::optional<Member> Read_Member(std::string_view entry) {
  constexpr std::string_view mark = "\x81\x2B\x1F\xA4\xBE\xA3\x10\x19\x9D\x6E\x00\xDD\x01\x0F\x54\x02";
  constexpr std::string_view whole_mark{mark.data(), 16};
  constexpr std::size_t head = 24;
  constexpr std::uint64_t wide = 0x8000;
  if (entry.size() < head || entry.substr(4, 16) != whole_mark) return std::nullopt;
  const bool is_wide = (Little_Endian(entry.substr(22, 2)) & wide) != 0;
  entry.remove_prefix(head);
  Member member;
  member.name = Take_Text(entry, is_wide);
  Take_Text(entry, is_wide);
  member.address = Take_Text(entry, is_wide);
  return member;
}

}  // namespace

std::string Build_Contact(const Mapi_Item& item, const std::string& note) {
  const Mapi_Properties& properties = item.Properties();
  Card card;
  std::string name = properties.First_Text(mapi_property::display_name);
  if (name.empty()) name = One_Line(properties.Subject());
  card.Add_Raw("FN", Escaped(name));  // has to be there
  card.Add_Parts("N", {properties.First_Text(surname), properties.First_Text(given_name),
                       properties.First_Text(middle_name), properties.First_Text(title_prefix),
                       properties.First_Text(generation)});
  card.Add("NICKNAME", properties.First_Text(nickname));
  card.Add_Parts("ORG", {properties.First_Text(company), properties.First_Text(department)});
  card.Add("TITLE", properties.First_Text(job_title));
  Add_Mails(properties, card);
  for (const Phone& phone : phones)
    card.Add(std::string("TEL;TYPE=\"") + phone.type + "\"", properties.First_Text(phone.property));
  Add_Places(properties, card);
  Add_Birthday(properties, card);
  card.Add("URL;TYPE=home", properties.First_Text(home_page));
  card.Add("URL;TYPE=work", properties.First_Text(business_page));
  card.Add("IMPP", properties.First_Text(instant_message));
  card.Add("NOTE", note);
  Add_Revision(properties, card);
  return card.Text();
}

std::string Build_Distribution_List(const Mapi_Item& item, const std::string& note) {
  const Mapi_Properties& properties = item.Properties();
  Card card;
  card.Add_Raw("KIND", "group");
  std::string name = properties.First_Text(list_name, mapi_property::display_name);
  if (name.empty()) name = One_Line(properties.Subject());
  card.Add_Raw("FN", Escaped(name));
  std::vector<std::string> entries = properties.List(list_members);
  if (entries.empty()) entries = properties.List(full_address_list);
  for (const std::string& entry : entries) {
    const auto member = Read_Member(entry);
    if (!member || (member->name.empty() && member->address.empty())) continue;
    if (member->address.empty()) {
      card.Add("X-MEMBER", member->name);
      continue;
    }
    // Parameters cannot hold quotation marks.
    std::string shown = member->name;
    std::replace(shown.begin(), shown.end(), '"', '\'');
    const bool named = !shown.empty() && shown != member->address;
    card.Add_Raw(named ? "MEMBER;X-CN=\"" + shown + "\"" : "MEMBER", "mailto:" + member->address);
  }
  card.Add("NOTE", note);
  Add_Revision(properties, card);
  return card.Text();
}

}  // namespace tidyfold
