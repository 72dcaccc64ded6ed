#include "audio/sounding.h"

#include <cmath>
#include <cstdint>

#include "audio/streams.h"
#include "engine/bass.h"
#include "model/after_sound.h"
#include "model/held_palette.h"
#include "model/jingle.h"
#include "startup/stores.h"

namespace zv {

namespace {

constexpr double kSpent = 0.1;  // s: less than this counts as at its end

double hundredths(double seconds) { return std::floor(seconds * 100 + 0.5) / 100; }

}  // namespace

bool Sounds(int index) {
    const std::uint32_t channel = Jingle(index).hPlay;
    return channel != 0 && BASS_ChannelIsActive(channel) != BASS_ACTIVE_STOPPED;
}

bool Plays(int index) {
    const std::uint32_t channel = Jingle(index).hPlay;
    return channel != 0 && BASS_ChannelIsActive(channel) == BASS_ACTIVE_PLAYING;
}

double TimeLeftOf(std::uint32_t channel) {
    if (channel == 0 || BASS_ChannelIsActive(channel) == BASS_ACTIVE_STOPPED) return 0;
    const QWORD length = BASS_ChannelGetLength(channel, BASS_POS_BYTE);
    const QWORD position = BASS_ChannelGetPosition(channel, BASS_POS_BYTE);
    if (length == BASS_NO_POSITION || position >= length) return 0;
    const double left = hundredths(BASS_ChannelBytes2Seconds(channel, length - position));
    return left < kSpent ? 0 : left;
}

PlayTime PlayTimeOf(int index) {
    const JingleRecord& j = Jingle(index);
    const auto length = static_cast<double>(BASS_ChannelGetLength(j.hPlay, BASS_POS_BYTE));
    const auto position = static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE));
    const auto seconds = [&](double bytes) {
        return BASS_ChannelBytes2Seconds(j.hPlay, BytePosition(bytes));
    };
    PlayTime time;
    time.duration = seconds(length - StartPosition(index) - j.EndOffset);
    time.left = hundredths(seconds(length - position - j.EndOffset));
    if (time.left < kSpent) time.left = 0;
    return time;
}

bool InLoop(int index) {
    const JingleRecord& j = Jingle(index);
    const auto at = static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE));
    return at >= j.LoopIn && at <= j.LoopOut;
}

void PlayEnded(int index) {
    JingleRecord& j = Jingle(index);
    j.State = PlayState::idle;
    j.Playing = false;
    j.Leaving = false;
    if (j.hPlay != 0) BASS_FXReset(j.hPlay);
    if (!j.PlayingOtherPal) return;
    j.PlayingOtherPal = false;
    if (const PersistedJingle* next = AfterSound(index)) {
        FillSlot(index, PersistedJingle(*next));
        return;
    }
    const bool hot = index >= kPaletteSlots;
    openNames(index, hot ? kHotSection : ComingPalette(), hot);
    openStreams(index);
}

}  // namespace zv
