#include "audio/device_levels.h"

#include <algorithm>
#include <cstddef>

#include "audio/devices.h"
#include "audio/levels.h"
#include "engine/bass.h"

namespace zv {

namespace {

constexpr float kWindowSeconds = 0.04F;

int percent(const float (&levels)[2]) {
    return static_cast<int>(std::clamp(std::max(levels[0], levels[1]), 0.0F, 1.0F) * kMeterMax);
}

}  // namespace

int OutputLevel(int output) {
    const StreamHandle split = OutSplit[static_cast<std::size_t>(output)];
    float levels[2] = {0, 0};
    if (split == 0 || !BASS_ChannelGetLevelEx(split, levels, kWindowSeconds, BASS_LEVEL_STEREO)) return 0;
    return percent(levels);
}

int InputLevel() {
    float levels[2] = {0, 0};
    if (hMic == 0 || !BASS_Mixer_ChannelGetLevelEx(hMic, levels, kWindowSeconds, BASS_LEVEL_STEREO)) return 0;
    return percent(levels);
}

}  // namespace zv
