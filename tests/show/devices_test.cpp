// Outputs, inputs and what stands between them.

#include "audio/device_levels.h"
#include "audio/effects.h"
#include "audio/levels.h"
#include "audio/output_watch.h"
#include "audio/talk_over.h"
#include "startup/settings/devices_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/meters_settings.h"
#include "startup/settings/volumes_settings.h"
#include "tests/show/show.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

class Devices : public ShowTest {
  protected:
    explicit Devices(OfflineOptions options = {.outputs = {"One", "Two", "Three"}, .inputs = {"Line", "Mic"}})
        : ShowTest(std::move(options)) {}
    float loudest(int output) {
        const Heard sound = heard(output);
        return sound.loudest(0, sound.frames());
    }
};

TEST_F(Devices, SavedOutputsAreFoundAgain) {
    struct Row {
        const char* name;
        std::string by, main, aux;  ///< numbers or names as saved
        int device0, device1, selected0, selected1;
    };
    const std::vector<Row> rows{
        {"first start", "ID", "1", "0", 1, 0, 0, 3},
        {"two cards", "ID", "2", "3", 2, 3, 1, 2},
        {"main gone", "ID", "7", "2", 1, 2, 0, 1},
        {"auxiliary gone", "ID", "2", "7", 2, 0, 1, 3},
        {"by name, nothing saved", "Name", "", "", 1, 0, 0, 3},
        {"by name", "Name", "Three", "Two", 3, 2, 2, 1},
        {"main name gone", "Name", "Four", "Two", 1, 2, 0, 1},
        {"no auxiliary by name", "Name", "Two", "none", 2, 0, 1, 3},
        {"auxiliary name gone falls to the first", "Name", "Two", "Four", 2, 1, 1, 0},
        {"both gone are both the first", "Name", "Four", "Five", 1, 1, 0, 0},
    };
    write("language.ini", "[English]\r\nsNoDevice=none\r\n");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        deviceSettings.SavDevBy = row.by;
        const bool byId = row.by == "ID";
        deviceSettings.DeviceName = byId ? "" : row.main, deviceSettings.DeviceAuxName = byId ? "" : row.aux;
        if (byId) deviceSettings.Device = std::stoi(row.main), deviceSettings.DeviceAux = std::stoi(row.aux);
        Device = {1, 0};
        ListOutDev();
        EXPECT_EQ(Device[0], row.device0);
        EXPECT_EQ(Device[1], row.device1);
        const OutputLists lists = CurrentOutputs();
        EXPECT_EQ(lists.main, (std::vector<std::string>{"One", "Two", "Three"}));
        EXPECT_EQ(lists.aux, (std::vector<std::string>{"One", "Two", "Three", "none"}));
        EXPECT_EQ(lists.mainSelected, row.selected0);
        EXPECT_EQ(lists.auxSelected, row.selected1);
        EXPECT_EQ(lists.byName, row.by == "Name");
        EXPECT_EQ(deviceSettings.DeviceName,
                  row.by == "Name" ? row.main.empty() ? "One" : row.main : std::string());
    }
}

TEST_F(Devices, SavedInputsAreFoundAgain) {
    struct Row {
        const char* name;
        std::string by, saved;
        int deviceIn, selected;
    };
    const std::vector<Row> rows{
        {"default", "ID", "", 0, 0},      {"second", "ID", "", 1, 1},         {"gone", "ID", "", 5, 0},
        {"by name", "Name", "Mic", 0, 1}, {"name gone", "Name", "USB", 1, 0}, {"no name", "Name", "", 1, 1},
    };
    InputLists lists;
    audioUpcalls.inputsListed = [&](const InputLists& given) { lists = given; };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        deviceSettings.SavDevBy = row.by;
        deviceSettings.DeviceInName = row.saved;
        deviceSettings.DeviceIn = row.deviceIn;
        EXPECT_EQ(CurrentInputs().selected, row.deviceIn < 2 ? row.deviceIn : -1);
        ListInDev();
        EXPECT_EQ(lists.inputs, (std::vector<std::string>{"Line", "Mic"}));
        EXPECT_EQ(lists.selected, row.selected);
        EXPECT_EQ(deviceSettings.DeviceIn, row.selected);
        EXPECT_EQ(CurrentInputs().inputs, lists.inputs);
        EXPECT_EQ(CurrentInputs().selected, row.selected);
    }
}

TEST_F(Devices, AJingleIsOnTheChosenOutputsAtTheirLevels) {
    openJingle(level(framesOf(60000)));
    clPlay(0, -1);
    const auto levels = [&](const char* what, std::vector<double> expected) {
        SCOPED_TRACE(what);
        pass(100);
        for (int i = 0; i < 3; ++i) heard(i);
        pass(100);
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(loudest(i), expected[static_cast<std::size_t>(i)], 1e-6) << i;
        EXPECT_EQ(OutputLevel(0), 50);
    };
    levels("main and second", {0.5, 0.5, 0});
    SetOutputVolume(1, 20);
    levels("auxiliary down", {0.5, 0.1, 0});
    MoveOutput(1, 3);
    levels("auxiliary on the third", {0.5, 0, 0.1});
    MoveOutput(1, 0);
    levels("no auxiliary", {0.5, 0, 0});
    MoveOutput(0, 2);
    levels("main on the second", {0, 0.5, 0});
    MoveOutput(1, 9);  // not there: the main output must not get it twice
    levels("auxiliary gone", {0, 0.5, 0});
    EXPECT_TRUE(sounds());
}

TEST_F(Devices, AnAuxiliaryOutputThatComesLaterIsInStep) {
    for (const bool reopened : {false, true}) {
        SCOPED_TRACE(reopened);
        Device[1] = 0;
        SetupMixers();
        openJingle(tones("a300 b300 c300 d300 e2000"));
        clPlay(0, -1);
        pass(350);
        if (reopened) ReopenOutputs();
        pass(300);
        MoveOutput(1, 2);
        heard(0), heard(1);
        pass(500);
        EXPECT_EQ(whatIsHeard(heard(0)), "c0-250 d250-");
        EXPECT_EQ(whatIsHeard(heard(1)), "c10-260 d260-") << "more than a period behind";
        evStop();
    }
}

TEST_F(Devices, ClosingLeavesNothingOpen) {
    for (const int single : {0, 1}) {
        SCOPED_TRACE(single);
        deviceSettings.DeviceSingle = static_cast<std::uint8_t>(single);
        deviceSettings.DeviceIn = 1;
        deviceSettings.MixerFreq = single == 1 ? 44100 : 48000;
        volumeSettings.Volume = 50;
        single == 1 ? bassini(0) : SetupMixers();
        EXPECT_EQ(MixerFreqAtStart, deviceSettings.MixerFreq);
        BASS_CHANNELINFO mixer{};
        EXPECT_TRUE(single == 1 || (BASS_ChannelGetInfo(MainMixer, &mixer) && mixer.freq == 48000));
        OpenMic();
        const auto open = [] {
            std::string numbers;
            BASS_DEVICEINFO info{};
            for (DWORD n = 0; BASS_GetDeviceInfo(n, &info); ++n)
                if ((info.flags & BASS_DEVICE_INIT) != 0) numbers += std::to_string(n);
            for (DWORD n = 0; BASS_RecordGetDeviceInfo(n, &info); ++n)
                if ((info.flags & BASS_DEVICE_INIT) != 0) numbers += " " + std::to_string(n);
            return numbers;
        };
        EXPECT_EQ(open(), single == 1 ? "1 1" : "012 1");
        if (single == 1) {
            EXPECT_NE(hMic, 0U);
            EXPECT_EQ(BASS_GetConfig(BASS_CONFIG_BUFFER), 1000U);
            openJingle(level(framesOf(500)));
            clPlay(0, -1);
            for (const double percent : {50, 100}) {
                pass(100);
                EXPECT_EQ(GetLevels()[2], 50);
                EXPECT_NEAR(heard().at(framesOf(90)), percent / 200, 1e-6);
                SetOutputVolume(0, 100);
            }
        }
        EXPECT_EQ(BASS_GetConfig(BASS_CONFIG_DEV_NONSTOP), 1U);
        if (single == 0)
            for (const StreamHandle output : {OutSplit[0], OutSplit[1], AuxKeepAlive}) {
                float buffer = 1;
                EXPECT_TRUE(BASS_ChannelGetAttribute(output, BASS_ATTRIB_BUFFER, &buffer) && buffer == 0);
            }
        FreeBASS();
        EXPECT_EQ(open(), "");
        for (const StreamHandle handle :
             {MainMixer, MicMixer, AuxKeepAlive, OutSplit[0], OutSplit[1], MainSplit[0], MicSplit[1],
              OutMixer[0], OutMixer[1], single == 1 ? 0 : hMic})
            EXPECT_EQ(handle, 0U);
    }
}

TEST_F(Devices, OutputsThatGoAwayAreToldWithinASecondAndSoIsTheirReturn) {
    write("language.ini", "[English]\r\nsNoDevice=none\r\nmOutLost=lost\r\nmOutStands=plays\r\n");
    deviceSettings.SavDevBy = "Name";
    deviceSettings.DeviceName = "One";
    deviceSettings.DeviceAuxName = "Three";
    ListOutDev();
    SetupMixers();
    int told = 0;
    audioUpcalls.outputsChanged = [&] { ++told; };
    openJingle(level(framesOf(60000)));
    clPlay(0, -1);
    const auto watch = [&](int ms) {
        for (int at = 0; at < ms; at += kOutputWatchMs) {
            pass(kOutputWatchMs);
            WatchOutputs();
        }
    };
    watch(2000);
    EXPECT_EQ(OutputTrouble(), "");
    EXPECT_EQ(told, 0);
    const struct {
        const char *gone, *back, *text;
    } rows[] = {{"One", "", "lost One - plays Three"},
                {"Three", "", "lost One, lost Three"},
                {"", "One", "lost Three - plays One"},
                {"", "Three", ""}};
    int changes = 0;
    for (const auto& row : rows) {
        devices->unplug(row.gone);
        devices->plug(row.back);
        watch(800);
        EXPECT_EQ(OutputTrouble(), row.text);
        EXPECT_EQ(told, ++changes);
        EXPECT_TRUE(sounds());
    }
    for (const bool hangs : {true, false}) {
        devices->hang("One", hangs);
        watch(1000);
        EXPECT_EQ(OutputTrouble(), hangs ? "lost One - plays Three" : "");
    }
    MoveOutput(1, 0);
    devices->unplug("One");
    watch(800);
    EXPECT_EQ(OutputTrouble(), "lost One") << "no other one stands in";
    evStop();
}

TEST_F(Devices, TheMicrophoneIsSilentHoweverOftenItIsOpened) {
    deviceSettings.DeviceIn = 1;
    OpenMic();
    devices->feedInput("Mic", std::vector<float>(framesOf(5000) * 2, 0.25F), kRate);
    for (const StreamHandle split : MicSplit) BASS_ChannelSlideAttribute(split, BASS_ATTRIB_VOLDSP, 0.5F, 0);
    pass(500);
    EXPECT_EQ(InputLevel(), 25);
    OpenMic();
    pass(300);
    heard();
    pass(100);
    EXPECT_EQ(loudest(0), 0) << "opened anew it is silent again";
    EXPECT_EQ(InputLevel(), 25);
    volumeSettings.VolumeInMain = 80, volumeSettings.VolumeInAux = 20;
    RaiseMic();
    pass(300);
    heard(0), heard(1);
    pass(100);
    EXPECT_NEAR(loudest(0), 0.2, 1e-4);
    EXPECT_NEAR(loudest(1), 0.05, 1e-4);
    LowerMic();
    const StreamHandle open = hMic;
    CloseMic();
    EXPECT_EQ(InputLevel(), 0);
    EXPECT_FALSE(BASS_StreamFree(open)) << "it is freed";
}

TEST_F(Devices, MetersAndTriggersTellTheLoudestOfThoseThatMay) {
    const auto sound = [&](const char* name, std::int16_t left, std::int16_t right) {
        std::vector<std::int16_t> samples = level(framesOf(9000), left);
        for (std::size_t i = 1; i < samples.size(); i += 2) samples[i] = right;
        writeWav(path(name), samples);
    };
    sound("left.wav", 16384, 8192), sound("right.wav", 3277, 19661), sound("voice.wav", 22938, 3277);
    const auto voice = [&](StreamHandle& handle) {
        handle = BASS_StreamCreateFile(false, path("voice.wav").string().c_str(), 0, 0, BASS_STREAM_DECODE);
        BASS_Mixer_StreamAddChannel(MainMixer, handle, BASS_MIXER_CHAN_BUFFER);
    };
    struct Row {
        const char *left, *right;  ///< keys
        StreamHandle* more;
        int liveDucks;
        std::array<int, 6> levels;
        int trigger;
    };
    for (const Row& row : std::vector<Row>{
             {"", "Volm=0", nullptr, 0, {50, 25, 50, 25, 50, 0}, 0},
             {"", "", nullptr, 0, {50, 60, 50, 60, 60, 0}, 1},
             {"", "AutoDuck=1", nullptr, 0, {50, 25, 50, 60, 50, 0}, 0},
             {"", "AutoDuck=2 NoTrigDuck=1", nullptr, 0, {50, 25, 50, 60, 50, 0}, 0},
             {"NoTrigDuck=1", "AutoDuck=2", nullptr, 0, {10, 60, 50, 60, 60, 0}, 1},
             {"NoTrigDuck=1", "NoTrigDuck=1", nullptr, 0, {0, 0, 50, 60, 0, 0}, kNobody},
             {"", "Volm=400", nullptr, 0, {50, 100, 50, 100, 100, 0}, 1},
             {"", "", &hTmAnVoice, 0, {70, 60, 70, 60, 70, 0}, kAnnouncer},
             {"", "", &hLive, 0, {50, 60, 70, 60, 70, 0}, kLiveStream},
             {"", "", &hLive, 1, {50, 60, 70, 60, 60, 0}, 1},
         }) {
        SCOPED_TRACE(std::string(row.left) + " / " + row.right);
        openPalette(paletteLines(std::string("Path=left.wav ") + row.left, 0) +
                    paletteLines(std::string("Path=right.wav ") + row.right, 1));
        liveSettings.LiveAutoDuck = row.liveDucks;
        clPlay(0, -1), clPlay(1, -1);
        if (row.more != nullptr) voice(*row.more);
        pass(200);
        EXPECT_EQ(GetLevels(), row.levels);
        EXPECT_EQ(LoudestTrigger, row.trigger);
        EXPECT_NEAR(LoudestLevel[1], std::string(row.right) == "Volm=400" ? 2.4 : row.levels[3] / 100.0,
                    0.01);
        evStop();
        if (row.more != nullptr) BASS_StreamFree(std::exchange(*row.more, 0));
        EXPECT_EQ(GetLevels(), (std::array<int, 6>{}));
    }
    writeWav(path("voice.wav"), sine(framesOf(9000), 1000, 0.51));
    StreamHandle jingle = 0;
    voice(jingle);
    hTmAn = jingle;
    pass(200);
    for (const int rms : {0, 1}) {
        meterSettings.VuRMS = rms;
        EXPECT_EQ(GetLevels()[0], rms == 1 ? 36 : 50);
        EXPECT_EQ(LoudestTrigger, kAnnouncer);
    }
    BASS_StreamFree(jingle);
    hTmAn = 0;
}

class LateDevice : public Devices {
  protected:
    LateDevice() : Devices({.outputs = {"Late", "Other"}, .inputs = {}}) {}
};

TEST_F(LateDevice, TheFirstOutputThatComesIsTakenWithinTwoSeconds) {
    write("language.ini", "[English]\r\nmNoOutDev=silent\r\n");
    FreeBASS();
    devices->unplug("Late"), devices->unplug("Other");
    int told = 0;
    audioUpcalls.noOutputDevice = [&] { ++told; };
    for (const int single : {0, 1}) {
        SCOPED_TRACE(single);
        deviceSettings.DeviceSingle = static_cast<std::uint8_t>(single);
        ListOutDev();
        ListInDev();
        single == 1 ? bassini(0) : SetupMixers();
        OpenMic(), CloseMic();
        EXPECT_EQ(told, single + 1);
        WatchOutputs();
        EXPECT_EQ(OutputTrouble(), "silent");
        openJingle(level(framesOf(60000)));
        clPlay(0, -1);
        pass(1000);
        EXPECT_TRUE(single == 1 || BASS_ChannelGetPosition(jingle().hPlay, BASS_POS_BYTE) == bytesOf(1000));
        heard();
        devices->plug("Late"), devices->plug("Other");
        for (int look = 0; look < 10; ++look) {
            pass(kOutputWatchMs);
            WatchOutputs();
        }
        EXPECT_EQ(OutputTrouble(), "");
        heard(0), heard(1);
        pass(200);
        for (const int output : single == 0 ? std::vector{0, 1} : std::vector<int>{})
            EXPECT_NEAR(loudest(output), 0.5, 1e-6) << output << ": what sounds goes on";
        evStop();
        FreeBASS();
        devices->unplug("Late"), devices->unplug("Other");
    }
}

TEST(Effects, ReverbLevelFollowsItsTime) {
    // a = log(1800) - log(3x), b = log(1800) - log(10) = 5.19, both to two decimals.
    for (const auto& [ms, a] :
         {std::pair(0.0, 5.19), {1, 6.40}, {10, 4.09}, {200, 1.10}, {599, 0}, {600, 0}, {601, 0}, {1004, 0}})
        EXPECT_NEAR(ReverbMix(ms), -96 * a / 5.19, 1e-9) << ms;
}

}  // namespace
}  // namespace zv::test
