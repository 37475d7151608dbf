#include "cli/listing.h"

#include <cstdio>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include "base/csv.h"
#include "base/dates.h"
#include "base/text.h"
#include "grid/grid_columns.h"

namespace tidyfold::cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t type_width = 17, sender_width = 24, subject_width = 44;

std::size_t Characters(std::string_view text) {
  std::size_t count = 0;
  for (const char byte : text)
    if ((static_cast<unsigned char>(byte) & 0xC0) != 0x80) ++count;
  return count;
}

std::string Number_Cell(std::int64_t number) {
  char text[24];
  std::snprintf(text, sizeof text, "%9lld", static_cast<long long>(number));
  return text;
}

std::int64_t Unread_Items(const FolderData& record) {
  std::int64_t unread = 0;
  for (std::int32_t item = 1; item <= record.CachedCount; ++item)
    if (record.Cached(item).Unread) ++unread;
  return unread;
}

}  // namespace

std::string To_Json(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json Messages_Json(const Terminal_Message_Box& messages) {
  Json all = Json::array();
  for (const Shown_Message& message : messages.Shown()) {
    Json buttons = Json::array();
    for (const Answer answer : Answers(message.buttons)) buttons.push_back(Answer_Name(answer));
    all.push_back({{"text", message.text}, {"buttons", buttons}, {"answer", Answer_Name(message.answer)}});
  }
  return all;
}

std::string Date_Text(const ItemData& item) {
  return item.ItemDate == no_date ? std::string() : Format_Date(item.ItemDate);
}

std::string Cell(std::string_view text, std::size_t width) {
  std::string cell = Printable_Line(text);
  if (Characters(cell) > width) cell = std::string(First_Characters(cell, width - 1)) + "…";
  return cell.append(width - Characters(cell), ' ');
}

std::string Counted(std::int64_t count, const std::string& word) {
  return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

void List_Folders(Session& session, Terminal& terminal, Form form) {
  const bool json = form == Form::Json;
  terminal.Write(json ? "[" : "    Items   Unread  Protected  Path\n");
  const char* separator = "\n";
  for (const Store_Folder& folder : session.Folders()) {
    const FolderData& record = session.Records()[session.Node(folder)];
    const std::int64_t unread = Unread_Items(record);
    const std::int32_t items = folder.folder->Items()->Count();
    if (json) {
      terminal.Write(separator + To_Json({{"store", folder.store},
                                          {"path", folder.path},
                                          {"name", folder.name},
                                          {"item_type", folder.folder->DefaultItemType()},
                                          {"items", items},
                                          {"unread", unread},
                                          {"protected", record.Protected},
                                          {"entry_id", folder.folder->EntryID()}}));
      separator = ",\n";
    } else {
      const char* const lock = record.ProtectedItself ? "yes" : record.Protected ? "from above" : "";
      terminal.Write(Number_Cell(items) + Number_Cell(unread) + "  " + Cell(lock, 10) + " " +
                     Printable_Line(folder.path) + "\n");
    }
  }
  if (json) terminal.Write("\n]\n");
}

std::int64_t Item_Listing::Write(const Clean_Plan& plan) {
  std::unordered_map<int, const Plan_Stop*> stops;
  for (const Plan_Stop& stop : plan.stops)
    if (stop.way != Way::Whole_Folder || stop.folder_goes) stops.emplace(stop.folder, &stop);
  Begin();
  for (const Store_Folder& folder : session_.Folders()) {
    const auto stop = stops.find(session_.Node(folder));
    if (stop == stops.end()) continue;
    const FolderData& record = session_.Records()[stop->first];
    for (const Planned_Item& item : stop->second->items) Write_Item(folder, record.Cached(item.item));
  }
  End();
  return count_;
}

void Item_Listing::Begin() {
  switch (form_) {
    case Form::Json:
      return terminal_.Write("[");
    case Form::Csv:
      return terminal_.Write("folder,class,type,sender,subject,date,unread,entry_id\n");
    case Form::Text:
      return terminal_.Write(Cell("Date", 11) + Cell("Type", type_width + 1) +
                             Cell("Sender", sender_width + 1) + Cell("Subject", subject_width + 1) +
                             "Folder\n");
  }
}

void Item_Listing::Write_Item(const Store_Folder& folder, const ItemData& item) {
  const std::string type = Type_Name(item.ItemClass);
  switch (form_) {
    case Form::Json:
      terminal_.Write((count_ == 0 ? "\n" : ",\n") + To_Json({{"folder", folder.path},
                                                              {"class", item.ItemClass},
                                                              {"type", type},
                                                              {"sender", item.SenderOrText},
                                                              {"subject", item.Subject},
                                                              {"date", Date_Text(item)},
                                                              {"unread", item.Unread},
                                                              {"entry_id", item.EntryID}}));
      break;
    case Form::Csv:
      terminal_.Write(Csv_Field(folder.path) + "," + std::to_string(item.ItemClass) + "," + type + "," +
                      Csv_Field(item.SenderOrText) + "," + Csv_Field(item.Subject) + "," + Date_Text(item) +
                      (item.Unread ? ",true," : ",false,") + item.EntryID + "\n");
      break;
    case Form::Text:
      terminal_.Write(Cell(Date_Text(item), 10) + " " + Cell(type, type_width) + " " +
                      Cell(item.SenderOrText, sender_width) + " " + Cell(item.Subject, subject_width) + " " +
                      Printable_Line(folder.path) + "\n");
      break;
  }
  ++count_;
}

// The array may be part of a larger document.
void Item_Listing::End() {
  if (form_ == Form::Json) terminal_.Write(count_ == 0 ? "]" : "\n]");
}

}  // namespace tidyfold::cli
