// Long work on a worker thread: the work reads its own copy of what it needs, counts its
// progress, honours a stop request, and is handed back whole when it ends.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <stop_token>
#include <thread>

namespace merida {

// Done and total steps (points, terms, bytes), written by the work, read by anyone.
struct JobProgress {
  std::atomic<int64_t> done{0};
  std::atomic<int64_t> total{0};
};

class Job {
 public:
  using Work = std::function<void(std::stop_token stop, JobProgress& progress)>;

  // Starts `work` on a new thread; `finished` runs on that thread after it returns (a window
  // posts its result to its own thread from there).
  Job(Work work, std::function<void()> finished = {});
  // Requests a stop and waits for the work to end.
  ~Job();
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

  void requestStop() { thread_.request_stop(); }
  bool finished() const { return finished_.load(std::memory_order_acquire); }
  const JobProgress& progress() const { return progress_; }

 private:
  JobProgress progress_;
  std::atomic<bool> finished_{false};
  std::jthread thread_;  // last: it starts after the members it uses exist
};

}  // namespace merida
