// Who goes down, when, how far and how fast: auto-duck, automix, microphone; and what the presenter sees of it.

#include <cmath>

#include "audio/devices.h"
#include "audio/duck.h"
#include "audio/levels.h"
#include "audio/talk_over.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/live_settings.h"
#include "startup/settings/marks_settings.h"
#include "startup/settings/volumes_settings.h"
#include "tests/ui/window_test.h"
#include "ui/press/global_keys.h"
#include "ui/screen/meters.h"
#include "ui/screen/mic_keys.h"

namespace zv::test {

namespace {

constexpr int kBed = 0, kTrigger = 1;
constexpr double kLevel = 0.5;  // of level()

constexpr const char *kStays = "0.0 0.0 0.0 0.0", *kDucks = "0.0 -16.5 -16.5 0.0",
                     *kBackEarly = "0.0 -16.5 0.0 0.0",  // half a second before the end of what pushes
                         *kDown = "-16.5 -16.5 -16.5 -16.5";
enum class Live { none, plain, ducks, ducksByAnnouncer };

/// A bed plays, tone h; with it a stream, tone g. From 600 ms for two seconds another sounds: a jingle or the announcer.
/// Levels in dB before it, while it sounds, shortly before its end and after it. What two jingles do to each other is
/// held by the shows by chance.
struct Row {
    int mode;  ///< 0 level, 1 time, 2 none
    std::string pushes;
    Live live;
    const char *heard, *liveHeard;
};
const Row kRows[] = {{0, "announcer", Live::none, kDucks, ""},
                     {0, "jingle", Live::ducks, kDucks, kDucks},
                     {0, "", Live::plain, kDown, kStays},
                     {0, "", Live::ducks, kStays, kStays},
                     {0, "jingle", Live::ducksByAnnouncer, kDucks, "-6.0 -22.5 -22.5 -6.0"},
                     {1, "announcer", Live::none, kBackEarly, ""},
                     {1, "jingle", Live::ducks, kBackEarly, kBackEarly},
                     {1, "jingle", Live::ducksByAnnouncer, kBackEarly, "-6.0 -6.0 -6.0 -6.0"},
                     {2, "jingle", Live::ducks, kStays, kStays}};

}  // namespace

class MixTest : public WindowTest {
  protected:
    MixTest() {
        duckSettings.FadeOutSpeed = 100;
        duckSettings.FadeInSpeed = 200;
        liveSettings.VolLive = 100;
        DuckWanted = Ducked = MicPushed = TalkOverOn = false;
        BusLevel = 1;
    }
    ~MixTest() override {
        hLive = hTmAnVoice = 0;
        hTmAn = 0;
        Disarm(frmMain().live.ckMixByTa);
        Disarm(frmMain().keys.btMicPush);
        Disarm(frmMain().keys.btMicTO);
        MicPushed = TalkOverOn = false;
    }

    /// A sound of its own in the mix, as live stream and announcer are.
    StreamHandle source(const std::string& score) {
        writeWav(path(score + ".wav"), tones(score));
        const StreamHandle handle = BASS_StreamCreateFile(false, path(score + ".wav").string().c_str(), 0, 0,
                                                          BASS_STREAM_DECODE | BASS_UNICODE);
        BASS_Mixer_StreamAddChannel(MainMixer, handle, BASS_MIXER_CHAN_BUFFER);
        return handle;
    }
    void start(int index) {
        press(index);
        release(index);
    }
    const std::string& foot() { return frmMain().display.lblQuiet.caption(); }
};

class Duck : public MixTest, public ::testing::WithParamInterface<Row> {};

TEST_P(Duck, IsHeard) {
    const Row& row = GetParam();
    duckSettings.AutoDuckMode = row.mode;
    liveSettings.LiveAutoDuck = row.live >= Live::ducks ? 1 : 0;
    load(kBed, tones("h5000"), "AutoDuck=1");
    load(kTrigger, tones("a2000"));
    heard();
    start(kBed);
    if (row.live != Live::none) hLive = source("g5000");
    if (row.live == Live::ducksByAnnouncer) {  // what it has in hand stays at the level that it has set
        Arm(frmMain().live.ckMixByTa, markSettings.taColor);
        BASS_ChannelSetAttribute(hLive, BASS_ATTRIB_VOL, 0.5F);
    }
    pass(600);
    if (row.pushes == "jingle") start(kTrigger);
    if (row.pushes == "announcer") hTmAnVoice = source("c2000");
    pass(3400);
    const Heard sound = heard();
    const std::vector<int> moments{500, 1900, 2450, 3600};
    EXPECT_EQ(levelsOf(sound, 'h', moments), row.heard);
    EXPECT_EQ(row.live == Live::none ? "" : levelsOf(sound, 'g', moments), row.liveHeard);
}

INSTANTIATE_TEST_SUITE_P(Rows, Duck, ::testing::ValuesIn(kRows));

TEST_F(MixTest, theMicrophoneMakesRoom) {
    Device[1] = 2;
    bassini(1);
    volumeSettings.InputEnabled = 1;
    SwitchInput(true);
    load(1, level(kRate * 9));
    start(1);
    pass(200);
    heard(0), heard(1);
    const auto main = [&](int ms) {  // level of the jingle's bus on both outputs after that time
        pass(ms);
        const Heard one = heard(0), two = heard(1);
        EXPECT_EQ(one.at(one.frames() - 1), two.at(two.frames() - 1));
        return 20 * std::log10(one.at(one.frames() - 1) / kLevel);
    };
    const double down = 20 * std::log10(0.15);
    frmMain().keys.btMicPush.onMouseDown({});
    EXPECT_NEAR(main(210), down, 0.01);
    EXPECT_EQ(foot(), "Mic");

    // Talk-over changes no level while the key is held, and none when it is turned on.
    TalkOverTog(), TalkOverTog();
    EXPECT_NEAR(main(300), down, 0.01);
    frmMain().keys.btMicPush.onMouseUp({});
    EXPECT_NEAR(main(400), 0, 0.01);
    TalkOverTog();
    EXPECT_NEAR(main(300), 0, 0.01);
    // Turned off it goes to the output's level, not to the full one.
    volumeSettings.Volume = volumeSettings.VolumeAux = 60;
    TalkOverTog();
    EXPECT_NEAR(main(300), 20 * std::log10(0.6), 0.01);
    EXPECT_EQ(foot(), "Talkover 60 % · Volume 60 % · Aux volume 60 %");
    volumeSettings.Volume = volumeSettings.VolumeAux = 100;

    // The same colour for both keys holds the bus down, deliberately.
    markSettings.toColor = markSettings.moColor;
    TalkOverTog();
    MicPush();
    MicRelease();
    EXPECT_NEAR(main(700), down, 0.01);
    // The input goes away: its key with it, and the bus comes back after InTORelease.
    MicPush();
    SwitchInput(false);
    EXPECT_TRUE(hMic == 0 && !Armed(frmMain().keys.btMicPush));
    EXPECT_NEAR(main(400), down, 0.01);
    EXPECT_NEAR(main(500), 0, 0.01);
}

TEST_F(MixTest, whyIsItQuiet) {
    load(kBed, tones("h5000"), "AutoDuck=1");
    load(kTrigger, tones("a2000"));
    start(kBed);
    pass(200);
    EXPECT_EQ(foot(), "");
    start(kTrigger);
    pass(300);
    EXPECT_EQ(foot(), "Duck: sound 1");
    EXPECT_EQ(frmMain().display.lblQuiet.toolTip(), foot());
    volumeSettings.Volume = 60;
    CkAutoMixTog();
    load(2, tones("b2000"), "NoTrigDuck=1");
    start(2);
    pass(200);
    EXPECT_EQ(foot(), "Automix · Volume 60 %") << "the bed leaves: nobody holds it down any more";
    volumeSettings.Volume = 100;
    evStop();
    pass(300);
    EXPECT_EQ(foot(), "");
    CkAutoMixTog();
    start(2);
    pass(20);
    start(kTrigger);
    pass(80);
    EXPECT_EQ(foot(), "Lock: sound 1");
    pass(2000);
    EXPECT_EQ(foot(), "") << "a refusal is told for two seconds";
}

TEST_F(MixTest, aBarThatWasFullIsMarkedForAMoment) {
    std::vector<std::int16_t> loud = level(kRate, 32767);
    for (std::size_t i = 1; i < loud.size(); i += 2) loud[i] = 8192;  // the right side is soft
    load(1, loud, "Volm=150");
    const Control& left = frmMain().VuL;
    const Control& right = frmMain().VuR;
    start(1);
    pass(900);
    EXPECT_FALSE(right.meterLook().clipped);
    EXPECT_EQ(left.toolTip(), "Peak L +3.5 dBFS, clipped");
    EXPECT_EQ(right.toolTip(), "Peak R -8.5 dBFS");
    pass(2800);
    EXPECT_TRUE(left.meterLook().clipped);
    pass(1200);  // the tool tip is looked at twice a second
    EXPECT_FALSE(left.meterLook().clipped);
    EXPECT_EQ(left.toolTip(), "Peak L -\u221e dBFS");
    VuTestOn = true;
    pass(100);
    EXPECT_EQ(left.value, kMeterMax);
    VuTestOn = false;
}

}  // namespace zv::test
