/// Threads that read sounds ahead and stretch: one leads and looks after everything in time, one helps when there
/// is more than one can do, one watches. When leader or helper hangs in a file, as on a disk that does not answer, the
/// watcher takes its place and another one watches. Offline there are none: the render does their work itself, so that
/// every run gives the same bits.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "engine/sources/paged_sound.h"
#include "engine/tempo/processor.h"

namespace zv::engine {

class Workers {
  public:
    ~Workers() { stop(); }
    /// [control]
    void start();
    /// Threads that hang are left behind.
    void stop();

    /// Known sounds and tempo processors are served until they are gone. [any but audio]
    void add(const std::shared_ptr<PagedSound>& sound);
    /// `reads`: what the processor reads from, kept as long as it is worked on.
    void add(const std::shared_ptr<TempoProcessor>& tempo, const std::shared_ptr<PagedSound>& reads);
    /// Something is wanted now. [any but audio]
    void wake();
    /// Offline: everything the next block may read is loaded, on the calling thread.
    void serveBlock();

  private:
    struct Thread {
        std::thread thread;
        bool ended = false;
        std::atomic<std::int64_t> readsSince{0};  ///< steady ms; 0 while it reads nothing
    };
    enum class Role : std::uint8_t { leads, helps, watches };
    void run(Thread& self);
    void addThread();
    /// What the calling thread is to do; a watcher takes over from a thread that hangs.
    Role roleOf(const Thread& self);
    void callHelper();
    std::chrono::milliseconds rest(const Thread& self, bool wasCalled) const;
    struct Work {
        std::vector<std::shared_ptr<PagedSound>> sounds;
        std::vector<std::shared_ptr<PagedSound>> read;  ///< by the tempo processors, one each
        std::vector<std::shared_ptr<TempoProcessor>> tempos;
        bool busy() const;
        bool lacksPages() const;
        bool changes() const;  ///< a tempo channel is about to change over
    };
    struct Stretching {
        std::weak_ptr<TempoProcessor> tempo;
        std::weak_ptr<PagedSound> reads;
    };
    Work collect();
    bool serveOnce(const Work& work, bool leader);

    std::mutex mutex_;
    std::condition_variable wanted_, ended_;
    bool woken_ = false, helpWanted_ = false, watchWanted_ = false;  // of leader, helper and watcher
    std::vector<std::weak_ptr<PagedSound>> sounds_;
    std::vector<Stretching> tempos_;
    std::list<Thread> threads_;
    const Thread *leader_ = nullptr, *helper_ = nullptr;
    bool stopping_ = false;
    std::atomic<std::int64_t> leaderTick_{0};  ///< ms that the leader sleeps until it looks anew
};

}  // namespace zv::engine
