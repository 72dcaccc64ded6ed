/// What the holder of a job and its answer share, and how callbacks are called. [control] where not said.
#pragma once

#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>

#include "platform/jobs.h"

namespace zv {

/// Who runs jobs: the pool of workers, or the rehearsal.
class JobRunner {
  public:
    virtual ~JobRunner() = default;
    /// The job's holder has cancelled it.
    virtual void drop(const std::shared_ptr<JobState>& job) = 0;
    virtual void hurry(const std::shared_ptr<JobState>& job) = 0;
};

struct JobState {
    JobOrder order;
    std::weak_ptr<JobRunner> runner;
    bool over = false;                    ///< result or failure has been handed over, or it was cancelled
    std::atomic<bool> cancelled = false;  ///< written by the interface thread, read by the work [any]
    std::atomic<std::int64_t> lastSignMs = 0;  ///< when the work began or was last heard of [any]
};

/// Runs the job's work; what it threw, null when it went well. [worker]
std::exception_ptr runJobWork(JobState& job, JobWork& work);
/// Hands over the end of a job that is not over; `error` is what its work threw.
void deliverJobEnd(JobState& job, const std::exception_ptr& error);
void deliverJobProgress(JobState& job, int percent, const std::string& text);

}  // namespace zv
