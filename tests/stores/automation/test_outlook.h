// Starts and controls the test server and reads its counts.
#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "errors/automation_error.h"
#include "outlook/store_writer.h"
#include "stores/automation/objects.h"
#include "stores/automation/outlook_automation.h"

namespace tidyfold {

// One server for all tests of a program; started if it is not running.
class Test_Outlook {
 public:
  // Resets the server: no stores, all switches off.
  Test_Outlook();
  ~Test_Outlook() = default;

  // Calls a member of the control by name; see control.cpp.
  template <class... Values>
  com::Variant Tell(const char* member, const Values&... values) {
    std::vector<com::Variant> arguments;
    (arguments.emplace_back(values), ...);
    return Tell_All(member, arguments);
  }
  com::Variant Tell_All(const char* member, std::vector<com::Variant>& arguments);
  int Calls_Of(const std::string& member) { return Tell("CallsOf", member).Number(); }
  com::Session_Ptr Session() { return session_; }

  // Ends the server if it runs and waits for its end.
  static void Stop();
  static bool Is_Running();
  // With regsvr32; false if it failed.
  static bool Register_Companion(bool there);

 private:
  com::Session_Ptr session_ = std::make_shared<com::Session>(std::chrono::seconds(1));
  com::Ptr<IDispatch> control_;
};

// Writes to one of the server's stores.
class Test_Writer : public Store_Writer {
 public:
  Test_Writer(Test_Outlook& outlook, std::int32_t number) : outlook_(outlook), number_(number) {}
  MAPIFolder_Ptr Top_Folder() override {
    return com::Make_Folder(outlook_.Session(), outlook_.Tell("TopFolder", number_).Object());
  }
  MAPIFolder_Ptr Add_Folder(MAPIFolder& parent, const std::string& name, std::int32_t type) override {
    const com::Variant folder =
        outlook_.Tell("AddFolder", number_, parent.StoreID(), parent.EntryID(), name, type);
    return com::Make_Folder(outlook_.Session(), folder.Object());
  }
  std::string Add_Item(MAPIFolder& folder, const New_Item& item) override;
  std::int64_t Count_Alike(const Item_Key&) override {
    throw Automation_Error(automation_error::not_supported, "Outlook does not compare items.", "test");
  }
  void Begin() override { outlook_.Tell("Begin", number_); }
  void Commit() override { outlook_.Tell("Commit", number_); }
  void Roll_Back() override { outlook_.Tell("RollBack", number_); }

 private:
  Test_Outlook& outlook_;
  std::int32_t number_;
};

}  // namespace tidyfold
