// Makes a loop over Items.Item(i) cost about as much as one ordered SELECT.
//
// Items are asked for one at a time by their place, their index in the folder. Rows are read in growing
// blocks in the direction of the loop, each block starting at the position of the last row. A jump has to
// count rows in the index, unless it is to the last item. Removals adjust the blocks, so that a loop that
// deletes what it reads keeps the rows that were read ahead, and a place never refers to the wrong item.
#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "outlook/object_model.h"
#include "stores/sqlite/database.h"

namespace tidyfold::sqlite {

struct Item_Row {
  std::int64_t id = 0;
  std::int64_t folder = 0, position = 0;  // when the row was read
  Date received = no_date, last_modified = no_date, completed = no_date, due = no_date, end = no_date;
  std::int64_t size = 0;
  std::int32_t item_class = 0;
  std::int32_t flag = 0;  // a flag_status number
  bool unread = false;
  std::size_t sender_or_text_at = 0, subject_at = 0, text_end = 0;  // in Item_Rows::text
};

// All rows share one buffer for their texts, which saves several allocations per row.
struct Item_Rows {
  std::vector<Item_Row> rows;
  std::string text;

  std::string_view Sender_Or_Text(const Item_Row& row) const {
    return std::string_view(text).substr(row.sender_or_text_at, row.subject_at - row.sender_or_text_at);
  }
  std::string_view Subject(const Item_Row& row) const {
    return std::string_view(text).substr(row.subject_at, row.text_end - row.subject_at);
  }
};

struct Found_Item {
  std::shared_ptr<const Item_Rows> rows;
  std::size_t row = 0;
  const Item_Row& Row() const { return rows->rows[row]; }
};

class Read_Ahead {
 public:
  explicit Read_Ahead(Database& database);

  // `place` is from 1 to `count`, the number of items in the folder.
  Found_Item At(std::int64_t folder, std::int32_t place, std::int32_t count);
  std::optional<Found_Item> By_Id(std::int64_t id);
  // The next items of the folder, no more than `most`, from those behind `position` on, which moves with
  // them.
  std::vector<Table_Row> Behind(std::int64_t folder, std::int64_t& position, std::int32_t most);

  // To be called when an item has left the folder. New items need no call: their positions are higher than
  // all others.
  void Item_Left(std::int64_t folder, std::int64_t position);
  void Forget(std::int64_t folder);
  void Forget_All();

 private:
  // All items of the folder with positions from `low` to `high`.
  struct Block {
    std::int64_t folder = 0;
    std::int32_t first = 1;           // the place of here[0]
    std::vector<std::uint32_t> here;  // rows that are still in the folder, in order
    std::int64_t low = 0, high = 0;
    std::shared_ptr<Item_Rows> rows;  // null if the block is empty
    std::int32_t size = 0;            // rows asked for
    std::uint64_t last_use = 0;

    std::int32_t End() const { return first + static_cast<std::int32_t>(here.size()); }
  };
  // Where to start reading, and in which direction.
  struct Start {
    bool forwards = true;
    std::int64_t beyond = 0;  // the position to start after or, backwards, before
    std::int32_t skip = 0;    // rows to skip first
    bool continues = false;   // starts where a block ends
  };

  Start Best_Start(const Block* block, std::int32_t place, std::int32_t count) const;
  void Fill(Block& block, std::int64_t folder, std::int32_t place, const Start& start);
  Found_Item Last(std::int64_t folder);
  std::int64_t Pass_Over(std::int64_t folder, const Start& start);
  [[noreturn]] void Fail_Index() const;
  Block* Find(std::int64_t folder);
  Block& Oldest();

  Database& database_;
  Statement forwards_, backwards_, pass_forwards_, pass_backwards_, by_id_, attached_;
  std::array<Block, 4> blocks_;
  std::uint64_t uses_ = 0;
};

}  // namespace tidyfold::sqlite
