#include "import/mail_files.h"

#include <algorithm>
#include <string>
#include <utility>

#include "import/mail_flags.h"
#include "import/mail_headers.h"
#include "import/maildir.h"
#include "import/mbox_reader.h"
#include "import/mime_message.h"
#include "import/source_file.h"

namespace tidyfold {
namespace {

// A message that takes longer than a progress period to read.
constexpr std::int64_t long_message = 1 << 20;

// Reads the text, then parses the message; both take long if it is long.
template <class Read_Text>
New_Item Read_Message(std::int64_t size, Read_Text read_text, Import_Run& run) {
  const auto read = [&] { return Read_Mime_Message(read_text()); };
  return size < long_message ? read() : run.Beside(read);
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
    return Read_Message(
        file.Size(), [&] { return file.Read(0, file.Size()); }, run);
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

// Why a message is not whole; empty if it is, as far as one can tell.
std::string Missing_Part(Mbox_Cut cut, std::string_view text) {
  switch (cut) {
    case Mbox_Cut::Header:
      return "the file ends within its header";
    case Mbox_Cut::Length:
      return "the file ends before the length that its Content-Length tells";
    case Mbox_Cut::Line:
      if (Lacks_Last_Part(text)) return "the file ends before its last part does";
      break;
    case Mbox_Cut::None:
      break;
  }
  return {};
}

void Add_Mbox_Message(const Mbox_Message& message, const std::string& where, Mbox_Reader& reader,
                      MAPIFolder& folder, Import_Run& run) {
  const std::int64_t size = message.end - message.content;
  Check_Size(size);
  bool deleted = false;
  const auto text = [&] {
    std::string read = reader.Text(message);
    if (read.empty()) throw Message_Error("it is empty");
    const std::string missing = Missing_Part(message.cut, read);
    if (!missing.empty()) throw Message_Error(missing + ". Copy the file again from where it came from");
    deleted = Flags_In(read).deleted;
    return read;
  };
  New_Item item = Read_Message(size, text, run);
  if (deleted) return run.Leave_Out(where, deleted_mail);
  if (item.received == no_date)
    item.received = item.last_modified = Separator_Date(reader.Separator(message));
  run.Add(folder, item);
  if (message.cut == Mbox_Cut::Line)
    run.Doubt(where, "it went in, but the file ends within its last line: check whether its end is missing");
}

// Some programs save a message with the separator that it had.
bool Is_Saved_Message(const std::filesystem::path& source, Source_File& file, Import_Run& run) {
  if (!Same_Name(source.extension().string(), ".eml")) return false;
  const auto first = Mbox_Reader(file, [&run] { run.Tick(); }).Next();
  return first && first->end == file.Size();
}

}  // namespace

void Import_Mbox(const std::filesystem::path& source, Import_Run& run) {
  Source_File file(source);
  if (Is_Saved_Message(source, file, run)) return Import_Eml(source, run);
  Mbox_Reader reader(file, [&run] { run.Tick(); });
  const MAPIFolder_Ptr folder = run.Target_Folder();
  std::int64_t number = 0;
  while (const auto message = reader.Next()) {
    const std::string where = Position(++number, *message);
    try {
      Add_Mbox_Message(*message, where, reader, *folder, run);
    } catch (const Message_Error& error) {
      run.Fail(where, error.what());
    }
  }
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
