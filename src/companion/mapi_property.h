// Reading one property of a MAPI message object.
#pragma once

#include <cstdint>
#include <string>

#include "stores/automation/com.h"

namespace tidyfold::companion {

// The text of a property of type PT_STRING8 or PT_UNICODE; empty when the object has none. For an 8-bit tag
// the Unicode text is taken where the object has it, so that no character is lost to the machine's code page.
//
// Throws Automation_Error for any other type of property, for an object that has no properties, and for one
// that cannot be read.
std::wstring Read_Text_Property(IUnknown& object, std::uint32_t property_tag);

}  // namespace tidyfold::companion
