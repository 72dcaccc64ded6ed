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
#include "engine/graph/conversion_group.h"

namespace zv::engine {

/// A stretch of sound. `own`: lies in a buffer of the graph, to be used before anything else is pulled and
/// free to be changed; else in memory that stays as it is until the end of the render.
struct View {
    static constexpr std::uint64_t kNoSource = ~std::uint64_t{0};
    const float* data = nullptr;
    std::uint64_t source = kNoSource;  ///< untouched mono or stereo from pages: the frame it begins with
    float gain = 1;                    ///< that is still to be applied
    bool mono = false;                 ///< one channel, for both sides
    std::uint32_t frames = 0;
    bool own = false;
    bool ended = false;  ///< without frames: nothing more will come; else it waits for data
};

/// A position was reached: told to the dispatcher.
struct SyncEvent {
    HSYNC sync = 0;
    DWORD channel = 0;
    std::uint32_t moves = 0;
    bool slides = false;  ///< what is to happen there has begun with the frame
};

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
    void setRate(std::uint32_t rate) { rate_.store(rate, std::memory_order_relaxed); }
    std::uint32_t rate() const { return rate_.load(std::memory_order_relaxed); }

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
    /// Sound of a channel at its own rate, in stereo, its chain passed.
    View pullStereo(Channel& channel, std::uint32_t want);
    /// The same for who can mix mono and apply a gain himself: see View::gain, View::mono.
    View pullPlain(Channel& channel, std::uint32_t want);
    /// The same as it is in the file, before the chain.
    View pullNative(Channel& channel, std::uint32_t want);
    /// Advances slides of channels that nobody pulls. After each block.
    void passTime(std::uint32_t frames);
    void publishPosition(Channel& channel);

  private:
    void countSilence(std::uint32_t frames);
    struct Output {
        Channel *first = nullptr, *last = nullptr;
        bool played = false;
        std::vector<float> bus;
        Slide gain;
    };
    /// Both ends of the list of sounding channels that one stands in; null: in none.
    struct List {
        Channel **first = nullptr, **last = nullptr;
    };

    // graph.cpp
    void apply(const Command& command);
    void applyOther(const Command& command);
    void start(Channel& channel, std::uint32_t generation);
    void finish(Channel& channel);
    void stop(Channel& channel);
    void unplug(Channel& channel);
    void free(const Command& command);
    static void findFirstSync(AudioState& a);
    void expect(const Channel& channel, int syncs);
    List listOf(const AudioState& a);
    static void soundsOrRests(Channel& channel, bool sounds);
    void link(Channel& channel);
    void unlink(Channel& channel);
    void move(Channel& channel, std::uint64_t frame, std::uint32_t moves);
    // slides.cpp
    void slideVolume(const Command& command);
    void slideVoldsp(const Command& command);
    void keepSliding(Channel& channel);
    void forgetSlides(Channel& channel);
    void volumeEnded(Channel& channel);
    // pull.cpp
    View readFile(Channel& channel, std::uint32_t want, Channel& through);
    View readLive(Channel& channel, std::uint32_t want);
    View readTempo(Channel& channel, std::uint32_t want);
    View readSplit(Channel& channel, std::uint32_t want);
    View readMixer(Channel& channel, std::uint32_t want);
    View pullConverted(Channel& channel, std::uint32_t want);
    /// What the conversion of the next frames needs is there; else why not.
    enum class Filled : std::uint8_t { all, dry, ended };
    Filled fillConverted(Channel& channel, std::uint32_t want);
    void takeConverted(Channel& channel, std::uint32_t frames, bool make);
    bool convertsFile(Channel& channel);
    void alignConversion(Channel& channel) const;
    View toStereo(Channel& channel, View view);
    View throughChain(Channel& channel, View view);
    View pullTail(Channel& channel, std::uint32_t want);
    View finished(View view);
    void passed(Channel& channel, std::uint64_t from, std::uint64_t to);
    void delivered(Channel& channel, Channel& source, std::uint64_t from, std::uint64_t to);
    void heard(Channel& channel, Channel& source, std::uint64_t to);
    static void takeBack(Channel& channel);
    void passedStretched(Channel& channel, std::uint64_t from, std::uint64_t to);
    void setDry(Channel& channel, bool dry);
    // mixer.cpp
    void mixInputs(Channel* const& first, float* out, std::uint32_t frames);
    void mixPart(Channel* first, float* out, std::uint32_t frames, ConversionGroups& groups);
    std::uint32_t evenPart(Channel* const& first, std::uint32_t frames);
    std::uint32_t stretchOf(Channel* first, std::uint64_t part);
    std::uint64_t untilTimed(Channel& channel);
    bool joinGroup(Channel& channel, std::uint32_t frames, ConversionGroups& groups);
    static void noteHeard(Channel& channel, std::uint64_t from);
    void mixInput(Channel& channel, float* out, std::uint32_t frames, View begun);

    std::atomic<bool> busy_{false};
    std::atomic<std::uint32_t> rate_{44100};
    std::array<Output, kMostDevices> outputs_;
    Channel* slides_ = nullptr;
    std::uint64_t block_ = 0;
    std::uint64_t clock_ = 0;  ///< frames rendered before this block
    static constexpr std::size_t kMostNested = 6;
    std::array<ConversionGroups, kMostNested> groups_;  ///< of the mixer that is mixed, of the one in it ...
    std::size_t nested_ = 0;
    int sounding_ = 0;                ///< channels in lists, buses aside
    int busSyncs_ = 0;                ///< wait for positions of buses, which advance in silence as well
    std::uint64_t silentFrames_ = 0;  ///< since something last sounded
    bool mayRest_ = false;
    std::atomic<bool> quiet_{false};
    std::vector<float> stereo_, native_;  // buffers of views
};

}  // namespace zv::engine
