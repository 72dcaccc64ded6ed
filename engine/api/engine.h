/// The engine as the operations of bass.h see it: one lock, all handles, all devices. Nothing here runs in a
/// device callback but what graph.h and device.h say.
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "engine/api/errors.h"
#include "engine/api/sync_dispatcher.h"
#include "engine/api/workers.h"
#include "engine/devices/device.h"
#include "engine/graph/channel.h"
#include "engine/graph/graph.h"
#include "engine/ports.h"
#include "engine/realtime/thread_tags.h"

namespace zv::engine {

struct SyncRecord {
    DWORD channel = 0;
    SYNCPROC* procedure = nullptr;
    void* user = nullptr;
    bool once = true;
};

class Engine {
  public:
    static Engine& instance();

    std::mutex mutex;  ///< of all that follows but graph and workers
    Graph graph;
    Outputs outputs{graph};
    Workers workers;
    SyncDispatcher dispatcher;
    EnginePorts ports;

    std::unordered_map<DWORD, std::shared_ptr<Channel>> channels;
    std::unordered_map<HFX, std::shared_ptr<Effect>> effects;
    std::unordered_map<HSYNC, SyncRecord> syncs;
    std::vector<std::weak_ptr<UrlInput>> urls;
    std::vector<DWORD> freedWhenStopped;  ///< channels that ask for it, once they have been started

    DeviceRegister outputRegister, inputRegister;
    std::vector<bool> outputInitialised = std::vector<bool>(kMostDevices, false);
    std::vector<std::unique_ptr<InputSlot>> inputs;
    std::unordered_map<DWORD, DWORD> config;

    void install(const EnginePorts& newPorts);
    bool offline() const { return ports.devices && ports.devices->offline(); }

    // ---- under the lock
    DWORD newHandle();
    std::uint64_t newSerial() { return ++serial_; }
    std::shared_ptr<Channel> find(DWORD handle) const;
    void adopt(const std::shared_ptr<Channel>& channel);
    /// Sends a command. One that makes sound wakes resting outputs at once; for others the dispatcher wakes them later.
    /// A move wakes the workers: other pages are wanted.
    void send(const Command& command);
    /// Forgets its handle, syncs and effects and unplugs it; freed for good once the audio side dropped it.
    void freeChannel(const std::shared_ptr<Channel>& channel, std::unique_lock<std::mutex>& lock);
    void rebuildChain(Channel& channel);
    /// Waits for its procedure where that runs on another thread.
    void removeSync(Channel& channel, HSYNC sync, std::unique_lock<std::mutex>& lock);
    /// Gives every output its place in the order of drivers.
    void rankOutputs();
    bool active(Channel& channel) const;
    void closeOutput(int number, std::unique_lock<std::mutex>& lock);
    void refreshDevices();
    InputSlot* input(int number);

    /// Frees the channels of freedWhenStopped that have stopped.
    void reap();
    /// Applies commands at once where no callback does it, and frees what the trash brought back.
    void settleCommands();
    /// Waits until all commands so far have been heard: for a read by hand. At most 200 ms.
    void waitForCommands(std::unique_lock<std::mutex>& lock);

    /// Runs the syncs that are due. True: more may come soon.
    bool runSyncs();

  private:
    void freeEverything();
    /// Applies all commands on this thread.
    void obeyHere();
    DWORD lastHandle_ = 0x10000;
    std::uint64_t serial_ = 0;
    HSYNC running_ = 0;
    bool unheard_ = false;  ///< commands have waited for a resting output since the dispatcher last looked
    DWORD runningChannel_ = 0;
    std::condition_variable finished_;
};

/// Stands in every operation: holds the lock, and leaves commands settled.
class Call {
  public:
    Call() : engine(Engine::instance()), lock(notAudio(engine.mutex)) {
        if (!engine.freedWhenStopped.empty()) engine.reap();
    }
    ~Call() {
        if (!lock.owns_lock()) lock.lock();
        engine.settleCommands();
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;
    Engine& engine;
    std::unique_lock<std::mutex> lock;

  private:
    /// No operation may be called in a device callback.
    static std::mutex& notAudio(std::mutex& mutex) {
        assertNotAudioThread();
        return mutex;
    }
};

/// The same in what may take long or waits for devices. [control]
struct ControlCall : Call {
    ControlCall() { assertControlThread(); }
};

/// The output that the calling thread has selected; -1 none.
int& selectedOutput();
/// The input likewise.
int& selectedInput();

}  // namespace zv::engine
