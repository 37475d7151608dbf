#include "import/mail_files.h"

#include <algorithm>
#include <string>
#include <utility>

#include "import/maildir.h"
#include "import/mbox_reader.h"
#include "import/mime_message.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

// A message that takes longer than a progress period to read.
constexpr std::size_t long_message = 1 << 20;

New_Item Read_Message(std::string raw, Import_Run& run) {
  if (raw.size() < long_message) return Read_Mime_Message(std::move(raw));
  return run.Beside([raw = std::move(raw)]() mutable { return Read_Mime_Message(std::move(raw)); });
}

void Check_Size(std::int64_t size) {
  if (size > max_message_size) throw Message_Error("it is larger than 512 MB");
}

New_Item Read_Message_File(const std::filesystem::path& path, Import_Run& run) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) throw Message_Error("it is no file that can be read");
  try {
    Source_File file(path);
    Check_Size(file.Size());
    if (file.Size() == 0) throw Message_Error("it is empty");
    return Read_Message(file.Read(0, file.Size()), run);
  } catch (const Import_Error&) {
    throw Message_Error("it cannot be opened and read");
  }
}

std::string Position(std::int64_t number, const Mbox_Message& message) {
  return "message " + std::to_string(number) + ", at byte " + std::to_string(message.begin);
}

// "From sender Fri Aug 23 02:32:53 2002"
Date Separator_Date(std::string_view separator) {
  const std::size_t sender = separator.find(' ');
  if (sender == std::string_view::npos) return no_date;
  const std::size_t date = separator.find(' ', sender + 1);
  return date == std::string_view::npos ? no_date : Parse_Mail_Date(separator.substr(date + 1), true);
}

}  // namespace

void Import_Mbox(const std::filesystem::path& source, Import_Run& run) {
  Source_File file(source);
  Mbox_Reader reader(file, [&run] { run.Tick(); });
  const MAPIFolder_Ptr folder = run.Target_Folder();
  std::int64_t number = 0;
  std::string last;
  while (const auto message = reader.Next()) {
    last = Position(++number, *message);
    try {
      Check_Size(message->end - message->content);
      New_Item item = Read_Message(reader.Text(*message), run);
      if (item.received == no_date) {
        item.received = Separator_Date(reader.Separator(*message));
        item.last_modified = item.received;
      }
      run.Add(*folder, item);
    } catch (const Message_Error& error) {
      run.Fail(last, error.what());
    }
  }
  if (!reader.Is_Cut()) return;
  throw Import_Error(
      source.string() + ": the mbox file is cut off in the middle of its last message (" + last +
      "). Copy the file again from where it came from. If nothing is missing, add a line break at "
      "its end; to import only what is whole, cut the file off where that message begins.");
}

void Import_Maildir(const std::filesystem::path& source, Import_Run& run) {
  const std::vector<Maildir_Folder> folders = List_Maildir(source, [&run] { run.Tick(); });
  std::int64_t total = 0;
  for (const Maildir_Folder& folder : folders) total += static_cast<std::int64_t>(folder.messages.size());
  run.Expect(total);
  const MAPIFolder_Ptr target = run.Target_Folder();
  for (const Maildir_Folder& folder : folders) {
    MAPIFolder_Ptr place = target;
    for (const std::string& name : folder.names) place = run.Folder(place, name, item_type::mail);
    for (const Maildir_Message& message : folder.messages) {
      const std::filesystem::path file = message.Path(folder);
      try {
        New_Item item = Read_Message_File(file, run);
        item.unread = !message.seen;
        if (item.received == no_date) item.received = item.last_modified = message.delivered;
        run.Add(message.trashed ? *run.Deleted_Items() : *place, item);
      } catch (const Message_Error& error) {
        run.Fail(file.string(), error.what());
      }
    }
  }
}

void Import_Eml(const std::filesystem::path& source, Import_Run& run) {
  run.Expect(1);
  try {
    const New_Item item = Read_Message_File(source, run);
    run.Add(*run.Target_Folder(), item);
  } catch (const Message_Error& error) {
    throw Import_Error(source.string() + ": the message cannot be read: " + error.what() +
                       ". Save it again from the program that it came from.");
  }
}

}  // namespace tidyfold
