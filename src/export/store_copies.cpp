#include "export/store_copies.h"

#include <algorithm>
#include <utility>

#include "base/file_path.h"
#include "export/export.h"
#include "export/safe_name.h"

namespace tidyfold {

namespace fs = std::filesystem;

Kept_Copy Store_Copies::Keep(const std::vector<Folder_To_Copy>& folders, const std::string& directory,
                             const std::function<bool(std::int64_t done, std::int64_t total)>& go_on) {
  std::string moment = Format_Moment(clock_.Now());
  std::replace(moment.begin(), moment.end(), 'T', ' ');
  std::replace(moment.begin(), moment.end(), ':', '.');
  const std::string name = Free_Name("Tidyfold " + moment, "", [&](const std::string& candidate) {
    std::error_code error;
    return fs::symlink_status(File_Path(directory) / candidate, error).type() != fs::file_type::not_found;
  });
  const fs::path place = File_Path(directory) / name;

  Export_Options options;
  options.lasting = true;
  options.progress = go_on;
  std::vector<Export_Folder> out;
  for (const Folder_To_Copy& folder : folders) {
    options.total +=
        folder.whole ? folder.folder->Items()->Count() : static_cast<std::int64_t>(folder.entry_ids.size());
    const auto items = [&folder] { return folder.whole ? Entry_Ids_Of(*folder.folder) : folder.entry_ids; };
    const auto read = [this, store_id = folder.folder->StoreID()](const std::string& entry_id) {
      return read_(store_id, entry_id);
    };
    out.push_back(
        {folder.names, folder.folder->DefaultItemType(), folder.folder->Parent() == nullptr, items, read});
  }

  Kept_Copy kept;
  kept.place = place.string();
  try {
    const Export_Report report = Export_Folders(out, place, options);
    kept.items = report.exported;
    kept.cancelled = report.cancelled;
    kept.failure = report.ended_by;
    if (kept.failure.empty() && report.failed > 0) {
      const Export_Failure& first = report.failures.front();
      kept.failure = Counts_Of(report) + ". " + first.where + ": " + first.why;
    }
  } catch (const Export_Error& error) {
    kept.failure = error.what();
  }
  return kept;
}

}  // namespace tidyfold
