// Late-bound calls into automation objects. Member ids are looked up once per interface, so that each call
// is one round trip.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <utility>

#include "stores/automation/busy_filter.h"
#include "stores/automation/com.h"

namespace tidyfold::com {

// All members that are called.
enum class Member : std::size_t {
  Add,
  Body,
  Class,
  Columns,
  CompareEntryIDs,
  Count,
  DateCompleted,
  DefaultItemType,
  Delete,
  Display,
  DueDate,
  Duration,
  End,
  EntryID,
  FlagStatus,
  Folders,
  GetArray,
  GetDefaultFolder,
  GetItemFromID,
  GetNamespace,
  GetRecurrencePattern,
  GetTable,
  HrGetOneProp,
  IsRecurring,
  Item,
  Items,
  LastModificationTime,
  MAPIOBJECT,
  Move,
  Name,
  NoEndDate,
  Parent,
  PatternEndDate,
  ReceivedTime,
  Remove,
  RemoveAll,
  StartTime,
  Store,
  StoreID,
  Subject,
  UnRead,
};
inline constexpr std::size_t member_count = static_cast<std::size_t>(Member::UnRead) + 1;

// Makes calls, and retries them while the server is busy.
class Caller {
 public:
  explicit Caller(std::chrono::milliseconds patience) : filter_(patience) {}
  // Asked when the patience has run out: whether to try for as long again.
  void Ask_When_Busy(std::function<bool(const std::string& words)> go_on) {
    go_on_ = std::move(go_on);
    filter_.Take_Up_Patience();
  }
  DISPID Id_Of(IDispatch& object, Member member);
  // Arguments come in their written order.
  Variant Invoke(IDispatch& object, DISPID id, WORD kind,
                 std::initializer_list<const Variant*> arguments = {});

 private:
  template <class Call>
  HRESULT Until_Answered(Call&& call);

  Busy_Filter filter_;
  std::function<bool(const std::string& words)> go_on_;
  bool asking_ = false;
};

// The member ids of one interface.
class Member_Ids {
 public:
  DISPID Of(Caller& caller, IDispatch& object, Member member) {
    std::optional<DISPID>& id = ids_[static_cast<std::size_t>(member)];
    if (!id) id = caller.Id_Of(object, member);
    return *id;
  }
  std::optional<DISPID> Known(Member member) const { return ids_[static_cast<std::size_t>(member)]; }

 private:
  std::array<std::optional<DISPID>, member_count> ids_;
};

// The member ids of items. Each class of item has an interface of its own, and an item's class is not known
// until it has been read. Before that, properties are read by an id that all classes met so far have in
// common; if the item does not know it, the id is looked up in the item itself, and if there is none, its
// class is read. Once an id was another one, nothing is concluded from other classes any more: it might be
// the id of something else. What an item is told to do is always looked up.
class Item_Ids {
 public:
  Variant Invoke(Caller& caller, IDispatch& object, std::optional<std::int32_t> item_class, Member member,
                 WORD kind, std::initializer_list<const Variant*> arguments = {});
  // Reads the class of an item whose class is not known yet.
  std::int32_t Read_Class(Caller& caller, IDispatch& object);

 private:
  std::optional<DISPID> Common(Member member) const;
  const Member_Ids& Meet(Caller& caller, IDispatch& object, std::int32_t item_class);

  std::map<std::int32_t, Member_Ids> classes_;
  bool alike_ = true;
};

}  // namespace tidyfold::com
