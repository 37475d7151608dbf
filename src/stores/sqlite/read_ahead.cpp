#include "stores/sqlite/read_ahead.h"

#include <algorithm>

namespace tidyfold::sqlite {

namespace {

// A jump may be for one item alone; a loop soon reads in large blocks.
constexpr std::int32_t first_size = 32, largest_size = 512, growth = 4;

// A block ends early when its texts have become long.
constexpr std::size_t enough_text = std::size_t{4} << 20;

constexpr std::string_view columns =
    "SELECT id, folder, position, class, unread, received, last_modified, completed, due, ended, "
    "sender_or_text, subject FROM item ";

std::string Select(std::string_view rest) {
  return std::string(columns).append(rest);
}

Date Date_Of(const Statement& statement, int column) {
  return statement.Is_Null(column) ? no_date : statement.Real(column);
}

void Append_Row(const Statement& statement, Item_Rows& rows) {
  Item_Row& row = rows.rows.emplace_back();
  row.id = statement.Integer(0);
  row.folder = statement.Integer(1);
  row.position = statement.Integer(2);
  row.item_class = static_cast<std::int32_t>(statement.Integer(3));
  row.unread = statement.Integer(4) != 0;
  row.received = Date_Of(statement, 5);
  row.last_modified = Date_Of(statement, 6);
  row.completed = Date_Of(statement, 7);
  row.due = Date_Of(statement, 8);
  row.end = Date_Of(statement, 9);
  row.sender_or_text_at = rows.text.size();
  rows.text += statement.Text(10);
  row.subject_at = rows.text.size();
  rows.text += statement.Text(11);
  row.text_end = rows.text.size();
}

}  // namespace

Read_Ahead::Read_Ahead(Database& database)
    : database_(database),
      forwards_(database, Select("WHERE folder = ?1 AND position > ?2 ORDER BY position LIMIT ?3 OFFSET ?4")),
      backwards_(database,
                 Select("WHERE folder = ?1 AND position < ?2 ORDER BY position DESC LIMIT ?3 OFFSET ?4")),
      by_id_(database, Select("WHERE id = ?1")) {}

Found_Item Read_Ahead::At(std::int64_t folder, std::int32_t place, std::int32_t count) {
  Block* block = Find(folder);
  if (block == nullptr || place < block->first || place >= block->End()) {
    const Start start = Best_Start(block, place, count);
    if (block == nullptr) block = &Oldest();
    Fill(*block, folder, place, start);
  }
  block->last_use = ++uses_;
  return {block->rows, block->here[static_cast<std::size_t>(place - block->first)]};
}

std::optional<Found_Item> Read_Ahead::By_Id(std::int64_t id) {
  by_id_.Bind(1, id);
  Reading reading(by_id_);
  if (!reading.Next()) return std::nullopt;
  auto rows = std::make_shared<Item_Rows>();
  Append_Row(by_id_, *rows);
  return Found_Item{std::move(rows), 0};
}

Read_Ahead::Start Read_Ahead::Best_Start(const Block* block, std::int32_t place, std::int32_t count) const {
  constexpr auto before_all = std::numeric_limits<std::int64_t>::min();
  constexpr auto behind_all = std::numeric_limits<std::int64_t>::max();
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
  // Nobody else looks at the old rows: their memory serves again.
  std::shared_ptr<Item_Rows> rows =
      block.rows.use_count() == 1 ? std::move(block.rows) : std::make_shared<Item_Rows>();
  block = {};
  rows->rows.clear();
  rows->rows.reserve(static_cast<std::size_t>(size));
  rows->text.clear();
  Statement& statement = start.forwards ? forwards_ : backwards_;
  statement.Bind(1, folder).Bind(2, start.beyond);
  statement.Bind(3, std::int64_t{size}).Bind(4, std::int64_t{start.skip});
  {
    Reading reading(statement);
    while (rows->text.size() < enough_text && reading.Next()) Append_Row(statement, *rows);
  }
  if (rows->rows.empty()) database_.Fail_Damaged("the items of a folder do not match its index");
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
