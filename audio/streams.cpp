// Slots are opened here: names first, then sounds.
#include "audio/streams.h"

#include <algorithm>
#include <array>
#include <optional>
#include <stdexcept>
#include <string>

#include "audio/devices.h"
#include "audio/effects.h"
#include "audio/source_file.h"
#include "audio/upcalls.h"
#include "audio/waiting_press.h"
#include "engine/bass.h"
#include "model/after_sound.h"
#include "model/jingle.h"
#include "model/palette_lines.h"
#include "model/slot_index.h"
#include "model/slot_keys.h"
#include "model/state.h"
#include "platform/jobs.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings/devices_settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

AudioUpcalls audioUpcalls;

namespace {

constexpr double kEqBandwidth = 2.5;  // octaves
constexpr double kLongJingle = 120;   // s: longer ones duck the others unless told otherwise
constexpr int kReverbPriority = 10;
constexpr int kVolumePriority = 20;
constexpr float kSecondsPerMs = 0.001F;

/// A channel that must not be taken away: it plays, or waits for data.
bool sounds(std::uint32_t channel) {
    const DWORD active = BASS_ChannelIsActive(channel);
    return active == BASS_ACTIVE_PLAYING || active == BASS_ACTIVE_STALLED;
}
bool exists(int index) { return IsSlot(index) && JExists[static_cast<std::size_t>(index)] == 1; }

/// What a worker found where a slot's file should be.
struct Opening {
    SourceFile source;
    bool missing = false;
};

std::array<Job, kJingles> openings;

double lengthOf(std::uint32_t channel) {
    const QWORD length = channel == 0 ? BASS_NO_POSITION : BASS_ChannelGetLength(channel, BASS_POS_BYTE);
    return length == BASS_NO_POSITION ? 0 : static_cast<double>(length);
}

/// The record shows a slot that cannot play; what the file says of its volume and loops is kept for the next
/// save.
void openFailed(int index, int error) {
    if (error == BASS_OK) return;  // no sound in it, but nothing wrong either
    JingleRecord& j = Jingle(index);
    j.BassErr = static_cast<std::int16_t>(error);
    if (error != BASS_ERROR_FILEOPEN && !j.MissingFile) j.Unplayable = true;
    if (!j.KeepsStored) {
        j.KeepsStored = true;
        j.StoredVolm = j.Volm;
        j.StoredLoop = j.Loop;
        j.StoredSeq = j.Seq;
    }
    j.Freq = 0;  // a vector in the file must not pass for the neutral one of another sound
    j.Duration = j.EndOffset = 0;
    j.Volm = 100;
    j.Loop = 0;
    j.Seq = 0;
    callUp(audioUpcalls.slotFailed, index);
    callUp(audioUpcalls.feedback, index, Feedback::failed);
}

/// A long jingle ducks the others unless something was chosen for it.
void chooseAutoDuck(JingleRecord& j) {
    if (j.AutoDuckKey.empty() && j.AutoDuck == 0 && j.Duration > kLongJingle) j.AutoDuck = 1;
    if (j.AutoDuck == 1) j.NoTrigDuck = 1;
}

void attachEffects(int index) {
    JingleRecord& j = Jingle(index);
    const auto slot = static_cast<std::size_t>(index);
    const ReadEffects read = ParseFXV(j.FXV, j.Freq);
    const EffectVector& effects = read.effects;
    // Centres that are missing in the settings must not cost the jingle its other effects.
    guarded("modClick.openStreams", [&] {
        std::array<double, kEqBands> gains{};
        for (int band = 0; band < kEqBands; ++band)
            gains[static_cast<std::size_t>(band)] = effects.gain(band);
        SetDSP_EQ(index, j.hPlay, 0, kEqBandwidth, 0, EqCentres(), gains);
    });
    UpdateTempo(j.hPlay, TempoPart::tempo, effects.tempo);
    UpdateTempo(j.hPlay, TempoPart::rate, effects.rate);
    UpdateTempo(j.hPlay, TempoPart::pitch, effects.pitch);
    j.ReverbMs = static_cast<std::int32_t>(effects.reverbMs);
    JReverbFx[slot] = BASS_ChannelSetFX(j.hPlay, BASS_FX_DX8_REVERB, kReverbPriority);
    UpdateReverb(JReverbFx[slot], j.ReverbMs);
    BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_TAIL, static_cast<float>(j.ReverbMs) * kSecondsPerMs);
    BASS_ChannelSetPosition(j.hPlay, BytePosition(StartPosition(index)), BASS_POS_BYTE);
    JVolFx[slot] = BASS_ChannelSetFX(j.hPlay, BASS_FX_BFX_VOLUME, kVolumePriority);
    SetVolFx(JVolFx[slot], j.Volm);
    if (!read.fault.empty())
        throw std::invalid_argument("Button " + std::to_string(index + 1) + ": " + read.fault);
}

void buildChannel(int index) {
    JingleRecord& j = Jingle(index);
    const bool mix = deviceSettings.DeviceSingle == 0;
    j.hPlay = BASS_FX_TempoCreate(j.hSrc, mix ? BASS_STREAM_DECODE | BASS_FX_FREESOURCE : BASS_FX_FREESOURCE);
    BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_BUFFER, 0);
    BASS_ChannelUpdate(j.hPlay, 0);
    j.EndOffset = EndOffsetCalc(index);
    j.Duration = JDurationCalc(index);
    chooseAutoDuck(j);
    callUp(audioUpcalls.slotLoaded, index);
    guarded("modClick.openStreams", [&] { attachEffects(index); });
    if (mix) {
        // Stopped before it is in the mixer, so that no period can catch it sounding.
        BASS_ChannelStop(j.hPlay);
        BASS_Mixer_StreamAddChannel(MainMixer, j.hPlay, BASS_MIXER_CHAN_BUFFER);
    }
}

/// Asks the disk, however long it takes. [worker]
Opening openFileOf(const std::string& path, bool open) {
    Opening found;
    found.missing = !FileExists(GetFullPath(path));
    if (open) found.source = OpenSourceFile(path);
    return found;
}

/// The slot takes over what was found.
void fillSlot(int index, Opening& found) {
    JingleRecord& j = Jingle(index);
    j.MissingFile = found.missing;
    if (j.MissingFile) callUp(audioUpcalls.fileMissing, index);
    if (sounds(j.hPlay)) return;
    j.hSrc = found.source.take();
    if (j.hSrc == 0) {
        openFailed(index, found.source.error());
        return;
    }
    callUp(audioUpcalls.feedback, index, Feedback::loaded);
    j.Kind = SlotKind::stream;
    if (j.KeepsStored) {  // the file is back
        j.Volm = j.StoredVolm;
        j.Loop = j.StoredLoop;
        j.Seq = j.StoredSeq;
    }
    j.MissingFile = j.Unplayable = j.KeepsStored = false;
    j.BassErr = 0;
    BASS_CHANNELINFO info{};
    BASS_ChannelGetInfo(j.hSrc, &info);
    BASS_ChannelUpdate(j.hSrc, 0);
    if (j.LoopOut == 0) j.LoopOut = lengthOf(j.hSrc);
    j.Freq = static_cast<std::int32_t>(info.freq);
    if (j.FXV.empty()) j.FXV = NeutralFXV(j.Freq);
    buildChannel(index);
}

/// A press that waited for the slot is done now, or told that it cannot be.
void servePress(int index) {
    const std::optional<int> velocity = TakeWaitingPress(index);
    if (!velocity) return;
    if (Jingle(index).hPlay == 0)
        Error_("Can't play jingle stream from the main button palette");
    else
        callUp(audioUpcalls.pressReady, index, *velocity);
}

void openSlot(int index) {
    JingleRecord& j = Jingle(index);
    if (j.Path.empty()) callUp(audioUpcalls.slotReset, index);
    if (j.Path.empty() || j.PlayingOtherPal) {
        callUp(audioUpcalls.slotOpened, index);
        return;
    }
    const bool open = !sounds(j.hPlay);
    if (open) FreeJingle(index);
    // In a rehearsal a slot is ready at once.
    openings[static_cast<std::size_t>(index)] = startJob<Opening>(
        "modClick.openStreams", [path = j.Path, open](JobWork&) { return openFileOf(path, open); },
        [index](Opening found) {
            guarded("modClick.openStreams", [&] { fillSlot(index, found); });
            callUp(audioUpcalls.slotOpened, index);
            servePress(index);
        },
        JobLane::soon, 0);
}

}  // namespace

void FreeJingle(int index) {
    if (!IsSlot(index)) return;
    JingleRecord& j = Jingle(index);
    openings[static_cast<std::size_t>(index)].cancel();
    TakeWaitingPress(index);
    FreeSource(j.hPlay);
    FreeSource(j.hSrc);
    j.hPlay = 0;
    j.hSrc = 0;
    if (j.Kind == SlotKind::stream) j.Kind = SlotKind::nothing;
    j.FadeSync = 0;
    const auto slot = static_cast<std::size_t>(index);
    JEqFx[slot] = JReverbFx[slot] = JVolFx[slot] = 0;
}

void ClearRecord(int index) {
    if (!IsSlot(index)) return;
    openings[static_cast<std::size_t>(index)].cancel();
    TakeWaitingPress(index);
    DropAfterSound(index);
    JingleRecord& j = Jingle(index);
    j = JingleRecord();
    j.BackRGB = BtnFaceColor;
    j.ForeRGB = JingleForeColor;
}

void openNames(int index, const std::string& section, bool isHot) {
    openNames(index, isHot ? SlotKeys(HotStore, section, index - kPaletteSlots)
                           : SlotKeys(PaletteStore, section, index));
}

void openNames(int index, const SlotKeys& keys) {
    guarded("modClick.openNames", [&] {
        if (!exists(index)) return;
        JingleRecord& j = Jingle(index);
        j.Kind = SlotKind::nothing;
        if (sounds(j.hPlay)) {
            j.PlayingOtherPal = true;
            callUp(audioUpcalls.namesRead, index);
            return;
        }
        FreeJingle(index);
        DropAfterSound(index);
        j.PlayingOtherPal = j.Playing = j.Leaving = false;
        if (const std::string playlist = PlaylistsEnabled ? keys.text("Playlist_") : ""; !playlist.empty()) {
            BindSlot(index, playlist, keys.text("BTNCol_", kFaceColourText));
            return;
        }
        const std::string path = keys.text("Path_");
        if (path.empty() || !IsSoundExtension(GetFileExt(GetFileName(path)))) {
            callUp(audioUpcalls.feedback, index, Feedback::empty);
            ClearRecord(index);
            callUp(audioUpcalls.slotReset, index);
            return;
        }
        j.Path = path;
        j.MissingFile = j.Unplayable = false;
        j.State = PlayState::idle;
        ReadSlot(j, keys);
        callUp(audioUpcalls.namesRead, index);
    });
}

void BindSlot(int index, const std::string& playlist, const std::string& btnCol) {
    FreeJingle(index);
    ClearRecord(index);
    JingleRecord& j = Jingle(index);
    j.Kind = SlotKind::playlist;
    j.Playlist = playlist;
    j.BTNCol = btnCol;
    DeriveFields(j);
    callUp(audioUpcalls.feedback, index, Feedback::empty);
    callUp(audioUpcalls.slotBound, index);
}

void FillSlot(int index, const PersistedJingle& content) {
    guarded("modClick.FillSlot", [&] {
        if (PlaylistsEnabled && !content.Playlist.empty()) {
            BindSlot(index, content.Playlist, content.BTNCol);
            return;
        }
        FreeJingle(index);
        ClearRecord(index);
        if (content.Path.empty()) {
            callUp(audioUpcalls.feedback, index, Feedback::empty);
            callUp(audioUpcalls.slotReset, index);
            return;
        }
        JingleRecord& j = Jingle(index);
        j.persisted() = content;
        DeriveFields(j);
        callUp(audioUpcalls.namesRead, index);
        openStreams(index);
    });
}

void openStreams(int index) {
    guarded("modClick.openStreams", [&] {
        if (!exists(index) || Jingle(index).Kind != SlotKind::nothing) return;
        openSlot(index);
    });
}

bool SlotOpening(int index) { return IsSlot(index) && openings[static_cast<std::size_t>(index)].running(); }

void HurrySlot(int index) {
    if (IsSlot(index)) openings[static_cast<std::size_t>(index)].hurry();
}

double EndOffsetCalc(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.StopPos == 0) return 0;
    const QWORD fade = BASS_ChannelSeconds2Bytes(j.hPlay, j.FadeOut / 1000.0);
    const double offset =
        lengthOf(j.hPlay) - j.StopPos + (fade == BASS_NO_POSITION ? 0 : static_cast<double>(fade));
    return std::max(0.0, offset);
}

double StartPosition(int index) {
    const JingleRecord& j = Jingle(index);
    return j.CueStart < lengthOf(j.hSrc) ? j.CueStart : 0;
}

bool StartIgnored(int index) { return Jingle(index).CueStart != 0 && StartPosition(index) == 0; }

double JDurationCalc(int index) {
    const JingleRecord& j = Jingle(index);
    const double playable = lengthOf(j.hSrc) - StartPosition(index) - j.EndOffset;
    return std::max(0.0, BASS_ChannelBytes2Seconds(j.hSrc, BytePosition(playable)));
}

}  // namespace zv
