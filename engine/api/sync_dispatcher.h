/// Runs sync procedures on a thread of its own.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>

namespace zv::engine {

class SyncDispatcher {
  public:
    ~SyncDispatcher() { stop(); }
    /// `drain` takes and runs what is due, and says whether more may come soon. `polls`: looks for it every
    /// other millisecond while that is so; else only when asked.
    void start(bool (*drain)(), bool polls);  // [control]
    void stop();
    /// Waits until all that is due so far has run. Returns at once on the dispatcher itself. [control]
    void settle();
    /// More may come soon. [any but audio]
    void watch();
    bool isThisThread() const { return std::this_thread::get_id() == thread_.get_id(); }

  private:
    void run();
    bool (*drain_)() = nullptr;
    bool polls_ = false, watching_ = false, stopping_ = false;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint64_t asked_ = 0, done_ = 0;
    std::thread thread_;
};

}  // namespace zv::engine
