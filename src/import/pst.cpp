#include "import/pst.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "import/mapi_item.h"
#include "import/pst_object.h"
#include "import/source_file.h"
#include "mail/mime_message.h"

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
};

// A folder that may be the top of what Outlook shows.
struct Candidate {
  Pff_Item item;
  bool is_public;  // the cache of an organisation's folders beside the mailbox
};

class Pst_Importer {
 public:
  Pst_Importer(const fs::path& source, Import_Run& run) : source_(source), run_(run) { Open(); }

  void Import(const MAPIFolder_Ptr& target) {
    List_Folders();
    std::int64_t total = 0;
    for (const Listed_Folder& folder : folders_) total += folder.messages;
    run_.Expect(total);
    if (total == 0 && Has_Items(Root().get()))
      Refuse("it has items, but the folders that they lie in are not found");
    std::vector<MAPIFolder_Ptr> places;
    for (const Listed_Folder& folder : folders_) {
      places.push_back(places.empty() ? target
                                      : run_.Folder(places[folder.parent], folder.name, folder.item_type));
      for (int i = 0; i < folder.messages; ++i) Import_Item(folder, i, *places.back());
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

  Pff_Item Root() {
    Pff_Error error;
    libpff_item_t* found = nullptr;
    if (libpff_file_get_root_folder(file_.get(), &found, error.Out()) != 1) Refuse("it has no folders");
    return Pff_Item(found);
  }

  // The folder that Outlook shows as the file's top.
  Pff_Item Top() {
    if (Pff_Item marked = Marked_Top()) return marked;
    Pff_Item root = Root();
    std::vector<Candidate> candidates;
    Find_Tops(root.get(), 3, false, candidates);
    std::stable_partition(candidates.begin(), candidates.end(),
                          [](const Candidate& candidate) { return !candidate.is_public; });
    for (Candidate& candidate : candidates)
      if (Has_Items(candidate.item.get())) return std::move(candidate.item);
    return root;
  }

  // What the file itself names as its top.
  Pff_Item Marked_Top() {
    Pff_Error error;
    libpff_item_t* found = nullptr;
    if (libpff_file_get_message_store(file_.get(), &found, error.Out()) != 1) return nullptr;
    const Pff_Item store(found);
    const std::uint32_t top = Node(Pst_Properties(found).Bytes(mapi_property::ipm_subtree));
    found = nullptr;
    if (top == 0 || libpff_file_get_item_by_identifier(file_.get(), top, &found, error.Out()) != 1)
      return nullptr;
    return Pff_Item(found);
  }

  static std::vector<Pff_Item> Sub_Folders(libpff_item_t* parent) {
    std::vector<Pff_Item> folders;
    Pff_Error error;
    int count = 0;
    if (libpff_folder_get_number_of_sub_folders(parent, &count, error.Out()) != 1) return folders;
    for (int i = 0; i < count; ++i) {
      libpff_item_t* found = nullptr;
      if (libpff_folder_get_sub_folder(parent, i, &found, error.Out()) == 1) folders.emplace_back(found);
    }
    return folders;
  }

  // Offline files and address books do not mark their top; it is found by its name.
  static void Find_Tops(libpff_item_t* parent, int levels, bool is_public,
                        std::vector<Candidate>& candidates) {
    for (Pff_Item& folder : Sub_Folders(parent)) {
      const std::string name = Pst_Properties(folder.get()).Text(mapi_property::display_name);
      if (name.starts_with("Top of ") || name == "IPM_SUBTREE") {
        candidates.push_back({std::move(folder), is_public});
      } else if (levels > 1) {
        Find_Tops(folder.get(), levels - 1, is_public || name == "Root - Public", candidates);
      }
    }
  }

  bool Has_Items(libpff_item_t* folder, int levels = 100) {
    run_.Tick();
    Pff_Error error;
    int count = 0;
    if (libpff_folder_get_number_of_sub_messages(folder, &count, error.Out()) == 1 && count > 0) return true;
    if (levels == 0) return false;
    const std::vector<Pff_Item> below = Sub_Folders(folder);
    return std::any_of(below.begin(), below.end(),
                       [&](const Pff_Item& child) { return Has_Items(child.get(), levels - 1); });
  }

  // Parents before children, without folders that Outlook hides.
  void List_Folders() {
    std::vector<Listed_Folder> waiting;
    waiting.push_back({Top(), 0, {}, {}, item_type::mail, 0});
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
      Listed_Folder child{Pff_Item(found), folders_.size(), {}, {}, item_type::mail, 0};
      std::uint32_t node = 0;
      Check_Pff(libpff_item_get_identifier(found, &node, error.Out()), error);
      const Pst_Properties properties(found);
      if ((node & node_type_mask) == search_folder || properties.Flag(mapi_property::hidden)) return;
      child.name = properties.Text(mapi_property::display_name);
      child.path = parent.path.empty() ? child.name : parent.path + "/" + child.name;
      child.item_type = Item_Type_Of(properties.Text(mapi_property::container_class));
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
      const Pst_Item item{Pff_Item(message)};
      const bool is_long = item.Properties().Number(mapi_property::message_size).value_or(0) > long_item;
      const auto read = [&item] { return Read_Mapi_Item(item); };
      run_.Add(place, is_long ? run_.Beside(read) : read());
    } catch (const Message_Error& error) {
      run_.Fail(Shown(folder) + ", item " + std::to_string(index + 1), error.what());
    }
  }

  // The identifier of an entry of the file ends with the number of its node. 0 if there is none: those of
  // Exchange are longer, and name none.
  static std::uint32_t Node(const std::optional<std::string>& entry_id) {
    constexpr std::size_t size_in_file = 24;
    if (!entry_id || entry_id->size() != size_in_file) return 0;
    return static_cast<std::uint32_t>(
        Little_Endian(std::string_view(*entry_id).substr(entry_id->size() - 4)));
  }

  const fs::path& source_;
  Import_Run& run_;
  Pff_File file_;
  std::vector<Listed_Folder> folders_;
};

}  // namespace

void Import_Pst(const fs::path& source, const MAPIFolder_Ptr& folder, Import_Run& run) {
  Check_Header(source);
  try {
    Pst_Importer(source, run).Import(folder);
  } catch (const Message_Error& error) {
    throw Import_Error(source.string() + ": the Outlook data file cannot be read: " + error.what() + "." +
                       std::string(repair));
  }
}

}  // namespace tidyfold
