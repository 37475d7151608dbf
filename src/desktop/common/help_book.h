// The window that shows the compiled help book: the system's viewer or the program's own.
#pragma once

#include <wx/frame.h>

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

// The frame, which must outlive the book, owns the windows that the book opens.
std::unique_ptr<Help_Book> Make_Help_Book(wxFrame& frame);

}  // namespace tidyfold
