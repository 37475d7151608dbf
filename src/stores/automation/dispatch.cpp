#include "stores/automation/dispatch.h"

#include <vector>

#include "base/flag_scope.h"
#include "errors/automation_error.h"

namespace tidyfold::com {

namespace {

constexpr std::array<const wchar_t*, member_count> names = {
    L"Add",
    L"Body",
    L"Class",
    L"Columns",
    L"CompareEntryIDs",
    L"Count",
    L"DateCompleted",
    L"DefaultItemType",
    L"Delete",
    L"Display",
    L"DueDate",
    L"Duration",
    L"End",
    L"EntryID",
    L"FlagStatus",
    L"Folders",
    L"GetArray",
    L"GetDefaultFolder",
    L"GetItemFromID",
    L"GetNamespace",
    L"GetRecurrencePattern",
    L"GetTable",
    L"HrGetOneProp",
    L"IsRecurring",
    L"Item",
    L"Items",
    L"LastModificationTime",
    L"MAPIOBJECT",
    L"Move",
    L"Name",
    L"NoEndDate",
    L"Parent",
    L"PatternEndDate",
    L"ReceivedTime",
    L"Remove",
    L"RemoveAll",
    L"StartTime",
    L"Store",
    L"StoreID",
    L"Subject",
    L"UnRead",
};

// Members that are called before an item's class is known.
constexpr Member before_class[] = {Member::Class, Member::Delete, Member::Display, Member::EntryID,
                                   Member::Move,  Member::Parent, Member::Subject};

}  // namespace

template <class Call>
HRESULT Caller::Until_Answered(Call&& call) {
  ULONGLONG begin = GetTickCount64();
  while (true) {
    const HRESULT result = call();
    if (!Is_Busy(result)) return result;
    if (filter_.Wait_To_Call_Again(static_cast<DWORD>(GetTickCount64() - begin))) continue;
    // A handler that runs while the question is open may make calls of its own; these ask nothing.
    if (!go_on_ || asking_ || filter_.Is_Impatient()) return result;
    const Flag_Scope asking(asking_);
    if (!go_on_({})) return filter_.Lose_Patience(), result;
    begin = GetTickCount64();
  }
}

DISPID Caller::Id_Of(IDispatch& object, Member member) {
  LPOLESTR name = const_cast<LPOLESTR>(names[static_cast<std::size_t>(member)]);
  DISPID id = DISPID_UNKNOWN;
  Check(Until_Answered([&] { return object.GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id); }));
  return id;
}

Variant Caller::Invoke(IDispatch& object, DISPID id, WORD kind,
                       std::initializer_list<const Variant*> arguments) {
  // Passed from last to first. The caller keeps ownership.
  std::vector<VARIANT> reversed(arguments.size());
  std::size_t place = arguments.size();
  for (const Variant* argument : arguments) reversed[--place] = argument->Raw();
  DISPPARAMS parameters{};
  parameters.rgvarg = reversed.data();
  parameters.cArgs = static_cast<UINT>(reversed.size());
  Variant answer;
  EXCEPINFO told{};
  const HRESULT result = Until_Answered([&] {
    return object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, kind, &parameters, &answer.Raw(), &told, nullptr);
  });
  if (FAILED(result)) Fail(result, &told);
  return answer;
}

std::optional<DISPID> Item_Ids::Common(Member member) const {
  std::optional<DISPID> common;
  if (!alike_) return std::nullopt;
  for (const auto& [item_class, ids] : classes_) {
    const std::optional<DISPID> id = ids.Known(member);
    if (!id || (common && *common != *id)) return std::nullopt;
    common = id;
  }
  return common;
}

const Member_Ids& Item_Ids::Meet(Caller& caller, IDispatch& object, std::int32_t item_class) {
  const auto found = classes_.find(item_class);
  if (found != classes_.end()) return found->second;
  Member_Ids ids;
  for (const Member member : before_class) ids.Of(caller, object, member);
  return classes_.emplace(item_class, ids).first->second;
}

Variant Item_Ids::Invoke(Caller& caller, IDispatch& object, std::optional<std::int32_t> item_class,
                         Member member, WORD kind, std::initializer_list<const Variant*> arguments) {
  const auto invoke = [&](DISPID id) { return caller.Invoke(object, id, kind, arguments); };
  if (item_class) return invoke(classes_[*item_class].Of(caller, object, member));
  if (kind == DISPATCH_METHOD) return invoke(caller.Id_Of(object, member));
  const std::optional<DISPID> guess = Common(member);
  if (!guess) {
    const std::int32_t own_class = Read_Class(caller, object);
    return invoke(classes_[own_class].Of(caller, object, member));
  }
  try {
    return invoke(*guess);
  } catch (const Automation_Error& error) {
    if (error.Number() == automation_error::unavailable) throw;
    const DISPID own = caller.Id_Of(object, member);
    if (own == *guess) throw;
    alike_ = false;
    return invoke(own);
  }
}

std::int32_t Item_Ids::Read_Class(Caller& caller, IDispatch& object) {
  const auto read = [&](DISPID id) { return caller.Invoke(object, id, DISPATCH_PROPERTYGET).Number(); };
  const std::optional<DISPID> guess = Common(Member::Class);
  std::optional<std::int32_t> answer;
  try {
    if (guess) answer = read(*guess);
  } catch (const Automation_Error& error) {
    if (error.Number() == automation_error::unavailable) throw;
  }
  if (answer && classes_.contains(*answer)) return *answer;
  const DISPID own = caller.Id_Of(object, Member::Class);
  if (guess && own != *guess) alike_ = false;
  const std::int32_t item_class = answer && own == guess ? *answer : read(own);
  Meet(caller, object, item_class);
  return item_class;
}

}  // namespace tidyfold::com
