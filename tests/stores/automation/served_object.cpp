#include <algorithm>
#include <set>

#include "errors/automation_error.h"
#include "served_outlook.h"

namespace tidyfold::test_server {

namespace {

constexpr std::size_t most_names = 128, first_unlike = 1000;

// Names in order of first use, after the one with a fixed id.
std::vector<std::string>& Names() {
  static std::vector<std::string> names = {"GetProps"};
  return names;
}

std::size_t Place(const std::string& name) {
  const auto found = std::find(Names().begin(), Names().end(), name);
  const auto place = static_cast<std::size_t>(found - Names().begin());
  if (found == Names().end()) Names().push_back(name);
  return place;
}

}  // namespace

void Switches::Before(const std::string& member) {
  ++calls_of[""];
  ++calls_of[member];
  if (vanish_in > 0 && --vanish_in == 0) vanish();
  if (member != fail_member || fail_in == 0) return;
  if (fail_in < 0 || --fail_in == 0)
    throw Automation_Error(fail_number, "Outlook says no to " + member + ".", "Test Outlook");
}

Served::Served(Switches& switches, std::string type, std::int32_t item_class)
    : switches_(switches), type_(std::move(type)), class_(static_cast<std::size_t>(item_class)) {
  int& most = switches_.most_open[type_];
  most = std::max(most, ++switches_.open[type_]);
}

// Members of all items have the same id everywhere, the others one for each class.
DISPID Served::Id_At(std::size_t place, const std::string& name) const {
  static const std::set<std::string> shared = {"Class", "Delete", "Display", "EntryID",
                                               "Move",  "Parent", "Subject"};
  if (class_ > 0 && switches_.ids_unlike)
    return static_cast<DISPID>(first_unlike + (place + class_) % most_names);
  return static_cast<DISPID>(place + 1 + (shared.contains(name) ? 0 : 100 * class_));
}

std::size_t Served::Place_Of(DISPID id) const {
  const auto number = static_cast<std::size_t>(id);
  if (class_ > 0 && switches_.ids_unlike)
    return (number - first_unlike + 2 * most_names - class_) % most_names;
  return number <= most_names ? number - 1 : number - 1 - 100 * class_;
}

HRESULT Served::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  const std::string name = com::To_Utf8(names[0]);
  ids[0] = DISPID_UNKNOWN;
  if (count != 1 || !members_.contains(name) || type_ + "." + name == switches_.missing_member)
    return DISP_E_UNKNOWNNAME;
  if (!type_.empty()) ++switches_.calls_of["GetIDsOfNames"];
  ids[0] = Id_At(Place(name), name);
  return S_OK;
}

HRESULT Served::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* answer,
                       EXCEPINFO* told, UINT*) {
  const std::size_t place = Place_Of(id);
  if (place >= Names().size() || !members_.contains(Names()[place])) return DISP_E_MEMBERNOTFOUND;
  try {
    const std::string& name = Names()[place];
    if (!type_.empty()) switches_.Before(type_ + "." + name);
    Arguments arguments;
    for (UINT i = parameters->cArgs; i > 0; --i)
      arguments.push_back(com::Variant::Copy_Of(parameters->rgvarg[i - 1]));
    com::Variant result = members_[name](arguments);
    if (answer != nullptr) *answer = result.Detach();
    return S_OK;
  } catch (const Automation_Error& error) {
    *told = {};
    told->scode = error.Number();
    told->bstrDescription = com::Variant(error.Description()).Detach().bstrVal;
    told->bstrSource = com::Variant(error.Source()).Detach().bstrVal;
    return DISP_E_EXCEPTION;
  } catch (const std::exception&) {
    return E_FAIL;
  }
}

}  // namespace tidyfold::test_server
