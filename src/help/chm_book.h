// Reads compiled help books, for systems without a viewer.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct chmFile;

namespace tidyfold {

// The file is damaged or is not a compiled help book.
class Chm_Error : public std::exception {
 public:
  explicit Chm_Error(std::string text) : text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  std::string text_;
};

// Names of files inside a book are paths without a slash in front ("controls/cmdRun.html"), and are found
// without regard to case.
class Chm_Book {
 public:
  // Throws Chm_Error.
  explicit Chm_Book(const std::string& file);

  const std::string& Title() const { return title_; }
  const std::string& Default_Page() const { return default_page_; }
  // The table of contents and the index: files of the book, in the site-map form.
  const std::string& Contents_File() const { return contents_file_; }
  const std::string& Index_File() const { return index_file_; }

  // All files of the author, without folders and the format's internal files.
  std::vector<std::string> Files() const;
  // Nothing if the book has no such file. Throws Chm_Error if it cannot be unpacked.
  std::optional<std::string> Read(std::string_view name) const;

  // The book's properties as a help project file, which wxHtmlHelpController reads.
  std::string Project() const;

 private:
  struct Close {
    void operator()(chmFile* book) const;
  };

  void Read_Facts();

  std::string file_;
  std::unique_ptr<chmFile, Close> book_;
  std::string title_, default_page_, contents_file_, index_file_;
};

}  // namespace tidyfold
