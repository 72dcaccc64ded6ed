// The state machine of a jingle.
#include "audio/play.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "audio/automix.h"
#include "audio/devices.h"
#include "audio/streams.h"
#include "audio/upcalls.h"
#include "audio/waiting_press.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/slot_index.h"
#include "model/state.h"
#include "platform/clock.h"
#include "platform/sound.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/upcalls.h"

namespace zv {

Shared<std::int32_t> TmAnFadeOut = 0;
Shared<std::int32_t> TmAnFadeAttrib = 2;

namespace {

constexpr int kFullVelocity = 127;
constexpr float kStopAtEnd = -1;     // of a slide: to silence, then stop
constexpr float kTailPriority = 50;  // the direct sound is cut before the reverb
constexpr double kMsPerSecond = 1000;

/// The sync at the stop position of each jingle. A new start removes the old one, which may not have fired.
std::array<HSYNC, kJingles> stopPosSyncs{};

bool plays(const JingleRecord& j) { return BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_PLAYING; }
bool modifierHeld() { return CtrlDown || ShiftDown || AltDown; }

DWORD ms(std::int32_t value) { return static_cast<DWORD>(std::max(0, value)); }

void fadeAndStop(JingleRecord& j, DWORD length) {
    j.Leaving = true;
    BASS_ChannelSlideAttribute(j.hPlay, static_cast<DWORD>(j.FadeAttrib), kStopAtEnd, length);
}

void trace(int index, const char* what) {
    const WallTime now = wallTime();
    char line[96];
    std::snprintf(line, sizeof line, "%d%s%02d:%02d:%02d.%03d", index, what, now.hour, now.minute, now.second,
                  now.millisecond);
    ConsoleAdd(line);
}

void setLoops(const JingleRecord& j) {
    if (j.Loop == 0 && j.Seq == 0) {
        BASS_ChannelFlags(j.hSrc, 0, BASS_SAMPLE_LOOP);
        BASS_ChannelSetPosition(j.hSrc, BASS_NO_POSITION, BASS_POS_END);
        return;
    }
    BASS_ChannelFlags(j.hSrc, BASS_SAMPLE_LOOP, BASS_SAMPLE_LOOP);
    if (j.Loop != 0) {
        BASS_ChannelSetPosition(j.hSrc, 0, BASS_POS_LOOP);
        BASS_ChannelSetPosition(j.hSrc, BASS_ChannelGetLength(j.hSrc, BASS_POS_BYTE), BASS_POS_END);
    }
    if (j.Seq != 0) {
        BASS_ChannelSetPosition(j.hSrc, BytePosition(j.LoopIn), BASS_POS_LOOP);
        BASS_ChannelSetPosition(j.hSrc, BytePosition(j.LoopOut), BASS_POS_END);
    }
}

/// Starts from rest, or again: sets all sound parameters, then plays, then traces and updates the window.
void start(int index, int velocity) {
    JingleRecord& j = Jingle(index);
    if (LockRefuses(index)) return;
    j.Playing = true;
    j.Leaving = false;
    setLoops(j);
    BASS_ChannelSetPosition(j.hPlay, BytePosition(StartPosition(index)), BASS_POS_BYTE);
    BASS_ChannelSlideAttribute(j.hPlay, BASS_ATTRIB_VOL, static_cast<float>(velocity) / kFullVelocity,
                               ClickFadeMs);
    BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_VOLDSP, 1);
    if (j.FadeSync != 0) {
        BASS_ChannelRemoveSync(j.hPlay, j.FadeSync);
        j.FadeSync = 0;
    }
    BASS_ChannelPlay(j.hPlay, false);
    ArmStopSync(index);
    trace(index, " clPlay ");
    if (StartIgnored(index)) callUp(audioUpcalls.startIgnored, index);
    callUp(audioUpcalls.playStarting, index);
    if (BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_STOPPED) {
        Error_("Can't play jingle stream from the main button palette");
        j.State = PlayState::idle;
        j.Playing = false;
        return;
    }
    callUp(audioUpcalls.playStarted, index);
    j.State = PlayState::playing;
}

void pressInSequence(int index) {
    JingleRecord& j = Jingle(index);
    if (j.LoopFadeOut == 0) {
        BASS_ChannelSetPosition(j.hSrc, BASS_ChannelGetLength(j.hSrc, BASS_POS_BYTE), BASS_POS_END);
        BASS_ChannelFlags(j.hSrc, 0, BASS_SAMPLE_LOOP);
        callUp(audioUpcalls.loopLeft, index);
    }
    const auto position = static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE));
    switch (j.State) {
        case PlayState::playing:
            if (position < j.LoopIn || (position > j.LoopIn && j.LoopFadeOut != 0)) {
                fadeAndStop(j, ms(j.FadeOut));
                j.State = PlayState::stopping;
            } else if (position > j.LoopIn) {
                j.State = PlayState::leavingLoop;
            }
            break;
        case PlayState::leavingLoop:
            fadeAndStop(j, ms(j.FadeOut));
            j.State = PlayState::stopping;
            break;
        case PlayState::stopping:
            fadeAndStop(j, 0);
            j.State = PlayState::idle;
            break;
        case PlayState::idle:
            break;
    }
}

/// End position of a reverb tail that begins now. Where the loop would wrap before it, the loop is turned off:
/// the channel then ends by itself instead of playing on in silence.
QWORD tailEnd(const JingleRecord& j) {
    const QWORD now = BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE);
    const QWORD end = now + BASS_ChannelSeconds2Bytes(j.hPlay, j.ReverbMs / kMsPerSecond);
    const QWORD wrapsAt = j.Seq != 0 ? BytePosition(j.LoopOut) : BASS_ChannelGetLength(j.hSrc, BASS_POS_BYTE);
    if (end >= wrapsAt) BASS_ChannelFlags(j.hSrc, 0, BASS_SAMPLE_LOOP);
    return end;
}

void restart(int index, int velocity) {
    JingleRecord& j = Jingle(index);
    BASS_ChannelSlideAttribute(j.hPlay, BASS_ATTRIB_VOLDSP, 0, ClickFadeMs);
    sleepMs(ClickFadeMs + 10);
    BASS_ChannelStop(j.hPlay);
    start(index, velocity);
}

void pressWhilePlaying(int index, int velocity) {
    JingleRecord& j = Jingle(index);
    if (modifierHeld()) return;
    if (j.Seq != 0) {
        pressInSequence(index);
        return;
    }
    const bool global = j.PlayMod == PlayMode::global;
    if (j.PlayMod == PlayMode::autoRepeat || (global && ToggleAutoRep == 1)) {
        restart(index, velocity);
    } else if (j.PlayMod == PlayMode::touch || (global && ToggleTouch == 1)) {
        // BASS_FXReset goes to the record that the display's tick visited last (DispLoopIdx), not to this one:
        // this jingle's tail rings on into its new start.
        if (j.State == PlayState::stopping && IsSlot(DispLoopIdx)) BASS_FXReset(Jingle(DispLoopIdx).hPlay);
        start(index, velocity);
    } else if (global || j.PlayMod == PlayMode::playStop) {
        if (j.State == PlayState::stopping) {
            BASS_ChannelStop(j.hPlay);
            j.State = PlayState::idle;
            j.Playing = false;
        } else {
            clTouchStop(index);
            j.State = PlayState::stopping;
        }
    }
}

}  // namespace

void ArmStopSync(int index) {
    const JingleRecord& j = Jingle(index);
    HSYNC& stopPosSync = stopPosSyncs[static_cast<std::size_t>(index)];
    if (stopPosSync != 0) BASS_ChannelRemoveSync(j.hPlay, stopPosSync);
    stopPosSync = j.StopPos == 0 ? 0
                                 : BASS_ChannelSetSync(j.hPlay, BASS_SYNC_POS | BASS_SYNC_ONETIME,
                                                       BytePosition(j.StopPos), &FadeOutSync, nullptr);
    // The fade begins with the frame itself; the procedure hears of it a moment later.
    const auto* engine = engine::audioLibraryControl();
    if (stopPosSync != 0 && engine != nullptr)
        engine->slideAtSync(j.hPlay, stopPosSync, kStopAtEnd, ms(j.FadeOut),
                            (j.FadeAttrib & BASS_SLIDE_LOG) != 0);
}

void clPlay(int index, int velocity) {
    guarded("modClick.clPlay", [&] {
        if (!IsSlot(index)) return;
        LastPlayedJ = index;
        if (MIDILearnActive) return;
        if (velocity < 0 || velocity > kFullVelocity) velocity = kFullVelocity;
        if (SlotOpening(index) && Jingle(index).hPlay == 0) {
            KeepWaitingPress(index, velocity);
            HurrySlot(index);
            callUp(audioUpcalls.slotWaits, index);
            return;
        }
        if (automixSettings.AutoMix == kAutomixCrossfade) FadeOthers(index);
        if (Jingle(index).hPlay == 0) return;
        if (minimalSettings.MinimalView == 1 && ClockShown) callUp(audioUpcalls.hideClock);
        if (plays(Jingle(index)))
            pressWhilePlaying(index, velocity);
        else
            start(index, velocity);
    });
}

void clTouchStop(int index) {
    guarded("modClick.clTouchStop", [&] {
        if (!IsSlot(index) || TakeWaitingPress(index)) return;
        JingleRecord& j = Jingle(index);
        if (!SelectorsOn) callUp(audioUpcalls.feedback, index, Feedback::stopping);
        trace(index, " clTouchStop ");
        j.State = PlayState::stopping;
        if (j.FadeOut < j.ReverbMs) {
            BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_VOLDSP_PRIORITY, kTailPriority);
            BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_VOLDSP, 0);
            if (j.FadeSync != 0) BASS_ChannelRemoveSync(j.hPlay, j.FadeSync);
            j.FadeSync = BASS_ChannelSetSync(j.hPlay, BASS_SYNC_POS | BASS_SYNC_ONETIME, tailEnd(j),
                                             &StopSync, nullptr);
            trace(index, " StopSync ");
        } else {
            fadeAndStop(j, ms(j.FadeOut));
            trace(index, " FadeOut ");
        }
        j.Playing = false;
    });
}

void evStop() {
    guarded("modClick.evStop", [] {
        if (MIDILearnActive) return;
        LastCtrl = "evStop";
        DropWaitingPresses();
        for (const int i : LiveJingles())
            if (Jingle(i).hPlay != 0) BASS_ChannelStop(Jingle(i).hPlay);
        callUp(audioUpcalls.stopAnnouncer);
        callUp(audioUpcalls.stopStream);
    });
}

void FadeOutSync(HSYNC, DWORD channel, DWORD begun, void*) {
    const int index = FindJingle(channel);
    if (index == kNotFound) return;
    if (begun != 0) {
        Jingle(index).Leaving = true;
        return;
    }
    fadeAndStop(Jingle(index), ms(Jingle(index).FadeOut));
}

void StopSync(HSYNC, DWORD channel, DWORD, void*) {
    const int index = FindJingle(channel);
    if (index == kNotFound) return;
    BASS_ChannelStop(channel);
    Jingle(index).Playing = false;
}

void FadeOutSynctmJn(HSYNC, DWORD, DWORD begun, void*) {
    if (begun != 0) return;
    BASS_ChannelSlideAttribute(hTmAn, static_cast<DWORD>(TmAnFadeAttrib), kStopAtEnd, ms(TmAnFadeOut));
}

}  // namespace zv
