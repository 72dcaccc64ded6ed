/// The threads behind platform/jobs.h on a real machine. A lane runs a few jobs at once; one whose work gives no
/// sign of life, as on a disk that does not answer, does not count, so that the others go on.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "platform/common/job_state.h"

namespace zv {

class WorkerPool final : public JobRunner, public std::enable_shared_from_this<WorkerPool> {
  public:
    /// `wake` is called when something waits for deliver(), by any thread, once until deliver() is called.
    static std::shared_ptr<WorkerPool> create(std::function<void()> wake);

    Job start(JobOrder order);  ///< [control]
    /// Hands over what waits: progress, results, failures. Stops after some ms and wakes once more, so that the
    /// interface is never held long. [control]
    void deliver();
    /// As endJobs(). [control]
    bool end(int patienceMs);

    void drop(const std::shared_ptr<JobState>& job) override;
    void hurry(const std::shared_ptr<JobState>& job) override;

  private:
    using Lock = std::unique_lock<std::mutex>;
    class Work;
    struct Lane {
        std::deque<std::shared_ptr<JobState>> waiting;
        std::list<std::shared_ptr<JobState>> running;
        std::condition_variable changed;
        int idle = 0;  ///< workers that wait for a job
        std::size_t atOnce = 2;
        std::int64_t stuckMs = 0;
    };
    struct Message {
        std::shared_ptr<JobState> job;
        bool end = false;
        int percent = 0;
        std::string text;
        std::exception_ptr error;  ///< what the work threw
    };
    struct Worker {
        std::thread thread;
        bool ended = false;
    };

    explicit WorkerPool(std::function<void()> wake);
    Lane& laneOf(const JobState& job) { return lanes_[static_cast<std::size_t>(job.order.lane)]; }
    void addWorker(Lane& lane);
    void run(Lane& lane, Worker& self);
    void runNext(Lane& lane, Lock& lock);
    bool mayBegin(const Lane& lane) const;
    void post(Message message, Lock& lock);

    std::mutex mutex_;
    Lane lanes_[2];
    std::list<Worker> workers_;
    std::condition_variable workerEnded_;
    std::deque<Message> messages_;
    std::deque<std::shared_ptr<JobState>> left_;  ///< hang after the end
    bool woken_ = false, ending_ = false;
    std::function<void()> wake_;
};

}  // namespace zv
