/// A small studio for tests of the engine: sounds made on the spot, offline devices, and short names.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <map>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>
#include "engine/api/engine.h"
#include "engine/bass.h"
#include "engine/ports.h"
#include "platform/offline/offline_devices.h"
#include "tests/engine/dsp_signals.h"
#include "tests/engine/made_sounds.h"

namespace zv::engine::test {

constexpr int kMain = 1, kAux = 2;
inline const std::string kMainName = "Main output", kAuxName = "Auxiliary output", kMicName = "Microphone";

/// Everything fresh for each test; the engine is given nothing at the end.
class Show : public testing::Test {
  protected:
    explicit Show(OfflineOptions options = {}) { begin(std::move(options)); }
    ~Show() override { engineControl()->install({}); }

    void begin(OfflineOptions options) {
        devices = makeOfflineDevices(std::move(options));
        engineControl()->install({decoders, devices});
        decoders->sounds["ramp"] = {.length = 441000, .sample = ramp};
        decoders->sounds["sine"] = {.length = 441000, .sample = [](std::uint64_t f, std::uint32_t) {
                                        return sine(f, 1000, 44100, 0.5);
                                    }};
        decoders->sounds["one"] = {.length = 441000,
                                   .sample = [](std::uint64_t, std::uint32_t) { return 1.0F; }};
    }
    void pull(std::uint64_t frames, std::uint32_t rate = 44100) { devices->pull(frames, rate); }
    std::vector<float> take(const std::string& name = kMainName) { return devices->takeSound(name); }
    std::vector<float> pullAndTake(std::uint64_t frames) {
        pull(frames);
        return take();
    }
    static DWORD file(const std::string& name, DWORD flags = BASS_STREAM_DECODE) {
        return BASS_StreamCreateFile(false, name.c_str(), 0, 0, flags);
    }
    /// The plain topology: one output.
    static void openMain(DWORD rate = 44100) { ASSERT_TRUE(BASS_Init(kMain, rate, 0, nullptr, nullptr)); }

    std::shared_ptr<MadeSource> decoders = std::make_shared<MadeSource>();
    std::shared_ptr<OfflineDevices> devices;
};

/// The whole mix topology of two outputs, as the program builds it.
struct Topology {
    DWORD mainMixer = 0, micMixer = 0, mainSplit[2]{}, micSplit[2]{}, outMixer[2]{}, outSplit[2]{},
          keepAlive = 0;

    explicit Topology(DWORD rate = 44100, bool aux = true) {
        constexpr DWORD mixing = BASS_STREAM_DECODE | BASS_MIXER_NONSTOP | BASS_SAMPLE_FLOAT;
        BASS_SetConfig(BASS_CONFIG_DEV_NONSTOP, 1);
        BASS_Init(0, rate, 0, nullptr, nullptr);
        mainMixer = BASS_Mixer_StreamCreate(rate, 2, mixing);
        micMixer = BASS_Mixer_StreamCreate(rate, 2, mixing);
        for (int i = 0; i < 2; ++i) {
            mainSplit[i] = BASS_Split_StreamCreate(mainMixer, BASS_STREAM_DECODE, nullptr);
            micSplit[i] = BASS_Split_StreamCreate(micMixer, BASS_STREAM_DECODE, nullptr);
        }
        for (DWORD& mixer : outMixer) {
            mixer = BASS_Mixer_StreamCreate(rate, 2, mixing);
            BASS_ChannelSlideAttribute(mixer, BASS_ATTRIB_VOLDSP, 1, 50);
        }
        for (int i = 0; i < 2; ++i)
            BASS_Mixer_StreamAddChannel(outMixer[i], mainSplit[i], BASS_MIXER_CHAN_BUFFER);
        for (int i = 0; i < 2; ++i)
            BASS_Mixer_StreamAddChannel(outMixer[i], micSplit[i], BASS_MIXER_CHAN_BUFFER);
        openOutput(0, kMain, rate);
        keepAlive = BASS_Split_StreamCreate(outMixer[1], 0, nullptr);
        BASS_ChannelSetAttribute(keepAlive, BASS_ATTRIB_BUFFER, 0);
        BASS_ChannelSlideAttribute(keepAlive, BASS_ATTRIB_VOLDSP, 0, 0);
        BASS_ChannelStart(keepAlive);
        if (aux) openOutput(1, kAux, rate);
    }
    void openOutput(int i, int device, DWORD rate) {
        BASS_StreamFree(outSplit[i]);
        BASS_Init(device, rate, 0, nullptr, nullptr);
        BASS_SetDevice(static_cast<DWORD>(device));
        outSplit[i] = BASS_Split_StreamCreate(outMixer[i], 0, nullptr);
        BASS_ChannelSetAttribute(outSplit[i], BASS_ATTRIB_BUFFER, 0);
        BASS_ChannelStart(outSplit[i]);
    }
    /// A jingle in its place: opened, in the mixer, stopped.
    DWORD jingle(DWORD source) const {
        const DWORD play = BASS_FX_TempoCreate(source, BASS_STREAM_DECODE | BASS_FX_FREESOURCE);
        BASS_Mixer_StreamAddChannel(mainMixer, play, BASS_MIXER_CHAN_BUFFER);
        BASS_ChannelStop(play);
        return play;
    }
};

/// Pressed as the program does it: from `position`, faded in over 10 ms.
inline void press(DWORD channel, QWORD position = 0) {
    BASS_ChannelSetPosition(channel, position, BASS_POS_BYTE);
    BASS_ChannelSlideAttribute(channel, BASS_ATTRIB_VOL, 1, 10);
    BASS_ChannelPlay(channel, false);
}

}  // namespace zv::engine::test
