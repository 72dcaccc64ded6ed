/// Work off the interface thread. A job's work runs on a worker, tells its progress, can be cancelled, and hands
/// its result to the interface thread. The desktop answers with threads and hands results over in the event loop;
/// in a rehearsal results come at fixed virtual times, so that every run is the same. Rooms above platform/ start
/// no threads of their own.
///
///     job_ = startJob<Peaks>("modPeaks.Read", [path](JobWork& work) { return readPeaks(path, work); },
///                            [index](Peaks peaks) { showPeaks(index, peaks); });
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace zv {

/// How many jobs of a lane run at once, so that long ones do not hold up those that somebody waits for.
enum class JobLane : std::uint8_t {
    soon,    ///< somebody waits: opening a file, a request
    longer,  ///< whole files and folders: peaks, loudness, archives
};

/// What a job's work has of its job. [worker]
class JobWork {
  public:
    virtual ~JobWork() = default;
    /// True when nobody wants the result any more: the work should return soon. Work that takes long asks at
    /// least every 100 ms; while it does, it does not count as stuck.
    virtual bool cancelled() = 0;
    /// Tells how far the work is. Reports that come faster than the interface takes them are left out, the
    /// newest one is kept. [worker]
    virtual void progress(int percent, std::string text = {}) = 0;
};

/// What a job takes in a rehearsal unless its order says otherwise.
inline constexpr int kRehearsedJobMs = 20;

struct JobOrder {
    /// The procedure under which a failure is reported: "modBackup.Export".
    std::string name;
    std::function<void(JobWork&)> work;                                    ///< [worker]
    std::function<void()> done;                                            ///< work has returned [control]
    std::function<void(int percent, const std::string& text)> progressed;  ///< [control]
    std::function<void(std::exception_ptr)>
        failed;  ///< work has thrown; without it onJobFailure is told [control]
    JobLane lane = JobLane::soon;
    /// Virtual ms, in a rehearsal, from the start to the first report of progress, from each to the next, and
    /// from the last to the end. 0: all of it happens inside startJob().
    int rehearsedMs = kRehearsedJobMs;
};

struct JobState;

/// Holds a job. Its end cancels the job. [control]
class Job {
  public:
    Job() = default;
    explicit Job(std::shared_ptr<JobState> state);
    Job(Job&& other) noexcept;
    Job& operator=(Job&& other) noexcept;
    ~Job();

    /// True until the result, or the failure, is handed over or the job is cancelled.
    bool running() const;
    /// From now on none of the order's callbacks is called. Work that has not begun never does; work that has is
    /// told and left behind.
    void cancel();
    /// Work that has not begun comes before all other of its lane.
    void hurry();

  private:
    std::shared_ptr<JobState> state_;
};

/// Starts a job. The callbacks are called, and destroyed, on the interface thread only. After endJobs() nothing is
/// started. [control]
[[nodiscard]] Job startJob(JobOrder order);

/// As above for work with a result, which `done` takes over.
template <class Result>
[[nodiscard]] Job startJob(std::string name, std::function<Result(JobWork&)> work,
                           std::function<void(Result)> done, JobLane lane = JobLane::soon,
                           int rehearsedMs = kRehearsedJobMs) {
    auto result = std::make_shared<std::optional<Result>>();
    JobOrder order;
    order.name = std::move(name);
    order.work = [result, work = std::move(work)](JobWork& job) { result->emplace(work(job)); };
    order.done = [result, done = std::move(done)] {
        if (done) done(std::move(**result));
    };
    order.lane = lane;
    order.rehearsedMs = rehearsedMs;
    return startJob(std::move(order));
}

/// Cancels all jobs and waits until their work has returned, `patienceMs` at most. False when work still hangs,
/// as on a disk that does not answer: the process then ends without waiting for it. [control]
bool endJobs(int patienceMs);

/// Told of exceptions of a job's work that no `failed` takes, and of those of its callbacks. [control]
inline std::function<void(const std::string& name, std::exception_ptr error)> onJobFailure;

}  // namespace zv
