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
    decoders->sounds["seven"] = {.format = {44100, 99, 16}, .sample = ramp};
    decoders->sounds["live"] = {.sample = ramp, .endless = true};
    const DWORD decoding = file("ramp");
    const Topology studio;
    const DWORD playing = file("ramp", 0);
    const DWORD jingle = studio.jingle(file("ramp"));
    const DWORD live = BASS_StreamCreateURL("live", 0, BASS_STREAM_DECODE, nullptr, nullptr);
    ASSERT_NE(live, 0U);
    const HFX eq = BASS_ChannelSetFX(jingle, BASS_FX_BFX_PEAKEQ, 5);
    const BASS_BFX_PEAKEQ none{-1, 1, 0, 1000, 0, -1}, far{64, 1, 0, 1000, 0, -1}, odd{0, 1, 0, nan, 0, -1};
    BASS_BFX_PEAKEQ unset{3, 0, 0, 0, 0, 0};
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
        {"99 channels", BASS_ERROR_FORMAT, [&] { return file("seven") == 0; }},
        {"a URL with a callback", BASS_ERROR_ILLPARAM,
         [&] { return BASS_StreamCreateURL("live", 0, 0, value, nullptr) == 0; }},
        {"a decoding channel played alone", BASS_ERROR_DECODE,
         [&] { return !BASS_ChannelPlay(decoding, false); }},
        {"pause of what is stopped", BASS_ERROR_NOPLAY, [&] { return !BASS_ChannelPause(jingle); }},
        {"a position beyond the end", BASS_ERROR_POSITION, moved(jingle, 441001 * 4, BASS_POS_BYTE)},
        {"a loop beyond the end", BASS_ERROR_POSITION, moved(jingle, 441001 * 4, BASS_POS_LOOP)},
        {"an end beyond the end", BASS_ERROR_POSITION, moved(jingle, QWORD{1} << 63, BASS_POS_END)},
        {"an unknown mode", BASS_ERROR_NOTAVAIL, moved(jingle, 0, 99)},
        {"the position of a stream", BASS_ERROR_NOTAVAIL, moved(live, 0, BASS_POS_BYTE)},
        {"the position of a mixer", BASS_ERROR_NOTAVAIL, moved(studio.mainMixer, 0, BASS_POS_BYTE)},
        {"the length of a stream", BASS_ERROR_NOTAVAIL,
         [&] { return BASS_ChannelGetLength(live, BASS_POS_BYTE) == BASS_NO_POSITION; }},
        {"an unknown attribute", BASS_ERROR_ILLTYPE, attribute(jingle, 77, 1)},
        {"tempo of a file", BASS_ERROR_ILLTYPE, attribute(decoding, BASS_ATTRIB_TEMPO, 1)},
        {"a gain below 0", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_VOLDSP, -0.5F)},
        {"a gain that is no number", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_VOL, nan)},
        {"a tail below 0", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_TAIL, -1)},
        {"a buffer below 0", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_BUFFER, -1)},
        {"a priority beyond all", BASS_ERROR_ILLPARAM, attribute(jingle, BASS_ATTRIB_VOLDSP_PRIORITY, 1e9F)},
        {"a slide to nowhere", BASS_ERROR_ILLPARAM,
         [&] { return !BASS_ChannelSlideAttribute(jingle, BASS_ATTRIB_VOL, nan, 5); }},
        {"the level of no time", BASS_ERROR_ILLPARAM,
         [&] { return !BASS_ChannelGetLevelEx(jingle, value, 0, 2); }},
        {"the level of what plays nowhere", BASS_ERROR_NOTAVAIL,
         [&] { return !BASS_ChannelGetLevelEx(decoding, value, 0.04F, 2); }},
        {"the mixer's level of what is in none", BASS_ERROR_HANDLE,
         [&] { return !BASS_Mixer_ChannelGetLevelEx(decoding, value, 0.04F, 2); }},
        {"reading what a mixer reads", BASS_ERROR_NOTAVAIL,
         [&] { return BASS_ChannelGetData(jingle, value, 8) == ~DWORD{0}; }},
        {"an unknown kind of sync", BASS_ERROR_ILLTYPE,
         [&] {
             return BASS_ChannelSetSync(
                        jingle, 2, 0, [](auto, auto, auto, auto) {}, nullptr) == 0;
         }},
        {"a sync without a procedure", BASS_ERROR_ILLPARAM,
         [&] { return BASS_ChannelSetSync(jingle, 0, 0, nullptr, nullptr) == 0; }},
        {"an unknown effect", BASS_ERROR_ILLTYPE, [&] { return BASS_ChannelSetFX(jingle, 3, 0) == 0; }},
        {"another channel's effect", BASS_ERROR_HANDLE, [&] { return !BASS_ChannelRemoveFX(decoding, eq); }},
        {"a band below 0", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXSetParameters(eq, &none); }},
        {"a band beyond all", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXSetParameters(eq, &far); }},
        {"a centre that is no number", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXSetParameters(eq, &odd); }},
        {"a band that was never set", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXGetParameters(eq, &unset); }},
        {"no record", BASS_ERROR_ILLPARAM, [&] { return !BASS_FXSetParameters(eq, nullptr); }},
        {"tempo over a playing channel", BASS_ERROR_DECODE,
         [&] { return BASS_FX_TempoCreate(playing, 0) == 0; }},
        {"tempo over what sits in a mixer", BASS_ERROR_ALREADY,
         [&] { return BASS_FX_TempoCreate(jingle, 0) == 0; }},
        {"a split of a playing channel", BASS_ERROR_DECODE,
         [&] { return BASS_Split_StreamCreate(playing, 0, nullptr) == 0; }},
        {"a playing channel in a mixer", BASS_ERROR_DECODE,
         [&] { return !BASS_Mixer_StreamAddChannel(studio.mainMixer, playing, 0); }},
        {"a mixer that is none", BASS_ERROR_HANDLE,
         [&] { return !BASS_Mixer_StreamAddChannel(jingle, decoding, 0); }},
        {"in two mixers", BASS_ERROR_ALREADY,
         [&] { return !BASS_Mixer_StreamAddChannel(studio.micMixer, jingle, 0); }},
        {"out of no mixer", BASS_ERROR_NOTAVAIL, [&] { return !BASS_Mixer_ChannelRemove(decoding); }},
        {"a mono mixer", BASS_ERROR_FORMAT, [] { return BASS_Mixer_StreamCreate(44100, 1, 0) == 0; }},
        {"a mixer of 5 Hz", BASS_ERROR_FREQ, [] { return BASS_Mixer_StreamCreate(5, 2, 0) == 0; }},
        {"an unknown option", BASS_ERROR_ILLPARAM, [] { return !BASS_SetConfig(99, 1); }},
        {"more than full", BASS_ERROR_ILLPARAM,
         [] { return !BASS_SetConfig(BASS_CONFIG_GVOL_STREAM, 10001); }},
        {"a device at 5 Hz", BASS_ERROR_ALREADY, [] { return !BASS_Init(kMain, 5, 0, nullptr, nullptr); }},
        {"a device that is open", BASS_ERROR_ALREADY,
         [] { return !BASS_Init(-1, 44100, 0, nullptr, nullptr); }},
        {"a device beyond the last", BASS_ERROR_DEVICE, [] { return !BASS_SetDevice(31); }},
        {"a device far beyond", BASS_ERROR_DEVICE, [] { return !BASS_Init(31, 44100, 0, nullptr, nullptr); }},
        {"the name beyond the last", BASS_ERROR_DEVICE, [&] { return !BASS_GetDeviceInfo(3, &device); }},
        {"the input beyond the last", BASS_ERROR_DEVICE,
         [&] { return !BASS_RecordGetDeviceInfo(1, &device); }},
        {"an input that is not in use", BASS_ERROR_INIT, [] { return !BASS_RecordSetDevice(0); }},
        {"the default input, not in use", BASS_ERROR_INIT, [] { return !BASS_RecordSetDevice(~DWORD{0}); }},
        {"freed without use", BASS_ERROR_INIT, [] { return !BASS_RecordFree(); }},
        {"recorded without use", BASS_ERROR_INIT,
         [] { return BASS_RecordStart(44100, 2, 0, nullptr, nullptr) == 0; }},
        {"an input beyond the last in use", BASS_ERROR_DEVICE, [] { return !BASS_RecordInit(7); }},
    });
    EXPECT_TRUE(BASS_RecordInit(0));
    expectAll({
        {"recorded in mono", BASS_ERROR_FORMAT,
         [] { return BASS_RecordStart(44100, 1, 0, nullptr, nullptr) == 0; }},
        {"recorded with a callback", BASS_ERROR_ILLPARAM,
         [&] { return BASS_RecordStart(44100, 2, 0, value, nullptr) == 0; }},
    });
}

}  // namespace
}  // namespace zv::engine::test
