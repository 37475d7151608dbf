#include "import/vcard.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <utility>

#include "base/text.h"
#include "mail/charset.h"
#include "mail/kept_fields.h"
#include "mail/local_date.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

struct Property {
  std::string name;        // in upper case, without the group before it
  std::string parameters;  // in upper case, each with ";" before it
  std::string value;       // in UTF-8, still escaped
};

std::string_view Line_At(std::string_view text) {
  const std::size_t end = text.find('\n');
  return text.substr(0, end == std::string_view::npos ? text.size() : end + 1);
}

std::string_view Without_End(std::string_view line) {
  while (line.ends_with('\n') || line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool Is_Line(std::string_view line, std::string_view wanted) {
  return Upper_Case(Trim(Without_End(line))) == wanted;
}

int Hex(char c) {
  return g_ascii_xdigit_value(c);
}

// Quoted-printable, without soft line breaks.
std::string Unquoted(std::string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '=' && at + 2 < text.size() && Hex(text[at + 1]) >= 0 && Hex(text[at + 2]) >= 0) {
      bytes += static_cast<char>(Hex(text[at + 1]) * 16 + Hex(text[at + 2]));
      at += 2;
    } else {
      bytes += text[at];
    }
  }
  return bytes;
}

std::string Parameter(const std::string& parameters, std::string_view name) {
  const std::size_t found = parameters.find(name);
  if (found == std::string::npos) return {};
  const std::size_t begin = found + name.size();
  return parameters.substr(begin, std::min(parameters.find(';', begin), parameters.size()) - begin);
}

// The next property; its name is empty for a line that is none.
Property Take_Property(std::string_view& text) {
  std::string line;
  bool quoted_printable = false;
  for (bool first = true; !text.empty(); first = false) {
    const std::string_view part = Line_At(text);
    text.remove_prefix(part.size());
    line += Without_End(part);
    if (first) {
      const std::string head = Upper_Case(std::string_view(line).substr(0, line.find(':')));
      quoted_printable = head.find("QUOTED-PRINTABLE") != std::string::npos;
    }
    if (quoted_printable && line.ends_with('=')) {
      line.pop_back();
    } else if (text.starts_with(' ') || text.starts_with('\t')) {
      text.remove_prefix(1);
    } else {
      break;
    }
  }
  bool quoted = false;
  std::size_t colon = 0;
  while (colon < line.size() && (quoted || line[colon] != ':')) quoted = quoted != (line[colon++] == '"');
  if (colon == line.size()) return {};
  const std::size_t name_end = std::min(line.find(';'), colon);
  const std::size_t group = line.rfind('.', name_end);
  const std::size_t name = group == std::string::npos ? 0 : group + 1;
  Property property;
  property.name = Upper_Case(Trim(std::string_view(line).substr(name, name_end - name)));
  property.parameters = Upper_Case(std::string_view(line).substr(name_end, colon - name_end));
  std::string value = line.substr(colon + 1);
  if (quoted_printable) value = Unquoted(value);
  property.value = To_Utf8(value, Parameter(property.parameters, ";CHARSET="));
  return property;
}

// Splits at a character that is not escaped, and takes the escapes away.
std::vector<std::string> Split(std::string_view value, char at) {
  std::vector<std::string> parts(1);
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (value[i] == '\\' && i + 1 < value.size()) {
      ++i;
      parts.back() += value[i] == 'n' || value[i] == 'N' ? '\n' : value[i];
    } else if (value[i] == at) {
      parts.emplace_back();
    } else {
      parts.back() += value[i];
    }
  }
  return parts;
}

std::string Plain(std::string_view value) {
  return Split(value, '\0').front();
}

// "Family;Given;Middle;Title;Suffix", as one writes it.
std::string Full_Name(std::string_view value) {
  std::vector<std::string> parts = Split(value, ';');
  parts.resize(5);
  std::string name;
  for (const std::size_t part : {3U, 1U, 2U, 0U, 4U}) {
    const std::string word(Trim(parts[part]));
    if (word.empty()) continue;
    if (!name.empty()) name += ' ';
    name += word;
  }
  return name;
}

// "20020823T023253Z" or "2002-08-23T02:32:53Z", or the date alone.
Date Revision(std::string_view value) {
  std::string digits;
  for (const char c : value)
    if (g_ascii_isdigit(c)) digits += c;
  if (digits.size() < 8) return no_date;
  digits.resize(14, '0');
  const auto number = [&](std::size_t at, std::size_t size) {
    int result = 0;
    for (std::size_t i = at; i < at + size; ++i) result = result * 10 + (digits[i] - '0');
    return result;
  };
  if (!Trim(value).ends_with('Z')) {
    return Date_From_Calendar(number(0, 4), number(4, 2), number(6, 2), number(8, 2), number(10, 2),
                              number(12, 2));
  }
  const std::unique_ptr<GDateTime, decltype(&g_date_time_unref)> date(
      g_date_time_new_utc(number(0, 4), number(4, 2), number(6, 2), number(8, 2), number(10, 2),
                          number(12, 2)),
      g_date_time_unref);
  return date ? Local_Date(g_date_time_to_unix(date.get())) : no_date;
}

struct Card {
  std::string full_name, name, nickname, organization, mail, note, kind;
  Date revision = no_date;
};

void Keep_First(std::string& kept, std::string value) {
  if (kept.empty()) kept = std::move(value);
}

Card Read_Card(std::string_view text) {
  Card card;
  int depth = 0;
  while (!text.empty()) {
    const Property property = Take_Property(text);
    const bool of_card = depth == 1;  // a card within it is an agent's
    if (property.name == "BEGIN") ++depth;
    if (property.name == "END") --depth;
    if (!of_card) continue;
    if (property.name == "FN") Keep_First(card.full_name, Plain(property.value));
    if (property.name == "N") Keep_First(card.name, Full_Name(property.value));
    if (property.name == "NICKNAME") Keep_First(card.nickname, Plain(property.value));
    if (property.name == "ORG") Keep_First(card.organization, Split(property.value, ';').front());
    if (property.name == "EMAIL") Keep_First(card.mail, Plain(property.value));
    if (property.name == "NOTE") Keep_First(card.note, Plain(property.value));
    if (property.name == "REV") card.revision = Revision(property.value);
    if (property.name == "KIND" || property.name == "X-ADDRESSBOOKSERVER-KIND")
      card.kind = Upper_Case(Trim(property.value));
  }
  return card;
}

}  // namespace

std::vector<Card_Text> Cards_In(std::string_view text) {
  std::vector<Card_Text> cards;
  std::size_t begin = 0;
  int depth = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::string_view line = Line_At(text.substr(at));
    const std::string_view shown = at == 0 && line.starts_with("\xEF\xBB\xBF") ? line.substr(3) : line;
    if (Is_Line(shown, "BEGIN:VCARD")) {
      if (depth++ == 0) begin = at + (line.size() - shown.size());
    } else if (depth > 0 && Is_Line(line, "END:VCARD") && --depth == 0) {
      cards.push_back({begin, at + line.size() - begin, true});
    }
    at += line.size();
  }
  if (depth > 0) cards.push_back({begin, text.size() - begin, false});
  return cards;
}

New_Item Read_Vcard(std::string text) {
  const std::vector<Kept_Field> kept = Take_Kept_Fields(text);
  Card card = Read_Card(text);
  New_Item item;
  item.item_class = card.kind == "GROUP" ? item_class::distribution_list : item_class::contact;
  for (std::string* name : {&card.full_name, &card.name, &card.organization, &card.nickname, &card.mail}) {
    if (item.subject.empty()) item.subject = One_Line(Trim(*name));
  }
  if (item.subject.empty() && card.note.empty() && kept.empty()) throw Message_Error("it names nobody");
  item.sender_address = One_Line(card.mail);
  item.body = Valid_Utf8(card.note);
  item.last_modified = card.revision;
  item.size = static_cast<std::int64_t>(text.size());
  Set_Kept_Fields(kept, item);
  if (!Has_No_Own_Form(kept)) item.raw_message = std::move(text);
  return item;
}

}  // namespace tidyfold
