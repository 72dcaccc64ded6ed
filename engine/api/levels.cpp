// Of engine/bass.h: levels, from "channels" and from "mixers and splits".
#include <algorithm>
#include <cmath>

#include "engine/api/engine.h"

using namespace zv::engine;

namespace {

constexpr float kLoudest = 1e15F;  ///< of a level: its square is still a number

dsp::StereoLevel fromPages(Channel& channel, const Trail& trail, double seconds, bool rms) {
    const Channel& root = channel.root();
    const auto window = static_cast<std::uint64_t>(std::ceil(seconds * root.rate));
    std::array<Trail::Run, Trail::kRuns> runs;
    const std::size_t count = trail.last(window, runs);
    float peak[2]{};
    double power[2]{};
    for (std::size_t i = 0; i < count; ++i)
        root.sound->measure(runs[i].from, runs[i].to - runs[i].from, runs[i].gain, peak, power);
    if (!rms) return {peak[0], peak[1]};
    // Of a very short loop the trail holds fewer frames than the window: the level is that of the frames held.
    std::uint64_t held = 0;
    for (std::size_t i = 0; i < count; ++i) held += runs[i].to - runs[i].from;
    const auto frames = static_cast<double>(count == Trail::kRuns ? held : window);
    return {static_cast<float>(std::sqrt(power[0] / frames)),
            static_cast<float>(std::sqrt(power[1] / frames))};
}

bool level(Engine& engine, Channel& channel, float* levels, float seconds, DWORD flags) {
    constexpr float longest = 1;
    if (!levels || !(seconds > 0) || seconds > longest) return fail(BASS_ERROR_ILLPARAM, false);
    dsp::StereoLevel found;
    if (engine.active(channel) && channel.control.meter) {
        const Metering& meter = *channel.control.meter;
        const bool rms = (flags & BASS_LEVEL_RMS) != 0;
        if (meter.trails.load(std::memory_order_relaxed)) {
            found = fromPages(channel, meter.trail, seconds, rms);
        } else {
            found = rms ? meter.meter.rms(seconds) : meter.meter.peak(seconds);
        }
    }
    if ((flags & BASS_LEVEL_VOLPAN) != 0) {
        const float volume = channel.shared.volume.load(std::memory_order_relaxed);
        found.left *= volume;
        found.right *= volume;
    }
    for (float* side : {&found.left, &found.right})
        if (!(*side <= kLoudest)) *side = kLoudest;
    if ((flags & BASS_LEVEL_STEREO) != 0) {
        levels[0] = found.left;
        levels[1] = found.right;
    } else if ((flags & BASS_LEVEL_RMS) != 0) {
        levels[0] = std::sqrt((found.left * found.left + found.right * found.right) / 2);
    } else {
        levels[0] = std::max(found.left, found.right);
    }
    return succeed(true);
}

}  // namespace

extern "C" {

bool BASS_ChannelGetLevelEx(DWORD handle, float* levels, float seconds, DWORD flags) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel) return fail(BASS_ERROR_HANDLE, false);
    if (channel->decoding && channel->control.mixer == 0) return fail(BASS_ERROR_NOTAVAIL, false);
    return level(call.engine, *channel, levels, seconds, flags);
}

bool BASS_Mixer_ChannelGetLevelEx(DWORD handle, float* levels, float seconds, DWORD flags) {
    const Call call;
    const auto channel = call.engine.find(handle);
    if (!channel || channel->control.mixer == 0) return fail(BASS_ERROR_HANDLE, false);
    return level(call.engine, *channel, levels, seconds, flags);
}

}  // extern "C"
