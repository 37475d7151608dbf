#include "stores/sqlite/folder_tree.h"

#include <algorithm>
#include <unordered_set>

#include "base/text.h"
#include "outlook/default_folders.h"

namespace tidyfold::sqlite {

namespace {

bool Stands_Before(const Folder_Record* left, const Folder_Record* right) {
  const int order = Compare_Ignoring_Case(left->name, right->name);
  return order != 0 ? order < 0 : left->id < right->id;
}

}  // namespace

std::vector<std::int64_t> Folder_Tree::Load(Database& database) {
  folders_.clear();
  top_ = last_found_ = nullptr;
  std::vector<std::pair<std::int64_t, std::int64_t>> parents;
  std::vector<std::int64_t> removed;
  Statement statement(database, "SELECT id, parent, name, item_type, removed, protected FROM folder");
  while (statement.Step()) {
    const std::int64_t id = statement.Integer(0);
    if (statement.Integer(4) != 0) {
      removed.push_back(id);
      continue;
    }
    Folder_Record& folder = folders_[id];
    folder.id = id;
    folder.name = statement.Text(2);
    folder.item_type = static_cast<std::int32_t>(statement.Integer(3));
    folder.is_protected = statement.Integer(5) != 0;
    if (statement.Is_Null(1)) {
      if (top_ != nullptr) database.Fail_Damaged("it has more than one top folder");
      top_ = &folder;
    } else {
      parents.emplace_back(id, statement.Integer(1));
    }
  }
  if (top_ == nullptr) database.Fail_Damaged("it has no top folder");
  for (const auto& [id, parent] : parents) {
    if (Folder_Record* above = Find(parent)) {
      Folder_Record& folder = folders_[id];
      folder.parent = above;
      above->children.push_back(&folder);
    }
  }
  std::unordered_set<std::int64_t> reached;
  for (Folder_Record* folder : With_All_Below(*top_)) {
    std::sort(folder->children.begin(), folder->children.end(), Stands_Before);
    reached.insert(folder->id);
  }
  std::erase_if(folders_, [&](const auto& entry) { return !reached.contains(entry.first); });
  last_found_ = nullptr;
  Count_Items(database);
  deleted_items_ = Default_Folder(default_folder_deleted_items);
  return removed;
}

void Folder_Tree::Count_Items(Database& database) {
  Statement statement(database,
                      "SELECT folder, COUNT(*), MAX(position) FROM item INDEXED BY item_by_position "
                      "GROUP BY folder");
  while (statement.Step()) {
    if (Folder_Record* folder = Find(statement.Integer(0))) {
      folder->item_count = static_cast<std::int32_t>(statement.Integer(1));
      folder->last_position = statement.Integer(2);
    }
  }
}

Folder_Record* Folder_Tree::Find(std::int64_t id) {
  if (last_found_ != nullptr && last_found_->id == id) return last_found_;
  const auto found = folders_.find(id);
  last_found_ = found == folders_.end() ? nullptr : &found->second;
  return last_found_;
}

Folder_Record& Folder_Tree::Add(std::int64_t id, Folder_Record& parent, const std::string& name,
                                std::int32_t item_type) {
  Folder_Record& folder = folders_[id];
  folder.id = id;
  folder.parent = &parent;
  folder.name = name;
  folder.item_type = item_type;
  auto& siblings = parent.children;
  siblings.insert(std::upper_bound(siblings.begin(), siblings.end(), &folder, Stands_Before), &folder);
  deleted_items_ = Default_Folder(default_folder_deleted_items);
  return folder;
}

std::vector<Folder_Record*> Folder_Tree::With_All_Below(Folder_Record& folder) {
  std::vector<Folder_Record*> folders{&folder};
  for (std::size_t i = 0; i < folders.size(); ++i) {
    const auto& children = folders[i]->children;
    folders.insert(folders.end(), children.begin(), children.end());
  }
  return folders;
}

void Folder_Tree::Remove(Folder_Record& folder) {
  const std::vector<Folder_Record*> doomed = With_All_Below(folder);
  if (folder.parent != nullptr) std::erase(folder.parent->children, &folder);
  for (const Folder_Record* one : doomed) folders_.erase(one->id);
  last_found_ = nullptr;
  deleted_items_ = Default_Folder(default_folder_deleted_items);
}

Folder_Record* Folder_Tree::Default_Folder(std::int32_t type) {
  const auto* wanted = Find_Default_Folder(type);
  Folder_Record* found = nullptr;
  if (wanted == nullptr) return found;
  for (Folder_Record* child : top_->children)
    if (child->name == wanted->name && (found == nullptr || child->id < found->id)) found = child;
  return found;
}

}  // namespace tidyfold::sqlite
