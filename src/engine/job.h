// Long work on a worker thread: the work runs on its own copy of the engine state it reads,
// counts its progress, honours a stop request, and is handed back whole when it ends.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "engine/host.h"

namespace merida {

class Engine;

// Done and total steps (points, rows, terms), written by the work, read by anyone.
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

// The engine host of a job's own engine. It never asks (a free variable counts as cancelled),
// keeps the errors and faults for the window to show when the job is applied, and turns a
// stop request into the engine's StopRequested at every checkpoint.
class JobHost : public EngineHost {
 public:
  struct Message {
    bool fault = false;
    int code = 0;             // an error's number
    std::string description;  // a fault's
  };

  void attach(Engine& engine, std::stop_token stop, JobProgress* progress);
  std::optional<std::string> askValue(const std::string&) override { return std::nullopt; }
  void showError(int code, const std::string&) override { messages_.push_back({false, code, {}}); }
  void showFault(const std::string& description) override { messages_.push_back({true, 0, description}); }
  void checkpoint() override;
  void progress(int64_t done, int64_t total) override;
  void showBox(const std::string& box, const std::string& text) override {
    if (boxShown) boxShown(box, text);
  }

  // Set by the window before the job starts; called on the job's thread.
  std::function<void(const std::string& box, const std::string& text)> boxShown;

  // The job's stop request, for work that checks it itself (a file read).
  std::stop_token stopToken() const { return stop_; }
  // What the job's engine showed, in order; the window replays it through its own engine.
  const std::vector<Message>& messages() const { return messages_; }

 private:
  Engine* engine_ = nullptr;
  std::stop_token stop_;
  JobProgress* progress_ = nullptr;
  std::vector<Message> messages_;
};

// Jobs that write one shared thing (the record table) take turns, in the order they asked, so
// that their writes never interleave. Used from one thread (the window thread).
class JobQueue {
 public:
  // Runs `start` now when no one holds the turn, else when every earlier owner has left.
  // True when it ran now. An owner that enters again first leaves its old place.
  bool Enter(const void* owner, std::string name, std::function<void()> start);
  // Gives up the turn or the place in line; the next in line starts.
  void Leave(const void* owner);
  // Forgets everyone without starting anyone (the program is closing).
  void Clear() { entries_.clear(); }
  // The name given by the owner holding the turn; empty when no one does.
  std::string holder() const { return entries_.empty() ? std::string() : entries_.front().name; }

 private:
  struct Entry {
    const void* owner;
    std::string name;
    std::function<void()> start;
  };
  std::deque<Entry> entries_;  // the front holds the turn
};

}  // namespace merida
