/// One open stream to or from a sound server. Private to platform/pulse.
#pragma once

#include <pulse/pulseaudio.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include "engine/ports.h"
#include "platform/pulse/pulse_options.h"

namespace zv {

enum class Direction { Output, Input };

/// A connection and a thread of its own for each device, so that none waits for another. All that follows the
/// opening happens on that thread.
class PulseDevice : public engine::SoundDevice {
  public:
    PulseDevice(const PulseOptions& options, Direction direction, std::string id, std::uint32_t rate,
                engine::SoundClient& client);
    ~PulseDevice() override;

    /// Connects; false when there is no such device or the server does not answer in time. [control]
    bool open();

    std::uint32_t rate() const override { return rate_; }
    std::uint32_t period() const override { return options_.periodFrames; }
    void wake() override;

  private:
    enum class State { Opening, Running, Lost, Failed };

    bool connectContext();
    void dropContext();
    void dropStream();
    void lookForDevice();
    void openStream();
    void streamGone();
    void streamReady();
    void suspended();
    bool outlivedStandstill();
    void giveSound(std::size_t bytes);
    bool give(std::size_t frames, pa_seek_mode_t where);
    void takeSound();
    void rest();
    void giveSilence(std::size_t bytes);
    void woken();
    pa_buffer_attr queue(bool resting) const;
    void askQueue(bool resting);
    void retryIn(pa_usec_t microseconds);
    void retry();
    void paceOn();
    void pace();
    void settle(State state);

    static void onContextState(pa_context* context, void* self);
    static void onChange(pa_context* context, pa_subscription_event_type_t event, std::uint32_t index,
                         void* self);
    static void onStreamState(pa_stream* stream, void* self);

    PulseOptions options_;
    Direction direction_;
    std::string id_;
    std::uint32_t rate_;
    engine::SoundClient* client_;

    pa_threaded_mainloop* loop_ = nullptr;
    pa_mainloop_api* api_ = nullptr;
    pa_context* context_ = nullptr;
    pa_stream* stream_ = nullptr;
    pa_io_event* wakeEvent_ = nullptr;
    pa_time_event* retryTimer_ = nullptr;
    pa_time_event* paceTimer_ = nullptr;
    pa_usec_t lostAt_ = 0;           ///< when the device went away
    pa_usec_t servedAt_ = 0;         ///< when the server last asked or gave
    bool stale_ = false;             ///< the stream outlived a standstill: another one is on its way
    std::uint64_t pacedFrames_ = 0;  ///< asked for since
    std::vector<float> thrownAway_;  ///< sound of a device that is away
    std::vector<float> silence_;     ///< what an input gives for a hole in its stream
    State state_ = State::Opening;

    int wakeFile_ = -1;            ///< an event to the thread
    std::atomic<int> resting_{0};  ///< 1: a long stretch of silence lies at the server
    std::vector<float> first_;     ///< what is given first after a rest

    std::mutex openMutex_;  ///< between open() and the thread, while opening only
    std::condition_variable opened_;
    State openState_ = State::Opening;
};

}  // namespace zv
