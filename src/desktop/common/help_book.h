// The window that shows the compiled help book: the system's viewer or the program's own.
#pragma once

#include <wx/toplevel.h>

#include <cstdint>
#include <memory>
#include <string>

namespace tidyfold {

class Help_Book {
 public:
  virtual ~Help_Book() = default;
  // The two calls of Help_Platform; see there.
  virtual std::int32_t Window_Handle() = 0;
  virtual std::intptr_t HtmlHelpA(std::int32_t owner, const std::string& file, std::uint32_t command,
                                  std::uintptr_t data) = 0;
  virtual void Close() {}
};

// The window, which must outlive the book, owns those that the book opens. They can be used beside it, also
// where it is a modal dialog; then HtmlHelpA may return only when they have been closed.
std::unique_ptr<Help_Book> Make_Help_Book(wxTopLevelWindow& window);

}  // namespace tidyfold
