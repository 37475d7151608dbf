// Reading one property of a MAPI message object.
#pragma once

#include <cstdint>
#include <string>

#include "stores/automation/com.h"

namespace tidyfold::companion {

// The text of a property of type PT_STRING8 or PT_UNICODE; empty if the object does not have it. For an 8-bit
// tag, prefers the object's Unicode text, so that no character is lost to the machine's code page.
//
// Throws Automation_Error for any other type, for an object without properties, and for a property that
// cannot be read.
std::wstring Read_Text_Property(IUnknown& object, std::uint32_t property_tag);

}  // namespace tidyfold::companion
