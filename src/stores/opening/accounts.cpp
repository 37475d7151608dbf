#include "stores/opening/accounts.h"

#include <chrono>
#include <future>
#include <map>
#include <thread>
#include <utility>

#include "stores/imap/imap_store.h"
#include "stores/imap/secrets.h"

namespace tidyfold {

namespace {

[[noreturn]] void Fail(Store_Open_Error::Reason reason, const Store_Address& address,
                       const std::string& text) {
  throw Store_Open_Error(reason, address.Text(), text);
}

// Commands and keyrings may ask the person themselves, and so take as long as they like.
template <class Job>
auto Beside(const Store_Address& address, const Begin_Wait& wait, Job job) {
  constexpr auto serving_every = std::chrono::milliseconds(20);
  std::packaged_task<decltype(job())()> task(std::move(job));
  auto result = task.get_future();
  std::thread(std::move(task)).detach();
  const std::function<bool()> serve = wait ? wait() : [] { return true; };
  while (result.wait_for(serving_every) != std::future_status::ready)
    if (!serve())
      Fail(Store_Open_Error::Reason::Cancelled, address, "Opening \"" + address.Text() + "\" was cancelled.");
  return result.get();
}

}  // namespace

std::shared_ptr<Mail_Store> Open_Server(const Store_Address& address, const Store_Opening& opening) {
  return imap::Open_Account(address, opening);
}

std::function<std::string(const Store_Address& address, int before)> Account_Passwords(
    Password_Sources sources) {
  struct Known {
    std::string command, password;
  };
  return [sources = std::move(sources), accounts = std::map<std::string, Known>()](
             const Store_Address& address, int before) mutable {
    Known& known = accounts[address.Text()];
    using enum Store_Open_Error::Reason;
    try {
      if (before == 0) known.command = sources.command(address);
      if (!known.command.empty()) {
        const auto run = [command = known.command] { return imap::Secret_From_Command(command); };
        // A later login is one of the account's own thread, which waits by itself.
        return before > 0 ? run() : Beside(address, sources.wait, run);
      }
    } catch (const imap::Secret_Error& error) {
      Fail(Not_Let_In, address, "There is no password for \"" + address.Text() + "\". " + error.what());
    }
    if (known.password.empty() && sources.given) known.password = sources.given(address);
    if (!known.password.empty()) return known.password;
    auto secret = Beside(address, sources.wait, [address] { return imap::Secret_From_Keyring(address); });
    if (!secret || secret->empty()) secret = sources.ask(address);
    if (!secret || secret->empty())
      Fail(Not_Let_In, address,
           "There is no password for \"" + address.Text() +
               "\". Put it into the keyring, or name a command that writes it with --password-command.");
    return known.password = *secret;
  };
}

std::optional<std::string> Password_From_Terminal(const Store_Address& address) {
  return imap::Secret_From_Terminal("Password for " + address.Text() + ": ");
}

bool Keep_In_Keyring(const Store_Address& address, const std::string& password, const Begin_Wait& wait) {
  return Beside(address, wait,
                [address, password] { return imap::Keep_Secret_In_Keyring(address, password); });
}

}  // namespace tidyfold
