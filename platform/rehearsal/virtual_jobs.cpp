// Jobs in a rehearsal: each has a thread, and it runs only while the interface thread waits for it. A job's first
// report of progress, each further one and its end come at fixed virtual times.
#include "platform/rehearsal/virtual_jobs.h"

#include <algorithm>
#include <exception>
#include <list>
#include <memory>
#include <optional>
#include <semaphore>
#include <string>
#include <thread>
#include <utility>

#include "platform/clock.h"
#include "platform/common/job_state.h"
#include "platform/jobs.h"
#include "platform/rehearsal/virtual_clock.h"

namespace zv {
namespace {

/// One job's thread and whose turn it is.
class VirtualJob final : public JobWork {
  public:
    explicit VirtualJob(std::shared_ptr<JobState> job)
        : state(std::move(job)), dueMs(monotonicMs() + state->order.rehearsedMs) {}
    ~VirtualJob() override {
        if (!thread_.joinable()) return;
        state->over = state->cancelled = true;
        while (!ended_) step();
        thread_.join();
    }
    VirtualJob(const VirtualJob&) = delete;
    VirtualJob& operator=(const VirtualJob&) = delete;

    /// The work goes on to its next report or to its end, which is handed over. False when it has ended.
    bool advance() {
        dueMs += state->order.rehearsedMs;
        step();
        if (ended_)
            deliverJobEnd(*state, error_);
        else if (!std::exchange(asleep_, false))
            deliverJobProgress(*state, percent_, text_);
        return !ended_;
    }

    bool cancelled() override { return state->cancelled; }
    void progress(int percent, std::string text) override {
        percent_ = percent;
        text_ = std::move(text);
        giveBack();
    }
    /// Suspends the job for `ms` of virtual time. Called on the job's thread.
    void sleep(int ms) {
        dueMs = monotonicMs() + ms;
        asleep_ = true;
        giveBack();
    }
    /// The job whose thread calls; null on other threads.
    static VirtualJob*& current() {
        thread_local VirtualJob* job = nullptr;
        return job;
    }

    const std::shared_ptr<JobState> state;
    std::int64_t dueMs;

  private:
    void giveBack() {
        back_.release();
        turn_.acquire();
    }
    void step() {
        if (thread_.joinable())
            turn_.release();
        else
            thread_ = std::thread([this] {
                current() = this;
                error_ = runJobWork(*state, *this);
                ended_ = true;
                back_.release();
            });
        back_.acquire();
    }

    std::thread thread_;
    std::binary_semaphore turn_{0}, back_{0};
    int percent_ = 0;
    std::string text_;
    std::exception_ptr error_;
    bool ended_ = false, asleep_ = false;
};

class VirtualJobs final : public JobRunner {
  public:
    VirtualJobs() {
        VirtualClock::instance().serve({[this] { return next(); }, [this](std::int64_t now) { fire(now); }});
    }

    Job start(JobOrder order, const std::shared_ptr<JobRunner>& self) {
        if (ended_) return {};
        auto state = std::make_shared<JobState>();
        state->order = std::move(order);
        state->runner = self;
        auto job = std::make_shared<VirtualJob>(state);
        // One that takes no time runs until it waits.
        bool goesOn = true;
        while (goesOn && job->dueMs <= monotonicMs()) goesOn = job->advance();
        if (goesOn) jobs_.push_back(std::move(job));
        return Job(std::move(state));
    }

    /// A job that is cancelled ends at once, when it is not the one that calls.
    void drop(const std::shared_ptr<JobState>& job) override {
        const auto place = std::ranges::find(jobs_, job, &VirtualJob::state);
        if (place == jobs_.end()) return;
        const std::shared_ptr<VirtualJob> ended = *place;
        jobs_.erase(place);
    }
    void hurry(const std::shared_ptr<JobState>&) override {}

    void endAll() {
        ended_ = true;
        const auto ended = std::exchange(jobs_, {});  // what they hold may cancel others
    }

  private:
    std::optional<std::int64_t> next() const {
        const auto first = std::ranges::min_element(jobs_, {}, &VirtualJob::dueMs);
        return first == jobs_.end() ? std::nullopt : std::optional((*first)->dueMs);
    }

    void fire(std::int64_t) {
        const auto first = std::ranges::min_element(jobs_, {}, &VirtualJob::dueMs);
        const std::shared_ptr<VirtualJob> job = *first;  // its callbacks may cancel it, or start others
        if (!job->advance()) std::erase(jobs_, job);
    }

    std::list<std::shared_ptr<VirtualJob>> jobs_;  ///< in the order of their start
    bool ended_ = false;
};

const std::shared_ptr<VirtualJobs>& jobs() {
    static const auto* const made = new std::shared_ptr<VirtualJobs>(std::make_shared<VirtualJobs>());
    return *made;
}

}  // namespace

void waitInJob(int ms) {
    if (VirtualJob* job = VirtualJob::current())
        job->sleep(ms);
    else
        VirtualClock::instance().waitUntil(monotonicMs() + ms);
}

Job startJob(JobOrder order) { return jobs()->start(std::move(order), jobs()); }

bool endJobs(int) {
    jobs()->endAll();
    return true;
}

}  // namespace zv
