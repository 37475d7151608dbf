#include "served_object.h"

#include "errors/automation_error.h"

namespace tidyfold::test_server {

namespace {

// Places of names are given as they come up.
std::vector<std::string>& Names() {
  static std::vector<std::string> names;
  return names;
}

std::size_t Place(const std::string& name) {
  std::size_t place = 0;
  for (; place < Names().size(); ++place)
    if (Names()[place] == name) return place;
  Names().push_back(name);
  return place;
}

}  // namespace

void Switches::Before(const std::string& member) {
  ++calls;
  ++calls_of[member];
  if (vanish_in > 0 && --vanish_in == 0) TerminateProcess(GetCurrentProcess(), 0);
  if (member == fail_member && fail_in > 0 && --fail_in == 0)
    throw Automation_Error(fail_number, "Outlook says no to " + member + ".", "Test Outlook");
}

HRESULT Served::QueryInterface(REFIID wanted, void** object) {
  *object = nullptr;
  if (!IsEqualIID(wanted, IID_IUnknown) && !IsEqualIID(wanted, IID_IDispatch)) return E_NOINTERFACE;
  AddRef();
  *object = static_cast<IDispatch*>(this);
  return S_OK;
}

ULONG Served::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT Served::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT Served::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  const std::string name = com::To_Utf8(names[0]);
  ids[0] = DISPID_UNKNOWN;
  if (count != 1 || !members_.contains(name)) return DISP_E_UNKNOWNNAME;
  if (!type_.empty()) ++switches_.calls_of["GetIDsOfNames"];
  ids[0] = Id_At(Place(name), name);
  return S_OK;
}

HRESULT Served::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* answer,
                       EXCEPINFO* told, UINT*) {
  const std::size_t place = Place_Of(id);
  if (place >= Names().size()) return DISP_E_MEMBERNOTFOUND;
  const auto member = members_.find(Names()[place]);
  if (member == members_.end()) return DISP_E_MEMBERNOTFOUND;
  try {
    if (!type_.empty()) switches_.Before(type_ + "." + member->first);
    Arguments arguments;
    for (UINT i = parameters->cArgs; i > 0; --i)
      arguments.push_back(com::Variant::Copy_Of(parameters->rgvarg[i - 1]));
    com::Variant result = member->second(arguments);
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
