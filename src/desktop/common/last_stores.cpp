#include "desktop/common/last_stores.h"

#include <wx/fileconf.h>
#include <wx/filename.h>
#include <wx/log.h>
#include <wx/stdpaths.h>

#include "base/file_path.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

wxFileConfig Configuration() {
  wxStandardPaths& paths = wxStandardPaths::Get();
  paths.SetFileLayout(wxStandardPaths::FileLayout_XDG);
  const wxFileName file(paths.GetUserConfigDir() + wxFileName::GetPathSeparator() + "tidyfold",
                        "tidyfold.conf");
  wxFileName::Mkdir(file.GetPath(), wxS_DIR_DEFAULT, wxPATH_MKDIR_FULL);
  return wxFileConfig("tidyfold", wxString(), file.GetFullPath(), wxString(), wxCONFIG_USE_LOCAL_FILE);
}

wxString Entry(std::size_t number) {
  return wxString::Format("/Stores/%zu", number);
}

}  // namespace

std::vector<std::filesystem::path> Last_Stores() {
  const wxLogNull quiet;
  const wxFileConfig configuration = Configuration();
  std::vector<std::filesystem::path> paths;
  wxString path;
  while (configuration.Read(Entry(paths.size() + 1), &path) && !path.empty())
    paths.push_back(File_Path(From_Wx(path)));
  return paths;
}

void Keep_Last_Stores(const std::vector<std::filesystem::path>& paths) {
  const wxLogNull quiet;
  wxFileConfig configuration = Configuration();
  configuration.DeleteGroup("/Stores");
  for (std::size_t i = 0; i < paths.size(); ++i)
    configuration.Write(Entry(i + 1), To_Wx(std::filesystem::absolute(paths[i]).string()));
}

}  // namespace tidyfold
