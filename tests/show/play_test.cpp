// What a press does, in every mode: the sound that went out is held against arithmetic.
#include <cmath>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "audio/upcalls.h"
#include "model/state.h"
#include "startup/upcalls.h"
#include "tests/show/show.h"

namespace zv::test {
namespace {

constexpr int kForever = -1;
constexpr double kSilent = -1000;  // dB
constexpr int kFileMs = 2500;

/// What the user or the program does at a time; times are ms, whole periods of 10.
struct Act {
    int at;
    std::function<void()> act;
};
struct Level {
    int at;
    double dB;  ///< against the file's own level
};
struct Row {
    const char* name;
    std::string keys;
    std::vector<Act> acts;
    std::vector<Level> levels;
    int endsAt;  ///< ms of the last sound; kForever: sounds at the end of the row
    PlayState state;
    std::function<void()> before = [] {};
    int tolerance = 0;  ///< frames by which the end may be late: a sync acts at most one period later
};

const auto press = [] { clPlay(0, -1); };
const auto release = [] { clTouchStop(0); };
std::string bytes(double ms) { return std::to_string(bytesOf(ms)); }
std::string key(const char* stem, const std::string& value) {
    return iniLine(std::string(stem) + "_0", value);
}

std::vector<Row> rows() {
    const std::string seq = key("Seq", "1") + key("LoopIn", bytes(300)) + key("LoopOut", bytes(600));
    const std::string fade200 = key("FadeOut", "200");
    const std::string seqFades = seq + fade200 + key("LoopFadeOut", "1");
    const auto autoRepeat = [] { ToggleAutoRep = 1; };
    const auto touch = [] { ToggleTouch = 1; };
    return {
        {"plays to its end",
         "",
         {{0, press}},
         {{0, kSilent}, {10, 0}, {2490, 0}},
         kFileMs,
         PlayState::playing},
        {"stop without fade", "", {{0, press}, {200, press}}, {{190, 0}}, 200, PlayState::stopping},
        {"stop with fade",
         fade200,
         {{0, press}, {200, press}},
         {{200, 0}, {300, -6.0206}, {380, -20}},
         400,
         PlayState::stopping},
        {"stop with logarithmic fade",
         fade200 + key("LogFadeOut", "1"),
         {{0, press}, {200, press}},
         {{200, 0}, {300, -30}},
         400,
         PlayState::stopping},
        {"second press cuts a fade",
         fade200,
         {{0, press}, {200, press}, {300, press}},
         {{290, -5.19}},
         300,
         PlayState::idle},
        {"play/stop of its own against a global mode",
         key("PlayMod", "3"),
         {{0, press}, {200, press}},
         {},
         200,
         PlayState::stopping,
         autoRepeat},
        {"no stop",
         key("PlayMod", "4"),
         {{0, press}, {200, press}, {400, press}},
         {{410, 0}},
         kForever,
         PlayState::playing},
        {"a modifier key keeps the press off",
         "",
         {{0, press}, {200, [] { CtrlDown = true; }}, {210, press}},
         {{300, 0}},
         kForever,
         PlayState::playing},
        {"touch: release stops",
         fade200 + key("PlayMod", "2"),
         {{0, press}, {200, release}},
         {{300, -6.0206}},
         400,
         PlayState::stopping},
        {"touch by the global mode: press during the fade takes it up again",
         fade200,
         {{0, press}, {200, release}, {300, press}},
         {{290, -5.19}, {310, 0}, {600, 0}},
         kForever,
         PlayState::playing,
         touch},
        {"stop position, no fade",
         key("StopPos", bytes(500)),
         {{0, press}},
         {{490, 0}},
         500,
         PlayState::playing,
         [] {},
         441},
        {"stop position begins the fade",
         fade200 + key("StopPos", bytes(500)),
         {{0, press}},
         {{490, 0}},
         700,
         PlayState::playing,
         [] {},
         441},
        {"sequence: press in the intro fades",
         seq + fade200,
         {{0, press}, {200, press}},
         {{300, -6.0206}},
         400,
         PlayState::stopping},
        {"sequence: loops until told",
         seq,
         {{0, press}},
         {{1000, 0}, {2400, 0}},
         kForever,
         PlayState::playing},
        {"sequence: press in the loop leaves it",
         seq,
         {{0, press}, {1000, press}},
         {{1000, 0}, {1500, 0}},
         // At 1000 ms the third pass is at 400 ms of the file: 2100 ms are left.
         3100,
         PlayState::leavingLoop},
        {"sequence: third press fades",
         seq + fade200,
         {{0, press}, {1000, press}, {1200, press}},
         {{1200, 0}, {1300, -6.0206}},
         1400,
         PlayState::stopping},
        {"sequence: fourth press cuts",
         seq + fade200,
         {{0, press}, {1000, press}, {1200, press}, {1300, press}},
         {{1290, -5.19}},
         1300,
         PlayState::idle},
        {"sequence that fades: press in the loop",
         seqFades,
         {{0, press}, {1000, press}},
         {{1100, -6.0206}},
         1200,
         PlayState::stopping},
        {"sequence that fades: second press cuts",
         seqFades,
         {{0, press}, {1000, press}, {1100, press}},
         {},
         1100,
         PlayState::idle},
        {"sequence against a global mode",
         seq + fade200,
         {{0, press}, {200, press}},
         {},
         400,
         PlayState::stopping,
         touch},
        {"stop all has no fade", fade200, {{0, press}, {200, evStop}}, {{190, 0}}, 200, PlayState::playing},
        {"velocity is the level",
         "",
         {{0, [] { clPlay(0, 64); }}},
         {{10, -5.953}, {500, -5.953}},
         kFileMs,
         PlayState::playing},
        {"volume of its own", key("Volm", "50"), {{0, press}}, {{500, -6.0206}}, kFileMs, PlayState::playing},
        {"nothing starts while controls are learnt",
         "",
         {{0, press}},
         {},
         0,
         PlayState::idle,
         [] { MIDILearnActive = true; }},
        {"automix refuses while something is left",
         "",
         {{0, press}},
         {},
         0,
         PlayState::idle,
         [] {
             settings.AutoMix = 2;
             DispRemain = 1.5;
         }},
        {"automix takes the press",
         "",
         {{0, press}},
         {},
         0,
         PlayState::idle,
         [] {
             settings.AutoMix = 1;
             audioUpcalls.automixPress = [](int, int) { return true; };
         }},
        {"automix lets the press through",
         "",
         {{0, press}},
         {{100, 0}},
         kFileMs,
         PlayState::playing,
         [] {
             settings.AutoMix = 1;
             audioUpcalls.automixPress = [](int, int) { return false; };
         }},
    };
}

void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

class Press : public ShowTest, public ::testing::WithParamInterface<Row> {};

TEST_P(Press, Sounds) {
    const Row row = GetParam();
    openJingle(level(framesOf(kFileMs)), row.keys);
    BASS_ChannelSetAttribute(jingle().hPlay, BASS_ATTRIB_VOL, 0);  // what the first fade-in begins at
    row.before();
    int now = 0;
    for (const Act& act : row.acts) {
        pass(act.at - now);
        now = act.at;
        act.act();
    }
    const int rowMs = row.endsAt == kForever ? 2450 : 3200;
    pass(rowMs - now);

    const Heard sound = heard();
    ASSERT_EQ(sound.frames(), framesOf(rowMs));
    EXPECT_EQ(sound.stereo, heard(1).stereo) << "both outputs send the same";
    for (const Level& level : row.levels) {
        const double gain = std::abs(sound.at(framesOf(level.at))) / 0.5;
        if (level.dB == kSilent)
            EXPECT_EQ(gain, 0) << "at " << level.at << " ms";
        else
            EXPECT_NEAR(20 * std::log10(gain), level.dB, 0.01) << "at " << level.at << " ms";
    }
    if (row.endsAt == kForever) {
        EXPECT_TRUE(sounds());
        EXPECT_EQ(sound.end(), sound.frames());
    } else {
        EXPECT_FALSE(sounds());
        EXPECT_GE(sound.end() + 1, framesOf(row.endsAt)) << "the last frame of a fade is silent";
        EXPECT_LE(sound.end(), framesOf(row.endsAt) + static_cast<std::size_t>(row.tolerance));
    }
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

TEST_F(Play, StartsAtItsCuePointToTheFrame) {
    openJingle(ramp(20000), key("CueStart", std::to_string(5000 * kBytesPerFrame)));
    press();
    pass(100);
    const Heard sound = heard();
    for (const std::size_t frame : {441U, 442U, 4000U})
        EXPECT_EQ(rampFrame(sound, frame), 5000 + static_cast<int>(frame));
}

TEST_F(Play, AutoRepeatFadesThenStartsAgainTwentyMillisecondsLater) {
    openJingle(ramp(20000), key("PlayMod", "1"));
    press();
    pass(200);
    clPlay(0, -1);
    pass(100);
    const Heard sound = heard();
    const std::size_t pressed = framesOf(200), again = framesOf(220);
    EXPECT_EQ(rampFrame(sound, pressed - 1), 8819);
    EXPECT_GT(sound.at(pressed + 200), 0) << "the fade takes ten milliseconds";
    EXPECT_TRUE(sound.silent(framesOf(210), again));
    EXPECT_EQ(rampFrame(sound, again + 1000), 1000);
    EXPECT_EQ(sound.frames(), framesOf(320)) << "the wait is part of the show's time";
    EXPECT_EQ(jingle().State, PlayState::playing);
}

TEST_F(Play, TouchRestartsInPlace) {
    openJingle(ramp(20000), key("PlayMod", "2"));
    press();
    pass(200);
    press();
    pass(100);
    const Heard sound = heard();
    EXPECT_EQ(rampFrame(sound, framesOf(200) - 1), 8819);
    EXPECT_EQ(rampFrame(sound, framesOf(200) + 500), 500);
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
    pass(700);
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
    // Started and stopped many times before its stop position: it fades once, when it gets there.
    openJingle(level(framesOf(2000)),
               key("StopPos", bytes(500)) + key("FadeOut", "100") + key("PlayMod", "2"));
    for (int i = 0; i < 100; ++i) {
        press();
        pass(10);
    }
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
    settings.MinimalView = 1;
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
