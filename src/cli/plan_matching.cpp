#include "cli/plan_matching.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "base/dates.h"
#include "cli/failure.h"
#include "cli/listing.h"
#include "errors/automation_error.h"

namespace tidyfold::cli {

namespace {

// The place of each node in the walk of a run: what lies below a folder comes before it.
class Walk_Order {
 public:
  explicit Walk_Order(const TreeView& tree) : tree_(tree) {
    if (tree.Exists(1)) Visit(1);
  }
  std::size_t Of(int node) const { return places_.at(node); }

 private:
  void Visit(int node) {
    for (int child = tree_.Child(node); child != 0; child = tree_.Next(child)) Visit(child);
    places_.emplace(node, places_.size());
  }

  const TreeView& tree_;
  std::unordered_map<int, std::size_t> places_;
};

class Plan_Matching {
 public:
  explicit Plan_Matching(Session& session) : session_(session) {}

  Clean_Plan Match(const Filed_Plan& filed) {
    plan_.options = filed.options;
    std::set<std::pair<std::string, std::string>> seen;
    for (const Filed_Stop& stop : filed.stops) {
      if (!seen.emplace(stop.store_id, stop.entry_id).second)
        Fail_Twice("the folder \"" + stop.folder + "\"");
      Match_Stop(stop);
    }
    const Walk_Order order(session_.Window().trvFolders);
    std::sort(plan_.stops.begin(), plan_.stops.end(), [&](const Plan_Stop& left, const Plan_Stop& right) {
      return order.Of(left.folder) < order.Of(right.folder);
    });
    for (const Plan_Stop& stop : plan_.stops) plan_.total.Add(stop.tally);
    plan_.folders_marked = static_cast<std::int32_t>(plan_.stops.size());
    return std::move(plan_);
  }

 private:
  [[noreturn]] static void Fail_Twice(const std::string& what) {
    throw Failure(Exit_Status::Bad_Input, "The plan names " + what +
                                              " twice. Nothing was changed. Make the plan anew with "
                                              "--dry-run --save-plan.");
  }

  void Match_Stop(const Filed_Stop& filed) {
    std::unordered_set<std::string_view> seen;
    for (const Filed_Item& item : filed.items)
      if (!seen.insert(item.entry_id).second) Fail_Twice("\"" + item.subject + "\"");
    const int folder = session_.Find_Node(filed.store_id, filed.entry_id);
    if (folder == 0) {
      const int top = Top_Of(filed.store_id);
      const std::string reason = "Its folder \"" + filed.folder + "\" is no longer there.";
      for (const Filed_Item& item : filed.items) Keep(top, item, reason);
      return;
    }
    const FolderData& record = session_.Records()[folder];
    if (record.Protected) {
      for (const Filed_Item& item : filed.items) Keep(folder, item, "Its folder is protected.");
      return;
    }
    std::unordered_map<std::string_view, std::int32_t> numbers;
    for (std::int32_t number = 1; number <= record.CachedCount; ++number)
      numbers.emplace(record.Cached(number).EntryID, number);
    Plan_Stop stop;
    stop.folder = folder;
    stop.destination = plan_.options.permanent ? Destination::For_Good : Destination::Deleted_Items;
    for (const Filed_Item& item : filed.items) {
      const auto found = numbers.find(item.entry_id);
      const std::string reason = found == numbers.end() ? Why_Not_There(filed.store_id, item)
                                                        : What_Differs(item, record.Cached(found->second));
      if (!reason.empty()) {
        Keep(folder, item, reason);
        continue;
      }
      stop.items.push_back({found->second, item.entry_id});
      stop.tally.Add(record.Cached(found->second));
    }
    // In the order of the cache.
    std::sort(stop.items.begin(), stop.items.end(),
              [](const Planned_Item& left, const Planned_Item& right) { return left.item < right.item; });
    plan_.stops.push_back(std::move(stop));
  }

  int Top_Of(const std::string& store_id) const {
    for (const Store_Folder& folder : session_.Folders())
      if (folder.folder->Parent() == nullptr && folder.folder->StoreID() == store_id)
        return session_.Node(folder);
    return 0;
  }

  std::string Why_Not_There(const std::string& store_id, const Filed_Item& item) {
    try {
      session_.Program().session.name_space->GetItemFromID(item.entry_id, store_id);
    } catch (const Automation_Error& error) {
      if (error.Number() != automation_error::not_found) throw;
      return "It is no longer there.";
    }
    return "It lies in another folder now.";
  }

  // Empty when the item is what was planned.
  static std::string What_Differs(const Filed_Item& planned, const ItemData& now) {
    if (now.Unread != planned.unread) return planned.unread ? "It has been read." : "It has become unread.";
    if (now.Flagged != planned.flagged)
      return planned.flagged ? "Its flag has been removed." : "It has been flagged.";
    if (now.ItemClass != planned.item_class) return "It is of another type now.";
    if (now.Subject != planned.subject && Filed_Text(now.Subject) != planned.subject)
      return "Its subject is another.";
    if (Date_Text(now) != planned.date) return "Its date is another.";
    return {};
  }

  void Keep(int folder, const Filed_Item& item, const std::string& reason) {
    ItemData shown;
    shown.ItemClass = item.item_class;
    shown.Subject = item.subject;
    shown.ItemDate = Parse_Date(item.date).value_or(no_date);
    shown.Unread = item.unread;
    shown.Flagged = item.flagged;
    shown.EntryID = item.entry_id;
    plan_.kept.push_back({folder, std::move(shown), reason});
  }

  Session& session_;
  Clean_Plan plan_;
};

}  // namespace

void Check_Stores(const Filed_Plan& filed, const Session& session) {
  std::set<std::string> open;
  for (const Store_Folder& folder : session.Folders()) open.insert(folder.folder->StoreID());
  const auto demand = [&](const std::string& id, const std::string& store) {
    if (!open.contains(id))
      throw Failure(Exit_Status::Bad_Input, "The plan takes items of the store " + store +
                                                ", which is not open. Name its file with --store.");
  };
  for (const Filed_Store& store : filed.stores)
    demand(store.id, "\"" + store.name + "\" (" + store.place + ")");
  // Also where the list of stores has been changed by hand.
  for (const Filed_Stop& stop : filed.stops) demand(stop.store_id, "of \"" + stop.folder + "\"");
}

Clean_Plan Match_Plan(const Filed_Plan& filed, Session& session) {
  return Plan_Matching(session).Match(filed);
}

}  // namespace tidyfold::cli
