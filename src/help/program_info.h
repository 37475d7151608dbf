// Name, version and notices of the program, and where its help is.
#pragma once

#include <cstdint>
#include <string>

namespace tidyfold {

struct Program_Info {
  std::string Title;
  std::int16_t Major = 0, Minor = 0, Revision = 0;
  std::string Legal_Notice;
  // The compiled help file: where it was built, until the program has searched for it.
  std::string HelpFile;
  // The folder that the program runs from.
  std::string Path;
  // Address of the site with the on-line pages. Empty: the copy beside the program.
  std::string Site;
};

// This program's, as it was built. `path` is the folder that it runs from.
Program_Info Tidyfold_Info(std::string path);

// Addresses of pages.
struct Html_Urls {
  std::string Company, Home_Page, Product_Page, Help_Index;
};

Html_Urls Html_Urls_Of(const Program_Info& program);

}  // namespace tidyfold
