#include "help/chm_book.h"

#include <chm_lib.h>

#include <cstddef>

namespace tidyfold {

namespace {

// Far above any real page; a damaged directory may claim any size.
constexpr LONGUINT64 most_bytes = 64 << 20;

std::size_t Little_Endian_16(std::string_view bytes, std::size_t at) {
  return static_cast<unsigned char>(bytes[at]) |
         static_cast<std::size_t>(static_cast<unsigned char>(bytes[at + 1])) << 8;
}

}  // namespace

void Chm_Book::Close::operator()(chmFile* book) const {
  chm_close(book);
}

Chm_Book::Chm_Book(const std::string& file) : file_(file), book_(chm_open(file.c_str())) {
  if (book_ == nullptr) throw Chm_Error(file + " is no help book that can be read. Install Tidyfold again.");
  Read_Facts();
}

// The system file is a version number and then records: code, length, text.
void Chm_Book::Read_Facts() {
  const std::string facts = Read("#SYSTEM").value_or("");
  for (std::size_t at = 4; at + 4 <= facts.size();) {
    const std::size_t code = Little_Endian_16(facts, at), length = Little_Endian_16(facts, at + 2);
    at += 4;
    const std::string_view data = std::string_view(facts).substr(at, length);
    const std::string text(data.substr(0, data.find('\0')));
    if (code == 0) contents_file_ = text;
    if (code == 1) index_file_ = text;
    if (code == 2) default_page_ = text;
    if (code == 3) title_ = text;
    at += length;
  }
}

std::vector<std::string> Chm_Book::Files() const {
  std::vector<std::string> files;
  const auto take = [](chmFile*, chmUnitInfo* unit, void* context) {
    static_cast<std::vector<std::string>*>(context)->emplace_back(unit->path + 1);
    return CHM_ENUMERATOR_CONTINUE;
  };
  if (chm_enumerate(book_.get(), CHM_ENUMERATE_NORMAL | CHM_ENUMERATE_FILES, take, &files) == 0)
    throw Chm_Error(file_ + " is damaged. Install Tidyfold again.");
  return files;
}

std::optional<std::string> Chm_Book::Read(std::string_view name) const {
  const std::string path = "/" + std::string(name);
  chmUnitInfo unit{};
  if (chm_resolve_object(book_.get(), path.c_str(), &unit) != CHM_RESOLVE_SUCCESS) return std::nullopt;
  std::string text;
  if (unit.length <= most_bytes) {
    text.resize(static_cast<std::size_t>(unit.length));
    const auto length = static_cast<LONGINT64>(unit.length);
    if (chm_retrieve_object(book_.get(), &unit, reinterpret_cast<unsigned char*>(text.data()), 0, length) ==
        length)
      return text;
  }
  throw Chm_Error(std::string(name) + " in " + file_ + " is damaged. Install Tidyfold again.");
}

std::string Chm_Book::Project() const {
  return "[OPTIONS]\nTitle=" + title_ + "\nDefault topic=" + default_page_ +
         "\nContents file=" + contents_file_ + "\nIndex file=" + index_file_ + "\n";
}

}  // namespace tidyfold
