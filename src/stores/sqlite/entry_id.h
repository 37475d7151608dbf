// EntryIDs: a letter and a number of the file. They are short enough to need no memory of their own, and an
// item's never reads as a folder's.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tidyfold::sqlite {

std::string Folder_Entry_Id(std::int64_t id);
std::string Item_Entry_Id(std::int64_t id);
// Nothing for any text that is not exactly what the functions above give.
std::optional<std::int64_t> Folder_Of_Entry_Id(std::string_view entry_id);
std::optional<std::int64_t> Item_Of_Entry_Id(std::string_view entry_id);

}  // namespace tidyfold::sqlite
