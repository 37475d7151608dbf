// Logging in.
#pragma once

#include <functional>
#include <string>

#include "stores/imap/client.h"

namespace tidyfold::imap {

enum class Mechanism {
  Password,     // SASL PLAIN or LOGIN, or the command LOGIN, whatever the server offers
  Xoauth2,      // https://developers.google.com/gmail/imap/xoauth2-protocol
  Oauth_Bearer  // RFC 7628
};

struct Login {
  std::string user;
  // A password or, for the last two, a token. Asked for at each login; whoever has no other than the last one
  // that was refused throws. The text is never kept here.
  std::function<std::string()> secret;
  Mechanism mechanism = Mechanism::Password;
};

// A server that offers nothing but tokens gets the secret as one. Throws Refused with the server's words,
// from which the secret is taken out.
void Log_In(Client& client, const Login& login, const Server_Address& server);

}  // namespace tidyfold::imap
