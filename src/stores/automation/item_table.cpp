#include "stores/automation/item_table.h"

#include <array>
#include <cmath>
#include <utility>

#include "base/local_time.h"
#include "errors/automation_error.h"
#include "outlook/message_class.h"

namespace tidyfold::com {

namespace {

enum Cell : std::size_t {
  entry_id,
  message_class,
  subject,
  sender,
  text,
  received,
  modified,
  completed,
  due,
  end,
  unread,
  flag,
  size,
  recurring,
  attachments,  // the last, as a table may do without it
  cell_count
};

// The names of a column, the second where the first is refused. A date that is named by the model is local
// time, one named by its property UTC; only the due date of a task has no time zone at all. The text is cut
// after 255 characters, and the sender asked for in this way raises no question
// (https://learn.microsoft.com/office/vba/outlook/how-to/search-and-filter/factors-affecting-property-value-representation-in-the-table-and-view-classes).
#define TAG "http://schemas.microsoft.com/mapi/proptag/"
#define APPOINTMENT "http://schemas.microsoft.com/mapi/id/{00062002-0000-0000-C000-000000000046}/"
#define TASK "http://schemas.microsoft.com/mapi/id/{00062003-0000-0000-C000-000000000046}/"
constexpr std::array<std::array<const char*, 2>, cell_count> column_names = {{
    {"EntryID", nullptr},
    {"MessageClass", TAG "0x001A001F"},
    {"Subject", TAG "0x0037001F"},
    {TAG "0x0C1A001F", nullptr},
    {TAG "0x1000001F", nullptr},
    {"ReceivedTime", TAG "0x0E060040"},
    {"LastModificationTime", TAG "0x30080040"},
    {"DateCompleted", TASK "810F0040"},
    {"DueDate", TASK "81050040"},
    {"End", APPOINTMENT "820E0040"},
    {"UnRead", nullptr},
    {TAG "0x10900003", "FlagStatus"},
    {"Size", TAG "0x0E080003"},
    {"IsRecurring", APPOINTMENT "8223000B"},
    {TAG "0x0E1B000B", nullptr},
}};
#undef TAG
#undef APPOINTMENT
#undef TASK

constexpr double seconds_per_day = 86400;
const Date unix_epoch = Date_Of(std::chrono::year(1970) / std::chrono::January / 1);

Date Local_From_Utc(Date utc) {
  const double seconds = std::round((utc - unix_epoch) * seconds_per_day);
  return Local_Time(static_cast<std::int64_t>(seconds)).value_or(no_date);
}

// The values of one answer: rows and columns, the row being the first index.
class Cells {
 public:
  Cells(const Variant& answer, std::size_t columns) {
    const VARIANT& value = answer.Raw();
    if (value.vt == VT_EMPTY || value.vt == VT_NULL) return;
    if (value.vt != (VT_ARRAY | VT_VARIANT) || SafeArrayGetDim(value.parray) != 2) Fail(DISP_E_TYPEMISMATCH);
    const auto extent = [&](UINT dimension) {
      LONG first = 0, last = -1;
      Check(SafeArrayGetLBound(value.parray, dimension, &first));
      Check(SafeArrayGetUBound(value.parray, dimension, &last));
      return static_cast<std::size_t>(last - first + 1);
    };
    rows_ = extent(1);
    if (rows_ > 0 && extent(2) != columns) Fail(DISP_E_TYPEMISMATCH);
    void* values = nullptr;
    Check(SafeArrayAccessData(value.parray, &values));
    array_ = value.parray;
    values_ = static_cast<const VARIANT*>(values);
  }
  Cells(const Cells&) = delete;
  Cells& operator=(const Cells&) = delete;
  ~Cells() {
    if (array_ != nullptr) SafeArrayUnaccessData(array_);
  }
  std::size_t Rows() const { return rows_; }
  // The first index varies fastest.
  const VARIANT& At(std::size_t row, Cell cell) const { return values_[row + cell * rows_]; }

 private:
  SAFEARRAY* array_ = nullptr;
  const VARIANT* values_ = nullptr;
  std::size_t rows_ = 0;
};

bool Is_Absent(const VARIANT& value) {
  return value.vt == VT_EMPTY || value.vt == VT_NULL;
}
// Neither absent nor a failure to tell.
bool Is_Told(const VARIANT& value) {
  return !Is_Absent(value) && value.vt != VT_ERROR;
}

std::string Text_In(const VARIANT& value) {
  return Is_Told(value) ? Variant::Copy_Of(value).Text() : std::string();
}

class Automation_Table : public Table {
 public:
  Automation_Table(Session_Ptr session, Ptr<IDispatch> table,
                   std::function<Item_Ptr(const std::string&)> find)
      : session_(std::move(session)), table_(std::move(table)), find_(std::move(find)) {
    const Ptr<IDispatch> columns =
        Invoke(session_->table, *table_, Member::Columns, DISPATCH_PROPERTYGET).Object();
    if (!columns) Fail(E_NOINTERFACE);
    Invoke(session_->columns, *columns, Member::RemoveAll, DISPATCH_METHOD);
    for (std::size_t cell = 0; cell < cell_count; ++cell) {
      if (Add_Column(*columns, static_cast<Cell>(cell))) continue;
      if (cell != attachments)
        throw Automation_Error(automation_error::not_supported,
                               std::string("The folder's table has no column ") + column_names[cell][0] + ".",
                               "Outlook");
      tells_attachments_ = false;
    }
  }

  std::vector<Table_Row> GetArray(std::int32_t most) override {
    const Variant count(most);
    const Variant answer = Invoke(session_->table, *table_, Member::GetArray, DISPATCH_METHOD, {&count});
    const Cells cells(answer, tells_attachments_ ? cell_count : attachments);
    std::vector<Table_Row> rows;
    rows.reserve(cells.Rows());
    for (std::size_t row = 0; row < cells.Rows(); ++row) rows.push_back(Row(cells, row));
    return rows;
  }

 private:
  Variant Invoke(Member_Ids& ids, IDispatch& object, Member member, WORD kind,
                 std::initializer_list<const Variant*> arguments = {}) {
    return session_->caller.Invoke(object, ids.Of(session_->caller, object, member), kind, arguments);
  }

  // False where the table refuses the column under each of its names.
  bool Add_Column(IDispatch& columns, Cell cell) {
    for (const char* const column : column_names[cell]) {
      if (column == nullptr) break;
      const Variant name(column);
      try {
        Invoke(session_->columns, columns, Member::Add, DISPATCH_METHOD, {&name});
        by_property_[cell] = column[0] == 'h';
        return true;
      } catch (const Automation_Error& error) {
        if (error.Number() == automation_error::unavailable) throw;
      }
    }
    return false;
  }

  Date Day_In(const VARIANT& value, Cell cell) const {
    if (!Is_Told(value)) return no_date;
    const Date date = Variant::Copy_Of(value).Day();
    // A property that stands for "none" is that day in UTC.
    if (date >= no_date - 1) return no_date;
    return by_property_[cell] && cell != due ? Local_From_Utc(date) : date;
  }

  Table_Row Row(const Cells& cells, std::size_t number) {
    const auto value = [&](Cell cell) -> const VARIANT& { return cells.At(number, cell); };
    const auto day = [&](Cell cell) { return Day_In(value(cell), cell); };
    const auto is_true = [&](Cell cell) {
      return Is_Told(value(cell)) && Variant::Copy_Of(value(cell)).Truth();
    };
    Table_Row row;
    row.EntryID = Text_In(value(entry_id));
    row.Class = Item_Class_Of(Text_In(value(message_class)), 0);
    row.Subject = Text_In(value(subject));
    row.SenderOrText = Text_In(value(row.Class == item_class::mail ? sender : text));
    row.ReceivedTime = day(received);
    row.LastModificationTime = day(modified);
    row.DateCompleted = day(completed);
    row.DueDate = day(due);
    row.End = day(end);
    row.UnRead = is_true(unread);
    // What fails to say counts as marked, and stays.
    if (!Is_Absent(value(flag)))
      row.FlagStatus =
          value(flag).vt == VT_ERROR ? flag_status::marked : Variant::Copy_Of(value(flag)).Number();
    if (Is_Told(value(size))) row.Size = Variant::Copy_Of(value(size)).Number();
    row.HasAttachments = tells_attachments_ && is_true(attachments);
    Complete(row, is_true(recurring));
    return row;
  }

  // Asks the item itself where the row does not tell its class, or the date that it goes by. A series' row
  // tells the end of its first occurrence.
  void Complete(Table_Row& row, bool is_series) {
    const auto received_counts = [&] {
      return row.Class == item_class::mail || (row.Class >= item_class::meeting_request &&
                                               row.Class <= item_class::meeting_response_tentative);
    };
    const bool series = is_series && row.Class == item_class::appointment;
    if (series) row.End = no_date;
    const bool ends = row.Class == item_class::appointment || row.Class == item_class::journal;
    if (row.Class != 0 && !series && !(received_counts() && row.ReceivedTime == no_date) &&
        !(ends && row.End == no_date))
      return;
    try {
      const Item_Ptr item = find_(row.EntryID);
      if (row.Class == 0) row.Class = item->Class();
      if (received_counts()) row.ReceivedTime = item->ReceivedTime();
      if (row.Class == item_class::appointment || row.Class == item_class::journal) row.End = item->End();
    } catch (const Automation_Error& error) {
      // An item without a class or a date goes nowhere.
      if (error.Number() == automation_error::unavailable) throw;
    }
  }

  Session_Ptr session_;
  Ptr<IDispatch> table_;
  std::function<Item_Ptr(const std::string&)> find_;
  std::array<bool, cell_count> by_property_{};
  bool tells_attachments_ = true;
};

}  // namespace

Table_Ptr Make_Table(const Session_Ptr& session, Ptr<IDispatch> table,
                     std::function<Item_Ptr(const std::string& entry_id)> find) {
  return std::make_shared<Automation_Table>(session, std::move(table), std::move(find));
}

}  // namespace tidyfold::com
