// One suite of tests that every kind of store passes. memory_stores_test.cpp shows how to run it over
// another.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "outlook/object_model.h"
#include "outlook/store_writer.h"
#include "stores/faulty/faulty_automation.h"

namespace tidyfold {

// Two stores open side by side, each with its top folder and nothing below. The writers and the objects of
// the session act on the same stores, as two programs do. A store may keep siblings in the order of their
// names: tests that go by index add them in it.
class Store_Under_Test {
 public:
  virtual ~Store_Under_Test() = default;
  virtual Automation& Outlook() = 0;
  virtual Store_Writer& Writer(int number) = 0;  // 1 or 2, as in the session's Folders
  // Whether an item's own Size is the real one, as its row's is.
  virtual bool Tells_Sizes() const { return true; }
  // False for stores of other programs' mail: items are plain mail, siblings have names of their own, texts
  // are those of a header, identities of folders come back, and nothing is added in transactions.
  virtual bool Is_Own_Store() const { return true; }
  // How many folders lie on the top level from the beginning, in front of all others: a mail account's Inbox.
  virtual int Fixed_Folders() const { return 0; }
  // False where an item that is moved gets another EntryID, at the latest when the change has been carried
  // out.
  virtual bool Keeps_EntryIDs() const { return true; }
  virtual void Carry_Out_Changes() {}
  // How deep folders may lie.
  virtual int Deepest() const { return 1000; }
  // The sender's name as the store returns it.
  virtual std::string Sender_As_Kept(const std::string& sender) const { return sender; }
};

struct Store_Kind {
  std::string name;
  std::function<std::unique_ptr<Store_Under_Test>()> make;
};

inline void PrintTo(const Store_Kind& kind, std::ostream* out) {
  *out << kind.name;
}
inline std::string Kind_Name(const testing::TestParamInfo<Store_Kind>& kind) {
  return kind.param.name;
}

// The same stores behind the fault-injecting decorator with no fault set.
class Decorated_Store : public Store_Under_Test {
 public:
  explicit Decorated_Store(std::unique_ptr<Store_Under_Test> inner) : inner_(std::move(inner)) {
    // With a hook, the decorator reads identities, which must change nothing.
    plan_.on_call = [](const Store_Call&) {};
  }
  Automation& Outlook() override { return outlook_; }
  Store_Writer& Writer(int number) override { return inner_->Writer(number); }
  bool Tells_Sizes() const override { return inner_->Tells_Sizes(); }
  bool Is_Own_Store() const override { return inner_->Is_Own_Store(); }
  int Fixed_Folders() const override { return inner_->Fixed_Folders(); }
  bool Keeps_EntryIDs() const override { return inner_->Keeps_EntryIDs(); }
  void Carry_Out_Changes() override { inner_->Carry_Out_Changes(); }
  int Deepest() const override { return inner_->Deepest(); }
  std::string Sender_As_Kept(const std::string& sender) const override {
    return inner_->Sender_As_Kept(sender);
  }

 private:
  std::unique_ptr<Store_Under_Test> inner_;
  Fault_Plan plan_;
  Faulty_Automation outlook_{inner_->Outlook(), plan_};
};

inline std::unique_ptr<Store_Under_Test> Decorated(std::unique_ptr<Store_Under_Test> inner) {
  return std::make_unique<Decorated_Store>(std::move(inner));
}

class Store_Contract : public testing::TestWithParam<Store_Kind> {
 protected:
  // Through the session: the folder at these indexes, from the store's top folder down.
  MAPIFolder_Ptr Open(int store, std::initializer_list<std::int32_t> path = {}) {
    MAPIFolder_Ptr folder = session_->Folders()->Item(store);
    std::int32_t fixed = stores_->Fixed_Folders();
    for (const std::int32_t index : path) folder = folder->Folders()->Item(index + std::exchange(fixed, 0));
    return folder;
  }
  void Remove_Top_Folder(std::int32_t index) { Open(1)->Folders()->Remove(index + stores_->Fixed_Folders()); }
  // Through the writer; adds at the end.
  MAPIFolder_Ptr Add_Folder(int store, const std::string& name, MAPIFolder_Ptr parent = nullptr,
                            std::int32_t type = item_type::mail) {
    if (parent == nullptr) parent = stores_->Writer(store).Top_Folder();
    return stores_->Writer(store).Add_Folder(*parent, name, type);
  }
  std::string Add_Item(int store, const MAPIFolder_Ptr& folder, const std::string& subject) {
    New_Item item;
    item.subject = subject;
    return stores_->Writer(store).Add_Item(*folder, item);
  }
  // Every subject, with blanks between.
  static std::string Subjects(const MAPIFolder_Ptr& folder) {
    std::string all;
    const Items_Ptr items = folder->Items();
    for (std::int32_t index = 1; index <= items->Count(); ++index) {
      all += (all.empty() ? "" : " ") + items->Item(index)->Subject();
    }
    return all;
  }

  static std::vector<Table_Row> Rows(const MAPIFolder_Ptr& folder) {
    const Table_Ptr table = folder->GetTable();
    std::vector<Table_Row> all;
    for (auto rows = table->GetArray(100); !rows.empty(); rows = table->GetArray(100))
      all.insert(all.end(), rows.begin(), rows.end());
    return all;
  }

  std::unique_ptr<Store_Under_Test> stores_ = GetParam().make();
  std::shared_ptr<NameSpace> session_ =
      stores_->Outlook().GetObject("", "Outlook.Application")->GetNamespace("MAPI");
};

// The number of the Automation_Error that the call throws; 0 if none.
template <class Call>
std::int32_t Error_Of(Call&& call) {
  try {
    call();
  } catch (const Automation_Error& error) {
    EXPECT_NE(error.Description(), "") << "a failure that says nothing";
    return error.Number();
  }
  return 0;
}

}  // namespace tidyfold
