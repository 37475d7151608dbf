#include "stores/imap/open_account.h"

#include <atomic>
#include <memory>
#include <utility>

#include "stores/imap/imap_store.h"

namespace tidyfold::imap {

namespace {

using Reason = Store_Open_Error::Reason;

[[noreturn]] void Fail_To_Open(Reason reason, const Store_Address& address, const std::string& text) {
  throw Store_Open_Error(reason, address.Text(), text);
}

}  // namespace

std::shared_ptr<Mail_Store> Open_Account(const Store_Address& address, const Store_Opening& opening,
                                         Account_Settings settings, const std::filesystem::path& cache) {
  auto account = std::make_unique<Account>(std::move(settings), cache);
  account->Set_Wait(opening.wait);
  try {
    account->Open();
  } catch (const Connection_Error& error) {
    Fail_To_Open(Reason::Not_Reached, address, error.what());
  } catch (const Protocol_Error& error) {
    Fail_To_Open(Reason::Not_Reached, address,
                 "\"" + address.Text() + "\" is no mail account that can be understood. " + error.what() +
                     " Check the server's name and port.");
  } catch (const Interrupted&) {
    Fail_To_Open(Reason::Cancelled, address, "Opening \"" + address.Text() + "\" was cancelled.");
  } catch (const Refused& error) {
    // No other password would help.
    if (Is_Passing(error.Code()))
      Fail_To_Open(Reason::Not_Reached, address,
                   "The mail server has no room for another connection: " + std::string(error.what()) +
                       " Try again later, or close other mail programs.");
    Fail_To_Open(Reason::Not_Let_In, address,
                 "The mail server did not let \"" + address.user + "\" in: " + error.what() +
                     " Check the user's name and the password.");
  }
  return Store_On(address, opening.mode, std::move(account));
}

std::shared_ptr<Mail_Store> Open_Account(const Store_Address& address, const Store_Opening& opening) {
  Account_Settings settings;
  settings.server.host = address.host;
  settings.server.port = address.port;
  settings.server.security = address.kind == Store_Address::Kind::Imap_Tls ? Security::Tls
                             : address.Is_On_This_Machine()                ? Security::Plain
                                                                           : Security::Start_Tls;
  settings.login.user = address.user;
  if (!opening.password)
    Fail_To_Open(
        Reason::Not_Supported, address,
        "Mail accounts are opened on the command line: tidyfold-cli --store " + address.Text() + " ...");
  // The first is asked for here, where a person can be asked.
  settings.login.secret = [address, password = opening.password, first = opening.password(address, 0),
                           asked = std::make_shared<std::atomic<int>>(0)] {
    const int before = (*asked)++;
    return before == 0 ? first : password(address, before);
  };
  return Open_Account(address, opening, std::move(settings), Message_Cache_File(address.Text()));
}

}  // namespace tidyfold::imap
