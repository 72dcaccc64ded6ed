#include "model/jingle.h"

#include <algorithm>

#include "engine/bass.h"
#include "startup/settings/grid_settings.h"

namespace zv {

std::array<JingleRecord, kJingles> J;
std::array<std::uint8_t, kJingles> JExists{};
std::array<std::uint32_t, kJingles> JReverbFx{}, JVolFx{}, JEqFx{};
int LastPalIdx = 29;

int FindJingle(std::uint32_t channel) {
    if (channel == 0) return kNotFound;
    for (int i = 0; i < kJingles; ++i)
        if (Jingle(i).hPlay == channel) return i;
    return kNotFound;
}

std::int32_t FadeAttribOf(const PersistedJingle& jingle) {
    return static_cast<std::int32_t>(jingle.LogFadeOut == 1 ? BASS_ATTRIB_VOL | BASS_SLIDE_LOG
                                                            : BASS_ATTRIB_VOL);
}

std::uint64_t BytePosition(double position) {
    constexpr double kBeyondAll = 9007199254740992.0;  // 2^53
    if (!(position > 0)) return 0;
    return static_cast<std::uint64_t>(std::min(position, kBeyondAll));
}

int LastLiveIdx() { return kPaletteSlots - 1 + 2 * gridSettings.JinglesCols; }

bool IsLive(int index) {
    if (index < 0 || index > LastLiveIdx()) return false;
    return index <= LastPalIdx || index >= kPaletteSlots;
}

}  // namespace zv
