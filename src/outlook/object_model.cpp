#include "outlook/object_model.h"

#include "errors/automation_error.h"

namespace tidyfold {

namespace {

[[noreturn]] void Fail_Unsupported() {
  throw Automation_Error(automation_error::not_supported, "The store cannot do this.", "Tidyfold");
}

}  // namespace

Item_Ptr Item::Move(MAPIFolder&) {
  Fail_Unsupported();
}

MAPIFolder_Ptr Folders::Add(const std::string&, std::int32_t) {
  Fail_Unsupported();
}

Store_Ptr MAPIFolder::Store() {
  Fail_Unsupported();
}

}  // namespace tidyfold
