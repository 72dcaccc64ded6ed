/// The graph of channels as it is rendered. One thread at a time renders: the output that drives it (see
/// device.h). It hears commands at the beginning of a period, then computes block after block for all outputs
/// at once.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <vector>

#include "engine/graph/channel.h"
#include "engine/graph/command_queue.h"
#include "engine/graph/mixer.h"

namespace zv::engine {

class Graph {
  public:
    Graph();

    CommandQueue commands;
    Trash trash;
    RenderCount renders{0};
    Ring<SyncEvent> syncEvents;
    std::atomic<std::uint64_t> sourceUnderruns{0};
    std::atomic<float> outputGain{1};  ///< BASS_CONFIG_GVOL_STREAM

    /// Rate at which outputs are computed. While nothing renders. [control]
    void setRate(std::uint32_t rate) { time_.rate.store(rate, std::memory_order_relaxed); }
    std::uint32_t rate() const { return time_.rate.load(std::memory_order_relaxed); }

    /// Once nothing has sounded for a while the outputs may rest. While nothing renders. [control]
    void mayRest(bool may) { mayRest_ = may; }
    /// Nothing has sounded for a while, and nothing will until a command comes. [any]
    bool quiet() const { return quiet_.load(std::memory_order_acquire); }

    /// The right to render. A callback that does not get it plays silence this once. [audio]
    bool tryAcquire();
    /// Waits for it. [control]
    void acquire();
    void release();

    /// Forgets gains, counters and events. While nothing renders. [control]
    void restart();

    // ---- by the holder of that right
    void applyCommands();  ///< [audio]
    /// The same where no callback does it. [control]
    void obeyCommands();
    /// Computes `frames` (kBlock at most) for every output.
    void renderBlock(std::uint32_t frames);
    /// What output `device` got in the last block: stereo frames.
    const float* bus(int device) const { return outputs_[static_cast<std::size_t>(device)].bus.data(); }
    /// Whether any channel played on it in the last block, also one that ended there.
    bool plays(int device) const { return outputs_[static_cast<std::size_t>(device)].played; }
    /// Sound of a channel at its own rate, in stereo, its chain passed. [audio]
    View pullStereo(Channel& channel, std::uint32_t want) { return pull_.stereo(channel, want); }
    /// Sound of a channel as it is in its source, before the chain. [audio]
    View pullNative(Channel& channel, std::uint32_t want) { return pull_.native(channel, want); }
    /// After each block: advances slides of channels that nobody pulls. [audio]
    void passTime(std::uint32_t frames) { slides_.passTime(frames); }
    /// Stores the position of a channel that is heard for everyone to read. [audio]
    void publishPosition(Channel& channel) { positions_.publish(channel); }

  private:
    struct Output {
        bool played = false;
        std::vector<float> bus;
        Slide gain;
    };

    void countSilence(std::uint32_t frames);
    void apply(const Command& command);
    static void applyToEffects(const Command& command);
    void move(Channel& channel, std::uint64_t frame, std::uint32_t moves);
    void plugIn(const Command& command);
    void free(const Command& command);

    std::atomic<bool> busy_{false};
    RenderTime time_;
    Syncs syncs_{syncEvents};
    Positions positions_{syncs_};
    Playback playback_{positions_, time_, sourceUnderruns};
    Slides slides_{playback_, time_};
    TimedSlides timed_{syncs_, slides_};
    Pull pull_{positions_, syncs_, time_};
    Conversion conversion_{pull_};
    Mixer mixer_{pull_, conversion_, playback_, positions_, timed_, time_};
    std::array<Output, kMostDevices> outputs_;
    std::uint64_t silentFrames_ = 0;  ///< since something last sounded
    bool mayRest_ = false;
    std::atomic<bool> quiet_{false};
};

}  // namespace zv::engine
