#include "stores/imap/authentication.h"

#include <memory>
#include <string_view>

namespace tidyfold::imap {

namespace {

std::string Base64(std::string_view bytes) {
  constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t at = 0; at < bytes.size(); at += 3) {
    std::uint32_t group = 0;
    for (std::size_t i = 0; i < 3; ++i)
      group = group << 8 | (at + i < bytes.size() ? static_cast<unsigned char>(bytes[at + i]) : 0U);
    for (std::size_t i = 0; i < 4; ++i)
      text += at + i < bytes.size() + 1 ? digits[group >> (18 - 6 * i) & 0x3F] : '=';
  }
  return text;
}

// Sends what the mechanism has to say at once where the server takes it so (RFC 4959), otherwise when asked.
std::unique_ptr<Response> Authenticate(Client& client, std::string_view mechanism, const std::string& first,
                                       const std::string& then) {
  Command command("AUTHENTICATE ");
  command.Raw(mechanism);
  bool said = client.Has("SASL-IR");
  if (said) command.Raw(" ").Raw(Base64(first));
  return client.Exchange(command, [&](std::string_view) {
    if (said) return then;
    said = true;
    return Base64(first);
  });
}

// Asks for the name, then for the password.
std::unique_ptr<Response> Authenticate_Login(Client& client, const std::string& user,
                                             const std::string& password) {
  int asked = 0;
  return client.Exchange(Command("AUTHENTICATE LOGIN"), [&](std::string_view) {
    ++asked;
    return asked == 1 ? Base64(user) : asked == 2 ? Base64(password) : std::string("*");
  });
}

Mechanism Choose(Client& client, Mechanism wanted) {
  if (wanted != Mechanism::Password) return wanted;
  const bool takes_passwords =
      client.Has("AUTH=PLAIN") || client.Has("AUTH=LOGIN") || !client.Has("LOGINDISABLED");
  if (takes_passwords) return wanted;
  if (client.Has("AUTH=OAUTHBEARER")) return Mechanism::Oauth_Bearer;
  if (client.Has("AUTH=XOAUTH2")) return Mechanism::Xoauth2;
  throw Refused("It takes no password over this connection.", "LOGINDISABLED");
}

std::string Without(std::string text, const std::string& secret) {
  if (secret.empty()) return text;
  for (std::size_t at = text.find(secret); at != std::string::npos; at = text.find(secret, at + 3))
    text.replace(at, secret.size(), "***");
  return text;
}

}  // namespace

void Log_In(Client& client, const Login& login, const Server_Address& server) {
  const Mechanism mechanism = Choose(client, login.mechanism);
  const std::string secret = login.secret();
  std::unique_ptr<Response> answer;
  if (mechanism == Mechanism::Xoauth2) {
    // A server that refuses first says why, and waits for an empty line.
    answer = Authenticate(client, "XOAUTH2", "user=" + login.user + "\1auth=Bearer " + secret + "\1\1", "");
  } else if (mechanism == Mechanism::Oauth_Bearer) {
    std::string user;
    for (const char c : login.user) user += c == ',' ? "=2C" : c == '=' ? "=3D" : std::string(1, c);
    answer = Authenticate(client, "OAUTHBEARER",
                          "n,a=" + user + ",\1host=" + server.host + "\1port=" + std::to_string(server.port) +
                              "\1auth=Bearer " + secret + "\1\1",
                          "AQ==");
  } else if (client.Has("AUTH=PLAIN")) {
    using namespace std::string_literals;
    answer = Authenticate(client, "PLAIN", "\0"s + login.user + "\0"s + secret, "*");
  } else if (client.Has("AUTH=LOGIN")) {
    answer = Authenticate_Login(client, login.user, secret);
  } else {
    answer = client.Finish(client.Send(Command("LOGIN ").String(login.user).Raw(" ").String(secret)));
  }
  if (answer->Name() != "OK") throw Refused(Without(answer->Text(), secret), answer->Code());
  if (answer->Code() != "CAPABILITY") client.Forget_Capabilities();
}

}  // namespace tidyfold::imap
