#include <gtest/gtest.h>

#include <new>
#include <stdexcept>

#include "doubles/scripted_message_box.h"
#include "errors/automation_error.h"
#include "errors/procedure.h"

namespace tidyfold {
namespace {

class Errors : public testing::Test {
 protected:
  Errors() { handler_.Trap_Errors = true; }
  void Expect_Report(const std::string& text, const std::string& stack) {
    box_.Expect(text, Buttons::OK_Only, Answer::OK);
    box_.Expect(Exact(stack), Buttons::OK_Only, Answer::OK);
  }
  [[noreturn]] static void Fail() {
    throw Automation_Error(automation_error::not_found, "Not found.", "Store");
  }
  Scripted_Message_Box box_;
  Error_Handler handler_{box_};
  ErrorStack& stack_ = handler_.stack;
};

TEST_F(Errors, A_Failure_Is_Reported_With_Its_Step_And_The_Callers_Go_On) {
  Expect_Report(
      "Source:    \tStore\r\nTrap:      \t\tInner\r\nLocation:  \tInner - Step\r\n"
      "Descripton:\tNot found.\r\nNumber:    \t-2147221233",
      "\r\nOuter\r\nInner\r\nInner - Step");
  Expect_Report("An un-referenced error has occurred.", "");
  bool went_on = false;
  const int result = handler_.Run("Outer", [&] {
    EXPECT_FALSE(handler_.Run("Inner", [&](Procedure& procedure) {
      procedure.Step("Inner - First");
      procedure.Step("Inner - Step");
      Fail();
      return true;
    }));
    went_on = true;
    // The stack was emptied: this failure stands without a reference.
    Fail();
    return 5;
  });
  EXPECT_TRUE(went_on);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(stack_.Count(), 0);
  EXPECT_EQ(handler_.error.Number, 0);
}

TEST_F(Errors, Nothing_That_Is_Thrown_Is_Lost) {
  const std::pair<std::function<void()>, const char*> failures[] = {
      {[] { throw std::bad_alloc(); }, "Descripton:\tOut of memory\r\nNumber:    \t7"},
      {[] { throw std::out_of_range("No such row"); }, "Descripton:\tNo such row\r\nNumber:    \t440"},
      {[] { throw 1; }, "Descripton:\tAutomation error\r\nNumber:    \t440"}};
  for (const auto& [failure, text] : failures) {
    box_.Expect(text, Buttons::OK_Only, Answer::OK);
    box_.Expect("Procedure", Buttons::OK_Only, Answer::OK);
    handler_.Run(std::string("Procedure"), [&failure = failure] { failure(); });
  }
}

TEST_F(Errors, What_A_Procedure_Pushed_It_Pops) {
  stack_.PUSH("Outer");
  handler_.Run("Inner", [&](Procedure& procedure) {
    procedure.Step(std::string("Inner - a"));
    EXPECT_FALSE(handler_.Try([] { Fail(); }));
    EXPECT_EQ(handler_.error.Description, "Not found.");
    EXPECT_TRUE(handler_.Try([] {}));
    EXPECT_EQ(handler_.error.Number, 0);
    procedure.Step("Inner - b");
    EXPECT_EQ(stack_.Count(), 3);
  });
  EXPECT_EQ(stack_.Count(), 1);
  bool reported = false;
  EXPECT_TRUE(handler_.Report_First(reported, [] {}));
  EXPECT_THROW(handler_.Report_First(reported, [] { Fail(); }), Automation_Error);
  EXPECT_FALSE(handler_.Report_First(reported, [] { Fail(); }));
  handler_.Trap_Errors = false;
  EXPECT_THROW(handler_.Run("Inner", [] { Fail(); }), Automation_Error);
}

TEST_F(Errors, A_Store_That_Has_Gone_Is_Told_Of_Once_For_Each_Command) {
  const auto gone = [] { throw Automation_Error(automation_error::unavailable, "It was closed.", "Store"); };
  int ended = 0;
  handler_.End_Without_Store = [&] { ++ended; };
  for (const bool after_another_failure : {false, true}) {
    ended = 0;
    handler_.Run("Command", [&] {
      EXPECT_FALSE(handler_.Try_To_Reach(gone));
      if (after_another_failure) {
        for (const char* part : {"Not found.", "Inner"}) box_.Expect(part, Buttons::OK_Only, Answer::OK);
        handler_.Run("Inner", [] { Fail(); });
      }
      EXPECT_EQ(ended, 0);
      box_.Expect(Exact("It was closed."), Buttons::OK_Only, Answer::OK);
      for (int i = 0; i < 3; ++i) handler_.Run("Inner", gone);
      EXPECT_FALSE(handler_.Try(gone));
      handler_.Make_Process_Error().DisplayProcessingError("Delete", "Item");
      bool reported = true;
      EXPECT_THROW(handler_.Report_First(reported, gone), Automation_Error);
      EXPECT_TRUE(handler_.Store_Gone());
    });
    EXPECT_EQ(ended, 4);
    EXPECT_FALSE(handler_.Store_Gone());
    box_.Verify();
  }
}

TEST_F(Errors, Single_Items_Are_Reported_Until_The_Person_Has_Had_Enough) {
  const std::string text =
      "An processing error has occurred.\r\n\r\nThe following item could not be processed:\r\n"
      "  Source:    \tStore\r\n  Process:   \tTurbo Delete - Unable to delete item\r\n"
      "  Item:      \tFolder - Inbox\r\n  Descripton:\tNot found.\r\n  Number:    \t-2147221233\r\n\r\n"
      "Suppress further messages?";
  box_.Expect(Exact(text), Buttons::Yes_No, Answer::No);
  box_.Expect(Exact(text), Buttons::Yes_No, Answer::Yes);
  handler_.Try([] { Fail(); });
  ProcessError process_error = handler_.Make_Process_Error();
  for (int i = 0; i < 4; ++i)
    process_error.DisplayProcessingError("Turbo Delete - Unable to delete item", "Folder - Inbox");
  EXPECT_TRUE(process_error.SuppressMessages);
  EXPECT_NE(handler_.error.Number, 0) << "the current error is the caller's to clear";
  EXPECT_FALSE(handler_.Make_Process_Error().SuppressMessages);
}

}  // namespace
}  // namespace tidyfold
