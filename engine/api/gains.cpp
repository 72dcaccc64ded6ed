#include "engine/api/gains.h"

namespace zv::engine {

void sendVolume(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic,
                bool stops) {
    ControlState& c = channel.control;
    ++c.volumeCommands;
    c.volumeSlides = ms != 0;
    if (ms == 0) {
        c.volume = value;
        if (stops) c.playing = c.paused = false;
    } else {
        // Until the slide has begun the caller sees where it will begin.
        const bool heard =
            channel.shared.appliedVolume.load(std::memory_order_acquire) + 1 == c.volumeCommands;
        if (heard) c.volume = channel.shared.volume.load(std::memory_order_relaxed);
    }
    engine.send({.kind = CommandKind::Volume,
                 .flags = (logarithmic ? kSlideLog : 0) | (stops ? kSlideStops : 0),
                 .value = value,
                 .ms = ms,
                 .channel = &channel,
                 .b = c.volumeCommands});
}

void sendVoldsp(Engine& engine, Channel& channel, float value, std::uint32_t ms, bool logarithmic) {
    ControlState& c = channel.control;
    ++c.voldspCommands;
    c.voldspSlides = ms != 0;
    if (ms == 0) {
        c.voldsp = value;
    } else if (channel.shared.appliedVoldsp.load(std::memory_order_acquire) + 1 == c.voldspCommands) {
        c.voldsp = channel.shared.voldsp.load(std::memory_order_relaxed);
    }
    engine.send({.kind = CommandKind::Voldsp,
                 .flags = logarithmic ? kSlideLog : 0,
                 .value = value,
                 .ms = ms,
                 .channel = &channel,
                 .b = c.voldspCommands});
}

}  // namespace zv::engine
