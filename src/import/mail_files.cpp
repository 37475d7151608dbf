#include "import/mail_files.h"

#include <algorithm>
#include <string>
#include <utility>

#include "import/apple_message.h"
#include "import/mbox_reader.h"
#include "import/source_file.h"
#include "import/source_kind.h"
#include "mail/kept_fields.h"
#include "mail/mail_flags.h"
#include "mail/mime_message.h"

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

void Set_Flags(const Mail_Flags& flags, New_Item& item) {
  item.unread = !flags.read;
  item.flagged = flags.flagged;
  item.answered = flags.answered;
}

struct Message_In_File {
  New_Item item;
  bool is_deleted = false;  // marked so
  int missing_parts = 0;
};

Message_In_File Read_Message_File(const std::filesystem::path& path, Import_Run& run) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) throw Message_Error("it is no file that can be read");
  try {
    Source_File file(path);
    Check_Size(file.Size());
    if (file.Size() == 0) throw Message_Error("it is empty");
    if (!Has_Apple_Frame(file.Read(0, longest_look))) {
      New_Item item = Read_Message(
          file.Size(), [&] { return file.Read(0, file.Size()); }, run);
      if (const auto flags = Flags_In_File_Name(path.filename().string())) Set_Flags(*flags, item);
      return {std::move(item)};
    }
    Apple_Message message = Split_Apple_Frame(file.Read(0, file.Size()));
    const int missing = Put_Parts_Back(path, message.message);
    Check_Size(static_cast<std::int64_t>(message.message.size()));
    const auto text = [&] { return std::move(message.message); };
    New_Item item = Read_Message(file.Size(), text, run);
    Set_Flags({message.read, message.answered, message.flagged, message.deleted}, item);
    return {std::move(item), message.deleted, missing};
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
      return "by its Content-Length it is longer than what is left of the file";
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
    // What the exporter wrote was not deleted, whatever an older program left in its header.
    deleted = !Begins_With_Kept_Block(read) && Flags_In(read).deleted;
    return read;
  };
  New_Item item = Read_Message(size, text, run);
  if (deleted) return run.Leave_Out(where, deleted_mail);
  if (item.received == no_date) {
    const Date arrived = Separator_Date(reader.Separator(message));
    if (arrived != no_date) item.received = item.last_modified = arrived;
  }
  run.Add(folder, std::move(item));
  if (message.cut == Mbox_Cut::Line)
    run.Doubt(where, "it went in, but the file ends within its last line: check whether its end is missing");
}

}  // namespace

void Import_Mbox(const std::filesystem::path& source, const MAPIFolder_Ptr& folder, Import_Run& run) {
  Source_File file(source);
  Mbox_Reader reader(file, [&run] { run.Tick(); });
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

void Add_Message_File(const std::filesystem::path& file, MAPIFolder& folder, Import_Run& run,
                      const std::function<void(New_Item&)>& change) {
  Message_In_File message = Read_Message_File(file, run);
  if (message.is_deleted) return run.Leave_Out("", deleted_mail);
  if (change) change(message.item);
  run.Add(folder, std::move(message.item));
  if (message.missing_parts != 0)
    run.Doubt("", "it went in without " + std::to_string(message.missing_parts) +
                      " of its attachments, which Apple Mail had not fetched from the server");
}

void Import_Message(const std::filesystem::path& source, Import_Run& run) {
  run.Expect(1);
  run.Set_File(source.string());
  try {
    Add_Message_File(source, *run.Target_Folder(), run);
  } catch (const Message_Error& error) {
    throw Import_Error(source.string() + ": the message cannot be read: " + error.what() +
                       ". Save it again from the program that it came from.");
  }
}

}  // namespace tidyfold
