// The system's HTML Help (Windows).
#pragma once

#include <cstdint>
#include <string>

namespace tidyfold {

// HtmlHelpA of hhctrl.ocx; 0 if the library or the book cannot be opened.
std::intptr_t System_HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                               std::uintptr_t data);

}  // namespace tidyfold
