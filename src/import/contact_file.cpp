#include "import/contact_file.h"

#include <string>
#include <string_view>
#include <vector>

#include "import/source_file.h"
#include "import/vcard.h"
#include "mail/mime_message.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

void Add(std::string_view text, const std::vector<Card_Text>& cards, MAPIFolder& folder, Import_Run& run) {
  for (std::size_t i = 0; i < cards.size(); ++i) {
    const std::string where = "card " + std::to_string(i + 1);
    try {
      if (!cards[i].whole) throw Message_Error("its end is missing");
      run.Add(folder, Read_Vcard(std::string(text.substr(cards[i].begin, cards[i].size))));
    } catch (const Message_Error& error) {
      run.Fail(where, error.what());
    }
  }
}

}  // namespace

void Import_Contacts(const fs::path& source, Import_Run& run) {
  Add_Contact_File(source, run.Target_Folder(item_type::contact), run);
}

void Add_Contact_File(const fs::path& file, const MAPIFolder_Ptr& folder, Import_Run& run) {
  const std::string text = run.Beside([&] { return Read_Text_File(file); });
  const std::vector<Card_Text> cards = run.Beside([&] { return Cards_In(text); });
  Add(text, cards, *folder, run);
}

}  // namespace tidyfold
