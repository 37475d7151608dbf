// For builds without the libraries that read other programs' files.
#include "base/text.h"
#include "import/import.h"

namespace tidyfold {

namespace {

[[noreturn]] void Refuse(const std::filesystem::path& source) {
  throw Import_Error(source.string() +
                     ": this edition of Tidyfold imports no files. Open the file in Outlook, and clean it "
                     "there.");
}

}  // namespace

Import_Error::Import_Error(const std::string& text) : text_(Valid_Utf8(text)) {}

bool Can_Import() {
  return false;
}

Source_Kind Detect_Source(const std::filesystem::path& source) {
  Refuse(source);
}

Import_Report Import_Source(const std::filesystem::path& source, Store_Writer&, const Import_Options&) {
  Refuse(source);
}

}  // namespace tidyfold
