#include "stores/imap/message_id.h"

#include "stores/imap/response.h"

namespace tidyfold::imap {

namespace {

constexpr std::string_view beginning = "mail:";

// The number up to the next colon, which is taken off with it.
std::optional<std::uint32_t> Take_Number(std::string_view& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) return std::nullopt;
  const auto number = Parse_Number(text.substr(0, colon));
  if (!number || *number > UINT32_MAX || (text.front() == '0' && colon > 1)) return std::nullopt;
  text.remove_prefix(colon + 1);
  return static_cast<std::uint32_t>(*number);
}

std::optional<Message_Id> Read_Id(std::string_view text, bool has_uid) {
  if (!text.starts_with(beginning)) return std::nullopt;
  text.remove_prefix(beginning.size());
  const auto validity = Take_Number(text);
  const auto uid = validity && has_uid ? Take_Number(text) : std::optional<std::uint32_t>(0);
  if (!validity || !uid) return std::nullopt;
  return Message_Id{*validity, *uid, std::string(text)};
}

}  // namespace

std::string Text_Of(const Message_Id& id) {
  return std::string(beginning) + std::to_string(id.validity) + ":" + std::to_string(id.uid) + ":" +
         id.mailbox;
}

std::string Folder_Id(const Mailbox& mailbox) {
  return std::string(beginning) + std::to_string(mailbox.uid_validity) + ":" + mailbox.wire_name;
}

std::optional<Message_Id> Read_Message_Id(std::string_view text) {
  auto id = Read_Id(text, true);
  return id && id->validity != 0 && id->uid != 0 ? id : std::nullopt;
}

std::optional<Message_Id> Read_Folder_Id(std::string_view text) {
  return Read_Id(text, false);
}

}  // namespace tidyfold::imap
