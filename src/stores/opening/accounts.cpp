#include "stores/opening/accounts.h"

#include <chrono>
#include <future>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "stores/imap/open_account.h"
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
  // Shared by all copies: an account keeps one for its later logins, which its own thread makes.
  struct Known {
    std::mutex lock;
    std::map<std::string, std::string> commands, passwords;
  };
  return [sources = std::move(sources), known = std::make_shared<Known>()](const Store_Address& address,
                                                                           int before) {
    using enum Store_Open_Error::Reason;
    const std::string name = address.Text();
    const auto keep = [&](std::map<std::string, std::string>& texts, std::string text) {
      const std::lock_guard guard(known->lock);
      return texts[name] = std::move(text);
    };
    std::string command, password;
    {
      const std::lock_guard guard(known->lock);
      command = known->commands[name];
      password = known->passwords[name];
    }
    try {
      if (before == 0) command = keep(known->commands, sources.command(address));
      const auto run = [command] { return imap::Secret_From_Command(command); };
      if (!command.empty()) return before == 0 ? Beside(address, sources.wait, run) : run();
    } catch (const imap::Secret_Error& error) {
      Fail(Not_Let_In, address, "There is no password for \"" + name + "\". " + error.what());
    }
    if (!password.empty() || before > 0) return password;
    if (sources.given) password = sources.given(address);
    if (password.empty())
      password = Beside(address, sources.wait, [address] {
                   return imap::Secret_From_Keyring(address);
                 }).value_or("");
    if (password.empty()) password = sources.ask(address).value_or("");
    if (password.empty())
      Fail(Not_Let_In, address,
           "There is no password for \"" + name +
               "\". Put it into the keyring, or name a command that writes it with --password-command.");
    return keep(known->passwords, password);
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
