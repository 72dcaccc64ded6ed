// What a press does, in every mode: the sound that went out is held against arithmetic.
#include <map>
#include <ostream>
#include <sstream>

#include "platform/clock.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/minimal_settings.h"
#include "tests/show/show.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

const auto press = [] { clPlay(0, -1); };
std::string bytes(double ms) { return std::to_string(bytesOf(ms)); }
std::string key(const char* stem, const std::string& value) {
    return iniLine(std::string(stem) + "_0", value);
}

/// One row: the jingle's keys, what is done when (ms), which of its tones sounded when (tests/support/ear.h),
/// and the state at the end. Positions stand in ms. The file is 100 ms of tone a, then b; a sequence is an
/// intro a up to 300, a loop b up to 600, then c; 2,500 ms in all.
struct Row {
    const char* name;
    std::string keys;
    const char* acts;
    const char* heard;
    PlayState state;
};

constexpr int kRowMs = 3200;
const std::string kSeq = "Seq=1 LoopIn=300 LoopOut=600 ";
const std::string kSeqFade = kSeq + "FadeOut=200 ";
const std::string kSeqFades = kSeqFade + "LoopFadeOut=1 ";

std::vector<Row> rows() {
    using enum PlayState;
    // clang-format off
    return {
        {"to its end", "", "0 press", "a0-100 b100-2500", playing},
        {"a cue point behind the end is none", "CueStart=9000", "0 press", "a0-100 b100-2500", playing},
        {"from its cue point", "CueStart=50", "0 press", "a0-50 b50-2450", playing},
        {"velocity is the level", "", "0 press:64", "a0-100@-6.0 b100-2500@-6.0", playing},
        {"volume of its own", "Volm=50", "0 press", "a0-100@-6.0 b100-2500@-6.0", playing},
        {"loop", "Loop=1", "0 press", "a0-100 b100-2500 a2500-2600 b2600-", playing},

        // What a press on a sounding jingle does, by its mode and the global ones.
        {"repeat", "PlayMod=1", "0 press 500 press", "a0-100 b100-510 a520-620 b620-3020", playing},
        {"repeat by the global mode", "", "0 repeat press 500 press", "a0-100 b100-510 a520-620 b620-3020", playing},
        {"repeat against global touch", "PlayMod=1", "0 touch press 500 press", "a0-100 b100-510 a520-620 b620-3020", playing},
        {"touch", "PlayMod=2", "0 press 500 press", "a0-100 b100-500 a500-600 b600-3000", playing},
        {"touch by the global mode", "", "0 touch press 500 press", "a0-100 b100-500 a500-600 b600-3000", playing},
        {"touch against global repeat", "PlayMod=2", "0 repeat press 500 press", "a0-100 b100-500 a500-600 b600-3000", playing},
        {"stop", "", "0 press 500 press", "a0-100 b100-500", stopping},
        {"play stop", "PlayMod=3", "0 press 500 press", "a0-100 b100-500", stopping},
        {"play stop against global repeat", "PlayMod=3", "0 repeat press 500 press", "a0-100 b100-500", stopping},
        {"play stop against global touch", "PlayMod=3", "0 touch press 500 press", "a0-100 b100-500", stopping},
        {"no stop", "PlayMod=4", "0 press 500 press 600 press", "a0-100 b100-2500", playing},
        {"no stop against global repeat", "PlayMod=4", "0 repeat press 500 press", "a0-100 b100-2500", playing},
        {"no stop against global touch", "PlayMod=4", "0 touch press 500 press", "a0-100 b100-2500", playing},
        {"sequence against its own mode", kSeqFade + "PlayMod=4", "0 press 200 press", "a0-200~300! b300~400", stopping},
        {"sequence against global touch", kSeqFade, "0 touch press 100 press", "a0-100~300", stopping},
        {"a modifier key keeps the press off", "", "0 press 500 ctrl press", "a0-100 b100-2500", playing},
        {"each of them", "", "0 press 500 shift press 600 alt press", "a0-100 b100-2500", playing},

        // Fades, and presses during them.
        {"stop with fade", "FadeOut=200", "0 press 500 press", "a0-100 b100-500~700", stopping},
        {"stop with logarithmic fade", "FadeOut=200 LogFadeOut=1", "0 press 500 press", "a0-100 b100-500~630", stopping},
        {"second press cuts a fade", "FadeOut=200", "0 press 500 press 600 press", "a0-100 b100-500~600!", idle},
        {"and a third starts", "FadeOut=200", "0 press 500 press 600 press 700 press", "a0-100 b100-500~600! a700-800 b800-", playing},
        {"repeat during a fade", "FadeOut=200 PlayMod=1", "0 press 500 release 600 press", "a0-100 b100-500~610! a620-720 b720-3120", playing},
        {"touch: release stops", "FadeOut=200 PlayMod=2", "0 press 500 release", "a0-100 b100-500~700", stopping},
        {"touch: press takes up a fade", "FadeOut=200 PlayMod=2", "0 press 500 release 600 press", "a0-100 b100-500~600! a600-700 b700-3100", playing},
        {"stop position", "StopPos=500", "0 press", "a0-100 b100-500", playing},
        {"stop position begins the fade", "StopPos=500 FadeOut=200", "0 press", "a0-100 b100-500~700", playing},
        {"stop all has no fade", "FadeOut=200", "0 press 500 stop", "a0-100 b100-500", playing},

        // Sequences: by state, position and LoopFadeOut.
        {"sequence: loops until told", kSeq, "0 press", "a0-300 b300-", playing},
        {"sequence: intro", kSeqFade, "0 press 100 press", "a0-100~300", stopping},
        {"sequence: intro, fades out of its loop", kSeqFades, "0 press 100 press", "a0-100~300", stopping},
        {"sequence: at the loop's very start", kSeqFade + "CueStart=300", "0 press press", "b0-300 c300-2200", playing},
        {"sequence: loop is left", kSeqFade, "0 press 1000 press", "a0-300 b300-1200 c1200-3100", leavingLoop},
        {"sequence: loop fades out", kSeqFades, "0 press 1000 press", "a0-300 b300-1000~1200", stopping},
        {"sequence: leaving, fades", kSeqFade, "0 press 700 press 800 press", "a0-300 b300-800~900! c900~1000", stopping},
        {"sequence: fading, cut", kSeqFade, "0 press 500 press 700 press 800 press", "a0-300 b300-600 c600-700~800!", idle},
        {"sequence: fading out of its loop, cut", kSeqFades, "0 press 1000 press 1100 press", "a0-300 b300-1000~1100!", idle},

        // Presses that are refused or handed on.
        {"nothing starts while controls are learnt", "", "0 learn press", "", idle},
        {"nor stops", "", "0 press 500 learn stop press", "a0-100 b100-2500", playing},
        {"lock refuses while something is left", "", "0 lock press", "", idle},
        {"lock lets a jingle stop", "FadeOut=200", "0 press 500 lock press", "a0-100 b100-500~700", stopping},
        {"lock refuses a restart in place", "PlayMod=2", "0 press 500 lock press", "a0-100 b100-2500", playing},
        {"lock refuses a repeat when the old one is gone", "PlayMod=1", "0 press 500 lock press", "a0-100 b100-510", playing},
        {"the crossfade leaves its own press alone", "", "0 mix press 500 press", "a0-100 b100-500", stopping},
    };
    // clang-format on
}

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

void act(const std::string& word) {
    const std::map<std::string, std::function<void()>> words{
        {"press", press},
        {"press:64", [] { clPlay(0, 64); }},
        {"release", [] { clTouchStop(0); }},
        {"stop", evStop},
        {"repeat", [] { ToggleAutoRep = 1; }},
        {"touch", [] { ToggleTouch = 1; }},
        {"ctrl", [] { CtrlDown = true; }},
        {"shift", [] { CtrlDown = AltDown = false, ShiftDown = true; }},
        {"alt", [] { CtrlDown = ShiftDown = false, AltDown = true; }},
        {"learn", [] { MIDILearnActive = true; }},
        {"lock", [] { automixSettings.AutoMix = 2, DispRemain = 1.5; }},
        {"mix", [] { automixSettings.AutoMix = 1; }},
    };
    words.at(word)();
}

class Press : public ShowTest, public ::testing::WithParamInterface<Row> {};

TEST_P(Press, Sounds) {
    const Row row = GetParam();
    const bool sequence = row.keys.find("Seq=1") != std::string::npos;
    openJingle(tones(sequence ? "a300 b300 c1900" : "a100 b2400"), paletteLines(row.keys, 0));
    const auto began = monotonicMs();
    perform(row.acts, act);
    pass(static_cast<int>(began + kRowMs - monotonicMs()));
    const Heard sound = heard();
    EXPECT_EQ(whatIsHeard(sound), row.heard);
    EXPECT_EQ(sound.stereo, heard(1).stereo) << "both outputs send the same";
    EXPECT_EQ(sounds(), sound.end() == sound.frames());
    EXPECT_EQ(jingle().State, row.state);
    EXPECT_EQ(LastPlayedJ, 0);
    EXPECT_EQ(reports, std::vector<std::string>());
}

std::string rowName(const ::testing::TestParamInfo<Row>& info) {
    std::string name;
    for (const char c : std::string(info.param.name))
        name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    return name;
}
INSTANTIATE_TEST_SUITE_P(Rows, Press, ::testing::ValuesIn(rows()), rowName);

class Play : public ShowTest {};

/// The same at every run; a reverb does to it what it does to music, not what it does to a lone sine.
std::vector<std::int16_t> noise(std::size_t frames) {
    std::vector<std::int16_t> samples(frames * 2);
    std::uint32_t state = 1;
    for (std::int16_t& sample : samples) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<std::int16_t>(static_cast<int>(state >> 18) - 8192);
    }
    return samples;
}

TEST_F(Play, LoopsWrapToTheFrame) {
    struct Loop {
        const char* name;
        std::string keys;
        std::size_t from, to;
    };
    const std::vector<Loop> loops{
        {"whole", key("Loop", "1"), 0, 10000},
        {"sequence",
         key("Seq", "1") + key("LoopIn", std::to_string(2000 * 4)) + key("LoopOut", std::to_string(7000 * 4)),
         2000, 7000},
        {"sequence to the end", key("Seq", "1") + key("LoopIn", std::to_string(2000 * 4)), 2000, 10000},
    };
    for (const Loop& loop : loops) {
        SCOPED_TRACE(loop.name);
        openJingle(ramp(10000), loop.keys);
        press();
        pass(800);
        const Heard sound = heard();
        std::size_t expected = 0;
        for (std::size_t frame = 0; frame < sound.frames(); ++frame) {
            if (frame > 441) {
                ASSERT_EQ(rampFrame(sound, frame), static_cast<int>(expected)) << "frame " << frame;
            }
            if (++expected == loop.to) expected = loop.from;
        }
        evStop();
        pass(20);
    }
}

TEST_F(Play, ALoopTurnedOffPlaysToTheEndAtTheNextPress) {
    openJingle(ramp(10000), key("Seq", "1") + key("LoopIn", "8000") + key("LoopOut", "20000"));
    press();
    pass(50);
    evStop();
    jingle().Seq = 0;
    heard();
    press();
    pass(300);
    EXPECT_EQ(heard().end(), 10000U);
    // A plain loop instead: over the whole sound.
    jingle().Loop = 1;
    press();
    pass(500);
    const Heard sound = heard();
    for (std::size_t frame = 442; frame < sound.frames(); ++frame)
        ASSERT_EQ(rampFrame(sound, frame), static_cast<int>(frame % 10000)) << frame;
    evStop();
}

TEST_F(Play, ReverbTailRingsOnAfterTheStop) {
    // Direct sound off at once, the channel stops when the tail is over; louder tails and fades in between do
    // not.
    openJingle(noise(framesOf(3000)), key("FadeOut", "100") + key("FXV", "0,0,0,0,0,0,0,600,0,44100,0"));
    ASSERT_EQ(jingle().ReverbMs, 600);
    press();
    pass(1000);
    const float before = heard().loudest(framesOf(500), framesOf(1000));
    clPlay(0, -1);
    EXPECT_EQ(jingle().State, PlayState::stopping);
    EXPECT_NE(jingle().FadeSync, 0U);
    pass(590);
    EXPECT_TRUE(sounds());
    const Heard tail = heard();
    EXPECT_LT(tail.loudest(framesOf(20), framesOf(100)), before) << "the direct sound is gone";
    EXPECT_GT(tail.loudest(framesOf(20), framesOf(100)), 1e-4F) << "the tail is heard";
    EXPECT_LT(tail.loudest(framesOf(500), framesOf(590)), tail.loudest(framesOf(20), framesOf(100)) * 0.1F);
    pass(40);
    EXPECT_FALSE(sounds());
    EXPECT_FALSE(jingle().Playing);

    // A press takes it up anew: the old sync does not end the new play.
    jingle().PlayMod = PlayMode::touch;
    press();
    pass(100);
    clTouchStop(0);
    pass(200);
    press();
    pass(1000);  // well past where it lay
    EXPECT_TRUE(sounds());
    EXPECT_EQ(jingle().FadeSync, 0U);
}

TEST_F(Play, ATailOfALoopEndsToo) {
    openJingle(sine(framesOf(500), 1000), key("Loop", "1") + key("FXV", "0,0,0,0,0,0,0,900,0,44100,0"));
    press();
    pass(300);
    clTouchStop(0);
    pass(880);
    EXPECT_TRUE(sounds());
    pass(900);
    EXPECT_FALSE(sounds());
}

TEST_F(Play, TouchDuringAFadeSilencesTheTailThatTheDisplayWalkedLast) {
    writeWav(path("burst.wav"), noise(framesOf(100)));
    openJingle(level(framesOf(3000)), paletteLines("PlayMod=2 FadeOut=500 Volm=0", 0) +
                                          "Path_1=burst.wav\r\nFXV_1=0,0,0,0,0,0,0,2000,0,44100,0\r\n");
    clPlay(1, -1);
    press();
    pass(300);
    clTouchStop(0);
    DispLoopIdx = 1;
    pass(100);
    EXPECT_GT(heard().loudest(framesOf(300), framesOf(400)), 1e-3F) << "the tail rings";
    press();
    pass(100);
    EXPECT_LT(heard().loudest(framesOf(20), framesOf(100)), 1e-6F);
}

TEST_F(Play, PressesOnWhatCannotPlayDoNothing) {
    openJingle(level(1000));
    for (const int index : {-1, 1, 95, 119, 120, 100000}) {
        clPlay(index, -1);
        clTouchStop(index);
    }
    pass(50);
    EXPECT_TRUE(heard().silent(0, framesOf(50)));
    EXPECT_EQ(reports, std::vector<std::string>());
}

TEST_F(Play, EveryPressOfAHundredStopsEarlierStopPositions) {
    // Started and stopped many times before its stop position, which moves on: it fades once, when it gets there.
    openJingle(level(framesOf(2000)),
               key("StopPos", bytes(300)) + key("FadeOut", "100") + key("PlayMod", "2"));
    for (int i = 0; i < 100; ++i) {
        press();
        pass(10);
        jingle().StopPos = static_cast<double>(bytesOf(301 + 2 * i));
    }
    jingle().StopPos = static_cast<double>(bytesOf(500));
    heard();
    press();
    pass(1000);
    const Heard sound = heard();
    EXPECT_NEAR(static_cast<double>(sound.end()), static_cast<double>(framesOf(600)), 442);
}

TEST_F(Play, ControlsAreToldInOrder) {
    openJingle(level(framesOf(500)), key("FadeOut", "50"));
    std::vector<std::string> told;
    audioUpcalls.playStarting = [&](int i) { told.push_back("starting " + std::to_string(i)); };
    audioUpcalls.playStarted = [&](int i) { told.push_back("started " + std::to_string(i)); };
    audioUpcalls.feedback = [&](int i, Feedback what) {
        if (what == Feedback::stopping) told.push_back("stopping " + std::to_string(i));
    };
    audioUpcalls.hideClock = [&] { told.push_back("clock"); };
    minimalSettings.MinimalView = 1;
    ClockShown = true;
    press();
    EXPECT_TRUE(jingle().Playing);
    press();
    EXPECT_FALSE(jingle().Playing);
    EXPECT_EQ(told, (std::vector<std::string>{"clock", "starting 0", "started 0", "clock", "stopping 0"}));
    SelectorsOn = true;
    told.clear();
    clTouchStop(0);
    EXPECT_TRUE(told.empty()) << "no feedback while buttons are being chosen";
}

}  // namespace
}  // namespace zv::test
