#include "audio/edit_sound.h"

#include <algorithm>

#include "audio/play.h"
#include "audio/sounding.h"
#include "audio/streams.h"
#include "audio/upcalls.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/clock.h"
#include "startup/upcalls.h"

namespace zv {
namespace {

constexpr float kSecondsPerMs = 0.001F;
constexpr int kFadeRestMs = 10;                      ///< after ClickFadeMs, until it is surely silent
constexpr double kBeforeEnd = 0.5, kBeforeTurn = 1;  // seconds

std::size_t slot(int index) { return static_cast<std::size_t>(index); }

void fadeQuickly(const JingleRecord& j) {
    BASS_ChannelSlideAttribute(j.hPlay, BASS_ATTRIB_VOL, 0, ClickFadeMs);
    sleepMs(ClickFadeMs + kFadeRestMs);
    BASS_ChannelStop(j.hPlay);
}

void wholeSound(const JingleRecord& j) {
    BASS_ChannelSetPosition(j.hSrc, 0, BASS_POS_LOOP);
    BASS_ChannelSetPosition(j.hSrc, BASS_NO_POSITION, BASS_POS_END);
}

void loopRange(const JingleRecord& j) {
    BASS_ChannelSetPosition(j.hSrc, BytePosition(j.LoopIn), BASS_POS_LOOP);
    BASS_ChannelSetPosition(j.hSrc, BytePosition(j.LoopOut), BASS_POS_END);
}

}  // namespace

void EditBand(int index, int band, double gain) { UpdateFX(JEqFx[slot(index)], band, gain); }

void EditReverb(int index, double ms) {
    JingleRecord& j = Jingle(index);
    j.ReverbMs = static_cast<std::int32_t>(ms);
    UpdateReverb(JReverbFx[slot(index)], ms);
    BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_TAIL, static_cast<float>(ms) * kSecondsPerMs);
}

void EditTempo(int index, TempoPart part, double value) { UpdateTempo(Jingle(index).hPlay, part, value); }

void EditVolume(int index, int percent) {
    Jingle(index).Volm = percent;
    SetVolFx(JVolFx[slot(index)], percent);
}

SoundLength EditLength(int index) { return SoundLengthOf(Jingle(index).hSrc); }

double EditBytes(int index, double seconds) {
    const QWORD bytes = BASS_ChannelSeconds2Bytes(Jingle(index).hSrc, std::max(0.0, seconds));
    return bytes == BASS_NO_POSITION ? 0 : static_cast<double>(bytes);
}

double EditSeconds(int index, double bytes) {
    return std::max(0.0, BASS_ChannelBytes2Seconds(Jingle(index).hSrc, BytePosition(bytes)));
}

double EditPosition(int index) {
    const QWORD position = BASS_ChannelGetPosition(Jingle(index).hPlay, BASS_POS_BYTE);
    return position == BASS_NO_POSITION ? 0 : static_cast<double>(position);
}

void EditSeek(int index, double position) {
    BASS_ChannelSetPosition(Jingle(index).hPlay, BytePosition(position), BASS_POS_BYTE);
}

void EditLoop(int index) {
    const JingleRecord& j = Jingle(index);
    const bool inLoop = (BASS_ChannelFlags(j.hSrc, 0, 0) & BASS_SAMPLE_LOOP) != 0;
    if (inLoop && j.Loop == 0) loopRange(j);
}

void EditAtOnce(int index) { BASS_ChannelSetAttribute(Jingle(index).hPlay, BASS_ATTRIB_BUFFER, 0); }

bool ListenTo(int index, ListenFrom from) {
    JingleRecord& j = Jingle(index);
    if (j.hPlay == 0) return false;
    if (Sounds(index)) fadeQuickly(j);
    const bool inLoop = from == ListenFrom::loopIn || from == ListenFrom::loopsTurn || j.Seq != 0;
    BASS_ChannelFlags(j.hSrc, inLoop || j.Loop != 0 ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
    if (inLoop) {
        loopRange(j);
    } else {
        wholeSound(j);
    }
    BASS_FXReset(j.hPlay);
    const SoundLength sound = EditLength(index);
    const double places[] = {j.CueStart,
                             (j.StopPos == 0 ? sound.length : j.StopPos) - EditBytes(index, kBeforeEnd),
                             j.LoopIn, j.LoopOut - EditBytes(index, kBeforeTurn)};
    EditSeek(index, std::max(0.0, places[static_cast<std::size_t>(from)]));
    j.Leaving = false;
    BASS_ChannelSlideAttribute(j.hPlay, BASS_ATTRIB_VOL, 1, 0);
    BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_VOLDSP, 1);
    BASS_ChannelPlay(j.hPlay, false);
    ArmStopSync(index);
    const bool started = BASS_ChannelIsActive(j.hPlay) != BASS_ACTIVE_STOPPED;
    j.Playing = started;
    j.State = started ? PlayState::playing : PlayState::idle;
    if (started) {
        callUp(audioUpcalls.playStarting, index);
        callUp(audioUpcalls.playStarted, index);
    }
    return started;
}

void ListenEnd(int index) {
    JingleRecord& j = Jingle(index);
    fadeQuickly(j);
    j.Playing = false;
    j.State = PlayState::idle;
}

void EditDone(int index) {
    JingleRecord& j = Jingle(index);
    if (!Sounds(index)) {
        EditSeek(index, j.CueStart);
        BASS_ChannelSlideAttribute(j.hPlay, BASS_ATTRIB_VOL, 1, 0);
    }
    if (j.Seq == 0) {
        BASS_ChannelFlags(j.hSrc, j.Loop != 0 ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
        wholeSound(j);
    }
    EditAtOnce(index);
}

void EditReopen(int index) {
    if (Sounds(index)) return;
    Jingle(index).Kind = SlotKind::nothing;
    openStreams(index);
}

}  // namespace zv
