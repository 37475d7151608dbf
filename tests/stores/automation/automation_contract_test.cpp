#include "stores/store_under_test.h"
#include "test_outlook.h"

namespace tidyfold {
namespace {

class Two_Outlook_Stores : public Store_Under_Test {
 public:
  Two_Outlook_Stores() {
    for (const char* name : {"One", "Two"}) server_.Tell("AddStore", name, false);
  }
  Automation& Outlook() override { return outlook_; }
  Store_Writer& Writer(int number) override { return number == 1 ? first_ : second_; }
  bool Tells_Sizes() const override { return false; }
  // MAPI texts end at the first NUL.
  std::string Sender_As_Kept(const std::string& sender) const override { return sender.c_str(); }

 private:
  Outlook_Automation outlook_;
  Test_Outlook server_;
  Test_Writer first_{server_, 1}, second_{server_, 2};
};

INSTANTIATE_TEST_SUITE_P(Stores, Store_Contract,
                         testing::Values(Store_Kind{"Automation",
                                                    [] { return std::make_unique<Two_Outlook_Stores>(); }}),
                         Kind_Name);

}  // namespace
}  // namespace tidyfold
