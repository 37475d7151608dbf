#include "desktop/common/help_book.h"

#include "help/system_html_help.h"

namespace tidyfold {

namespace {

class System_Help_Book : public Help_Book {
 public:
  explicit System_Help_Book(wxTopLevelWindow& window) : window_(window) {}

  std::int32_t Window_Handle() override {
    return static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(window_.GetHandle()));
  }
  std::intptr_t HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                          std::uintptr_t data) override {
    return System_HtmlHelpA(owner, file, command, data);
  }

 private:
  wxTopLevelWindow& window_;
};

}  // namespace

std::unique_ptr<Help_Book> Make_Help_Book(wxTopLevelWindow& window) {
  return std::make_unique<System_Help_Book>(window);
}

}  // namespace tidyfold
