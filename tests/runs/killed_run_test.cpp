// Runs in processes of their own, some of which come to a sudden end.
#include "runs/log_fixture.h"
#include "stores/sqlite/other_process.h"

namespace tidyfold {
namespace {

using Processes = Log_Fixture;

TEST_F(Processes, AKilledRunCanBeReadAndIsToldOnce) {
  Other_Process other([&] {
    Run_Log& log = Left_Open(std::make_shared<Run_Log>(file));
    log.Begin({}, now);
    for (const char* id : {"I1", "I2", "I3"}) log.Note(Noted(id));
    log.Flush();
    log.Set_Result(1, Item_Result::Done);
    log.Note(Noted("I4"));
    log.Flush();
    log.Set_Result(2, Item_Result::Done);
    log.Note(Noted("I5"));
    return 0;
  });
  ASSERT_EQ(other.Result(), 0);
  Run_Log log(file);
  EXPECT_EQ(log.Run(1)->state, Run_State_In_Log::Under_Way);
  EXPECT_TRUE(log.Killed_Since_Last_Told().empty());
  EXPECT_FALSE(log.Last_To_Take_Back());
  other.Kill();

  const std::vector<Logged_Run> killed = log.Killed_Since_Last_Told();
  ASSERT_EQ(killed.size(), 1U);
  EXPECT_EQ(killed[0].state, Run_State_In_Log::Killed);
  EXPECT_EQ(killed[0].outcome.processed, 1);
  EXPECT_EQ(killed[0].uncertain, 3) << "What was not flushed was not kept by the store either.";
  EXPECT_EQ(log.Last_To_Take_Back()->run, 1);
  log.Told(1);
  EXPECT_TRUE(log.Killed_Since_Last_Told().empty());
}

TEST_F(Processes, TwoWriteAtOnce) {
  constexpr int flushes = 100, items_per_flush = 20;
  const auto write_run = [&]() noexcept {
    Run_Log log(file);
    log.Begin({}, now);
    for (int i = 0; i < flushes; ++i) {
      for (int item = 0; item < items_per_flush; ++item)
        log.Set_Result(log.Note(Noted("I")), Item_Result::Done);
      log.Flush();
    }
    log.End({flushes * items_per_flush, false, false}, now);
  };
  const pid_t child = fork();
  write_run();
  if (child == 0) _exit(0);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
  Run_Log log(file);
  ASSERT_EQ(log.Runs().size(), 2U);
  for (const Logged_Run& run : log.Runs()) {
    EXPECT_EQ(run.state, Run_State_In_Log::Ended);
    EXPECT_EQ(Items(log, run.run).size(), static_cast<std::size_t>(flushes * items_per_flush));
  }
}

}  // namespace
}  // namespace tidyfold
