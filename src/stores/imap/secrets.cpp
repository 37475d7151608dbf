#include "stores/imap/secrets.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>

#ifdef TIDYFOLD_KEYRING
#include <libsecret/secret.h>
#endif

namespace tidyfold::imap {

namespace {

constexpr std::size_t longest_secret = 64 << 10;  // tokens are long

}  // namespace

std::string Secret_From_Command(const std::string& command) {
  std::FILE* const output = popen(command.c_str(), "re");
  if (output == nullptr) throw Secret_Error("The command for the password cannot be started.");
  std::string text;
  std::array<char, 4096> buffer;
  std::size_t got = 0;
  while ((got = std::fread(buffer.data(), 1, buffer.size(), output)) > 0 && text.size() < longest_secret)
    text.append(buffer.data(), got);
  buffer.fill('\0');
  const int status = pclose(output);
  if (status == -1 || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
    throw Secret_Error("The command for the password has failed.");
  text.resize(std::min(text.find_first_of("\r\n"), text.size()));
  if (text.empty()) throw Secret_Error("The command for the password has written nothing.");
  return text;
}

#ifdef TIDYFOLD_KEYRING

namespace {

// By server and user, as other mail programs look for it.
const SecretSchema schema = {"org.freedesktop.Secret.Generic",
                             SECRET_SCHEMA_DONT_MATCH_NAME,
                             {{"protocol", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {"server", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {"user", SECRET_SCHEMA_ATTRIBUTE_STRING},
                              {nullptr, SECRET_SCHEMA_ATTRIBUTE_STRING}},
                             0,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr,
                             nullptr};

}  // namespace

std::optional<std::string> Secret_From_Keyring(const Store_Address& address) {
  gchar* const found =
      secret_password_lookup_sync(&schema, nullptr, nullptr, "protocol", "imap", "server",
                                  address.host.c_str(), "user", address.user.c_str(), nullptr);
  if (found == nullptr) return std::nullopt;
  std::string secret = found;
  secret_password_free(found);
  return secret;
}

bool Keep_Secret_In_Keyring(const Store_Address& address, const std::string& secret) {
  const std::string label = "Mail of " + address.user + " at " + address.host;
  return secret_password_store_sync(&schema, SECRET_COLLECTION_DEFAULT, label.c_str(), secret.c_str(),
                                    nullptr, nullptr, "protocol", "imap", "server", address.host.c_str(),
                                    "user", address.user.c_str(), nullptr) != FALSE;
}

#else

std::optional<std::string> Secret_From_Keyring(const Store_Address&) {
  return std::nullopt;
}

bool Keep_Secret_In_Keyring(const Store_Address&, const std::string&) {
  return false;
}

#endif

std::optional<std::string> Secret_From_Terminal(const std::string& question) {
  const int terminal = open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
  if (terminal < 0) return std::nullopt;
  termios shown;
  if (tcgetattr(terminal, &shown) != 0) {
    close(terminal);
    return std::nullopt;
  }
  termios hidden = shown;
  hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
  tcsetattr(terminal, TCSAFLUSH, &hidden);
  const auto say = [&](const std::string& text) {
    return write(terminal, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  };
  std::string line;
  bool ended = false;
  if (say(question)) {
    for (char c = '\0'; line.size() < longest_secret;) {
      const ssize_t got = read(terminal, &c, 1);
      if (got < 0 && errno == EINTR) break;
      if (got != 1) break;
      ended = c == '\n';
      if (ended) break;
      line += c;
    }
  }
  tcsetattr(terminal, TCSAFLUSH, &shown);
  say("\n");
  close(terminal);
  if (!ended) return std::nullopt;
  return line;
}

}  // namespace tidyfold::imap
