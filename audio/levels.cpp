#include "audio/levels.h"

#include <algorithm>
#include <array>

#include "audio/devices.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "startup/settings.h"

namespace zv {

namespace {

constexpr float kWindowSeconds = 0.04F;

struct Pair {
    int left = 0, right = 0;
    void raise(const Pair& by) {
        left = std::max(left, by.left);
        right = std::max(right, by.right);
    }
};

/// Levels of a sounding channel in units of the bar; silence for one that does not sound.
Pair levelOf(DWORD channel) {
    if (channel == 0 || BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED) {
        return {};
    }
    float levels[2] = {0, 0};
    const DWORD flags = (settings.VuRMS != 0 ? BASS_LEVEL_RMS : 0) | BASS_LEVEL_STEREO | BASS_LEVEL_VOLPAN;
    const bool heard = settings.DeviceSingle != 0
                           ? BASS_ChannelGetLevelEx(channel, levels, kWindowSeconds, flags)
                           : BASS_Mixer_ChannelGetLevelEx(channel, levels, kWindowSeconds, flags);
    if (!heard) {
        return {};
    }
    const auto units = [](float level) {
        return static_cast<int>(std::clamp(level, 0.0F, 1.0F) * static_cast<float>(kMeterMax));
    };
    return {units(levels[0]), units(levels[1])};
}

}  // namespace

std::array<int, 6> GetLevels() {
    Pair duck;
    Pair meter;
    int trigger = 0;
    for (const int i : LiveJingles()) {
        const JingleRecord& j = Jingle(i);
        if (j.hPlay == 0 || !(j.Playing || BASS_ChannelIsActive(j.hPlay) != BASS_ACTIVE_STOPPED)) {
            continue;
        }
        const Pair level = levelOf(j.hPlay);
        meter.raise(level);
        if (j.NoTrigDuck == 0) {
            duck.raise(level);
            if (j.AutoDuck == 0 || j.AutoDuck == 2) {
                trigger = std::max({trigger, level.left, level.right});
            }
        }
    }
    for (const DWORD other : {DWORD{hLive}, DWORD{hTmAnVoice}, DWORD{hTmAn}}) {
        const Pair level = levelOf(other);
        meter.raise(level);
        trigger = std::max({trigger, level.left, level.right});
        if (other != DWORD{hLive}) {
            duck.raise(level);
        }
    }
    return {duck.left, duck.right, meter.left, meter.right, trigger, 0};
}

}  // namespace zv
