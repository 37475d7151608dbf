#include "import/calendar_text.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/text.h"

namespace tidyfold {
namespace {

// Of components within components; alarms and the rules of a time zone are one level below their item.
constexpr std::size_t max_depth = 8;
// Of an item; pictures may be in it.
constexpr std::size_t max_item_size = std::size_t{64} << 20;

// Of a calendar's own properties, which go with each of its items.
constexpr std::size_t max_head_size = 4096;
// Of a property, up to its value: the library takes time by the square of their number.
constexpr std::size_t max_parameters_size = 8192;

struct Component {
  std::string kind;
  std::string_view text;
  std::string uid;
  std::string recurrence_id;
  std::string zone;  // of a time zone, its name
  std::set<std::string, std::less<>> zones;
  std::string problem;
};

struct Calendar {
  std::string head;  // from its begin to its first component, and what stands between components
  std::string_view tail = "END:VCALENDAR\r\n";
  std::vector<Component> components;
};

// A line with those that continue it.
std::string_view Take_Line(std::string_view& text) {
  std::size_t end = 0;
  do {
    end = text.find('\n', end);
    end = end == std::string_view::npos ? text.size() : end + 1;
  } while (end < text.size() && (text[end] == ' ' || text[end] == '\t'));
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(end);
  return line;
}

std::string Unfolded(std::string_view line) {
  std::string text;
  for (std::size_t at = 0; at < line.size(); ++at) {
    if (line[at] == '\r') continue;
    if (line[at] != '\n') {
      text += line[at];
    } else {
      ++at;  // the blank that begins a continued line
    }
  }
  return text;
}

// Of a BEGIN or END line the name behind it, in upper case; empty for any other line.
std::string Name_Behind(std::string_view line, std::string_view word) {
  constexpr std::size_t longest_needed = 512;
  const std::string text = Upper_Case(Unfolded(line.substr(0, longest_needed)));
  const std::size_t end = text.find_first_of(";:");
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || std::string_view(text).substr(0, end) != word) return {};
  return std::string(Trim(std::string_view(text).substr(colon + 1)));
}

// Where the value begins: behind the first colon that is not quoted.
std::size_t Value_At(std::string_view line, std::size_t from) {
  bool quoted = false;
  while (from < line.size() && (quoted || line[from] != ':')) quoted = quoted != (line[from++] == '"');
  return from;
}

void Read_Property(std::string_view line, Component& component) {
  constexpr std::size_t longest_needed = 4096;
  const std::string text = Unfolded(line.substr(0, longest_needed));
  const std::size_t name_end = std::min(text.find_first_of(";:"), text.size());
  const std::string name = Upper_Case(std::string_view(text).substr(0, name_end));
  const std::size_t colon = Value_At(text, name_end);
  const std::string value = colon < text.size() ? text.substr(colon + 1) : std::string();
  if (name == "UID") component.uid = value;
  if (name == "RECURRENCE-ID") component.recurrence_id = value;
  if (name == "TZID") component.zone = value;
  const std::string parameters = text.substr(0, colon);
  const std::size_t zone = Upper_Case(parameters).find(";TZID=");
  if (zone != std::string::npos) {
    std::string_view named = std::string_view(parameters).substr(zone + 6);
    if (named.starts_with('"')) named = named.substr(1, std::min(named.find('"', 1), named.size()) - 1);
    component.zones.emplace(named.substr(0, std::min(named.find(';'), named.size())));
  }
}

// Reads a component from behind its BEGIN line to behind its END line. `whole` begins with the BEGIN line.
Component Read_Component(std::string kind, std::string_view whole, std::string_view& text) {
  Component component;
  component.kind = std::move(kind);
  std::size_t depth = 1;
  while (!text.empty() && depth > 0) {
    const std::string_view rest = text;
    const std::string_view line = Take_Line(text);
    if (!Name_Behind(line, "BEGIN").empty()) {
      ++depth;
      if (depth > max_depth) component.problem = "its parts are nested too deep";
    } else if (const std::string end = Name_Behind(line, "END"); !end.empty()) {
      if (end == "VCALENDAR") {
        text = rest;
        break;
      }
      --depth;
    } else if (depth == 1) {
      Read_Property(line, component);
    }
    if (line.size() > max_parameters_size && Value_At(line, 0) > max_parameters_size)
      component.problem = "one of its properties is longer than any real one";
  }
  component.text = whole.substr(0, whole.size() - text.size());
  if (depth > 0) component.problem = "its end is missing";
  if (component.text.size() > max_item_size) component.problem = "it is larger than 64 MB";
  return component;
}

Calendar Read_Calendar(std::string_view begin, std::string_view& text) {
  Calendar calendar;
  calendar.head = begin.substr(0, max_head_size);
  while (!text.empty()) {
    const std::string_view whole = text;
    const std::string_view line = Take_Line(text);
    if (std::string kind = Name_Behind(line, "BEGIN"); !kind.empty()) {
      calendar.components.push_back(Read_Component(std::move(kind), whole, text));
    } else if (!Name_Behind(line, "END").empty()) {
      calendar.tail = line;
      break;
    } else if (calendar.head.size() + line.size() <= max_head_size) {
      calendar.head += line;
    }
  }
  return calendar;
}

void Add_Items(const Calendar& calendar, std::vector<Calendar_Item>& items) {
  std::map<std::string_view, const Component*> zones;
  std::map<std::pair<std::string, std::string>, std::vector<const Component*>> changed;  // by kind and UID
  std::set<std::pair<std::string, std::string>> series;
  for (const Component& component : calendar.components) {
    const std::pair key(component.kind, component.uid);
    if (component.kind == "VTIMEZONE") {
      zones.try_emplace(component.zone, &component);
    } else if (component.recurrence_id.empty()) {
      series.insert(key);
    } else if (!component.uid.empty() && component.problem.empty()) {
      changed[key].push_back(&component);
    }
  }
  const auto head = std::make_shared<const std::string>(calendar.head);
  std::set<std::pair<std::string, std::string>> taken;
  for (const Component& component : calendar.components) {
    if (component.kind == "VTIMEZONE") continue;
    const std::pair key(component.kind, component.uid);
    const bool of_series =
        !component.recurrence_id.empty() && !component.uid.empty() && component.problem.empty();
    // Changed occurrences go with their series; without one, all of a series' are one item.
    if (of_series && (series.contains(key) || !taken.insert(key).second)) continue;
    std::vector<const Component*> parts;
    if (!of_series) parts.push_back(&component);
    if (const auto found = changed.find(key);
        found != changed.end() && (of_series || taken.insert(key).second)) {
      parts.insert(parts.end(), found->second.begin(), found->second.end());
    }
    Calendar_Item item{component.kind, component.problem, head, {}, calendar.tail};
    std::set<std::string, std::less<>> named;
    for (const Component* part : parts) named.insert(part->zones.begin(), part->zones.end());
    for (const std::string& zone : named) {
      const auto found = zones.find(zone);
      if (found != zones.end() && found->second->problem.empty()) item.parts.push_back(found->second->text);
    }
    for (const Component* part : parts) item.parts.push_back(part->text);
    items.push_back(std::move(item));
  }
}

}  // namespace

std::string Calendar_Item::Calendar() const {
  std::string calendar = *head;
  for (const std::string_view part : parts) calendar += part;
  if (!calendar.ends_with('\n')) calendar += "\r\n";
  return calendar.append(tail);
}

std::vector<Calendar_Item> Items_Of_Calendars(std::string_view text) {
  std::vector<Calendar_Item> items;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  while (!text.empty()) {
    const std::string_view line = Take_Line(text);
    if (Name_Behind(line, "BEGIN") == "VCALENDAR") Add_Items(Read_Calendar(line, text), items);
  }
  return items;
}

}  // namespace tidyfold
