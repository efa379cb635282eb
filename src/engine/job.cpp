// The worker thread of a job.
#include "engine/job.h"

#include <utility>

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

}  // namespace merida
