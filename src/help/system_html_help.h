// HTML Help of the system, where there is one.
#pragma once

#include <cstdint>
#include <string>

namespace tidyfold {

// hhctrl.ocx's HtmlHelpA; 0 where it or the book cannot be opened.
std::intptr_t System_HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                               std::uintptr_t data);

}  // namespace tidyfold
