#include "desktop/common/help_book.h"

#include <wx/dialog.h>

#include <string_view>

#include "desktop/gtk/help_viewer.h"

namespace tidyfold {

namespace {

class Own_Help_Book : public Help_Book {
 public:
  explicit Own_Help_Book(wxTopLevelWindow& window)
      : window_(window), viewer_(dynamic_cast<wxDialog*>(&window)) {}

  std::int32_t Window_Handle() override { return window_.GetId(); }

  // The file is "BOOK::/PAGE", or the book alone.
  std::intptr_t HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t,
                          std::uintptr_t) override {
    constexpr std::string_view divider = "::/";
    const auto end = file.find(divider);
    const std::string page = end == std::string::npos ? std::string() : file.substr(end + divider.size());
    return viewer_.Open(file.substr(0, end), page) ? owner : 0;
  }

  void Close() override { viewer_.Close(); }

 private:
  wxTopLevelWindow& window_;
  Help_Viewer viewer_;
};

}  // namespace

std::unique_ptr<Help_Book> Make_Help_Book(wxTopLevelWindow& window) {
  return std::make_unique<Own_Help_Book>(window);
}

}  // namespace tidyfold
