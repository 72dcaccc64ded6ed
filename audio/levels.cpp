#include "audio/levels.h"

#include <algorithm>
#include <array>

#include "audio/devices.h"
#include "audio/sounding.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/meters_settings.h"

namespace zv {

namespace {

constexpr float kWindowSeconds = 0.04F;

struct Pair {
    float left = 0, right = 0;
    void raise(const Pair& by) {
        left = std::max(left, by.left);
        right = std::max(right, by.right);
    }
    float loudest() const { return std::max(left, right); }
};

int units(float level) {
    return static_cast<int>(std::clamp(level, 0.0F, 1.0F) * static_cast<float>(kMeterMax));
}

/// Whether a jingle may push others down.
bool mayTrigger(const JingleRecord& j) { return j.NoTrigDuck == 0 && (j.AutoDuck == 0 || j.AutoDuck == 2); }

/// Levels of a sounding channel; silence for one that does not sound.
Pair levelOf(DWORD channel) {
    if (channel == 0 || BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED) {
        return {};
    }
    float levels[2] = {0, 0};
    const DWORD flags =
        (meterSettings.VuRMS != 0 ? BASS_LEVEL_RMS : 0) | BASS_LEVEL_STEREO | BASS_LEVEL_VOLPAN;
    const bool heard = deviceSettings.DeviceSingle != 0
                           ? BASS_ChannelGetLevelEx(channel, levels, kWindowSeconds, flags)
                           : BASS_Mixer_ChannelGetLevelEx(channel, levels, kWindowSeconds, flags);
    return heard ? Pair{levels[0], levels[1]} : Pair{};
}

}  // namespace

std::array<float, 2> LoudestLevel{};
int LoudestTrigger = kNobody;

std::array<int, 6> GetLevels() {
    Pair duck;
    Pair meter;
    float trigger = 0;
    LoudestTrigger = kNobody;
    const auto triggers = [&](float level, int who) {
        if (level <= trigger) return;
        trigger = level;
        LoudestTrigger = who;
    };
    for (const int i : LiveJingles()) {
        const JingleRecord& j = Jingle(i);
        if (!Sounds(i)) continue;
        const Pair level = levelOf(j.hPlay);
        meter.raise(level);
        if (j.NoTrigDuck == 0) duck.raise(level);
        if (mayTrigger(j)) triggers(level.loudest(), i);
    }
    for (const DWORD voice : {DWORD{hTmAnVoice}, DWORD{hTmAn}}) {
        const Pair level = levelOf(voice);
        meter.raise(level);
        duck.raise(level);
        triggers(level.loudest(), kAnnouncer);
    }
    const Pair live = levelOf(hLive);
    meter.raise(live);
    if (liveSettings.LiveAutoDuck == 0) triggers(live.loudest(), kLiveStream);
    LoudestLevel = {meter.left, meter.right};
    return {units(duck.left), units(duck.right), units(meter.left), units(meter.right), units(trigger), 0};
}

}  // namespace zv
