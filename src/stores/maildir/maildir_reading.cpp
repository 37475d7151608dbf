// What a Maildir store reads from the files of its mails.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "base/text.h"
#include "errors/automation_error.h"
#include "mail/mime_message.h"
#include "stores/maildir/maildir_store.h"

namespace tidyfold {

namespace {

constexpr int most_readings = 4;
constexpr std::size_t row_characters = 20;

std::string Message(int error) {
  return std::generic_category().message(error);
}

}  // namespace

// The file's beginning; its name may have changed since it was read.
std::string Maildir_Store::Read_File(Mail& mail, std::size_t most, std::int64_t& size) {
  for (int reading = 0; reading < most_readings; ++reading) {
    Demand_There(mail);
    const Folder& folder = *mail.folder;
    const Folder* holder = &folder;
    // What is queued to move lies where it was.
    for (const Change& change : queue_)
      if (mail.pending && change.mail == &mail) {
        holder = change.from;
        break;
      }
    const std::string path = tree_.Text_Of(*holder) + "/" + mail.File();
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0 && errno == ENOENT) {
      Check_Place();
      if (mail.pending) Commit_Pending();
      Demand_There(mail);
      Read(*mail.folder);
      continue;
    }
    if (file < 0)
      Fail(automation_error::no_access, "The mail \"" + path + "\" cannot be read (" + Message(errno) +
                                            "). Change its permissions, or ask its owner to.");
    std::string text;
    struct stat about = {};
    int error = ::fstat(file, &about) == 0 ? 0 : errno;
    if (error == 0 && !S_ISREG(about.st_mode)) error = EINVAL;
    size = about.st_size;
    if (error == 0) {
      text.resize(std::min<std::size_t>(most, static_cast<std::size_t>(about.st_size)));
      std::size_t got = 0;
      while (got < text.size()) {
        const ssize_t part = ::read(file, text.data() + got, text.size() - got);
        if (part < 0 && errno == EINTR) continue;
        if (part < 0) error = errno;
        if (part <= 0) break;
        got += static_cast<std::size_t>(part);
      }
      text.resize(got);
    }
    ::close(file);
    if (error != 0)
      Fail(automation_error::call_failed, "The mail \"" + path + "\" could not be read (" + Message(error) +
                                              "). Check the disk that it lies on.");
    return text;
  }
  Fail(automation_error::busy, "Other programs change the mail all the time. Try again.");
}

Mail_Summary Maildir_Store::Summary(Mail& mail, std::int64_t& size) {
  std::string beginning = Read_File(mail, summary_bytes, size);
  // A header that goes on behind it.
  if (static_cast<std::int64_t>(beginning.size()) < size && !maildir::Holds_Header(beginning))
    beginning = Read_File(mail, summary_bytes * 64, size);
  try {
    return maildir::Summarize_File(beginning, mail.name);
  } catch (const Message_Error& error) {
    Fail(automation_error::call_failed, "The file \"" + (tree_.Path_Of(*mail.folder) / mail.File()).string() +
                                            "\" is no mail: " + error.what() +
                                            ". Move it out of the Maildir, and refresh.");
  }
}

std::optional<Cached_Header> Maildir_Store::Kept_Header(const Mail& mail) {
  std::optional<Cached_Header> header = cache_.Find(cached_, Entry_Id(mail));
  if (header && header->stamp != static_cast<std::int64_t>(mail.inode)) header.reset();
  return header;
}

Cached_Header Maildir_Store::Header(Mail& mail, std::optional<maildir::Read_Header> read) {
  if (!read) {
    read.emplace();
    read->summary = Summary(mail, read->size);
  }
  Cached_Header header;
  header.stamp = static_cast<std::int64_t>(mail.inode);
  header.size = read->size;
  header.item_class = read->summary.item_class;
  header.received = read->summary.received;
  header.has_attachments = read->summary.has_attachments;
  header.subject = std::move(read->summary.subject);
  header.sender = std::move(read->summary.sender);
  if (header.item_class != item_class::mail) {
    std::int64_t size = 0;
    header.sender = First_Characters(
        Read_Mime_Message(Read_File(mail, static_cast<std::size_t>(max_message_size), size)).body,
        row_characters);
  }
  cache_.Put(cached_, Entry_Id(mail), header);
  return header;
}

Table_Row Maildir_Store::Row(Mail& mail, std::optional<Cached_Header> header,
                             std::optional<maildir::Read_Header> read) {
  Table_Row row;
  row.EntryID = Entry_Id(mail);
  row.UnRead = !mail.Has('S');
  row.FlagStatus = mail.Has('F') ? flag_status::marked : flag_status::none;
  if (!header) {
    try {
      header = Header(mail, std::move(read));
    } catch (const Automation_Error& error) {
      if (error.Number() == automation_error::not_found || error.Number() == automation_error::unavailable)
        throw;
      // What cannot be read is shown, and counts as flagged, so that no run takes it.
      header.emplace();
      header->subject = "(" + mail.name + ": no mail)";
      row.UnRead = true;
      row.FlagStatus = flag_status::marked;
    }
  }
  row.Class = header->item_class;
  row.Subject = std::move(header->subject);
  row.SenderOrText = std::move(header->sender);
  row.ReceivedTime = row.LastModificationTime = header->received;
  row.Size = header->size;
  row.HasAttachments = header->has_attachments;
  return row;
}

New_Item Maildir_Store::Whole(Mail& mail) {
  std::int64_t size = 0;
  std::string text = Read_File(mail, static_cast<std::size_t>(max_message_size), size);
  if (size > max_message_size)
    Fail(automation_error::call_failed, "The mail is larger than 512 MB. Open it with a mail program.");
  std::int64_t ignored = 0;
  const Mail_Summary summary = Summary(mail, ignored);
  try {
    New_Item item = Read_Mime_Message(std::move(text));
    item.item_class = summary.item_class;
    item.received = item.last_modified = summary.received;
    item.unread = !mail.Has('S');
    item.flagged = mail.Has('F');
    item.answered = mail.Has('R');
    return item;
  } catch (const Message_Error& error) {
    Fail(automation_error::call_failed, std::string("The file is no mail: ") + error.what() + ".");
  }
}

New_Item Maildir_Store::Read_Whole_Item(const std::string& entry_id) {
  Mail* const mail = mails_.Find(entry_id);
  if (mail == nullptr) Fail(automation_error::not_found, "The item is no longer there.");
  return Whole(*mail);
}

void Maildir_Store::Display(Mail& mail) {
  Displayed_Item item;
  static_cast<New_Item&>(item) = Whole(mail);
  item.entry_id = maildir::Mail_Index::Entry_Id(mail);
  item.store_id = store_id_;
  item.folder_name = mail.folder->name;
  if (!display_) Fail(automation_error::not_supported, "There is no window here that could show an item.");
  display_(item);
}

}  // namespace tidyfold
