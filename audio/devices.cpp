// The graph from the buses to the sound cards.
#include "audio/devices.h"

#include <array>

#include "audio/upcalls.h"
#include "engine/bass.h"
#include "startup/guard.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/volumes_settings.h"
#include "startup/upcalls.h"

namespace zv {

int MixerFreqAtStart = 44100;
std::array<int, 2> Device{1, 0};
std::array<int, 2> DeviceId{1, 0};
StreamHandle MainMixer = 0, MicMixer = 0, AuxKeepAlive = 0, hMic = 0;
std::array<StreamHandle, 2> MainSplit{}, MicSplit{}, OutMixer{}, OutSplit{};
StreamHandle hTmAnSrc = 0, hTmAnVoice = 0, hLive = 0;
Shared<StreamHandle> hTmAn = 0;
bool NoOutputDevice = false;

namespace {

constexpr DWORD kFallbackRate = 44100;
constexpr int kDefaultDevice = -1;
constexpr DWORD kNoSound = 0;
constexpr DWORD kMicMs = 10;
constexpr DWORD kPercentToGlobal = 100;
constexpr DWORD kMixerFlags = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP | BASS_SAMPLE_FLOAT;

bool single() { return deviceSettings.DeviceSingle != 0; }
DWORD rate() { return static_cast<DWORD>(MixerFreqAtStart); }

std::size_t at(int output) { return static_cast<std::size_t>(output); }

/// Selects the output that the system calls its default, if it is open.
bool selectDefault() {
    BASS_DEVICEINFO info{};
    for (DWORD n = 1; BASS_GetDeviceInfo(n, &info); ++n)
        if ((info.flags & BASS_DEVICE_DEFAULT) != 0 && BASS_SetDevice(n)) return true;
    return false;
}

/// Opens and selects the device or, failing that, the default one. False when there is none at all.
bool initDevice(int device) {
    if (BASS_Init(device, rate(), 0, nullptr, nullptr)) return true;
    if (BASS_ErrorGetCode() == BASS_ERROR_ALREADY && BASS_SetDevice(static_cast<DWORD>(device))) return true;
    return BASS_Init(kDefaultDevice, kFallbackRate, 0, nullptr, nullptr) || selectDefault();
}

StreamHandle newMixer() { return BASS_Mixer_StreamCreate(rate(), 2, kMixerFlags); }

void freeStream(StreamHandle& stream) {
    if (stream != 0) BASS_StreamFree(stream);
    stream = 0;
}

void startOutput(int output) {
    StreamHandle& split = OutSplit[at(output)];
    split = BASS_Split_StreamCreate(OutMixer[at(output)], 0, nullptr);
    BASS_ChannelSetAttribute(split, BASS_ATTRIB_BUFFER, 0);
    BASS_ChannelStart(split);
}

/// Pulls the auxiliary branch on the device that is selected.
void keepAuxAlive() {
    AuxKeepAlive = BASS_Split_StreamCreate(OutMixer[1], 0, nullptr);
    BASS_ChannelSetAttribute(AuxKeepAlive, BASS_ATTRIB_BUFFER, 0);
    BASS_ChannelSlideAttribute(AuxKeepAlive, BASS_ATTRIB_VOLDSP, 0, 0);
    BASS_ChannelStart(AuxKeepAlive);
}

void reportNoDevice() {
    NoOutputDevice = true;
    callUp(audioUpcalls.noOutputDevice);
}

void openSingle() {
    MixerFreqAtStart = deviceSettings.MixerFreq;
    NoOutputDevice = false;
    if (!initDevice(Device[0])) {
        BASS_Init(static_cast<int>(kNoSound), rate(), 0, nullptr, nullptr);
        reportNoDevice();
    }
    BASS_SetConfig(BASS_CONFIG_BUFFER, 2 * BASS_GetConfig(BASS_CONFIG_BUFFER));
    BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, static_cast<DWORD>(volumeSettings.Volume) * kPercentToGlobal);
}

}  // namespace

void bassini(int output) {
    guarded("modDevices.bassini", [&] {
        if (single()) {
            openSingle();
            return;
        }
        FreeOutp(output);
        // Both outputs on one device would play everything twice; AuxKeepAlive pulls the auxiliary branch.
        if (output == 1 && (Device[1] == 0 || (Device[1] == Device[0] && !NoOutputDevice))) return;
        BASS_SetConfig(BASS_CONFIG_DEV_NONSTOP, 1);
        if (output == 0) {
            NoOutputDevice = false;
            if (!initDevice(Device[0])) {
                BASS_SetDevice(kNoSound);
                reportNoDevice();
            }
        } else {
            BASS_Init(Device[1], rate(), 0, nullptr, nullptr);
            // Without its device the auxiliary branch must not land on the main one.
            if (!BASS_SetDevice(static_cast<DWORD>(Device[1]))) return;
        }
        startOutput(output);
    });
}

void SetupMixers() {
    guarded("modDevices.SetupMixers", [] {
        MixerFreqAtStart = deviceSettings.MixerFreq;
        FreeBASS();
        BASS_Init(static_cast<int>(kNoSound), rate(), 0, nullptr, nullptr);
        MainMixer = newMixer();
        MicMixer = newMixer();
        for (std::size_t i = 0; i < 2; ++i) {
            MainSplit[i] = BASS_Split_StreamCreate(MainMixer, BASS_STREAM_DECODE, nullptr);
            MicSplit[i] = BASS_Split_StreamCreate(MicMixer, BASS_STREAM_DECODE, nullptr);
        }
        for (int i = 0; i < 2; ++i) {
            OutMixer[at(i)] = newMixer();
            SetOutputVolume(i, i == 0 ? volumeSettings.Volume : volumeSettings.VolumeAux);
        }
        for (const auto* splits : {&MainSplit, &MicSplit})
            for (std::size_t i = 0; i < 2; ++i)
                BASS_Mixer_StreamAddChannel(OutMixer[i], (*splits)[i], BASS_MIXER_CHAN_BUFFER);
        bassini(0);
        keepAuxAlive();
        bassini(1);
    });
}

void ReopenOutputs() {
    guarded("modDevices.ReopenOutputs", [] {
        bassini(0);
        if (single()) return;
        freeStream(AuxKeepAlive);
        keepAuxAlive();
        bassini(1);
    });
}

void FreeOutp(int output) {
    guarded("modDevices.FreeOutp", [&] { freeStream(OutSplit[at(output)]); });
}

void MoveOutput(int output, int device) {
    Device[at(output)] = device;
    bassini(output);
}

void FreeBASS() {
    guarded("modDevices.FreeBASS", [] {
        BASS_RecordSetDevice(
            static_cast<DWORD>(deviceSettings.DeviceIn == 0 ? kDefaultDevice : deviceSettings.DeviceIn));
        BASS_RecordFree();
        if (single()) {
            BASS_Free();
            return;
        }
        FreeOutp(0);
        FreeOutp(1);
        freeStream(AuxKeepAlive);
        for (std::size_t i = 0; i < 2; ++i)
            if (BASS_SetDevice(static_cast<DWORD>(Device[i]))) BASS_Free();
        // What the calls above leave: the default device of a fallback, the decoding streams and their
        // device.
        if (selectDefault()) BASS_Free();
        freeStream(hMic);
        for (std::size_t i = 0; i < 2; ++i) {
            freeStream(OutMixer[i]);
            freeStream(MainSplit[i]);
            freeStream(MicSplit[i]);
        }
        freeStream(MainMixer);
        freeStream(MicMixer);
        if (BASS_SetDevice(kNoSound)) BASS_Free();
    });
}

void OpenMic() {
    guarded("modDevices.OpenMic", [] {
        if (hMic != 0) CloseMic();
        if (!BASS_RecordInit(deviceSettings.DeviceIn == 0 ? kDefaultDevice : deviceSettings.DeviceIn) &&
            BASS_ErrorGetCode() != BASS_ERROR_ALREADY)
            return;
        BASS_RECORDINFO info{};
        BASS_RecordGetInfo(&info);
        const HRECORD input = BASS_RecordStart(info.freq, 2, 0, nullptr, nullptr);
        if (input == 0) return;
        if (single()) {
            hMic = BASS_FX_TempoCreate(input, BASS_FX_FREESOURCE);
            return;
        }
        hMic = BASS_FX_TempoCreate(input, BASS_STREAM_DECODE | BASS_FX_FREESOURCE);
        for (const StreamHandle split : MicSplit)
            BASS_ChannelSlideAttribute(split, BASS_ATTRIB_VOLDSP, 0, kMicMs);
        BASS_Mixer_StreamAddChannel(MicMixer, hMic, BASS_MIXER_CHAN_BUFFER);
    });
}

void CloseMic() {
    guarded("modDevices.CloseMic", [] {
        BASS_StreamFree(hMic);
        BASS_RecordFree();
        hMic = 0;
    });
}

int OutputChannels() {
    constexpr int stereo = 2;
    BASS_CHANNELINFO info{};
    return OutSplit[0] != 0 && BASS_ChannelGetInfo(OutSplit[0], &info) ? static_cast<int>(info.chans)
                                                                       : stereo;
}

void SetOutputVolume(int output, int percent, int ms) {
    if (single()) {
        if (output == 0)
            BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, static_cast<DWORD>(percent) * kPercentToGlobal);
        return;
    }
    BASS_ChannelSlideAttribute(OutMixer[at(output)], BASS_ATTRIB_VOLDSP, static_cast<float>(percent) * 0.01F,
                               static_cast<DWORD>(ms));
}

}  // namespace zv
