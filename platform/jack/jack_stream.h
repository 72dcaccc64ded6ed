/// One pair of ports at a JACK server. Private to platform/jack.
#pragma once

#include <jack/jack.h>

#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "engine/ports.h"

namespace zv {

enum class JackDirection { output, input };

/// A client of the server, without a word on the terminal; null when no server answers. It waits for its
/// turn, as closeJackClient() does (platform/common/jack_turn.h). [any]
jack_client_t* openJackClient(const char* name);
void closeJackClient(jack_client_t* client);

/// What the callback and the thread that follows the server share. It outlives its device when the server hangs: then
/// closing would hang as well, and is left to the thread.
class JackStream {
  public:
    JackStream(JackDirection direction, std::vector<std::string> ports, engine::SoundClient& client);
    ~JackStream();
    JackStream(const JackStream&) = delete;
    JackStream& operator=(const JackStream&) = delete;

    /// Connects once; false when the server or the ports are not there. [control]
    bool open();
    /// Follows the server until stop(). [worker]
    void follow();
    /// The client is not called any more when it returns; says whether the thread has ended. [control]
    bool stop();

    std::uint32_t rate() const { return rate_; }
    std::uint32_t period() const { return period_; }

  private:
    static constexpr std::size_t kSides = 2;

    bool connect();
    void close();
    /// Calls the client unless it was told goodbye. [worker]
    void tell(const std::function<void(engine::SoundClient&)>& call);
    void process(std::uint32_t frames);
    static int onProcess(jack_nframes_t frames, void* self);
    static void onShutdown(void* self);

    const JackDirection direction_;
    const std::vector<std::string> ports_;  ///< of the server, one or two
    std::atomic<engine::SoundClient*> client_;
    std::atomic<int> calls_{0};  ///< of the client that are under way
    jack_client_t* jack_ = nullptr;
    std::array<jack_port_t*, kSides> own_{};
    std::vector<float> stereo_;
    std::uint32_t rate_ = 0, period_ = 0;
    std::atomic<bool> gone_{false};

    std::mutex mutex_;
    std::condition_variable changed_;
    bool stopping_ = false, ended_ = false;
};

}  // namespace zv
