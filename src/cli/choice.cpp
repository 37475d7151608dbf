#include "cli/choice.h"

#include <algorithm>

#include "cli/failure.h"
#include "outlook/folder_path.h"

namespace tidyfold::cli {

namespace {

// The window's last message, as the text of an error.
std::string Last_Message(const Session& session) {
  const auto& shown = session.Messages().Shown();
  return shown.empty() ? "refused." : shown.back().text;
}

}  // namespace

void Choice::Tick(CheckBox& box, const char* option) {
  if (box.Checked()) return;
  if (!box.Enabled()) {
    const bool turbo = window_.chkTurbo.Checked();
    const std::string why = turbo || window_.chkDeleteFolders.Checked()
                                ? " cannot be used with " +
                                      std::string(turbo ? "--turbo" : "--delete-folders") +
                                      ", which takes everything. Leave one of them out."
                                : " needs --subject beside it.";
    throw Failure(Exit_Status::Bad_Input, option + why);
  }
  box.Set_Value(1);
  if (!box.Checked())
    throw Failure(Exit_Status::Refused,
                  std::string(option) + ": " + Last_Message(session_) + " Nothing was changed.");
}

// Options that force others come first, so that the window has already disabled what they exclude.
void Choice::Set(const Options& options, const Filters& filters) {
  if (options.turbo && options.delete_folders)
    throw Failure(Exit_Status::Bad_Input,
                  "--turbo cannot be used with --delete-folders, which unticks it. Leave one of them out.");
  if (options.turbo) Tick(window_.chkTurbo, "--turbo");
  if (options.delete_folders) Tick(window_.chkDeleteFolders, "--delete-folders");
  if (options.permanent) Tick(window_.chkPermanentDelete, "--permanent");
  if (options.confirm_folders) Tick(window_.chkConfirmFolders, "--confirm-folders");
  if (options.confirm_items) Tick(window_.chkConfirmItems, "--confirm-items");
  Set_Filters(filters);
}

void Choice::Set_Filters(const Filters& filters) {
  if (filters.unread) Tick(window_.chkSelectUnread, "--unread");
  if (filters.flagged) Tick(window_.chkSelectFlagged, "--flagged");
  if (!filters.types.empty()) Tick(window_.chkSelectType, "--type");
  for (TypeBox& type : window_.chkType) {
    const auto& wanted = filters.types;
    if (std::find(wanted.begin(), wanted.end(), type.index) != wanted.end()) Tick(type.box, "--type");
  }
  if (filters.cutoff) {
    Tick(window_.chkSelectDate, "--cutoff");
    window_.dtpCutoffDate.Set_Value(*filters.cutoff);
    Raise(window_.dtpCutoffDate.CloseUp);
  }
  if (filters.subject) {
    Tick(window_.chkSelectSubject, "--subject");
    window_.txtSelectSubject.Set_Text(*filters.subject);
    Raise(window_.txtSelectSubject.Validate);
  }
  if (filters.match_case) Tick(window_.chkMatchCase, "--match-case");
  if (filters.match_word) Tick(window_.chkMatchWord, "--match-word");
}

void Choice::Mark_Sub_Folders() {
  Tick(window_.chkMarkSubFolders, "--sub-folders");
}

void Choice::Fail_Protected(const Store_Folder& folder) {
  const int node = session_.Node(folder), protector = session_.Program().protection.Protector_Of(node);
  const std::string path = Path_Of_Folder(*session_.Records()[protector].Folder);
  const std::string why = protector == node ? "" : ", because it lies below \"" + path + "\", which is";
  throw Failure(Exit_Status::Refused,
                "The folder \"" + folder.path + "\" is protected" + why +
                    ". Nothing was changed. If it is to be cleaned, take the protection "
                    "off first: tidyfold-cli --store \"" +
                    folder.store + "\" protect --folder \"" + path + "\" --off");
}

void Choice::Mark(const Store_Folder& folder) {
  TreeView& tree = window_.trvFolders;
  const int node = session_.Node(folder);
  if (session_.Program().protection.Is_Protected(node)) Fail_Protected(folder);
  if (tree.Checked(node)) return;
  tree.Tick(node, true);
  Raise(tree.MouseUp);
  if (!tree.Checked(node))
    throw Failure(Exit_Status::Refused, "The folder \"" + folder.path + "\" was not marked: " +
                                            Last_Message(session_) + " Nothing was changed.");
}

}  // namespace tidyfold::cli
