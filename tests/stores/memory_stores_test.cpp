#include "stores/memory/memory_store.h"

#include "stores/store_under_test.h"

namespace tidyfold {
namespace {

class Two_Memory_Stores : public Store_Under_Test {
 public:
  Two_Memory_Stores() {
    outlook_.Add_Store("One", Memory_Outlook::Default_Folders::None);
    outlook_.Add_Store("Two", Memory_Outlook::Default_Folders::None);
  }
  Automation& Outlook() override { return outlook_; }
  Store_Writer& Writer(int number) override { return outlook_.Store(static_cast<std::size_t>(number)); }

 private:
  Memory_Outlook outlook_;
};

INSTANTIATE_TEST_SUITE_P(
    Stores, Store_Contract,
    testing::Values(Store_Kind{"Memory", [] { return std::make_unique<Two_Memory_Stores>(); }},
                    Store_Kind{"Faulty_Memory",
                               [] { return Decorated(std::make_unique<Two_Memory_Stores>()); }}),
    Kind_Name);

}  // namespace
}  // namespace tidyfold
