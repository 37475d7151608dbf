#include "served_table.h"

#include <map>
#include <utility>

#include "base/text.h"

namespace tidyfold::test_server {

using com::Ptr;
using com::Variant;

namespace {

const std::string property_tag = "http://schemas.microsoft.com/mapi/proptag/";
const std::string appointment_id =
    "http://schemas.microsoft.com/mapi/id/{00062002-0000-0000-C000-000000000046}/";
const std::string task_id = "http://schemas.microsoft.com/mapi/id/{00062003-0000-0000-C000-000000000046}/";

constexpr std::size_t text_limit = 255;

const char* Message_Class(std::int32_t item_class) {
  static const std::map<std::int32_t, const char*> classes = {
      {item_class::appointment, "IPM.Appointment"},
      {item_class::contact, "IPM.Contact"},
      {item_class::journal, "IPM.Activity"},
      {item_class::mail, "IPM.Note.SMIME"},
      {item_class::note, "IPM.StickyNote"},
      {item_class::post, "IPM.Post"},
      {item_class::report, "REPORT.IPM.Note.NDR"},
      {item_class::task, "IPM.Task"},
      {item_class::task_request, "IPM.TaskRequest"},
      {item_class::task_request_update, "IPM.TaskRequest.Update"},
      {item_class::task_request_accept, "IPM.TaskRequest.Accept"},
      {item_class::task_request_decline, "IPM.TaskRequest.Decline"},
      {item_class::meeting_request, "IPM.Schedule.Meeting.Request"},
      {item_class::meeting_cancellation, "IPM.Schedule.Meeting.Canceled"},
      {item_class::meeting_response_negative, "IPM.Schedule.Meeting.Resp.Neg"},
      {item_class::meeting_response_positive, "IPM.Schedule.Meeting.Resp.Pos"},
      // Nobody knows this one but the item itself.
      {item_class::meeting_response_tentative, "IPM.Own.Form"},
      {item_class::distribution_list, "IPM.DistList"}};
  return classes.at(item_class);
}

Variant Local(Date date) {
  return date == no_date ? Variant() : Variant::Of_Date(date);
}

Variant Utc(Date date) {
  SYSTEMTIME local{}, utc{};
  if (date == no_date) return {};
  double converted = 0;
  VariantTimeToSystemTime(date, &local);
  TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc);
  SystemTimeToVariantTime(&utc, &converted);
  return Variant::Of_Date(converted);
}

// A series' row tells the end of its first occurrence, as its item does.
bool Is_Series(const Table_Row& row) {
  return row.Class == item_class::appointment && row.Subject.starts_with("series");
}
Date End_Of(const Table_Row& row) {
  return Is_Series(row) ? row.ReceivedTime : row.End;
}

using Column = std::function<Variant(const Table_Row&)>;

const std::map<std::string, Column>& All_Columns() {
  static const Column flag = [](const Table_Row& row) {
    return row.FlagStatus == flag_status::none ? Variant() : Variant(row.FlagStatus);
  };
  static const std::map<std::string, Column> columns = {
      {"EntryID", [](const Table_Row& row) { return Variant(row.EntryID); }},
      {"MessageClass", [](const Table_Row& row) { return Variant(Message_Class(row.Class)); }},
      {"Subject", [](const Table_Row& row) { return Variant(row.Subject); }},
      {property_tag + "0x0C1A001F",
       [](const Table_Row& row) {
         return row.Class == item_class::mail ? Variant(row.SenderOrText.c_str()) : Variant();
       }},
      {property_tag + "0x1000001F",
       [](const Table_Row& row) {
         if (row.Class == item_class::mail) return Variant();
         return Variant(std::string(First_Characters(row.SenderOrText, text_limit)));
       }},
      {"ReceivedTime", [](const Table_Row& row) { return Local(row.ReceivedTime); }},
      {property_tag + "0x0E060040", [](const Table_Row& row) { return Utc(row.ReceivedTime); }},
      {"LastModificationTime", [](const Table_Row& row) { return Local(row.LastModificationTime); }},
      {property_tag + "0x30080040", [](const Table_Row& row) { return Utc(row.LastModificationTime); }},
      {"DateCompleted", [](const Table_Row& row) { return Local(row.DateCompleted); }},
      {task_id + "810F0040", [](const Table_Row& row) { return Utc(row.DateCompleted); }},
      {"DueDate", [](const Table_Row& row) { return Local(row.DueDate); }},
      {task_id + "81050040", [](const Table_Row& row) { return Local(row.DueDate); }},
      {"End", [](const Table_Row& row) { return Local(End_Of(row)); }},
      {appointment_id + "820E0040", [](const Table_Row& row) { return Utc(End_Of(row)); }},
      {"UnRead", [](const Table_Row& row) { return Variant(row.UnRead); }},
      {property_tag + "0x10900003", flag},
      {"FlagStatus", flag},
      {"Size", [](const Table_Row& row) { return Variant(static_cast<std::int32_t>(row.Size)); }},
      {property_tag + "0x0E080003",
       [](const Table_Row& row) { return Variant(static_cast<std::int32_t>(row.Size)); }},
      {"IsRecurring", [](const Table_Row& row) { return Variant(Is_Series(row)); }},
      {property_tag + "0x0E1B000B", [](const Table_Row& row) { return Variant(row.HasAttachments); }}};
  return columns;
}

// Rows are the first index, which varies fastest.
Variant Array_Of(const std::vector<Table_Row>& rows, const std::vector<Column>& columns) {
  Variant array;
  if (rows.empty()) return array;
  SAFEARRAYBOUND bounds[] = {{static_cast<ULONG>(rows.size()), 0}, {static_cast<ULONG>(columns.size()), 0}};
  array.Raw().parray = SafeArrayCreate(VT_VARIANT, 2, bounds);
  array.Raw().vt = VT_ARRAY | VT_VARIANT;
  for (std::size_t row = 0; row < rows.size(); ++row)
    for (std::size_t column = 0; column < columns.size(); ++column) {
      LONG place[] = {static_cast<LONG>(row), static_cast<LONG>(column)};
      Variant value = columns[column](rows[row]);
      com::Check(SafeArrayPutElement(array.Raw().parray, place, &value.Raw()));
    }
  return array;
}

}  // namespace

Ptr<IDispatch> Serve_Table(World& world, const Table_Ptr& table) {
  const auto columns = std::make_shared<std::vector<Column>>();
  Ptr<Served> served(new Served(world.switches, "Table"));
  served->Offer("Columns", [=, &world](auto&) {
    Ptr<Served> list(new Served(world.switches, "Columns"));
    list->Offer("RemoveAll", [=](auto&) { return columns->clear(), Variant(); });
    list->Offer("Add", [=, &world](auto& a) {
      const std::string name = a.at(0).Text();
      const auto known = All_Columns().find(name);
      if (known == All_Columns().end() || world.switches.refused_columns.contains(name))
        com::Fail(E_INVALIDARG);
      columns->push_back(known->second);
      return Variant();
    });
    return Variant(Ptr<IDispatch>(list.Detach()));
  });
  served->Offer("GetArray", [=](auto& a) { return Array_Of(table->GetArray(a.at(0).Number()), *columns); });
  return Ptr<IDispatch>(served.Detach());
}

}  // namespace tidyfold::test_server
