// Slots are opened here: names first, then sounds.
#include "audio/streams.h"

#include <algorithm>
#include <string>

#include "audio/devices.h"
#include "audio/effects.h"
#include "audio/upcalls.h"
#include "engine/bass.h"
#include "model/colours.h"
#include "model/jingle.h"
#include "model/palette_files.h"
#include "model/state.h"
#include "platform/paths.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/settings.h"
#include "startup/stores.h"
#include "startup/upcalls.h"

namespace zv {

AudioUpcalls audioUpcalls;

namespace {

constexpr int kEqBandwidthTenths = 25;  // octaves x 10
constexpr double kLongJingle = 120;     // s: longer ones duck the others unless told otherwise
constexpr int kReverbElement = 7;
constexpr int kTempoElement = 8;
constexpr int kRateElement = 9;
constexpr int kPitchElement = 10;
constexpr int kReverbPriority = 10;
constexpr int kVolumePriority = 20;
constexpr float kSecondsPerMs = 0.001F;

JingleRecord& record(int index) { return J[static_cast<std::size_t>(index)]; }
bool inRange(int index) { return index >= 0 && index < kJingles; }
bool exists(int index) { return inRange(index) && JExists[static_cast<std::size_t>(index)] == 1; }

void freeChannel(std::uint32_t& handle) {
    if (handle != 0) {
        BASS_StreamFree(handle);
        BASS_MusicFree(handle);
    }
    handle = 0;
}

/// The keys of one slot.
class SlotKeys {
  public:
    SlotKeys(cImpulse& store, const std::string& section, int suffix)
        : store_(store), section_(section), suffix_(std::to_string(suffix)) {}
    std::string text(const char* stem, const char* otherwise = "") const {
        std::string value = section_.empty() ? std::string() : store_.GetValue(stem + suffix_, 0, section_);
        return value.empty() ? otherwise : value;
    }
    double number(const char* stem, double otherwise = 0) const {
        const std::string value = text(stem);
        return value.empty() ? otherwise : Val(value);
    }
    std::uint8_t byte(const char* stem) const {
        return static_cast<std::uint8_t>(std::clamp(number(stem), 0.0, 255.0));
    }
    std::int32_t whole(const char* stem, double otherwise = 0) const {
        return static_cast<std::int32_t>(std::clamp(number(stem, otherwise), -2147483648.0, 2147483647.0));
    }

  private:
    cImpulse& store_;
    const std::string& section_;
    std::string suffix_;
};

void readFields(JingleRecord& j, const SlotKeys& keys) {
    j.Volm = keys.whole("Volm_", 100);
    j.AutoDuckKey = keys.text("AutoDuck_");
    j.NoAutomix = keys.byte("NoAutomix_");
    j.NoTrigDuck = keys.byte("NoTrigDuck_");
    j.Loop = keys.byte("Loop_");
    j.Seq = keys.byte("Seq_");
    j.LoopIn = keys.number("LoopIn_");
    j.LoopOut = keys.number("LoopOut_");
    j.FadeOut = keys.whole("FadeOut_");
    j.LogFadeOut = keys.byte("LogFadeOut_");
    j.LoopFadeOut = keys.byte("LoopFadeOut_");
    j.FadeAttrib =
        static_cast<std::int32_t>(j.LogFadeOut == 1 ? BASS_ATTRIB_VOL | BASS_SLIDE_LOG : BASS_ATTRIB_VOL);
    j.BTNCol = keys.text("BTNCol_", kFaceColourText);
    const int mode = keys.whole("PlayMod_");
    j.PlayMod = mode >= 0 && mode <= static_cast<int>(PlayMode::noStop) ? static_cast<PlayMode>(mode)
                                                                        : PlayMode::global;
    j.CueStart = keys.number("CueStart_");
    j.StopPos = keys.number("StopPos_");
    j.FXV = keys.text("FXV_");
    j.BackRGB = ButtonColour(j.BTNCol);
    j.ForeRGB = GetForeColor(j.BackRGB, "jingle");
}

double lengthOf(std::uint32_t channel) {
    const QWORD length = channel == 0 ? BASS_NO_POSITION : BASS_ChannelGetLength(channel, BASS_POS_BYTE);
    return length == BASS_NO_POSITION ? 0 : static_cast<double>(length);
}

QWORD bytes(double position) { return static_cast<QWORD>(std::max(0.0, position)); }

/// Opens the file as a sound, else as a tracker module. False with BASS_ErrorGetCode set.
bool openSource(JingleRecord& j, const std::string& file) {
    freeChannel(j.hPlay);
    freeChannel(j.hSrc);
    j.hSrc = BASS_StreamCreateFile(false, file.c_str(), 0, 0, BASS_STREAM_DECODE | BASS_UNICODE);
    if (lengthOf(j.hSrc) > 0) return true;
    const int streamError = BASS_ErrorGetCode();
    freeChannel(j.hSrc);
    j.hSrc = BASS_MusicLoad(false, file.c_str(), 0, 0,
                            BASS_STREAM_DECODE | BASS_MUSIC_PRESCAN | BASS_MUSIC_RAMP | BASS_UNICODE, 0);
    if (lengthOf(j.hSrc) > 0) return true;
    const int moduleError = BASS_ErrorGetCode();
    freeChannel(j.hSrc);
    j.BassErr = static_cast<std::int16_t>(moduleError != BASS_OK ? moduleError : streamError);
    return false;
}

void openFailed(int index) {
    JingleRecord& j = record(index);
    if (j.BassErr == BASS_OK) return;
    if (j.BassErr != BASS_ERROR_FILEOPEN && !j.MissingFile) j.Unplayable = true;
    j.Volm = 100;
    j.Loop = 0;
    j.Seq = 0;
    callUp(audioUpcalls.slotFailed, index);
    callUp(audioUpcalls.feedback, index, Feedback::failed);
}

void chooseAutoDuck(JingleRecord& j) {
    if (j.AutoDuckKey.empty())
        j.AutoDuck = j.Duration > kLongJingle ? 1 : 0;
    else
        j.AutoDuck = static_cast<std::uint8_t>(std::clamp(Val(j.AutoDuckKey), 0.0, 2.0));
    if (j.AutoDuck == 1) j.NoTrigDuck = 1;
}

void attachEffects(int index) {
    JingleRecord& j = record(index);
    const std::vector<double> values = SplitFXV(j.FXV);
    std::array<double, kEqBands> gains{};
    for (std::size_t band = 0; band < kEqBands; ++band) gains[band] = -values.at(band);
    SetDSP_EQ(index, j.hPlay, 0, kEqBandwidthTenths / 10.0, 0, EqCentres(), gains);
    UpdateTempo(j.hPlay, TempoPart::tempo, values.at(kTempoElement));
    UpdateTempo(j.hPlay, TempoPart::rate, values.at(kRateElement));
    UpdateTempo(j.hPlay, TempoPart::pitch, values.at(kPitchElement));
    j.ReverbMs = static_cast<std::int32_t>(values.at(kReverbElement));
    const auto slot = static_cast<std::size_t>(index);
    JReverbFx[slot] = BASS_ChannelSetFX(j.hPlay, BASS_FX_DX8_REVERB, kReverbPriority);
    UpdateReverb(JReverbFx[slot], j.ReverbMs);
    BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_TAIL, static_cast<float>(j.ReverbMs) * kSecondsPerMs);
    BASS_ChannelSetPosition(j.hPlay, bytes(j.CueStart), BASS_POS_BYTE);
    JVolFx[slot] = BASS_ChannelSetFX(j.hPlay, BASS_FX_BFX_VOLUME, kVolumePriority);
    SetVolFx(JVolFx[slot], j.Volm);
}

void buildChannel(int index) {
    JingleRecord& j = record(index);
    const bool mix = settings.DeviceSingle == 0;
    j.hPlay = BASS_FX_TempoCreate(j.hSrc, mix ? BASS_STREAM_DECODE | BASS_FX_FREESOURCE : BASS_FX_FREESOURCE);
    BASS_ChannelSetAttribute(j.hPlay, BASS_ATTRIB_BUFFER, 0);
    BASS_ChannelUpdate(j.hPlay, 0);
    j.EndOffset = EndOffsetCalc(index);
    j.Duration = JDurationCalc(index);
    callUp(audioUpcalls.slotLoaded, index);
    // A vector that cannot be read must not keep the jingle from sounding.
    guarded("modClick.openStreams", [&] { attachEffects(index); });
    if (mix) {
        BASS_Mixer_StreamAddChannel(MainMixer, j.hPlay, BASS_MIXER_CHAN_BUFFER);
        BASS_ChannelStop(j.hPlay);
    }
}

void openSlot(int index) {
    JingleRecord& j = record(index);
    if (j.Path.empty()) {
        FreeJingle(index);
        callUp(audioUpcalls.slotReset, index);
        return;
    }
    if (j.PlayingOtherPal) return;
    const std::string full = GetFullPath(j.Path);
    const std::string file = nativePath(full).string();
    j.MissingFile = !FileExists(full);
    if (j.MissingFile) callUp(audioUpcalls.fileMissing, index);
    j.BassErr = 0;
    if (!openSource(j, file)) {
        openFailed(index);
        return;
    }
    callUp(audioUpcalls.feedback, index, Feedback::loaded);
    j.Kind = SlotKind::stream;
    j.MissingFile = j.Unplayable = false;
    j.BassErr = 0;
    BASS_CHANNELINFO info{};
    BASS_ChannelGetInfo(j.hSrc, &info);
    BASS_ChannelUpdate(j.hSrc, 0);
    if (j.LoopOut == 0) j.LoopOut = lengthOf(j.hSrc);
    chooseAutoDuck(j);
    j.Freq = static_cast<std::int32_t>(info.freq);
    if (j.FXV.empty()) j.FXV = NeutralFXV(j.Freq);
    buildChannel(index);
}

}  // namespace

void FreeJingle(int index) {
    if (!inRange(index)) return;
    JingleRecord& j = record(index);
    freeChannel(j.hPlay);
    freeChannel(j.hSrc);
    j.FadeSync = 0;
    const auto slot = static_cast<std::size_t>(index);
    JEqFx[slot] = JReverbFx[slot] = JVolFx[slot] = 0;
}

void ClearRecord(int index) {
    if (!inRange(index)) return;
    JingleRecord& j = record(index);
    j = JingleRecord();
    j.BackRGB = BtnFaceColor;
    j.ForeRGB = JingleForeColor;
}

void openNames(int index, const std::string& section, bool isHot) {
    guarded("modClick.openNames", [&] {
        if (!exists(index)) return;
        JingleRecord& j = record(index);
        j.Kind = SlotKind::nothing;
        if (j.hPlay != 0 && BASS_ChannelIsActive(j.hPlay) == BASS_ACTIVE_PLAYING) {
            j.PlayingOtherPal = true;
            return;
        }
        FreeJingle(index);
        cImpulse& store = isHot ? HotStore : PaletteStore;
        store.SetIniPath(isHot ? HotFile : PalFile);
        const SlotKeys keys(store, section, isHot ? index - kPaletteSlots : index);
        const std::string path = keys.text("Path_");
        if (path.empty() || !IsSoundExtension(GetFileExt(GetFileName(path)))) {
            callUp(audioUpcalls.feedback, index, Feedback::empty);
            ClearRecord(index);
            callUp(audioUpcalls.slotReset, index);
            return;
        }
        j.Path = path;
        readFields(j, keys);
        callUp(audioUpcalls.namesRead, index);
    });
}

void openStreams(int index) {
    guarded("modClick.openStreams", [&] {
        if (!exists(index) || record(index).Kind == SlotKind::playlist) return;
        openSlot(index);
        callUp(audioUpcalls.slotOpened, index);
    });
}

double EndOffsetCalc(int index) {
    const JingleRecord& j = record(index);
    if (j.StopPos == 0) return 0;
    const QWORD fade = BASS_ChannelSeconds2Bytes(j.hPlay, j.FadeOut / 1000.0);
    const double offset =
        lengthOf(j.hPlay) - j.StopPos + (fade == BASS_NO_POSITION ? 0 : static_cast<double>(fade));
    return std::max(0.0, offset);
}

double JDurationCalc(int index) {
    const JingleRecord& j = record(index);
    const double playable = lengthOf(j.hSrc) - j.CueStart - j.EndOffset;
    if (playable <= 0) return 0;
    return std::max(0.0, BASS_ChannelBytes2Seconds(j.hSrc, bytes(playable)));
}

}  // namespace zv
