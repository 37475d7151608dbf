// The frame of MSG files and of other programs' documents
// (https://learn.microsoft.com/openspecs/windows_protocols/ms-cfb).
#pragma once

#include <string>
#include <string_view>

namespace tidyfold {

// What keeps libgsf from reading the file without harm; empty if nothing does. It takes a level of the stack
// for each entry of a directory that is laid out like a list, time by the square of their number, and loses
// the memory of what stands beside the root. An item of 1,000 recipients has fewer entries than are let
// through.
std::string Problem_Of_Compound_File(std::string_view bytes);

}  // namespace tidyfold
