// Another program at work on a Maildir: delivers, marks, moves and deletes by the rules of the format.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace tidyfold {

class Mail_Program {
 public:
  explicit Mail_Program(std::filesystem::path top) : top_(std::move(top)) {}

  const std::filesystem::path& Top() const { return top_; }
  std::filesystem::path Make_Folder(const std::string& directory) const {
    for (const char* part : {"cur", "new", "tmp"})
      std::filesystem::create_directories(top_ / directory / part);
    return top_ / directory;
  }
  // Into new/ where `marks` is "new", otherwise into cur/ with these. Returns the unique name.
  std::string Deliver(const std::string& directory, const std::string& subject,
                      const std::string& marks = "S",
                      const std::string& header = "From: Zoe <zoe@example.org>\n",
                      const std::string& body = "Text") const {
    static int number = 0;
    const std::string unique = std::to_string(1700000000 + ++number) + ".M1P1.example";
    const std::filesystem::path draft = top_ / directory / "tmp" / unique;
    std::ofstream(draft, std::ios::binary)
        << header << "Subject: " << subject << "\nDate: Tue, 14 Nov 2023 12:00:00 +0000\n\n"
        << body;
    std::filesystem::rename(
        draft, top_ / directory / (marks == "new" ? "new/" + unique : "cur/" + unique + ":2," + marks));
    return unique;
  }
  // Of the only file with this unique name; empty if there is none.
  std::filesystem::path Find(const std::string& unique) const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(top_))
      if (entry.is_regular_file() && entry.path().filename().string().starts_with(unique))
        return entry.path();
    return {};
  }
  void Mark(const std::string& unique, const std::string& marks) const {
    const std::filesystem::path file = Find(unique);
    std::filesystem::rename(file, file.parent_path().parent_path() / "cur" / (unique + ":2," + marks));
  }
  void Move(const std::string& unique, const std::string& directory) const {
    const std::filesystem::path file = Find(unique);
    std::filesystem::rename(file, top_ / directory / "cur" / file.filename());
  }
  void Delete(const std::string& unique) const { std::filesystem::remove(Find(unique)); }

 private:
  std::filesystem::path top_;
};

}  // namespace tidyfold
