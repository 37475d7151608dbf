// The part of a store that reads, adds, moves and removes items.
#include <utility>

#include "base/text.h"
#include "errors/automation_error.h"
#include "stores/sqlite/entry_id.h"
#include "stores/sqlite/store.h"

namespace tidyfold::sqlite {

namespace {

void Bind_Date(Statement& statement, int parameter, Date date) {
  if (date == no_date) {
    statement.Bind_Null(parameter);
  } else {
    statement.Bind(parameter, date);
  }
}

}  // namespace

void Store::Fail_Item_Gone() const {
  Fail(automation_error::not_found, "The item is no longer there.");
}

Found_Item Store::Item_At(std::int64_t folder, std::int32_t place) {
  const std::int32_t count = Find_Folder(folder).item_count;
  if (place < 1 || place > count) {
    Fail(automation_error::bad_index, "There is no item " + std::to_string(place) + " in the folder.");
  }
  return read_ahead_->At(folder, place, count);
}

Found_Item Store::Item_By_Id(std::int64_t id) {
  Refresh();
  auto found = read_ahead_->By_Id(id);
  if (!found || folders_.Find(found->Row().folder) == nullptr) Fail_Item_Gone();
  return *std::move(found);
}

std::vector<Table_Row> Store::Rows_Behind(std::int64_t folder, std::int64_t& position, std::int32_t most) {
  Find_Folder(folder);
  return read_ahead_->Behind(folder, position, most);
}

Item_Place Store::Locate(std::int64_t id) {
  Refresh();
  Statement& locate = statements_->locate;
  locate.Bind(1, id);
  Reading reading(locate);
  if (!reading.Next()) Fail_Item_Gone();
  const Item_Place place{locate.Integer(0), locate.Integer(1)};
  if (folders_.Find(place.folder) == nullptr) Fail_Item_Gone();
  return place;
}

std::string Store::Sender(std::int64_t id) {
  Statement& content = statements_->content;
  content.Bind(1, id);
  Reading reading(content);
  return reading.Next() ? std::string(content.Text(0)) : std::string();
}

std::string Store::Body(std::int64_t id) {
  Statement& content = statements_->content;
  content.Bind(1, id);
  Reading reading(content);
  if (!reading.Next()) database_->Fail_Damaged("an item has lost its text");
  return Unpacked(content.Text(7), static_cast<std::size_t>(content.Integer(6)));
}

std::string Store::Unpacked(std::string_view packed, std::size_t bytes) {
  auto text = packer_.Unpack(packed, bytes);
  if (!text) database_->Fail_Damaged("the text of an item cannot be read");
  return *std::move(text);
}

New_Item Store::Read_Whole(const Found_Item& item) {
  const Item_Row& row = item.Row();
  New_Item whole;
  whole.item_class = row.item_class;
  whole.subject = item.rows->Subject(row);
  whole.unread = row.unread;
  whole.flagged = row.flag == flag_status::marked;
  whole.size = row.size;
  whole.received = row.received;
  whole.last_modified = row.last_modified;
  whole.completed = row.completed;
  whole.due = row.due;
  whole.end = row.end;
  {
    Statement& content = statements_->content;
    content.Bind(1, row.id);
    Reading reading(content);
    if (!reading.Next()) database_->Fail_Damaged("an item has lost its text");
    whole.sender = row.item_class == item_class::mail ? item.rows->Sender_Or_Text(row) : content.Text(0);
    whole.sender_address = content.Text(1);
    whole.recipients = content.Text(2);
    whole.message_id = content.Text(3);
    whole.list_id = content.Text(4);
    whole.answered = content.Integer(5) != 0;
    whole.identity = content.Integer(8);
    const auto body_bytes = static_cast<std::size_t>(content.Integer(6));
    std::string texts = Unpacked(content.Text(7), Packer::everything);
    if (texts.size() < body_bytes) database_->Fail_Damaged("the text of an item is cut short");
    whole.body = texts.substr(0, body_bytes);
    texts.erase(0, body_bytes);
    whole.raw_message = std::move(texts);
  }
  Statement& attachments = statements_->attachments;
  attachments.Bind(1, row.id);
  Reading reading(attachments);
  while (reading.Next()) {
    whole.attachments.push_back({std::string(attachments.Text(0)), attachments.Integer(1),
                                 Unpacked(attachments.Text(2), Packer::everything)});
  }
  return whole;
}

std::int64_t Store::Count_Of(std::int64_t identity) {
  Statement& alike = statements_->alike;
  alike.Bind(1, identity);
  Reading reading(alike);
  return reading.Next() ? alike.Integer(0) : 0;
}

std::int64_t Store::Fill_Identities(std::int64_t after, std::int32_t most,
                                    const std::function<std::int64_t(const New_Item&)>& identity_of) {
  if (after == 0) {
    // Two indexes tell that there is nothing to do; finding what there is reads all contents.
    Reading reading(statements_->unknown);
    if (!reading.Next() || statements_->unknown.Integer(0) == 0) return 0;
  }
  std::vector<std::int64_t> items;
  {
    Statement& without = statements_->without_identity;
    without.Bind(1, after).Bind(2, std::int64_t{most});
    Reading reading(without);
    while (reading.Next()) items.push_back(without.Integer(0));
  }
  Change([&] {
    for (const std::int64_t item : items) {
      const std::int64_t identity = identity_of(Read_Whole(Item_By_Id(item)));
      statements_->set_identity.Bind(1, item).Bind(2, identity).Run();
    }
  });
  return items.empty() ? 0 : items.back();
}

void Store::Display(const Found_Item& item, std::int64_t folder) {
  if (!display_) {
    Fail(automation_error::not_supported, "There is no window here that could show an item.");
  }
  Displayed_Item shown{Read_Whole(item), Item_Entry_Id(item.Row().id), store_id_, Find_Folder(folder).name};
  display_(shown);
}

void Store::Item_Left(Item_Place place) {
  ++age_;
  --Find_Folder(place.folder).item_count;
  read_ahead_->Item_Left(place.folder, place.position);
}

Item_Place Store::Move_Item(std::int64_t id, Item_Place place, std::int64_t folder) {
  Folder_Record& target = Find_Folder(folder);
  const Item_Place goal{folder, target.last_position + 1};
  Change([&] {
    statements_->move.Bind(1, id).Bind(2, goal.folder).Bind(3, goal.position).Run();
    if (database_->Changes() != 1) Fail_Item_Gone();
    Item_Left(place);
    ++target.item_count;
    target.last_position = goal.position;
  });
  return goal;
}

Item_Place Store::Delete_Item(std::int64_t id, Item_Place place) {
  Refresh();
  const Folder_Record* target = folders_.Deleted_Items();
  if (target == nullptr) {
    Fail(automation_error::not_found,
         "The store has no \"Deleted Items\" folder that the item could be moved to.");
  }
  if (place.folder != target->id) return Move_Item(id, place, target->id);
  Remove_Item(id, place);
  return {};
}

void Store::Remove_Item(std::int64_t id, Item_Place place) {
  Change([&] {
    statements_->remove.Bind(1, id).Run();
    if (database_->Changes() != 1) Fail_Item_Gone();
    Item_Left(place);
  });
}

std::int64_t Store::Add_Item(std::int64_t folder, const New_Item& item) {
  Folder_Record& target = Find_Folder(folder);
  const std::int64_t id = next_item_;
  const Item_Place place{folder, target.last_position + 1};
  Change([&] {
    In_Savepoint([&] { Insert_Item(id, place, item); });
    ++next_item_;
    ++target.item_count;
    target.last_position = place.position;
  });
  return id;
}

void Store::Insert_Item(std::int64_t id, Item_Place place, const New_Item& item) {
  const bool mail = item.item_class == item_class::mail;
  Statement& row = statements_->add_item;
  row.Bind(1, id).Bind(2, place.folder).Bind(3, place.position);
  row.Bind(4, std::int64_t{item.item_class}).Bind(5, std::int64_t{item.unread ? 1 : 0});
  Bind_Date(row, 6, item.received);
  Bind_Date(row, 7, item.last_modified);
  Bind_Date(row, 8, item.completed);
  Bind_Date(row, 9, item.due);
  Bind_Date(row, 10, item.end);
  row.Bind(11, mail ? std::string_view(item.sender) : First_Characters(item.body, row_characters));
  row.Bind(12, item.subject).Bind(13, item.size);
  row.Bind(14, std::int64_t{item.flagged ? flag_status::marked : flag_status::none}).Run();
  Insert_Content(id, item);
}

void Store::Insert_Content(std::int64_t id, const New_Item& item) {
  const bool mail = item.item_class == item_class::mail;
  statements_->add_content.Bind(1, id)
      .Bind(2, mail ? std::string_view() : std::string_view(item.sender))
      .Bind(3, item.sender_address)
      .Bind(4, item.recipients)
      .Bind(5, item.message_id)
      .Bind(6, item.list_id)
      .Bind(7, std::int64_t{item.answered ? 1 : 0})
      .Bind(8, item.identity)
      .Bind(9, static_cast<std::int64_t>(item.body.size()))
      .Bind_Blob(10, packer_.Pack(item.body, item.raw_message))
      .Run();
  std::int64_t number = 0;
  for (const New_Attachment& attachment : item.attachments) {
    Statement& add = statements_->add_attachment;
    add.Bind(1, id).Bind(2, ++number).Bind(3, attachment.name).Bind(4, attachment.size);
    if (attachment.content.empty()) {
      add.Bind_Null(5);
    } else {
      add.Bind_Blob(5, packer_.Pack(attachment.content));
    }
    add.Run();
  }
}

}  // namespace tidyfold::sqlite
