#include "stores/opening/accounts.h"

#include "stores/imap/imap_store.h"
#include "stores/imap/secrets.h"

namespace tidyfold {

std::shared_ptr<Mail_Store> Open_Server(const Store_Address& address, const Store_Opening& opening) {
  return imap::Open_Account(address, opening);
}

std::function<std::string(const Store_Address& address, int before)> Account_Passwords(
    const std::string& command) {
  return [command, answer = std::string()](const Store_Address& address, int) mutable {
    const auto fail = [&](const std::string& why) {
      throw Store_Open_Error(Store_Open_Error::Reason::Not_Let_In, address.Text(), why);
    };
    try {
      if (!command.empty()) return imap::Secret_From_Command(command);
    } catch (const imap::Secret_Error& error) {
      fail("There is no password for \"" + address.Text() + "\". " + error.what());
    }
    if (!answer.empty()) return answer;
    auto secret = imap::Secret_From_Keyring(address);
    if (!secret) secret = imap::Secret_From_Terminal("Password for " + address.Text() + ": ");
    if (!secret || secret->empty())
      fail("There is no password for \"" + address.Text() +
           "\". Put it into the keyring, or name a command that writes it with --password-command.");
    return answer = *secret;
  };
}

}  // namespace tidyfold
