#include "import/pst.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "import/mime_message.h"
#include "import/pst_item.h"
#include "import/pst_properties.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t long_item = 1 << 20;  // bytes
constexpr std::uint32_t node_type_mask = 0x1F, search_folder = 0x03;
constexpr std::string_view repair =
    " Repair the file with Outlook's Inbox Repair Tool, or copy it again from where it came from.";

struct Free_Pff_File {
  void operator()(libpff_file_t* file) const { libpff_file_free(&file, nullptr); }
};
using Pff_File = std::unique_ptr<libpff_file_t, Free_Pff_File>;

std::uint64_t Little_Endian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i > 0; --i)
    number = number << 8 | static_cast<unsigned char>(bytes[i - 1]);
  return number;
}

// The header has the kind and the length of the file; libpff would read a shorter file and miss items.
void Check_Header(const fs::path& source) {
  constexpr std::int64_t header_size = 512;
  constexpr std::uint64_t first_version_of_64_bits = 20;
  Source_File file(source);
  const std::string header = file.Read(0, header_size);
  std::uint64_t length = header_size;
  if (header.size() == header_size) {
    // PST, OST and PAB
    const std::string_view kind = std::string_view(header).substr(8, 2);
    if (kind != "SM" && kind != "SO" && kind != "BA") {
      throw Import_Error(source.string() +
                         ": the file begins like an Outlook data file, but its header is damaged." +
                         std::string(repair));
    }
    const bool wide = Little_Endian(std::string_view(header).substr(10, 2)) >= first_version_of_64_bits;
    length = Little_Endian(std::string_view(header).substr(wide ? 184 : 168, wide ? 8 : 4));
  }
  if (static_cast<std::uint64_t>(file.Size()) >= length) return;
  throw Import_Error(source.string() + ": the Outlook data file is cut off: it has " +
                     std::to_string(file.Size()) + " bytes, and its header says " + std::to_string(length) +
                     ". Copy it again from where it came from.");
}

struct Listed_Folder {
  Pff_Item item;
  std::size_t parent;  // index in the list
  std::string name;
  std::string path;  // for reports
  std::int32_t item_type;
  int messages;
  bool deleted_items;
};

class Pst_Importer {
 public:
  Pst_Importer(const fs::path& source, Import_Run& run) : source_(source), run_(run) { Open(); }

  void Import() {
    List_Folders();
    std::int64_t total = 0;
    for (const Listed_Folder& folder : folders_) total += folder.messages;
    run_.Expect(total);
    std::vector<MAPIFolder_Ptr> places;
    for (const Listed_Folder& folder : folders_) {
      MAPIFolder_Ptr place = run_.Top_Folder();
      if (folder.deleted_items) {
        place = run_.Deleted_Items();
      } else if (!places.empty()) {
        place = run_.Folder(places[folder.parent], folder.name, folder.item_type);
      }
      places.push_back(place);
      for (int i = 0; i < folder.messages; ++i) Import_Item(folder, i, *place);
    }
  }

 private:
  void Open() {
    libpff_file_t* file = nullptr;
    Pff_Error error;
    if (libpff_file_initialize(&file, error.Out()) != 1) Refuse(error.Text());
    file_.reset(file);
    const std::string path = source_.string();
    const int result =
        run_.Beside([&] { return libpff_file_open(file, path.c_str(), LIBPFF_OPEN_READ, error.Out()); },
                    [&] { libpff_file_signal_abort(file, nullptr); });
    if (result != 1) Refuse(error.Text());
  }

  [[noreturn]] void Refuse(const std::string& why) const {
    throw Import_Error(source_.string() + ": the Outlook data file cannot be read (" + why + ")." +
                       std::string(repair));
  }

  // The folder that Outlook shows as the file's top. Finds Deleted Items, too.
  Pff_Item Top() {
    Pff_Error error;
    libpff_item_t* found = nullptr;
    if (libpff_file_get_message_store(file_.get(), &found, error.Out()) == 1) {
      const Pff_Item store(found);
      const Pst_Properties properties(found);
      deleted_items_ = Node(properties.Bytes(pst_property::wastebasket));
      const std::uint32_t top = Node(properties.Bytes(pst_property::ipm_subtree));
      found = nullptr;
      if (top != 0 && libpff_file_get_item_by_identifier(file_.get(), top, &found, error.Out()) == 1) {
        return Pff_Item(found);
      }
    }
    found = nullptr;
    if (libpff_file_get_root_folder(file_.get(), &found, error.Out()) != 1) Refuse("it has no folders");
    Pff_Item root(found);
    Pff_Item top = Named_Top(found, 2);
    return top ? std::move(top) : std::move(root);
  }

  // Offline files and address books may not mark their top folder; then it is found by name.
  static Pff_Item Named_Top(libpff_item_t* parent, int levels) {
    Pff_Error error;
    int count = 0;
    Check_Pff(libpff_folder_get_number_of_sub_folders(parent, &count, error.Out()), error);
    for (int i = 0; i < count; ++i) {
      libpff_item_t* found = nullptr;
      if (libpff_folder_get_sub_folder(parent, i, &found, error.Out()) != 1) continue;
      Pff_Item child(found);
      const std::string name = Pst_Properties(found).Text(pst_property::display_name);
      if (name.starts_with("Top of ") || name == "IPM_SUBTREE") return child;
      if (levels == 1) continue;
      if (Pff_Item below = Named_Top(found, levels - 1)) return below;
    }
    return nullptr;
  }

  // Parents before children, without folders that Outlook hides.
  void List_Folders() {
    std::vector<Listed_Folder> waiting;
    waiting.push_back({Top(), 0, {}, {}, item_type::mail, 0, false});
    while (!waiting.empty()) {
      run_.Tick();
      Listed_Folder folder = std::move(waiting.back());
      waiting.pop_back();
      const auto children =
          Count(libpff_folder_get_number_of_sub_folders, folder, "its folders cannot be listed");
      if (!children && folders_.empty()) Refuse("its folders cannot be listed");
      folder.messages =
          Count(libpff_folder_get_number_of_sub_messages, folder, "its items cannot be listed").value_or(0);
      for (int i = children.value_or(0) - 1; i >= 0; --i) Add_Child(folder, i, waiting);
      folders_.push_back(std::move(folder));
    }
  }

  void Add_Child(const Listed_Folder& parent, int index, std::vector<Listed_Folder>& waiting) {
    try {
      Pff_Error error;
      libpff_item_t* found = nullptr;
      Check_Pff(libpff_folder_get_sub_folder(parent.item.get(), index, &found, error.Out()), error);
      Listed_Folder child{Pff_Item(found), folders_.size(), {}, {}, item_type::mail, 0, false};
      std::uint32_t node = 0;
      Check_Pff(libpff_item_get_identifier(found, &node, error.Out()), error);
      const Pst_Properties properties(found);
      if ((node & node_type_mask) == search_folder || properties.Flag(pst_property::hidden)) return;
      child.deleted_items = node == deleted_items_;
      child.name = properties.Text(pst_property::display_name);
      child.path = parent.path.empty() ? child.name : parent.path + "/" + child.name;
      child.item_type = Item_Type_Of(properties.Text(pst_property::container_class));
      waiting.push_back(std::move(child));
    } catch (const Message_Error& error) {
      run_.Fail(Shown(parent) + ", folder " + std::to_string(index + 1), error.what());
    }
  }

  static std::string Shown(const Listed_Folder& folder) { return folder.path.empty() ? "/" : folder.path; }

  // A folder that cannot be listed counts as one failure; the rest can still be read.
  template <class Call>
  std::optional<int> Count(Call call, const Listed_Folder& folder, const std::string& failure) {
    Pff_Error error;
    int count = 0;
    if (call(folder.item.get(), &count, error.Out()) == 1) return count;
    run_.Fail(Shown(folder), failure + " (" + error.Text() + ")");
    return std::nullopt;
  }

  void Import_Item(const Listed_Folder& folder, int index, MAPIFolder& place) {
    try {
      Pff_Error error;
      libpff_item_t* message = nullptr;
      Check_Pff(libpff_folder_get_sub_message(folder.item.get(), index, &message, error.Out()), error);
      const Pff_Item item(message);
      const bool is_long = Pst_Properties(message).Number(pst_property::message_size).value_or(0) > long_item;
      run_.Add(place,
               is_long ? run_.Beside([message] { return Read_Pst_Item(message); }) : Read_Pst_Item(message));
    } catch (const Message_Error& error) {
      run_.Fail(Shown(folder) + ", item " + std::to_string(index + 1), error.what());
    }
  }

  // An entry identifier ends with the number of its node; 0 if there is none.
  static std::uint32_t Node(const std::optional<std::string>& entry_id) {
    if (!entry_id || entry_id->size() < 4) return 0;
    return static_cast<std::uint32_t>(
        Little_Endian(std::string_view(*entry_id).substr(entry_id->size() - 4)));
  }

  const fs::path& source_;
  Import_Run& run_;
  Pff_File file_;
  std::uint32_t deleted_items_ = 0;
  std::vector<Listed_Folder> folders_;
};

}  // namespace

void Import_Pst(const fs::path& source, Import_Run& run) {
  Check_Header(source);
  try {
    Pst_Importer(source, run).Import();
  } catch (const Message_Error& error) {
    throw Import_Error(source.string() + ": the Outlook data file cannot be read: " + error.what() + "." +
                       std::string(repair));
  }
}

}  // namespace tidyfold
