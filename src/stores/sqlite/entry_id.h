// EntryIDs: a letter and the number in the file. They are short enough for the small-string optimisation,
// and the letter keeps items and folders apart.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tidyfold::sqlite {

std::string Folder_Entry_Id(std::int64_t id);
std::string Item_Entry_Id(std::int64_t id);
// Empty unless the text is exactly what the functions above return.
std::optional<std::int64_t> Folder_Of_Entry_Id(std::string_view entry_id);
std::optional<std::int64_t> Item_Of_Entry_Id(std::string_view entry_id);

}  // namespace tidyfold::sqlite
