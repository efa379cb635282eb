// The job runner and a tool's run on its own engine: stop requests, progress, messages kept
// for the window, and the shared state changed only where the run changed it.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "calculus/integration.h"
#include "engine/job.h"
#include "main/app_state.h"
#include "main/calculator.h"
#include "test_support.h"

namespace merida {
namespace {

TEST(Job, RunsOnItsOwnThreadReportsProgressAndEndsOnAStop) {
  std::atomic<bool> started{false}, finished{false};
  std::thread::id worker;
  {
    Job job(
        [&](std::stop_token stop, JobProgress& progress) {
          worker = std::this_thread::get_id();
          progress.total = 10;
          progress.done = 3;
          started = true;
          while (!stop.stop_requested()) std::this_thread::yield();
        },
        [&] { finished = true; });
    while (!started) std::this_thread::yield();
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_EQ(job.progress().done.load(), 3);
    EXPECT_FALSE(job.finished());
  }  // the destructor asks it to stop and waits
  EXPECT_TRUE(finished);
}

// A run of the double integral on an engine copied from a shared one: the shared functions
// are there, a stop ends it at its next row, and what it showed is kept, not shown.
TEST(Job, AToolRunsOnACopyOfTheEngineAndStopsAtItsNextRow) {
  test::RecordingHost sharedHost;
  Engine shared(sharedHost);
  ASSERT_TRUE(shared.RegisterFormula("g(x,y)=x*y"));
  struct Row {
    const char* formula;
    const char* num;
    bool stop;
    IntegrationEnd end;
    std::vector<int> errors;
  };
  const Row rows[] = {
      {"g(x,y)+1", "100", false, IntegrationEnd::kCompleted, {}},
      {"g(x,y)", "10000", true, IntegrationEnd::kStopped, {}},
      {"x*y/0", "10", false, IntegrationEnd::kError, {11}},
  };
  for (const Row& r : rows) {
    JobHost host;
    Engine engine(host);
    engine.CopyStateFrom(shared);
    AppState state;
    IntegrationResult result;
    Job job([&](std::stop_token stop, JobProgress& progress) {
      host.attach(engine, stop, &progress);
      result = IntegrateDouble(engine, state, r.formula, {"0", "1", r.num}, {"0", "1", r.num});
    });
    if (r.stop) {
      while (job.progress().done.load() == 0) std::this_thread::yield();
      job.requestStop();
    }
    while (!job.finished()) std::this_thread::yield();
    EXPECT_EQ(result.end, r.end) << r.formula;
    std::vector<int> errors;
    for (const JobHost::Message& m : host.messages()) errors.push_back(m.code);
    EXPECT_EQ(errors, r.errors) << r.formula;
    if (r.end == IntegrationEnd::kCompleted) {
      EXPECT_NEAR(*result.value, 1.25, 1e-12);
      EXPECT_EQ(job.progress().done.load(), job.progress().total.load());
    }
  }
  EXPECT_TRUE(sharedHost.errors.empty()) << "a run's messages wait for the window";
  EXPECT_EQ(Calc(shared, "g(2,3)"), "6");
}

TEST(Job, OnlyWhatARunChangedReachesTheSharedState) {
  AppState shared, before;
  before.DivisionCount = 50;
  shared.DivisionCount = 50;
  AppState after = before;
  after.GraphMode = 2;                 // the run changed this
  after.Records.RecordPoint(1, 1, 2, 3);
  shared.DivisionCount = 80;           // another window changed this meanwhile
  shared.DisplayLanguage = kJapanese;
  ApplyChanges(shared, before, after);
  EXPECT_EQ(shared.GraphMode, 2);
  EXPECT_EQ(shared.DivisionCount, 80);
  EXPECT_EQ(shared.DisplayLanguage, kJapanese);
  EXPECT_EQ(shared.Records.count, 1);
  EXPECT_EQ(shared.Records.values[1][1], 2.0f);
}

// Writers of one shared thing start one at a time, in the order they asked; leaving the line
// before the turn comes starts nothing.
TEST(JobQueue, StartsOwnersInTurnAndSkipsThoseWhoLeft) {
  JobQueue queue;
  std::string started;
  auto enter = [&](char owner) {
    return queue.Enter(reinterpret_cast<const void*>(static_cast<uintptr_t>(owner)), std::string(1, owner),
                       [&started, owner] { started += owner; });
  };
  auto leave = [&](char owner) { queue.Leave(reinterpret_cast<const void*>(static_cast<uintptr_t>(owner))); };
  EXPECT_TRUE(enter('a'));
  EXPECT_FALSE(enter('b'));
  EXPECT_FALSE(enter('c'));
  EXPECT_EQ(queue.holder(), "a");
  leave('b');  // gives up its place: never starts
  EXPECT_EQ(started, "a");
  leave('a');
  EXPECT_EQ(started, "ac");
  EXPECT_EQ(queue.holder(), "c");
  EXPECT_FALSE(enter('a'));
  EXPECT_FALSE(enter('c')) << "entering again goes to the back";
  EXPECT_EQ(started, "aca");
  leave('a');
  EXPECT_EQ(started, "acac");
  queue.Clear();
  leave('c');
  EXPECT_EQ(started, "acac");
  EXPECT_EQ(queue.holder(), "");
}

}  // namespace
}  // namespace merida
