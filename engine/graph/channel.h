/// One channel, in three parts: what never changes, what the caller's side keeps (under the engine's lock),
/// and what belongs to whoever renders. Between the two stand a few atomic values.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/bass.h"
#include "engine/graph/chain.h"
#include "engine/graph/plug.h"
#include "engine/graph/slide.h"
#include "engine/realtime/trash.h"
#include "engine/sources/live_input.h"
#include "engine/sources/paged_sound.h"
#include "engine/tempo/processor.h"

namespace zv::engine {

struct Channel;

inline constexpr int kMostDevices = 32;

enum class Kind : std::uint8_t { File, Module, Url, Record, Tempo, Mixer, Split };

/// A position that someone waits for. Handed to the audio side, taken back through the trash.
struct SyncNode : Garbage {
    static constexpr std::uint64_t kNever = ~std::uint64_t{0};
    HSYNC handle = 0;
    std::uint64_t frame = 0;  ///< kNever: it has fired
    bool once = true;
    bool slides = false;  ///< a slide of VOL begins with its frame
    float value = 0;
    std::uint32_t ms = 0, flags = 0;
    SyncNode* next = nullptr;
};

/// The readers of one source: it is computed once, into a ring that all of them read.
struct SplitHub {
    SplitHub(std::shared_ptr<Channel> of, std::uint32_t rate);
    std::shared_ptr<Channel> source;
    std::vector<float> ring;    ///< stereo
    std::uint64_t frames;       ///< that the ring holds
    std::uint64_t written = 0;  ///< frames ever written [audio]
    bool ended = false;         ///< [audio]
    int sounding = 0;           ///< readers that sound [audio]
};

/// Keeps a freed channel alive until the audio side has dropped it.
struct ChannelKeeper : Garbage {
    explicit ChannelKeeper(std::shared_ptr<Channel> held) : channel(std::move(held)) {}
    std::shared_ptr<Channel> channel;
};

/// Caller's side, guarded by the engine's lock.
struct ControlState {
    bool playing = false, paused = false;
    std::uint32_t generation = 0;         ///< raised by every start
    std::uint32_t moves = 0;              ///< raised by every set position
    std::uint64_t movedTo = 0;            ///< frame
    std::optional<std::uint64_t> readTo;  ///< where a read by hand has come to, unknown to the graph
    float volume = 1, voldsp = 1;         ///< last commanded
    std::uint32_t volumeCommands = 0, voldspCommands = 0;
    bool volumeSlides = false, voldspSlides = false;  ///< the last command was a slide that takes time
    float buffer = 0.5F, tail = 0;
    int voldspPriority = 0;
    bool loop = false;
    std::uint64_t loopStart = 0, end = ~std::uint64_t{0};
    DWORD mixer = 0;  ///< where it sits
    bool freed = false;
    std::vector<std::shared_ptr<Effect>> effects;
    DWORD inputDevice = 0;            ///< of a recording
    std::shared_ptr<Metering> meter;  ///< where it is plugged in
};

/// Written by the audio side, read by everyone.
struct SharedState {
    std::atomic<std::uint32_t> endedGeneration{0};
    std::atomic<std::uint32_t> appliedMoves{0};
    std::atomic<std::uint64_t> heard{0};  ///< frame about to be delivered
    std::atomic<bool> stalled{false};
    std::atomic<float> volume{1}, voldsp{1};
    std::atomic<std::uint32_t> appliedVolume{0}, appliedVoldsp{0};
    std::atomic<bool> volumeSlides{false}, voldspSlides{false};
    std::atomic<bool> dirty{false};  ///< an effect holds sound
};

/// Belongs to whoever renders.
struct AudioState {
    bool playing = false;
    bool orphan = false;  ///< its source was freed
    std::uint32_t generation = 0;
    Channel* parent = nullptr;                     ///< mixer
    int device = -1;                               ///< output it plays on; -1: none
    Channel *previous = nullptr, *next = nullptr;  ///< sounding neighbours in the parent
    Channel* user = nullptr;                       ///< the tempo channel over this one
    Plug* plug = nullptr;
    Chain* chain = nullptr;
    SyncNode* syncs = nullptr;
    std::uint64_t firstSync = SyncNode::kNever;  ///< the lowest frame that a sync waits for
    SyncNode* timed = nullptr;                   ///< the sync whose slide has not begun yet
    bool timedDue = false;                       ///< its frame was passed

    Slide volume, voldsp;
    bool inSlides = false;
    Channel* nextSlide = nullptr;
    std::uint64_t mixBlock = 0;    ///< the last block in which its volume slide went on in the mixer
    std::uint32_t mixDone = 0;     ///< frames of it
    std::uint64_t chainBlock = 0;  ///< the last block in which its VOLDSP slide went on in the chain
    std::uint32_t chainDone = 0;   ///< frames of it
    double voldspRest = 0, volumeRest = 0, tempoRest = 0;
    std::uint64_t tempoBlock = 0;  ///< the last block in which its tempo processor gave sound
    std::uint64_t tempoIdle = 0;   ///< frames that passed since
    bool tempoSlides = false;      ///< the clock of the tempo processor must go on without sound

    std::uint64_t position = 0;              ///< file: next frame; others: frames delivered
    std::uint64_t wrapFrom = 0, wrapTo = 0;  ///< file: the last wrap since it was moved; 0, 0: none
    bool stretched = false;                  ///< tempo: the last frame came from the processor
    bool dry = false;                        ///< waits for a decoder
    std::uint32_t moves = 0;
    double tailSeconds = 0;
    bool inTail = false;
    std::uint64_t tailLeft = 0, tailDone = 0;
    std::uint64_t hubPosition = 0;  ///< split: next frame of the hub
    Channel* first = nullptr;       ///< mixer: sounding inputs
    Channel* last = nullptr;
    std::vector<float> bus;  ///< mixer: its sum, a block
};

struct Channel {
    DWORD handle = 0;
    Kind kind = Kind::File;
    DWORD flags = 0;  ///< as created
    bool decoding = false;
    std::uint32_t rate = 44100, channels = 2, bits = 0;
    std::uint64_t serial = 0;         ///< age: lower is older
    int device = -1;                  ///< a playing channel's output
    std::shared_ptr<Channel> source;  ///< tempo: what it stretches
    bool freeSource = false;
    std::shared_ptr<PagedSound> sound;      ///< file, module
    std::shared_ptr<LiveInput> live;        ///< web stream, recording
    std::shared_ptr<TempoProcessor> tempo;  ///< tempo over a file; null: passes through
    std::shared_ptr<SplitHub> hub;          ///< split

    ControlState control;
    SharedState shared;
    AudioState audio;

    ~Channel();
    std::uint32_t sampleBytes() const { return (flags & BASS_SAMPLE_FLOAT) != 0 ? 4 : 2; }
    /// A bus never stops. It counts as sounding when an input does.
    bool isBus() const { return kind == Kind::Mixer || kind == Kind::Split; }
    std::uint32_t frameBytes() const { return channels * sampleBytes(); }
    /// The channel whose position this one speaks of: a tempo channel's source, else itself.
    Channel& root() { return kind == Kind::Tempo && source ? source->root() : *this; }
};

}  // namespace zv::engine
