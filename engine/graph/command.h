/// What callers tell the audio side: small, trivially copyable, obeyed in the order of the calls.
#pragma once

#include <cstdint>

#include "engine/realtime/trash.h"

namespace zv::engine {

struct Channel;
struct Effect;

enum class CommandKind : std::uint8_t {
    Play,         ///< a: generation
    Stop,         ///< reserved room
    Move,         ///< a: frame, b: number of the move
    Volume,       ///< value, ms, flags, b: number of the command
    Voldsp,       ///< the same
    TempoSlides,  ///< its tempo processor has a slide to go
    Tail,         ///< value: seconds
    SetChain,     ///< object: Chain
    AddToMixer,   ///< other: mixer, object: Plug, b: generation, kBegins: it sounds
    Unplug,       ///< out of its mixer
    ToDevice,     ///< a: device, object: Plug
    Free,         ///< object: ChannelKeeper
    Orphan,       ///< its source was freed
    User,         ///< other: the tempo channel over it
    AddSync,      ///< object: SyncNode
    RemoveSync,   ///< a: handle, 0 for all
    SlideAtSync,  ///< a: handle; value, ms, flags: a slide of VOL that begins with the frame of the sync
    EqBand,       ///< effect; a: band, value: dB, x: Hz, y: octaves, z: q
    Reverb,       ///< effect; value: in gain, x: mix, y: ms, z: ratio
    FxGain,       ///< effect; value
    ResetFx,      ///< effect, or all of the channel
};

inline constexpr std::uint32_t kSlideLog = 1, kSlideStops = 2, kBegins = 4;  ///< flags

struct Command {
    CommandKind kind = CommandKind::Stop;
    std::uint32_t flags = 0;
    float value = 0;
    std::uint32_t ms = 0;
    Channel* channel = nullptr;
    Channel* other = nullptr;
    Effect* effect = nullptr;
    Garbage* object = nullptr;
    std::uint64_t a = 0, b = 0;
    double x = 0, y = 0, z = 0;
};

}  // namespace zv::engine
