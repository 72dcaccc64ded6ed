#include "platform/jobs.h"

#include <utility>

#include "platform/common/job_state.h"

namespace zv {
namespace {

/// Calls `body`; what it throws goes to onJobFailure.
template <class Body>
void deliver(const JobState& job, Body&& body) {
    try {
        body();
    } catch (...) {
        if (onJobFailure) onJobFailure(job.order.name, std::current_exception());
    }
}

}  // namespace

std::exception_ptr runJobWork(JobState& job, JobWork& work) {
    try {
        if (job.order.work) job.order.work(work);
        return nullptr;
    } catch (...) {
        return std::current_exception();
    }
}

void deliverJobEnd(JobState& job, const std::exception_ptr& error) {
    if (std::exchange(job.over, true)) return;
    deliver(job, [&] {
        if (error != nullptr && !job.order.failed) std::rethrow_exception(error);
        if (error != nullptr)
            job.order.failed(error);
        else if (job.order.done)
            job.order.done();
    });
}

void deliverJobProgress(JobState& job, int percent, const std::string& text) {
    if (job.over || !job.order.progressed) return;
    deliver(job, [&] { job.order.progressed(percent, text); });
}

Job::Job(std::shared_ptr<JobState> state) : state_(std::move(state)) {}

Job::Job(Job&& other) noexcept : state_(std::exchange(other.state_, nullptr)) {}

Job& Job::operator=(Job&& other) noexcept {
    cancel();
    state_ = std::exchange(other.state_, nullptr);
    return *this;
}

Job::~Job() { cancel(); }

bool Job::running() const { return state_ != nullptr && !state_->over; }

void Job::cancel() {
    // The callbacks may own this Job: `job`, which holds them, is destroyed after the last use of `this`.
    const std::shared_ptr<JobState> job = std::exchange(state_, nullptr);
    if (job == nullptr || std::exchange(job->over, true)) return;
    job->cancelled = true;
    if (const auto runner = job->runner.lock()) runner->drop(job);
}

void Job::hurry() {
    if (!running()) return;
    if (const auto runner = state_->runner.lock()) runner->hurry(state_);
}

}  // namespace zv
