// Calls by name into automation objects, at one round trip each: the ids of names are asked for once per
// interface.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>

#include "stores/automation/busy_filter.h"
#include "stores/automation/com.h"

namespace tidyfold::com {

// Every name that is called.
enum class Member : std::size_t {
  Add,
  Body,
  Class,
  Count,
  DateCompleted,
  DefaultItemType,
  Delete,
  Display,
  DueDate,
  End,
  EntryID,
  Folders,
  GetDefaultFolder,
  GetItemFromID,
  GetNamespace,
  HrGetOneProp,
  Item,
  Items,
  LastModificationTime,
  MAPIOBJECT,
  Move,
  Name,
  Parent,
  ReceivedTime,
  Remove,
  Store,
  StoreID,
  Subject,
  UnRead,
};
inline constexpr std::size_t member_count = static_cast<std::size_t>(Member::UnRead) + 1;

// Makes the calls, and makes them again while the other side is busy.
class Caller {
 public:
  explicit Caller(std::chrono::milliseconds patience) : filter_(patience) {}
  DISPID Id_Of(IDispatch& object, Member member);
  // Arguments in the order in which they are written.
  Variant Invoke(IDispatch& object, DISPID id, WORD kind,
                 std::initializer_list<const Variant*> arguments = {});

 private:
  template <class Call>
  HRESULT Until_Answered(Call&& call);

  Busy_Filter filter_;
};

// The ids of one interface's names.
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

// The same for items, which come in as many interfaces as there are classes, and whose class is known only
// once it has been read. Until then an item is asked by the ids that the names have in every class met so
// far, and by its own where it does not know these; a name whose ids differ from class to class is looked up
// in each such object.
//
// Whoever fetches an item by its identifier has read it before, so its class has been met.
class Item_Ids {
 public:
  Variant Invoke(Caller& caller, IDispatch& object, std::optional<std::int32_t> item_class, Member member,
                 WORD kind, std::initializer_list<const Variant*> arguments = {});
  // Reads the class of an item of unknown class.
  std::int32_t Read_Class(Caller& caller, IDispatch& object);

 private:
  std::optional<DISPID> Common(Member member) const;
  const Member_Ids& Meet(Caller& caller, IDispatch& object, std::int32_t item_class);

  std::map<std::int32_t, Member_Ids> classes_;
};

}  // namespace tidyfold::com
