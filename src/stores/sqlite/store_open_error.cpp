#include "stores/sqlite/store_file.h"

namespace tidyfold::sqlite {

using Reason = Store_Open_Error::Reason;
namespace fs = std::filesystem;

std::string Utf8(const fs::path& path) {
  const std::u8string text = path.u8string();
  return {reinterpret_cast<const char*>(text.data()), text.size()};
}

void Fail_Open(Reason reason, const fs::path& path, const std::string& detail) {
  const std::string name = "\"" + Utf8(path) + "\"";
  const std::string store = "The store " + name + " ";
  const std::string why = detail.empty() ? "" : " (" + detail + ")";
  std::string text;
  switch (reason) {
    case Reason::Missing:
      text = store + "does not exist. Check its name and the folder that it lies in.";
      break;
    case Reason::Exists:
      text = name + " exists already. Choose another name for the new store, or move that file away.";
      break;
    case Reason::Not_A_Store:
      text = name + " is not a Tidyfold store: " + detail +
             ". Choose a store file; mail files of other programs can be imported into one.";
      break;
    case Reason::Damaged:
      text = store + "is damaged" + why + ". Restore it from a backup copy.";
      break;
    case Reason::Read_Only:
      text = store +
             "can only be read, but it must be written. Make the file and its folder writable, or copy the "
             "store to a place where you may write.";
      break;
    case Reason::No_Permission:
      text = "You have no permission to open " + name +
             ". Change the permissions of the file and its folder, or ask the owner to.";
      break;
    case Reason::Locked:
      text = store + "is open in another Tidyfold. Close it there and try again.";
      break;
    case Reason::Older_Version:
      text = store +
             "was written by an older version of Tidyfold. It is brought up to date when it is opened for "
             "writing: open it in the window, or let \"tidyfold-cli --store FILE compact\" do it.";
      break;
    case Reason::Disk_Full:
      text = store + "could not be opened: the disk is full" + why +
             ". Make room on it and try again; the store itself is as it was.";
      break;
    case Reason::Cancelled:
      text = store + "was not opened; it is as it was.";
      break;
    case Reason::Newer_Version:
      text = store + "was written by a newer version of Tidyfold" + why + ". Open it with that version.";
      break;
    case Reason::Cannot_Read:
      text = store + "could not be read" + why +
             ". Check the disk or the network share that it lies on, and try again.";
      break;
    case Reason::Not_Reached:
    case Reason::Not_Let_In:
    case Reason::Not_Supported:
      text = store + "cannot be opened like a file" + why + ".";
      break;
    case Reason::Cannot_Write:
      text = store + "could not be written" + why + ". Check the folder and the room on its disk.";
      break;
  }
  throw Store_Open_Error(reason, path, text, detail);
}

}  // namespace tidyfold::sqlite
