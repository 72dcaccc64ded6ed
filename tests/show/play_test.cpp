// What presses do to reverb tails, and to what cannot play; the rest is chance_test.cpp.
#include "audio/time_jingle.h"
#include "platform/clock.h"
#include "tests/show/show.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

const auto press = [] { clPlay(0, -1); };
class Play : public ShowTest {};

TEST_F(Play, TailsRingOnAndEnd) {
    // A jingle of 3 s with 600 ms of reverb: when it falls silent, and how loud it is 50 ms before the end of the acts
    // and 50 ms after it.
    struct Row {
        const char* name;
        std::string keys;
        const char* acts;
        int ends;
        bool tail;  ///< softer at once, but heard
    };
    const Row rows[] = {
        {"a stop rings on", "FadeOut=100", "0 press 1000 release", 1600, true},
        {"a longer fade is a fade", "FadeOut=700", "0 press 1000 release", 1700, false},
        {"stopped twice, it rings from the second on", "", "0 press 100 release 300 release", 900, false},
        {"a press takes up the tail, whose old end is none", "PlayMod=2", "0 press 100 release 300 press",
         3900, false},
        {"the end rings on", "", "0 press", 3600, false},
        {"a press stops the tail of an end", "", "0 press 3200 press 3300 press", 3300, false},
        {"and another starts anew in it", "PlayMod=2", "0 press 3200 press", 6800, false},
        {"the tail of a loop ends too", "Loop=1", "0 press 2700 release", 3600, true},
        {"and that of a sequence", "Seq=1 LoopIn=100 LoopOut=2400", "0 press 2000 release", 3000, true},
        {"a sequence has none", "Seq=1 LoopIn=100 LoopOut=500", "0 press 300 press 400 press", 400, false},
    };
    const std::string reverb = "FXV_0=0,0,0,0,0,0,0,600,0,44100,0\r\n";
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        openJingle(noise(framesOf(3000)), paletteLines(row.keys, 0) + reverb);
        const std::string atRest = wholeRecord(jingle());
        const auto began = monotonicMs();
        perform(row.acts, [](const std::string& word) { word == "press" ? press() : clTouchStop(0); });
        const auto acted = static_cast<double>(monotonicMs() - began);
        while (monotonicMs() - began < 8000 && BASS_ChannelIsActive(jingle().hPlay) != BASS_ACTIVE_STOPPED)
            pass(10);
        EXPECT_NEAR(static_cast<double>(monotonicMs() - began), row.ends, 20);
        EXPECT_TRUE(row.ends != 3900 || jingle().FadeSync == 0);
        const Heard sound = heard();
        if (row.tail) {
            const float before = sound.loudest(framesOf(acted - 100), framesOf(acted));
            const float after = sound.loudest(framesOf(acted + 20), framesOf(acted + 100));
            EXPECT_LT(after, before * 0.9F);
            EXPECT_GT(after, 1e-4F);
            EXPECT_LT(sound.loudest(framesOf(acted + 500), framesOf(acted + 590)), after * 0.015F);
        }
        openPalette(iniLine("Path_0", "jingle0.wav") + paletteLines(row.keys, 0) + reverb);
        EXPECT_EQ(wholeRecord(jingle()), atRest);
    }
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

TEST_F(Play, AnEngineThatOnlyTellsOfAPositionIsFadedByHand) {
    openJingle(tones("a3000"), paletteLines("FadeOut=200 LogFadeOut=1", 0));
    press();
    pass(500);
    FadeOutSync(0, jingle().hPlay + 1000, 0, nullptr), StopSync(0, jingle().hPlay + 1000, 0, nullptr);
    for (const DWORD begun : {1U, 0U}) {
        FadeOutSync(0, jingle().hPlay, begun, nullptr);
        EXPECT_TRUE(std::exchange(jingle().Leaving, false));
        pass(begun == 1 ? 500 : 0);
    }
    pass(500);
    EXPECT_EQ(whatIsHeard(heard()), "a0-1000~1130");
    ChooseTimeJingle(0);
    PlayTimeJingle();
    pass(500);
    FadeOutSynctmJn(0, hTmAn, 1, nullptr), pass(500);
    FadeOutSynctmJn(0, hTmAn, 0, nullptr);
    pass(500);
    EXPECT_EQ(whatIsHeard(heard()), "a0-1000~1130");
    DropTimeJingle();
}

TEST_F(Play, PressesOnWhatCannotPlayDoNothing) {
    openJingle(level(1000));
    for (const int index : {-1, 1, 95, 119, 120, 100000}) {
        clPlay(index, -1);
        clTouchStop(index);
        if (index < 0 || index >= kJingles) openNames(index, kPalette, false), openStreams(index);
    }
    JExists[0] = 0;  // without its button
    openPalette("Path_0=jingle0.wav\r\nVolm_0=50\r\n");
    EXPECT_EQ(jingle().Volm, 100);
    JExists[0] = 1;
    pass(50);
    EXPECT_TRUE(heard().silent(0, framesOf(50)));
    for (const char* keys : {"Seq=1 LoopOut=500", "Seq=1 LoopOut=500 LoopFadeOut=1"}) {
        openJingle(level(framesOf(600)), paletteLines(keys, 0));
        press(), press();
        EXPECT_EQ(jingle().State, PlayState::playing) << "exactly where its loop begins";
        evStop();
    }
    EXPECT_EQ(reports, std::vector<std::string>());
}

}  // namespace
}  // namespace zv::test
