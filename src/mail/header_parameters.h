// Structured header fields: a word, and parameters behind it (RFC 2045, RFC 2231).
#pragma once

#include <string>
#include <string_view>

namespace tidyfold {

// The first word without its parameters, in lower case: "text/plain", "attachment".
std::string Header_Word(std::string_view value);

// A parameter, as in `attachment; filename=...`; empty if there is none. Raw 8-bit text is read as
// Header_Text does.
std::string Header_Parameter(std::string_view value, std::string_view name,
                             std::string_view raw_charset = {});

// What lies between angle brackets; without those, the whole value.
std::string Header_Identity(std::string_view value);

}  // namespace tidyfold
