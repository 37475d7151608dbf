#include "stores/opening/accounts.h"

namespace tidyfold {

std::shared_ptr<Mail_Store> Open_Server(const Store_Address&, const Store_Opening&) {
  return nullptr;
}

std::function<std::string(const Store_Address& address, int before)> Account_Passwords(Password_Sources) {
  return {};
}

std::optional<std::string> Password_From_Terminal(const Store_Address&) {
  return std::nullopt;
}

bool Keep_In_Keyring(const Store_Address&, const std::string&, const Begin_Wait&) {
  return false;
}

}  // namespace tidyfold
