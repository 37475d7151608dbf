#include "desktop/common/store_files.h"

#include <wx/dirdlg.h>
#include <wx/file.h>
#include <wx/filedlg.h>
#include <wx/filedlgcustomize.h>
#include <wx/progdlg.h>
#include <wx/richmsgdlg.h>
#include <wx/stdpaths.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>

#include "base/file_path.h"
#include "base/size_text.h"
#include "controls/interaction.h"
#include "desktop/common/error_box.h"
#include "desktop/common/export_dialog.h"
#include "desktop/common/text_conversion.h"
#include "errors/automation_error.h"
#include "import/import.h"
#include "settings/last_stores.h"
#include "stores/sqlite/sample_store.h"

namespace tidyfold {

namespace {

constexpr const char* store_wildcard = "Tidyfold stores (*.tidyfold)|*.tidyfold|All files|*";
// Mailboxes of many programs have names without an extension.
constexpr const char* source_wildcard =
    "All files|*|Mail, calendars and address "
    "books|*.pst;*.PST;*.ost;*.OST;*.pab;*.PAB;*.mbox;*.mbx;*.eml;*.EML;*.emlx;*.msg;*.MSG;"
    "*.ics;*.ICS;*.vcf;*.VCF";

// The choices of an import, in the dialog that asks for its files.
class Import_Choices : public wxFileDialogCustomizeHook {
 public:
  void AddCustomControls(wxFileDialogCustomize& controls) override {
    merge_box_ = controls.AddCheckBox("Into the store's own folders of the same names");
    again_box_ = controls.AddCheckBox("Once more what is there already");
  }
  void TransferDataFromCustomControls() override {
    options.merge = merge_box_->GetValue();
    options.again = again_box_->GetValue();
  }

  Import_Options options;

 private:
  wxFileDialogCheckBox* merge_box_ = nullptr;
  wxFileDialogCheckBox* again_box_ = nullptr;
};

std::filesystem::path To_Path(const wxString& path) {
  return File_Path(From_Wx(path));
}

wxString File_Name(const std::filesystem::path& path) {
  return To_Wx(path.filename().string());
}

// By its name, or by the way in which SQLite's files begin.
bool Is_Store_File(const std::filesystem::path& path) {
  if (wxString(To_Wx(path.extension().string())).IsSameAs(".tidyfold", false)) return true;
  constexpr std::string_view mark = "SQLite format 3";
  std::string beginning(mark.size(), '\0');
  std::ifstream file(path, std::ios::binary);
  return file.read(beginning.data(), static_cast<std::streamsize>(beginning.size())) && beginning == mark;
}

// A gauge if the total is known, a pulsing bar otherwise.
class Progress {
 public:
  Progress(wxWindow* parent, const wxString& title, const wxString& what)
      : dialog_(title, what + "\n ", scale, parent, wxPD_APP_MODAL | wxPD_CAN_ABORT | wxPD_AUTO_HIDE),
        what_(what) {}

  bool Tell(std::int64_t done, std::optional<std::int64_t> total) {
    if (!total || *total <= 0)
      return dialog_.Pulse(wxString::Format("%s\n%lld items", what_, static_cast<long long>(done)));
    const auto part = static_cast<int>(std::min<std::int64_t>(done * scale / *total, scale - 1));
    return dialog_.Update(part,
                          wxString::Format("%s\n%lld of %lld items", what_, static_cast<long long>(done),
                                           static_cast<long long>(*total)));
  }
  // Without a number of items.
  bool Tell_Part(std::int64_t done, std::int64_t total) {
    const std::int64_t part = total > 0 ? done * scale / total : 0;
    return dialog_.Update(static_cast<int>(std::clamp<std::int64_t>(part, 0, scale - 1)));
  }

 private:
  static constexpr int scale = 1000;
  wxProgressDialog dialog_;
  wxString what_;
};

wxString Whole_Text(const std::vector<Import_Report>& reports) {
  wxString text;
  for (const Import_Report& report : reports) {
    text += To_Wx(report.source + ": " + Counts_Of(report)) + "\n";
    for (const std::string& line : Details_Of(report)) text += To_Wx(report.source + ": " + line) + "\n";
  }
  return text;
}

void Save_Report(wxWindow* parent, const wxString& name, const wxString& text) {
  wxFileDialog dialog(parent, "Save Report", wxStandardPaths::Get().GetDocumentsDir(), name,
                      "Text files (*.txt)|*.txt|All files|*", wxFD_SAVE | wxFD_OVERWRITE_PROMPT);
  while (dialog.ShowModal() == wxID_OK) {
    wxFile file;
    if (file.Create(dialog.GetPath(), true) && file.Write(text, wxConvUTF8) && file.Close()) return;
    Show_Error(parent, "The report could not be written to \"" + From_Wx(dialog.GetPath()) +
                           "\". Choose another place.");
  }
}

// The whole text is for a file that a person keeps.
void Show_Report(wxWindow* parent, const wxString& text, const wxString& details, bool failed,
                 const wxString& file_name, const wxString& whole_text) {
  wxRichMessageDialog dialog(
      parent, text, application_title,
      wxYES_NO | wxNO_DEFAULT | wxCENTRE | (failed ? wxICON_WARNING : wxICON_INFORMATION));
  dialog.SetYesNoLabels("&Save Report...", "&Close");
  if (!details.empty()) dialog.ShowDetailedText(details);
  dialog.SetEscapeId(wxID_NO);
  if (dialog.ShowModal() == wxID_YES) Save_Report(parent, file_name, whole_text);
}

void Show_Reports(wxWindow* parent, const Export_Report& report) {
  const wxString counts = To_Wx(report.directory + ": " + Counts_Of(report));
  wxString text = counts, details;
  if (report.cancelled) text += "\nCancelled. What was written by then stays.";
  if (!report.ended_by.empty()) text += "\nEnded on the way: " + To_One_Line(report.ended_by);
  for (const std::string& line : Details_Of(report)) details += To_One_Line(line) + "\n";
  Show_Report(parent, text, details, !report.Is_Whole() && !report.cancelled, "Export report.txt",
              counts + "\n" + details);
}

void Show_Reports(wxWindow* parent, const std::vector<Import_Report>& reports) {
  wxString text, details;
  bool failed = false;
  for (const Import_Report& report : reports) {
    text += To_Wx(report.source + ": " + Counts_Of(report)) + "\n";
    if (report.cancelled) text += "Cancelled. What was imported stays; import the same again to go on.\n";
    if (!report.ended_by.empty()) text += "Ended on the way: " + To_One_Line(report.ended_by) + "\n";
    for (const std::string& line : Details_Of(report)) details += To_One_Line(line) + "\n";
    failed = failed || report.failed > 0 || !report.ended_by.empty();
  }
  Show_Report(parent, text.Trim(), details, failed, "Import report.txt", Whole_Text(reports));
}

}  // namespace

bool Store_Files::Open(wxWindow* parent, const std::vector<Store_Address>& addresses) {
  for (;;) {
    try {
      // Only a store that an older version wrote takes long enough to be told.
      std::optional<Progress> progress;
      Store_Opening opening(Store_Mode::Read_Write, [&](std::int64_t done, std::int64_t total) {
        if (!progress) progress.emplace(parent, "Open Store", "Bringing the store up to date");
        return progress->Tell_Part(done, total);
      });
      accounts_.Complete(opening, parent);
      stores_.Replace(addresses, opening);
      break;
    } catch (const Store_Open_Error& error) {
      if (error.Why() == Store_Open_Error::Reason::Cancelled) return false;
      if (accounts_.Can_Ask_Again(error)) {
        if (accounts_.Ask_Again(error, parent)) continue;
      } else {
        Show_Error(parent, error.what());
      }
      return false;
    } catch (const std::exception& error) {
      Show_Error(parent, error.what());
      return false;
    }
  }
  accounts_.Keep(addresses, parent);
  for (const auto& store : stores_.Open_Stores()) accounts_.Offer_Trash(*store, parent);
  Remember();
  return true;
}

bool Store_Files::Ask_And_Open(wxWindow* parent) {
  wxFileDialog dialog(parent, "Open Store", wxStandardPaths::Get().GetDocumentsDir(), wxString(),
                      store_wildcard, wxFD_OPEN | wxFD_FILE_MUST_EXIST | wxFD_MULTIPLE);
  // If opening fails, asks again.
  while (dialog.ShowModal() == wxID_OK) {
    wxArrayString chosen;
    dialog.GetPaths(chosen);
    std::vector<Store_Address> files;
    for (const wxString& path : chosen) files.emplace_back(To_Path(path));
    if (Open(parent, files)) return true;
  }
  return false;
}

bool Store_Files::Ask_And_Open_Maildir(wxWindow* parent) {
  wxDirDialog dialog(parent, "Open Maildir", wxString(), wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
  while (dialog.ShowModal() == wxID_OK) {
    Store_Address maildir(To_Path(dialog.GetPath()));
    maildir.kind = Store_Address::Kind::Maildir;
    if (Open(parent, {maildir})) return true;
  }
  return false;
}

bool Store_Files::Ask_And_Open_Account(wxWindow* parent) {
  Account_Dialog dialog(parent,
                        [&](const Account_Choice& choice) { return accounts_.Test(choice, &dialog); });
  while (dialog.ShowModal() == wxID_OK) {
    const Account_Choice choice = dialog.Choice();
    accounts_.Learn(choice);
    if (Open(parent, {choice.address})) return true;
  }
  return false;
}

std::vector<std::string> Store_Files::Recent() const {
  std::vector<std::string> texts = Recent_Stores(registry_);
  for (const auto& store : stores_.Open_Stores()) std::erase(texts, store->Address().Lasting_Text());
  return texts;
}

bool Store_Files::Close(wxWindow* parent, const std::string& store_id) {
  try {
    std::vector<Store_Address> left;
    for (const auto& store : stores_.Open_Stores())
      if (store->StoreID() != store_id) left.push_back(store->Address());
    if (left.size() == stores_.Open_Stores().size()) return false;
    Store_Opening opening;
    accounts_.Complete(opening, parent);
    stores_.Replace(left, opening);
  } catch (const std::exception& error) {
    Show_Error(parent, error.what());
    return false;
  }
  if (!stores_.Open_Stores().empty()) Remember();
  return true;
}

std::filesystem::path Store_Files::Ask_New_Store(wxWindow* parent, const wxString& question,
                                                 const wxString& name) {
  wxFileDialog dialog(parent, question, wxStandardPaths::Get().GetDocumentsDir(), name + ".tidyfold",
                      store_wildcard, wxFD_SAVE);
  return dialog.ShowModal() == wxID_OK ? To_Path(dialog.GetPath()) : std::filesystem::path();
}

bool Store_Files::Make_Sample_Store(wxWindow* parent) {
  for (;;) {
    const std::filesystem::path path = Ask_New_Store(parent, "Where to keep the sample store", "Sample");
    if (path.empty()) return false;
    try {
      Progress progress(parent, "New Sample Store", "Writing " + File_Name(path));
      const auto tell = [&progress](std::int32_t written) {
        return progress.Tell(written, sample_default_items);
      };
      if (!Make_Sample(path, From_Wx(File_Name(path.stem())), sample_default_items, sample_default_seed,
                       tell))
        return false;
    } catch (const std::exception& error) {
      Show_Error(parent, error.what());
      continue;
    }
    return Open(parent, {path});
  }
}

bool Store_Files::Import_Files(wxWindow* parent) {
  wxFileDialog dialog(parent, "Import", wxStandardPaths::Get().GetDocumentsDir(), wxString(), source_wildcard,
                      wxFD_OPEN | wxFD_FILE_MUST_EXIST | wxFD_MULTIPLE);
  Import_Choices choices;
  dialog.SetCustomizeHook(choices);
  if (dialog.ShowModal() != wxID_OK) return false;
  wxArrayString chosen;
  dialog.GetPaths(chosen);
  std::vector<std::filesystem::path> sources;
  for (const wxString& path : chosen) sources.push_back(To_Path(path));
  return Import(parent, sources, choices.options);
}

bool Store_Files::Import_Folder(wxWindow* parent) {
  wxDirDialog dialog(parent, "Import Folder", wxString(), wxDD_DEFAULT_STYLE | wxDD_DIR_MUST_EXIST);
  if (dialog.ShowModal() != wxID_OK) return false;
  return Import(parent, {To_Path(dialog.GetPath())}, {});
}

bool Store_Files::Take_In(wxWindow* parent, const std::vector<std::filesystem::path>& files) {
  std::vector<std::filesystem::path> sources;
  std::vector<Store_Address> stores;
  for (const std::filesystem::path& file : files)
    Is_Store_File(file) ? stores.emplace_back(file), void() : sources.push_back(file);
  const bool opened = !stores.empty() && Open(parent, stores);
  if (!stores.empty() && !opened) return false;
  return (!sources.empty() && Import(parent, sources, {})) || opened;
}

bool Store_Files::Import(wxWindow* parent, const std::vector<std::filesystem::path>& sources,
                         const Import_Options& options) {
  if (const auto open = stores_.Stores_Of<Embedded_Store>(); !open.empty())
    return Import_Into(parent, *open.front(), sources, options);
  for (;;) {
    const std::filesystem::path path =
        Ask_New_Store(parent, "Where to keep what is imported", File_Name(sources.front().stem()));
    if (path.empty()) return false;
    std::shared_ptr<Embedded_Store> store;
    try {
      store = Embedded_Store::Create(path, From_Wx(File_Name(path.stem())));
      stores_.Add(store);
    } catch (const std::exception& error) {
      Show_Error(parent, error.what());
      continue;
    }
    Remember();
    Import_Into(parent, *store, sources, options);
    return true;
  }
}

bool Store_Files::Import_Into(wxWindow* parent, Embedded_Store& store,
                              const std::vector<std::filesystem::path>& sources, Import_Options options) {
  std::vector<Import_Report> reports;
  for (const std::filesystem::path& source : sources) {
    try {
      Progress progress(parent, "Import", "Importing " + File_Name(source));
      options.progress = [&progress](std::int64_t found, std::optional<std::int64_t> total) {
        return progress.Tell(found, total);
      };
      reports.push_back(Import_Source(source, store.Writer(), options));
    } catch (const std::exception& error) {
      Show_Error(parent, error.what());
      continue;
    }
    if (reports.back().cancelled) break;
  }
  if (reports.empty()) return false;
  Show_Reports(parent, reports);
  return true;
}

void Store_Files::Export(wxWindow* parent, const MAPIFolder_Ptr& folder) {
  const std::string name = folder == nullptr ? std::string() : folder->Name();
  Export_Dialog dialog(parent, name);
  while (dialog.ShowModal() == wxID_OK) {
    try {
      std::vector<Export_Folder> folders;
      Export_Options options;
      options.form = dialog.Form();
      const auto add = [&](const MAPIFolder_Ptr& top, std::vector<std::string> above) {
        const auto read = [this, id = top->StoreID()](const std::string& entry_id) {
          return stores_.Read_Whole_Item(id, entry_id);
        };
        std::ranges::move(Folders_To_Export(top, std::move(above), read), std::back_inserter(folders));
        options.total += Items_In(*top);
      };
      if (folder != nullptr) {
        add(folder, {});
      } else {
        const bool several = stores_.Open_Stores().size() > 1;
        for (const auto& store : stores_.Open_Stores()) {
          const MAPIFolder_Ptr top = store->Top_Folder();
          add(top, several ? std::vector{top->Name()} : std::vector<std::string>{});
        }
      }
      Export_Report report;
      {
        Progress progress(parent, "Export",
                          name.empty() ? wxString("Exporting") : "Exporting " + To_Wx(name));
        options.progress = [&progress](std::int64_t done, std::int64_t total) {
          return progress.Tell(done, total);
        };
        report = Export_Folders(folders, To_Path(dialog.Directory()), options);
      }
      return Show_Reports(parent, report);
    } catch (const std::exception& error) {
      Show_Error(parent, error.what());
    }
  }
}

void Store_Files::Compact(wxWindow* parent) {
  wxString text;
  for (const auto& store : stores_.Stores_Of<Embedded_Store>()) {
    const wxString name = File_Name(store->Path());
    try {
      Compacted compacted;
      {
        Progress progress(parent, "Compact", "Compacting " + name);
        compacted = store->Compact(
            [&progress](std::int64_t done, std::int64_t total) { return progress.Tell_Part(done, total); });
      }
      text += wxString::Format("%s: %s -> %s\n", name, To_Wx(Format_Size(compacted.before)),
                               To_Wx(Format_Size(compacted.after)));
      if (compacted.cancelled) text += "Cancelled; the store is whole.\n";
      if (compacted.cancelled) break;
    } catch (const std::exception& error) {
      Show_Error(parent, error.what());
    }
  }
  if (!text.empty()) wxMessageDialog(parent, text.Trim(), application_title, wxOK | wxCENTRE).ShowModal();
}

std::int64_t Store_Files::Unused_Bytes() const {
  std::int64_t bytes = 0;
  for (const auto& store : stores_.Stores_Of<Embedded_Store>()) {
    try {
      bytes += store->Unused_Bytes();
    } catch (const Automation_Error&) {
      // A store that cannot be read is told by whatever works on it.
    }
  }
  return bytes;
}

std::int64_t Store_Files::File_Bytes() const {
  std::int64_t bytes = 0;
  std::error_code ignored;
  for (const auto& store : stores_.Stores_Of<Embedded_Store>()) {
    const auto size = std::filesystem::file_size(store->Path(), ignored);
    if (!ignored) bytes += static_cast<std::int64_t>(size);
  }
  return bytes;
}

void Store_Files::Remember() {
  std::vector<Store_Address> addresses;
  for (const auto& store : stores_.Open_Stores()) addresses.push_back(store->Address());
  Keep_Last_Stores(registry_, addresses);
}

}  // namespace tidyfold
