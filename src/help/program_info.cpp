#include "help/program_info.h"

#include <utility>

#include "controls/interaction.h"
#include "help/file_names.h"

namespace tidyfold {

namespace {

constexpr const char* legal_notice =
    "Tidyfold removes messages and folders from a store, for good where it is told to. Look at what it lists "
    "before you press Clean, and keep a copy of what you cannot do without.\r\n"
    "\r\n"
    "Tidyfold is licensed under the Apache License 2.0 and comes without any warranty, as far as the law "
    "allows. It uses libraries that others wrote; their notices and licences are listed below.";

}  // namespace

Program_Info Tidyfold_Info(std::string path) {
  Program_Info program;
  program.Title = application_title;
  program.Major = TIDYFOLD_VERSION_MAJOR;
  program.Minor = TIDYFOLD_VERSION_MINOR;
  program.Revision = TIDYFOLD_VERSION_PATCH;
  program.Legal_Notice = legal_notice;
  program.HelpFile = TIDYFOLD_HELP_FILE;
  program.Path = std::move(path);
  program.Site = TIDYFOLD_SITE;
  return program;
}

Html_Urls Html_Urls_Of(const Program_Info& program) {
  const std::string site = program.Site.empty() ? File_URL(program.Path) : program.Site;
  Html_Urls urls;
  urls.Company = program.Title;
  urls.Home_Page = site + "/tidyfoldhelp/home.html";
  urls.Product_Page = site + "/tidyfoldhelp/first-clean.html";
  urls.Help_Index = site + "/tidyfoldhelp/index.html";
  return urls;
}

}  // namespace tidyfold
