// Stores to export from and to bring what went out into, and a way to compare them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "doubles/temporary_directory.h"
#include "export/export.h"
#include "import/import.h"
#include "mail/item_identity.h"
#include "stores/sqlite/embedded_store.h"

namespace tidyfold {

using Store_Ptr_To_File = std::shared_ptr<Embedded_Store>;

inline std::string Shown(Date date) {
  return date == no_date ? "none" : Format_Moment(date);
}

// All that has to survive, as one text.
inline std::string Shown(const New_Item& item) {
  const bool message = Is_Message_Class(item.item_class);
  std::string text = std::to_string(item.item_class) + "|" + item.sender + "|" + item.recipients + "|" +
                     item.subject + "|" + Plain_Text(item.body) + "|" + (item.unread ? "u" : "") +
                     (item.flagged ? "f" : "") + (item.answered ? "a" : "") + "|" + Shown(item.received) +
                     "|" + Shown(item.end) + "|" + Shown(item.due) + "|" + Shown(item.completed);
  // That of a message is the day of its arrival.
  if (!message) text += "|" + Shown(item.last_modified);
  for (const New_Attachment& attachment : item.attachments)
    text += "|" + attachment.name + "," + std::to_string(attachment.size) + "," + attachment.content;
  return text + "|" + item.raw_message;
}

class Export_Test : public ::testing::Test {
 protected:
  Store_Ptr_To_File New_Store(const std::string& name) {
    return Embedded_Store::Create(directory / (name + ".tidyfold"), name);
  }

  static Export_Report Export(const Store_Ptr_To_File& store, const std::filesystem::path& where,
                              Export_Form form = Export_Form::Maildir) {
    const auto read = [store](const std::string& id) { return store->Read_Whole_Item(id); };
    Export_Options options;
    options.form = form;
    return Export_Folders(Folders_To_Export(store->Top_Folder(), {}, read), where, options);
  }

  static Import_Report Import(const std::filesystem::path& source, const Store_Ptr_To_File& store,
                              bool again = true) {
    Import_Options options;
    options.merge = true;
    options.again = again;
    return Import_Source(source, store->Writer(), options);
  }

  // Each folder by path and type, and each item, sorted.
  static std::vector<std::string> Content(const Store_Ptr_To_File& store) {
    std::vector<std::string> content;
    Add_Content(store, *store->Top_Folder(), "", content);
    std::sort(content.begin(), content.end());
    return content;
  }

  Temporary_Directory directory;

 private:
  static void Add_Content(const Store_Ptr_To_File& store, MAPIFolder& folder, const std::string& path,
                          std::vector<std::string>& content) {
    content.push_back(path + " (" + std::to_string(folder.DefaultItemType()) + ")");
    const Items_Ptr items = folder.Items();
    for (std::int32_t i = 1; i <= items->Count(); ++i)
      content.push_back(path + ": " + Shown(store->Read_Whole_Item(items->Item(i)->EntryID())));
    const Folders_Ptr folders = folder.Folders();
    for (std::int32_t i = 1; i <= folders->Count(); ++i)
      Add_Content(store, *folders->Item(i), path + "/" + folders->Item(i)->Name(), content);
  }
};

}  // namespace tidyfold
