#include "stores/sqlite/read_ahead.h"

#include <algorithm>

#include "stores/sqlite/entry_id.h"

namespace tidyfold::sqlite {

namespace {

// A jump may be for a single item; the blocks of a loop grow quickly.
constexpr std::int32_t first_size = 32, largest_size = 512, growth = 4;

// Positions.
constexpr auto before_all = std::numeric_limits<std::int64_t>::min();
constexpr auto behind_all = std::numeric_limits<std::int64_t>::max();

// A block ends early when its texts reach this size.
constexpr std::size_t enough_text = std::size_t{4} << 20;

// Without the folder, which the caller knows.
constexpr std::string_view columns =
    "SELECT id, position, class, unread, received, last_modified, completed, due, ended, sender_or_text, "
    "subject, size, flag";
constexpr int folder_column = 13;  // in by_id_

std::string Select(std::string_view rest) {
  return std::string(columns).append(rest);
}

// Null reads as 0. Most items have the usual dates and few the rare ones, so that most dates cost one call of
// SQLite's instead of two.
Date Usual_Date(const Statement& statement, int column) {
  const Date date = statement.Real(column);
  return date == 0 && statement.Is_Null(column) ? no_date : date;
}
Date Rare_Date(const Statement& statement, int column) {
  return statement.Is_Null(column) ? no_date : statement.Real(column);
}

void Append_Row(const Statement& statement, std::int64_t folder, Item_Rows& rows) {
  Item_Row& row = rows.rows.emplace_back();
  row.id = statement.Integer(0);
  row.folder = folder;
  row.position = statement.Integer(1);
  row.item_class = static_cast<std::int32_t>(statement.Integer(2));
  row.unread = statement.Integer(3) != 0;
  row.received = Usual_Date(statement, 4);
  row.last_modified = Usual_Date(statement, 5);
  row.completed = Rare_Date(statement, 6);
  row.due = Rare_Date(statement, 7);
  row.end = Rare_Date(statement, 8);
  row.sender_or_text_at = rows.text.size();
  rows.text += statement.Text(9);
  row.subject_at = rows.text.size();
  rows.text += statement.Text(10);
  row.text_end = rows.text.size();
  row.size = statement.Integer(11);
  row.flag = static_cast<std::int32_t>(statement.Integer(12));
}

}  // namespace

Read_Ahead::Read_Ahead(Database& database)
    : database_(database),
      forwards_(database, Select(" FROM item WHERE folder = ?1 AND position > ?2 ORDER BY position")),
      backwards_(database, Select(" FROM item WHERE folder = ?1 AND position < ?2 ORDER BY position DESC")),
      pass_forwards_(database,
                     "SELECT position FROM item WHERE folder = ?1 AND position > ?2 ORDER BY position "
                     "LIMIT 1 OFFSET ?3"),
      pass_backwards_(database,
                      "SELECT position FROM item WHERE folder = ?1 AND position < ?2 ORDER BY position DESC "
                      "LIMIT 1 OFFSET ?3"),
      by_id_(database, Select(", folder FROM item WHERE id = ?1")),
      attached_(database, "SELECT item FROM attachment WHERE item >= ?1 ORDER BY item LIMIT 1") {}

Found_Item Read_Ahead::At(std::int64_t folder, std::int32_t place, std::int32_t count) {
  Block* block = Find(folder);
  // A loop may look at the last item now and then; this must not cost it its block.
  if (block != nullptr && place == count && place > block->End()) return Last(folder);
  if (block == nullptr || place < block->first || place >= block->End()) {
    const Start start = Best_Start(block, place, count);
    if (block == nullptr) block = &Oldest();
    Fill(*block, folder, place, start);
  }
  block->last_use = ++uses_;
  return {block->rows, block->here[static_cast<std::size_t>(place - block->first)]};
}

Found_Item Read_Ahead::Last(std::int64_t folder) {
  backwards_.Bind(1, folder).Bind(2, behind_all);
  Reading reading(backwards_);
  if (!reading.Next()) Fail_Index();
  auto rows = std::make_shared<Item_Rows>();
  Append_Row(backwards_, folder, *rows);
  return {std::move(rows), 0};
}

std::optional<Found_Item> Read_Ahead::By_Id(std::int64_t id) {
  by_id_.Bind(1, id);
  Reading reading(by_id_);
  if (!reading.Next()) return std::nullopt;
  auto rows = std::make_shared<Item_Rows>();
  Append_Row(by_id_, by_id_.Integer(folder_column), *rows);
  return Found_Item{std::move(rows), 0};
}

std::vector<Table_Row> Read_Ahead::Behind(std::int64_t folder, std::int64_t& position, std::int32_t most) {
  std::vector<Table_Row> rows;
  rows.reserve(static_cast<std::size_t>(std::max(0, most)));
  // No item from `asked` up to `attached` has attachments. Ids mostly ascend with the positions, so that few
  // items cost a question.
  std::int64_t asked = 1, attached = 0;
  forwards_.Bind(1, folder).Bind(2, position);
  Reading reading(forwards_);
  while (static_cast<std::int32_t>(rows.size()) < most && reading.Next()) {
    Table_Row& row = rows.emplace_back();
    const std::int64_t id = forwards_.Integer(0);
    row.EntryID = Item_Entry_Id(id);
    position = forwards_.Integer(1);
    row.Class = static_cast<std::int32_t>(forwards_.Integer(2));
    row.UnRead = forwards_.Integer(3) != 0;
    row.ReceivedTime = Usual_Date(forwards_, 4);
    row.LastModificationTime = Usual_Date(forwards_, 5);
    row.DateCompleted = Rare_Date(forwards_, 6);
    row.DueDate = Rare_Date(forwards_, 7);
    row.End = Rare_Date(forwards_, 8);
    row.SenderOrText = forwards_.Text(9);
    row.Subject = forwards_.Text(10);
    row.Size = forwards_.Integer(11);
    row.FlagStatus = static_cast<std::int32_t>(forwards_.Integer(12));
    if (id < asked || id > attached) {
      attached_.Bind(1, id);
      Reading next(attached_);
      asked = id;
      attached = next.Next() ? attached_.Integer(0) : std::numeric_limits<std::int64_t>::max();
    }
    row.HasAttachments = id == attached;
  }
  return rows;
}

Read_Ahead::Start Read_Ahead::Best_Start(const Block* block, std::int32_t place, std::int32_t count) const {
  Start best{true, before_all, place - 1, false};
  if (count - place < best.skip) best = {false, behind_all, count - place, false};
  if (block != nullptr) {
    if (place >= block->End() && place - block->End() <= best.skip) {
      best = {true, block->high, place - block->End(), place == block->End()};
    } else if (place < block->first && block->first - 1 - place <= best.skip) {
      best = {false, block->low, block->first - 1 - place, place == block->first - 1};
    }
  }
  return best;
}

void Read_Ahead::Fill(Block& block, std::int64_t folder, std::int32_t place, const Start& start) {
  const std::int32_t size = start.continues ? std::min(block.size * growth, largest_size) : first_size;
  // Reuses the memory of the old rows when no item refers to them.
  std::shared_ptr<Item_Rows> rows =
      block.rows.use_count() == 1 ? std::move(block.rows) : std::make_shared<Item_Rows>();
  block = {};
  rows->rows.clear();
  rows->rows.reserve(static_cast<std::size_t>(size));
  rows->text.clear();
  Statement& statement = start.forwards ? forwards_ : backwards_;
  statement.Bind(1, folder).Bind(2, start.skip == 0 ? start.beyond : Pass_Over(folder, start));
  {
    Reading reading(statement);
    while (rows->rows.size() < static_cast<std::size_t>(size) && rows->text.size() < enough_text &&
           reading.Next()) {
      Append_Row(statement, folder, *rows);
    }
  }
  if (rows->rows.empty()) Fail_Index();
  const auto read = static_cast<std::uint32_t>(rows->rows.size());
  block.here.resize(read);
  for (std::uint32_t i = 0; i < read; ++i) block.here[i] = start.forwards ? i : read - 1 - i;
  block.first = start.forwards ? place : place - static_cast<std::int32_t>(read) + 1;
  block.low = rows->rows[block.here.front()].position;
  block.high = rows->rows[block.here.back()].position;
  block.folder = folder;
  block.size = size;
  block.rows = std::move(rows);
}

// Reads only the index, which is much smaller than the rows.
std::int64_t Read_Ahead::Pass_Over(std::int64_t folder, const Start& start) {
  Statement& statement = start.forwards ? pass_forwards_ : pass_backwards_;
  statement.Bind(1, folder).Bind(2, start.beyond).Bind(3, std::int64_t{start.skip} - 1);
  Reading reading(statement);
  if (!reading.Next()) Fail_Index();
  return statement.Integer(0);
}

void Read_Ahead::Fail_Index() const {
  database_.Fail_Damaged("the items of a folder do not match its index");
}

void Read_Ahead::Item_Left(std::int64_t folder, std::int64_t position) {
  Block* block = Find(folder);
  if (block == nullptr || position > block->high) return;
  if (position < block->low) {
    --block->first;
    return;
  }
  const auto& rows = block->rows->rows;
  const auto found =
      std::lower_bound(block->here.begin(), block->here.end(), position,
                       [&](std::uint32_t row, std::int64_t wanted) { return rows[row].position < wanted; });
  if (found != block->here.end() && rows[*found].position == position) block->here.erase(found);
}

void Read_Ahead::Forget(std::int64_t folder) {
  if (Block* block = Find(folder)) *block = {};
}

void Read_Ahead::Forget_All() {
  for (Block& block : blocks_) block = {};
}

Read_Ahead::Block* Read_Ahead::Find(std::int64_t folder) {
  for (Block& block : blocks_) {
    if (block.rows != nullptr && block.folder == folder) return &block;
  }
  return nullptr;
}

Read_Ahead::Block& Read_Ahead::Oldest() {
  return *std::min_element(blocks_.begin(), blocks_.end(), [](const Block& left, const Block& right) {
    return left.last_use < right.last_use;
  });
}

}  // namespace tidyfold::sqlite
