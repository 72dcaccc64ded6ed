#include "platform/workers/worker_pool.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace zv {
namespace {

constexpr std::size_t kSoonAtOnce = 2, kLongerAtOnce = 1;
constexpr std::int64_t kSoonStuckMs = 200, kLongerStuckMs = 1500;
/// How often a worker without a job looks whether one that runs is stuck, while others wait.
constexpr auto kLook = std::chrono::milliseconds(50);
/// Threads at most, those that hang included.
constexpr std::size_t kMostWorkers = 64;
/// How long results are handed over in one go.
constexpr auto kDeliverAtOnce = std::chrono::milliseconds(5);

std::int64_t steadyMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

}  // namespace

class WorkerPool::Work final : public JobWork {
  public:
    Work(WorkerPool& pool, std::shared_ptr<JobState> job) : pool_(pool), job_(std::move(job)) { sign(); }

    bool cancelled() override {
        sign();
        return job_->cancelled;
    }
    void progress(int percent, std::string text) override {
        sign();
        Lock lock(pool_.mutex_);
        pool_.post({job_, false, percent, std::move(text), nullptr}, lock);
    }

  private:
    void sign() { job_->lastSignMs = steadyMs(); }

    WorkerPool& pool_;
    const std::shared_ptr<JobState> job_;
};

WorkerPool::WorkerPool(std::function<void()> wake) : wake_(std::move(wake)) {
    Lane& soon = lanes_[static_cast<std::size_t>(JobLane::soon)];
    Lane& longer = lanes_[static_cast<std::size_t>(JobLane::longer)];
    soon.atOnce = kSoonAtOnce;
    soon.stuckMs = kSoonStuckMs;
    longer.atOnce = kLongerAtOnce;
    longer.stuckMs = kLongerStuckMs;
}

std::shared_ptr<WorkerPool> WorkerPool::create(std::function<void()> wake) {
    return std::shared_ptr<WorkerPool>(new WorkerPool(std::move(wake)));
}

Job WorkerPool::start(JobOrder order) {
    auto job = std::make_shared<JobState>();
    job->order = std::move(order);
    job->runner = weak_from_this();
    const Lock lock(mutex_);
    if (ending_) return {};
    Lane& lane = laneOf(*job);
    lane.waiting.push_back(job);
    if (lane.idle == 0) addWorker(lane);
    lane.changed.notify_one();
    return Job(std::move(job));
}

void WorkerPool::addWorker(Lane& lane) {
    if (workers_.size() >= kMostWorkers) return;
    Worker& worker = workers_.emplace_back();
    try {
        // The thread owns a reference to the pool: a worker that hangs at exit may outlive all other owners.
        worker.thread = std::thread([pool = shared_from_this(), &lane, &worker] { pool->run(lane, worker); });
    } catch (const std::system_error&) {
        workers_.pop_back();  // the system gives no more threads: those that are there do the work
    }
}

bool WorkerPool::mayBegin(const Lane& lane) const {
    if (lane.waiting.empty()) return false;
    const std::int64_t now = steadyMs();
    const auto alive = std::ranges::count_if(
        lane.running, [&](const auto& job) { return now - job->lastSignMs < lane.stuckMs; });
    return static_cast<std::size_t>(alive) < lane.atOnce;
}

void WorkerPool::run(Lane& lane, Worker& self) {
    Lock lock(mutex_);
    while (!ending_) {
        if (mayBegin(lane)) {
            runNext(lane, lock);
            continue;
        }
        ++lane.idle;
        if (lane.waiting.empty())
            lane.changed.wait(lock);
        else
            lane.changed.wait_for(lock, kLook);
        --lane.idle;
    }
    self.ended = true;
    workerEnded_.notify_all();
}

void WorkerPool::runNext(Lane& lane, Lock& lock) {
    std::shared_ptr<JobState> job = std::move(lane.waiting.front());
    lane.waiting.pop_front();
    const auto place = lane.running.insert(lane.running.end(), job);
    std::exception_ptr error;
    {
        Work work(*this, job);
        // Keep one worker idle: it starts the next job when the work of this one hangs.
        if (lane.idle == 0) addWorker(lane);
        lock.unlock();
        error = runJobWork(*job, work);
    }
    lock.lock();
    lane.running.erase(place);
    lane.changed.notify_one();
    post({std::move(job), true, 0, {}, std::move(error)}, lock);
}

void WorkerPool::post(Message message, Lock&) {
    if (ending_) return;
    const auto earlier =
        std::ranges::find_if(messages_, [&](const Message& m) { return m.job == message.job && !m.end; });
    if (!message.end && earlier != messages_.end())
        *earlier = std::move(message);
    else
        messages_.push_back(std::move(message));
    if (!std::exchange(woken_, true) && wake_) wake_();
}

void WorkerPool::deliver() {
    const auto until = std::chrono::steady_clock::now() + kDeliverAtOnce;
    Lock lock(mutex_);
    woken_ = false;
    while (!messages_.empty()) {
        if (std::chrono::steady_clock::now() > until) {
            woken_ = true;
            if (wake_) wake_();
            return;
        }
        {
            // Take one message at a time: a callback may run events, which deliver the next messages.
            const Message message = std::move(messages_.front());
            messages_.pop_front();
            lock.unlock();
            if (message.end)
                deliverJobEnd(*message.job, message.error);
            else
                deliverJobProgress(*message.job, message.percent, message.text);
        }
        lock.lock();
    }
}

bool WorkerPool::end(int patienceMs) {
    std::deque<std::shared_ptr<JobState>> dropped;
    std::deque<Message> messages;
    std::list<Worker> workers;
    bool all = false;
    {
        Lock lock(mutex_);
        ending_ = true;
        wake_ = nullptr;
        messages.swap(messages_);
        for (Lane& lane : lanes_) {
            for (auto& job : lane.waiting) dropped.push_back(std::move(job));
            lane.waiting.clear();
            for (const auto& job : lane.running) dropped.push_back(job);
            lane.changed.notify_all();
        }
        for (const auto& job : dropped) job->over = job->cancelled = true;
        for (const Message& message : messages) message.job->over = true;
        all = workerEnded_.wait_for(lock, std::chrono::milliseconds(patienceMs),
                                    [&] { return std::ranges::all_of(workers_, &Worker::ended); });
        // Keep the jobs that a hanging worker references: their callbacks are destroyed on the interface thread.
        if (!all) left_.swap(dropped);
        // A hanging worker keeps its entry in workers_; its thread is detached.
        for (auto worker = workers_.begin(); worker != workers_.end();) {
            const auto next = std::next(worker);
            if (worker->ended)
                workers.splice(workers.end(), workers_, worker);
            else if (worker->thread.joinable())
                worker->thread.detach();
            worker = next;
        }
    }
    for (Worker& worker : workers) {
        if (worker.thread.joinable()) worker.thread.join();
    }
    return all;
}

void WorkerPool::drop(const std::shared_ptr<JobState>& job) {
    const Lock lock(mutex_);
    std::erase(laneOf(*job).waiting, job);
}

void WorkerPool::hurry(const std::shared_ptr<JobState>& job) {
    const Lock lock(mutex_);
    auto& waiting = laneOf(*job).waiting;
    const auto place = std::ranges::find(waiting, job);
    if (place != waiting.end()) std::rotate(waiting.begin(), place, std::next(place));
}

}  // namespace zv
