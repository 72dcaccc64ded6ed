#include "audio/time_jingle.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "audio/devices.h"
#include "audio/effects.h"
#include "audio/play.h"
#include "audio/sounding.h"
#include "audio/source_file.h"
#include "audio/upcalls.h"
#include "engine/bass.h"
#include "model/jingle.h"
#include "model/palette_lines.h"
#include "platform/jobs.h"
#include "platform/sound.h"
#include "startup/errors.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/settings/devices_settings.h"
#include "startup/upcalls.h"

namespace zv {

std::string TmAnPath;
double TmJingleDuration = 0;

namespace {

constexpr double kEqBandwidth = 2.5;  // octaves
constexpr int kEffectPriority = 10;
constexpr double kMsPerSecond = 1000;
constexpr float kStopAtEnd = -1;  // of a slide: to silence, then stop

/// What was copied from the record when the jingle was chosen.
PersistedJingle chosen;
double endOffset = 0;  // bytes cut from its end
Job opening;

bool mix() { return deviceSettings.DeviceSingle == 0; }

double lengthOf(DWORD channel) {
    const QWORD length = channel == 0 ? BASS_NO_POSITION : BASS_ChannelGetLength(channel, BASS_POS_BYTE);
    return length == BASS_NO_POSITION ? 0 : static_cast<double>(length);
}

double startPosition() { return chosen.CueStart < lengthOf(hTmAnSrc) ? chosen.CueStart : 0; }

double endOffsetOf(DWORD channel) {
    if (chosen.StopPos == 0) return 0;
    const QWORD fade = BASS_ChannelSeconds2Bytes(channel, chosen.FadeOut / kMsPerSecond);
    return std::max(
        0.0, lengthOf(channel) - chosen.StopPos + (fade == BASS_NO_POSITION ? 0 : static_cast<double>(fade)));
}

void attachEffects(int freq) {
    const ReadEffects read = ParseFXV(chosen.FXV.empty() ? NeutralFXV(freq) : chosen.FXV, freq);
    const EffectVector& effects = read.effects;
    guarded("modClick.clTmAn", [&] {
        std::array<double, kEqBands> gains{};
        for (int band = 0; band < kEqBands; ++band)
            gains[static_cast<std::size_t>(band)] = effects.gain(band);
        SetDSP_EQtmJnStrm(hTmAn, 0, kEqBandwidth, 0, EqCentres(), gains);
    });
    UpdateTempo(hTmAn, TempoPart::tempo, effects.tempo);
    UpdateTempo(hTmAn, TempoPart::rate, effects.rate);
    UpdateTempo(hTmAn, TempoPart::pitch, effects.pitch);
    UpdateReverb(BASS_ChannelSetFX(hTmAn, BASS_FX_DX8_REVERB, kEffectPriority), effects.reverbMs);
    BASS_ChannelSetAttribute(hTmAn, BASS_ATTRIB_TAIL, static_cast<float>(effects.reverbMs / kMsPerSecond));
    SetVolFx(BASS_ChannelSetFX(hTmAn, BASS_FX_BFX_VOLUME, kEffectPriority), chosen.Volm);
}

/// The fade begins with the frame of the stop position; the procedure serves an engine that cannot do that.
void armStop() {
    const HSYNC stop =
        BASS_ChannelSetSync(hTmAn, BASS_SYNC_POS, BytePosition(chosen.StopPos), &FadeOutSynctmJn, nullptr);
    if (const auto* engine = engine::audioLibraryControl(); engine != nullptr)
        engine->slideAtSync(hTmAn, stop, kStopAtEnd, static_cast<DWORD>(std::max(0, int{TmAnFadeOut})),
                            chosen.LogFadeOut == 1);
}

void build(SourceFile& found) {
    hTmAnSrc = found.take();
    if (hTmAnSrc != 0)
        hTmAn = BASS_FX_TempoCreate(hTmAnSrc, BASS_FX_FREESOURCE | (mix() ? BASS_STREAM_DECODE : 0));
    if (hTmAn == 0) {
        FreeSource(hTmAnSrc);
        DropTimeJingle();
        Error_(Ln("mLoadJingError"));
        return;
    }
    BASS_ChannelSetAttribute(hTmAn, BASS_ATTRIB_BUFFER, 0);
    BASS_CHANNELINFO info{};
    BASS_ChannelGetInfo(hTmAnSrc, &info);
    TmAnFadeOut = static_cast<std::int32_t>(chosen.FadeOut);
    TmAnFadeAttrib = FadeAttribOf(chosen);
    endOffset = endOffsetOf(hTmAn);
    const double playable = lengthOf(hTmAnSrc) - startPosition() - endOffset;
    TmJingleDuration = std::max(0.0, BASS_ChannelBytes2Seconds(hTmAnSrc, BytePosition(playable)));
    attachEffects(static_cast<int>(info.freq));
    if (chosen.StopPos != 0) armStop();
    if (mix()) {
        // Stopped before it is in the mixer, so that no period can catch it sounding.
        BASS_ChannelStop(hTmAn);
        BASS_Mixer_StreamAddChannel(MainMixer, hTmAn, BASS_MIXER_CHAN_BUFFER);
    }
    callUp(audioUpcalls.announcerChanged);
}

}  // namespace

void ChooseTimeJingle(int index) {
    const JingleRecord& j = Jingle(index);
    if (j.Path.empty() || j.MissingFile) return;
    FreeTimeJingle();
    chosen = j.persisted();
    TmAnPath = chosen.Path;
    TmJingleDuration = j.Duration;
    OpenTimeJingle();
    callUp(audioUpcalls.announcerChanged);
}

void DropTimeJingle() {
    FreeTimeJingle();
    TmAnPath.clear();
    TmJingleDuration = 0;
    callUp(audioUpcalls.announcerChanged);
}

void FreeTimeJingle() {
    opening.cancel();
    FreeSource(hTmAn);  // and its source
    hTmAn = 0;
    hTmAnSrc = 0;
}

void OpenTimeJingle() {
    if (TmAnPath.empty() || hTmAn != 0 || opening.running()) return;
    opening = startJob<SourceFile>(
        "modClick.clTmAn", [path = TmAnPath](JobWork&) { return OpenSourceFile(path); },
        [](SourceFile found) { guarded("modClick.clTmAn", [&] { build(found); }); }, JobLane::soon, 0);
}

void PlayTimeJingle() {
    BASS_ChannelSetAttribute(hTmAn, BASS_ATTRIB_VOL, 1);
    BASS_ChannelFlags(hTmAnSrc, chosen.Loop != 0 ? BASS_SAMPLE_LOOP : 0, BASS_SAMPLE_LOOP);
    BASS_ChannelSetPosition(hTmAn, BytePosition(startPosition()), BASS_POS_BYTE);
    BASS_ChannelPlay(hTmAn, false);
    if (!TimeJingleSounds()) Error_("Can't play time announce stream 2");
}

bool TimeJingleSounds() { return hTmAn != 0 && BASS_ChannelIsActive(hTmAn) != BASS_ACTIVE_STOPPED; }

double TimeJingleLeft() {
    const double cut = BASS_ChannelBytes2Seconds(hTmAn, BytePosition(endOffset));
    return hTmAn == 0 ? 0 : std::max(0.0, TimeLeftOf(hTmAn) - std::max(0.0, cut));
}

}  // namespace zv
