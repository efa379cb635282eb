// The worker thread of a job, and the host of the engine it runs.
#include "engine/job.h"

#include <algorithm>
#include <utility>

#include "engine/engine.h"

namespace merida {

Job::Job(Work work, std::function<void()> finished)
    : thread_([this, work = std::move(work), finished = std::move(finished)](std::stop_token stop) {
        work(stop, progress_);
        finished_.store(true, std::memory_order_release);
        if (finished) finished();
      }) {}

Job::~Job() {
  thread_.request_stop();
  if (thread_.joinable()) thread_.join();
}

void JobHost::attach(Engine& engine, std::stop_token stop, JobProgress* progress) {
  engine_ = &engine;
  stop_ = std::move(stop);
  progress_ = progress;
}

void JobHost::checkpoint() {
  if (engine_ && stop_.stop_requested()) engine_->StopRequested = 1;
}

void JobHost::progress(int64_t done, int64_t total) {
  if (!progress_) return;
  progress_->total.store(total, std::memory_order_relaxed);
  progress_->done.store(done, std::memory_order_relaxed);
}

bool JobQueue::Enter(const void* owner, std::string name, std::function<void()> start) {
  Leave(owner);
  entries_.push_back({owner, std::move(name), std::move(start)});
  if (entries_.size() > 1) return false;
  // A copy: `start` may leave or enter again.
  std::function<void()> now = entries_.front().start;
  now();
  return true;
}

void JobQueue::Leave(const void* owner) {
  auto at = std::find_if(entries_.begin(), entries_.end(), [owner](const Entry& e) { return e.owner == owner; });
  if (at == entries_.end()) return;
  const bool held = at == entries_.begin();
  entries_.erase(at);
  if (held && !entries_.empty()) {
    std::function<void()> next = entries_.front().start;
    next();
  }
}

}  // namespace merida
