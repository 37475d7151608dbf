#include "base/store_address.h"

#include <algorithm>
#include <charconv>
#include <string_view>

#include "base/file_path.h"

namespace tidyfold {

namespace {

constexpr std::string_view maildir_beginning = "maildir:", tls_beginning = "imaps://",
                           plain_beginning = "imap://";
constexpr std::uint16_t tls_port = 993, plain_port = 143;

char Small(char character) {
  return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool Begins(std::string_view text, std::string_view beginning) {
  return text.size() >= beginning.size() &&
         std::equal(beginning.begin(), beginning.end(), text.begin(),
                    [](char wanted, char found) { return wanted == Small(found); });
}

[[noreturn]] void Fail(const std::string& text, const std::string& why) {
  throw Store_Address_Error("\"" + text + "\" is no address of a mailbox: " + why +
                            " Write it as imaps://USER@HOST/ or imaps://USER@HOST:PORT/.");
}

// RFC 3986: everything but letters, digits and these.
std::string Escaped(std::string_view text) {
  constexpr std::string_view plain = "-._~!$&'()*+,;=";
  std::string escaped;
  for (const char character : text) {
    const bool keep = (Small(character) >= 'a' && Small(character) <= 'z') ||
                      (character >= '0' && character <= '9') || plain.find(character) != plain.npos;
    if (keep) {
      escaped += character;
    } else {
      const auto byte = static_cast<unsigned char>(character);
      escaped += {'%', "0123456789ABCDEF"[byte >> 4], "0123456789ABCDEF"[byte & 15]};
    }
  }
  return escaped;
}

std::string Unescaped(const std::string& whole, std::string_view text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      plain += text[at];
      continue;
    }
    unsigned char byte = 0;
    const std::string_view digits = text.substr(at + 1, 2);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2)
      Fail(whole, "behind a \"%\" two hexadecimal digits are missing.");
    if (byte < ' ') Fail(whole, "the user's name holds a control character.");
    plain += static_cast<char>(byte);
    at += 2;
  }
  return plain;
}

Store_Address Read_Server(const std::string& text, Store_Address::Kind kind, std::size_t beginning) {
  Store_Address address;
  address.kind = kind;
  std::string_view rest = std::string_view(text).substr(beginning);
  const std::size_t slash = rest.find('/');
  if (slash != rest.npos && slash + 1 != rest.size())
    Fail(text, "something follows behind the server's name. Folders are named elsewhere.");
  rest = rest.substr(0, slash);
  // Users are often addresses themselves.
  const std::size_t at = rest.rfind('@');
  if (at == rest.npos || at == 0) Fail(text, "the user is missing.");
  const std::string_view user = rest.substr(0, at);
  if (user.find(':') != user.npos)
    Fail(text, "it holds a \":\" before the \"@\". A password is asked for, and a \":\" in a name is %3A.");
  address.user = Unescaped(text, user);
  rest.remove_prefix(at + 1);
  std::size_t colon = rest.rfind(':');
  if (rest.starts_with('[')) {  // an IPv6 address
    const std::size_t bracket = rest.find(']');
    if (bracket == rest.npos) Fail(text, "a \"]\" is missing.");
    if (colon < bracket) colon = rest.npos;
    address.host = rest.substr(1, bracket - 1);
    if (std::min(colon, rest.size()) != bracket + 1) Fail(text, "a \":\" is missing behind the \"]\".");
  } else {
    address.host = rest.substr(0, colon);
  }
  std::transform(address.host.begin(), address.host.end(), address.host.begin(), Small);
  const auto is_of_no_host = [](char character) {
    return static_cast<unsigned char>(character) <= ' ' || character == '%' || character == '[';
  };
  if (address.host.empty() || std::any_of(address.host.begin(), address.host.end(), is_of_no_host))
    Fail(text, "the server's name is missing or cannot be one.");
  address.port = kind == Store_Address::Kind::Imap_Tls ? tls_port : plain_port;
  if (colon != rest.npos) {
    const std::string_view digits = rest.substr(colon + 1);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), address.port);
    if (error != std::errc() || end != digits.data() + digits.size() || address.port == 0)
      Fail(text, "the port is no number from 1 to 65535.");
  }
  return address;
}

std::string Server_Text(const Store_Address& address) {
  const bool tls = address.kind == Store_Address::Kind::Imap_Tls;
  std::string text(tls ? tls_beginning : plain_beginning);
  text += Escaped(address.user) + "@";
  text += address.host.find(':') == std::string::npos ? address.host : "[" + address.host + "]";
  if (address.port != (tls ? tls_port : plain_port)) text += ":" + std::to_string(address.port);
  return text + "/";
}

}  // namespace

Store_Address::Store_Address(const std::filesystem::path& file) : path(file) {}

bool Store_Address::Is_On_This_Machine() const {
  // Only an address: a name that begins so may be anywhere.
  const bool is_number = host.find_first_not_of("0123456789.") == std::string::npos;
  return host == "localhost" || (is_number && host.starts_with("127.")) || host == "::1";
}

std::string Store_Address::Text() const {
  if (Is_Server()) return Server_Text(*this);
  return (kind == Kind::Maildir ? std::string(maildir_beginning) : "") + path.string();
}

std::string Store_Address::Lasting_Text() const {
  if (Is_Server()) return Server_Text(*this);
  std::error_code error;
  Store_Address lasting = *this;
  lasting.path = std::filesystem::absolute(path, error);
  if (error) lasting.path = path;
  return lasting.Text();
}

Store_Address Read_Store_Address(const std::string& text) {
  if (Begins(text, tls_beginning))
    return Read_Server(text, Store_Address::Kind::Imap_Tls, tls_beginning.size());
  if (Begins(text, plain_beginning))
    return Read_Server(text, Store_Address::Kind::Imap, plain_beginning.size());
  if (!text.starts_with(maildir_beginning)) return File_Path(text);
  Store_Address address(File_Path(text.substr(maildir_beginning.size())));
  if (address.path.empty())
    throw Store_Address_Error("\"maildir:\" names no directory. Write it as maildir:DIRECTORY.");
  address.kind = Store_Address::Kind::Maildir;
  return address;
}

}  // namespace tidyfold
