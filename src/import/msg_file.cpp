#include "import/msg_file.h"

#include <algorithm>
#include <utility>

#include "import/mapi_item.h"
#include "import/msg_object.h"
#include "import/source_file.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t long_item = 1 << 20;  // bytes

}  // namespace

New_Item Read_Msg(const std::string& bytes) {
  New_Item item = Read_Mapi_Item(*Open_Msg(bytes));
  item.size = static_cast<std::int64_t>(bytes.size());
  return item;
}

void Add_Msg_File(const fs::path& file, MAPIFolder& folder, Import_Run& run) {
  const std::string bytes = Read_Text_File(file);
  const auto read = [&] { return Read_Msg(bytes); };
  run.Add(folder, static_cast<std::int64_t>(bytes.size()) > long_item ? run.Beside(read) : read());
}

void Import_Msg(const fs::path& source, Import_Run& run) {
  run.Expect(1);
  try {
    Add_Msg_File(source, *run.Target_Folder(), run);
  } catch (const Message_Error& error) {
    throw Import_Error(source.string() + ": the item cannot be read: " + error.what() +
                       ". Save it again from the program that it came from.");
  }
}

}  // namespace tidyfold
