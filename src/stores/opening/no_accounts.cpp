#include "stores/opening/accounts.h"

namespace tidyfold {

std::shared_ptr<Mail_Store> Open_Server(const Store_Address&, const Store_Opening&) {
  return nullptr;
}

std::function<std::string(const Store_Address& address, int before)> Account_Passwords(const std::string&) {
  return {};
}

}  // namespace tidyfold
