// What each operation answers when it cannot do as it is told: the value, and the code that it leaves.
#include <limits>

#include "tests/engine/show.h"

namespace zv::engine::test {
namespace {

struct Refusal {
    const char* what;
    int code;
    std::function<bool()> refused;  ///< true: the value says so
};

/// Whether each of them fails as it should, and a success afterwards clears the code.
void expectAll(const std::vector<Refusal>& refusals) {
    for (const Refusal& r : refusals) {
        BASS_GetConfig(BASS_CONFIG_BUFFER);
        ASSERT_EQ(BASS_ErrorGetCode(), BASS_OK) << "a success leaves 0";
        EXPECT_TRUE(r.refused()) << r.what;
        EXPECT_EQ(BASS_ErrorGetCode(), r.code) << r.what;
    }
}

using Refusals = Show;

TEST_F(Refusals, WhatMakesNoSense) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    decoders->sounds["live"] = {.sample = ramp, .endless = true};
    const DWORD decoding = file("ramp");
    const Topology studio;
    const DWORD playing = file("ramp", 0);
    const DWORD jingle = studio.jingle(file("ramp"));
    const DWORD live = BASS_StreamCreateURL("live", 0, BASS_STREAM_DECODE, nullptr, nullptr);
    ASSERT_NE(live, 0U);
    const HFX eq = BASS_ChannelSetFX(jingle, BASS_FX_BFX_PEAKEQ, 5);
    const BASS_BFX_PEAKEQ far{64, 1, 0, 1000, 0, -1}, odd{0, 1, 0, nan, 0, -1};
    const BASS_BFX_VOLUME deafening{BASS_BFX_CHANALL, 1e30F};
    float value[2]{};
    BASS_DEVICEINFO device{};
    const auto attribute = [&](DWORD channel, DWORD which, float to) {
        return [=] { return !BASS_ChannelSetAttribute(channel, which, to); };
    };
    const auto moved = [&](DWORD channel, QWORD to, DWORD mode) {
        return [=] { return !BASS_ChannelSetPosition(channel, to, mode); };
    };
    expectAll({
        {"a file that is away", BASS_ERROR_FILEOPEN, [&] { return file("away") == 0; }},
        {"no path", BASS_ERROR_ILLPARAM, [] { return BASS_MusicLoad(false, nullptr, 0, 0, 0, 0) == 0; }},
        {"a file in memory", BASS_ERROR_NOTAVAIL,
         [] { return BASS_StreamCreateFile(true, "ramp", 0, 9, 0) == 0; }},
        {"a decoding channel played alone", BASS_ERROR_DECODE,
         [&] { return !BASS_ChannelPlay(decoding, false); }},
        {"pause of what is stopped", BASS_ERROR_NOPLAY, [&] { return !BASS_ChannelPause(jingle); }},
        {"a position beyond the end", BASS_ERROR_POSITION, moved(jingle, 441001 * 4, BASS_POS_BYTE)},
        {"an end beyond the end", BASS_ERROR_POSITION, moved(jingle, QWORD{1} << 63, BASS_POS_END)},
        {"the length of a stream", BASS_ERROR_NOTAVAIL,
         [&] { return BASS_ChannelGetLength(live, BASS_POS_BYTE) == BASS_NO_POSITION; }},
        {"tempo of a file", BASS_ERROR_ILLTYPE, attribute(decoding, BASS_ATTRIB_TEMPO, 1)},
        {"a gain below 0", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_VOLDSP, -0.5F)},
        {"a gain beyond 60 dB", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_VOLDSP, 1001)},
        {"a slide beyond 60 dB", BASS_ERROR_ILLPARAM,
         [&] { return !BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, 1e30F, 5); }},
        {"a volume beyond 60 dB", BASS_ERROR_ILLPARAM,
         [&] { return !BASS_FXSetParameters(BASS_ChannelSetFX(jingle, BASS_FX_BFX_VOLUME, 0), &deafening); }},
        {"a gain that is no number", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_VOL, nan)},
        {"a slide to nowhere", BASS_ERROR_ILLPARAM,
         [&] { return !BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, nan, 5); }},
        {"the level of what plays nowhere", BASS_ERROR_NOTAVAIL,
         [&] { return !BASS_ChannelGetLevelEx(decoding, value, 0.04F, 2); }},
        {"the mixer's level of what is in none", BASS_ERROR_HANDLE,
         [&] { return !BASS_Mixer_ChannelGetLevelEx(decoding, value, 0.04F, 2); }},
        {"reading what a mixer reads", BASS_ERROR_NOTAVAIL,
         [&] { return BASS_ChannelGetData(jingle, value, 8) == ~DWORD{0}; }},
        {"another channel's effect", BASS_ERROR_HANDLE, [&] { return !BASS_ChannelRemoveFX(decoding, eq); }},
        {"a band beyond all", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXSetParameters(eq, &far); }},
        {"a centre that is no number", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXSetParameters(eq, &odd); }},
        {"no place for the answer", BASS_ERROR_ILLPARAM,
         [&] { return !BASS_ChannelGetInfo(jingle, nullptr) && !BASS_GetDeviceInfo(1, nullptr); }},
        {"no record", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXSetParameters(eq, nullptr); }},
        {"tempo over a playing channel", BASS_ERROR_DECODE,
         [&] { return BASS_FX_TempoCreate(playing, 0) == 0; }},
        {"a split of a playing channel", BASS_ERROR_DECODE,
         [&] { return BASS_Split_StreamCreate(playing, 0, nullptr) == 0; }},
        {"a playing channel in a mixer", BASS_ERROR_DECODE,
         [&] { return !BASS_Mixer_StreamAddChannel(studio.mainMixer, playing, 0); }},
        {"in two mixers", BASS_ERROR_ALREADY,
         [&] { return !BASS_Mixer_StreamAddChannel(studio.micMixer, jingle, 0); }},
        {"a device that is open", BASS_ERROR_ALREADY,
         [] { return !BASS_Init(-1, 44100, 0, nullptr, nullptr); }},
        {"a device beyond the last", BASS_ERROR_DEVICE, [] { return !BASS_SetDevice(31); }},
        {"the name beyond the last", BASS_ERROR_DEVICE, [&] { return !BASS_GetDeviceInfo(3, &device); }},
        {"the input beyond the last", BASS_ERROR_DEVICE,
         [&] { return !BASS_RecordGetDeviceInfo(1, &device); }},
        {"an input that is not in use", BASS_ERROR_INIT, [] { return !BASS_RecordSetDevice(0); }},
        {"freed without use", BASS_ERROR_INIT, [] { return !BASS_RecordFree(); }},
        {"recorded without use", BASS_ERROR_INIT,
         [] { return BASS_RecordStart(44100, 2, 0, nullptr, nullptr) == 0; }},
        {"an input beyond the last in use", BASS_ERROR_DEVICE, [] { return !BASS_RecordInit(7); }},
    });
}

TEST_F(Refusals, GainsOnGainsStayNumbers) {
    const Topology studio;
    const DWORD jingle = studio.jingle(file("sine"));
    const BASS_BFX_VOLUME most{BASS_BFX_CHANALL, 1000};
    for (int n = 0; n < 16; ++n)
        EXPECT_TRUE(BASS_FXSetParameters(BASS_ChannelSetFX(jingle, BASS_FX_BFX_VOLUME, 0), &most));
    BASS_ChannelSetAttribute(jingle, BASS_ATTRIB_VOL, 1000);
    BASS_ChannelPlay(jingle, false);
    for (const float sample : pullAndTake(4410)) ASSERT_TRUE(std::isfinite(sample));
    for (const DWORD flags : {BASS_LEVEL_STEREO, BASS_LEVEL_RMS, BASS_LEVEL_RMS | BASS_LEVEL_VOLPAN}) {
        float levels[2]{};
        ASSERT_TRUE(BASS_Mixer_ChannelGetLevelEx(jingle, levels, 0.02F, flags));
        EXPECT_TRUE(std::isfinite(levels[0]) && levels[0] > 1000) << flags;
    }
}

}  // namespace
}  // namespace zv::engine::test
