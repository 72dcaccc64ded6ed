// Whatever a presenter does, in any order: what every record holds, what was told and how loud each tone went out is
// what the plain model says.
#include <random>

#include "audio/automix.h"
#include "audio/bring_slot.h"
#include "audio/duck.h"
#include "audio/open_palette.h"
#include "audio/sounding.h"
#include "audio/talk_over.h"
#include "model/palette_lines.h"
#include "model/upcalls.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/grid_settings.h"
#include "startup/settings/minimal_settings.h"
#include "startup/settings/volumes_settings.h"
#include "tests/show/plain_model.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

constexpr int kStepsOfTick = 4;
constexpr int kSlots[] = {0, 1, 83, 119};  // the last ones of a grid of 7 x 12
constexpr const char* kPalettes[] = {"First", "Second"};

class Chance : public ShowTest {
  protected:
    Chance() {
        gridSettings.JinglesCols = 12;
        LastPalIdx = 83;
        duckSettings.FadeOutSpeed = 100;
        duckSettings.FadeInSpeed = 200;
        duckSettings.FadeInAdvance = 300;
        automixSettings.AutoMixTime = 300;
        volumeSettings.Volume = 80;
        volumeSettings.VolumeAux = 50;
        Ducked = DuckWanted = false;
        for (const auto& [upcall, word] : {std::pair(&AudioUpcalls::startIgnored, " ignored"),
                                           {&AudioUpcalls::playStarting, " starting"},
                                           {&AudioUpcalls::playStarted, " started"},
                                           {&AudioUpcalls::loopLeft, " left"}})
            audioUpcalls.*upcall = [this, name = word](int i) { told += name + std::to_string(i); };
        for (const auto& [upcall, word] : {std::pair(&AudioUpcalls::hideClock, " clock"),
                                           {&AudioUpcalls::stopAnnouncer, " announcer"},
                                           {&AudioUpcalls::stopStream, " stream"}})
            audioUpcalls.*upcall = [this, name = word] { told += name; };
        audioUpcalls.feedback = [this](int i, Feedback what) {
            if (what == Feedback::stopping) told += " stopping" + std::to_string(i);
        };
        char tone = 'a';
        for (const int i : kSlots) {
            const int rate = i == 0 ? 22050 : i == 1 ? 48000 : 44100, channels = i == 0 ? 1 : 2;
            const char other = static_cast<char>(tone + 1);
            model.files[fileOf(i, 0)] = {tone, other, 1203, rate, channels};
            model.files[fileOf(i, 1)] = {other, tone, 903, rate, channels};
            tone = static_cast<char>(tone + 2);
        }
        for (const auto& [name, sound] : model.files)
            writeWav(path(name), sound.samples(), static_cast<std::uint32_t>(sound.rate),
                     static_cast<std::uint16_t>(sound.channels));
    }

    static std::string fileOf(int i, unsigned palette) {
        return kPalettes[palette] + std::to_string(i) + ".wav";
    }
    unsigned any(unsigned below) { return static_cast<unsigned>(chance() % below); }
    int oneOf(std::initializer_list<int> values) {
        return values.begin()[any(static_cast<unsigned>(values.size()))];
    }

    PersistedJingle content(int i, unsigned palette) {
        PersistedJingle j;
        j.Path = fileOf(i, palette);
        const auto bytes = [&](std::initializer_list<int> ms) {
            return model.files[j.Path].bytes(oneOf(ms));
        };
        j.Volm = oneOf({100, 100, 50, 80});
        j.AutoDuck = static_cast<std::uint8_t>(any(3));
        j.AutoDuckKey = j.AutoDuck == 0 ? "" : std::to_string(j.AutoDuck);
        j.NoTrigDuck = j.AutoDuck == 1 || any(4) == 0 ? 1 : 0;
        j.NoAutomix = any(4) == 0 ? 1 : 0;
        j.FadeOut = oneOf({0, 60, 200, 400});
        j.LogFadeOut = any(3) == 0 ? 1 : 0;
        j.LoopFadeOut = any(2) == 0 ? 1 : 0;
        j.PlayMod = static_cast<PlayMode>(oneOf({0, 0, 1, 2, 3, 4}));
        j.CueStart = bytes({0, 0, 100, 9000});
        j.StopPos = bytes({0, 0, 443, 703});
        j.BTNCol = any(2) == 0 ? kFaceColourText : "102030";
        j.Loop = any(5) == 0 ? 1 : 0;
        j.Seq = j.Loop == 0 && any(3) == 0 ? 1 : 0;
        j.LoopIn = bytes({3, 100, 203, 263});
        j.LoopOut = bytes({0, 363, 603});
        return j;
    }
    std::string newLines(int i, unsigned palette) {
        JingleRecord j;
        j.persisted() = files[palette][i] = content(i, palette);
        std::string text;
        for (const auto& [key, value] : JingleLines(j, i % kPaletteSlots, j.Path))
            text += iniLine(key, value);
        return text;
    }

    /// A new run: other palettes, other hot jingles, all at rest.
    void begin(unsigned seed) {
        done = "seed " + std::to_string(seed);
        chance.seed(seed);
        MIDILearnActive = CtrlDown = ShiftDown = AltDown = SelectorsOn = ClockShown = false;
        automixSettings.AutoMix = ToggleAutoRep = ToggleTouch = 0;
        evStop();
        look(0);
        std::string palettes;
        for (const unsigned palette : {0U, 1U}) {
            palettes += "[" + std::string(kPalettes[palette]) + "]\r\n";
            for (const int i : {0, 1, 83}) palettes += newLines(i, palette);
        }
        write("palette.ini", palettes);
        write("HotJingles.ini", "[HotJingles]\r\n" + newLines(119, 0));
        SetupMixers();
        BusLevel = 1;
        OpenFile();
        OpenFile("First");
        model.slots.clear();
        model.palette = files[0];
        for (const int i : kSlots) model.open(i, files[0][i]);
        pass(100);
        heard(0), heard(1);
        for (auto& levels : model.levels) levels.clear();
        model.bus = {};
        model.out[0].start(0.8, 0), model.out[1].start(0.5, 0);
        told.clear(), model.told.clear();
        model.ducked = Ducked;
        model.remain = 0, model.last = LastPlayedJ;
    }

    void look(int level) {
        DuckTickBegin();
        double least = 0;
        for (int i = 0; i <= LastLiveIdx(); ++i) {
            if (!Sounds(i)) {
                PlayEnded(i);
                continue;
            }
            const double left = PlayTimeOf(i).left;
            if (left > 0 && (least == 0 || left < least)) least = left;
            DuckTickJingle(i, left);
        }
        DispRemain = least;
        DuckTickEnd(true);
        DuckTickLevel(level);
    }
    std::size_t now() const { return model.levels[0].size() * kStepMs; }
    void go(int ms) {
        for (; ms > 0; ms -= kStepMs) {
            pass(kStepMs);
            model.step();
            if (model.levels[0].size() % kStepsOfTick != 0) continue;
            const int level = oneOf({0, 14, 15, 100});
            look(level);
            model.tick(level);
        }
    }

    void compare() {
        SCOPED_TRACE(done + "\n" + std::to_string(now()));
        for (const auto& [i, s] : model.slots) {
            ASSERT_EQ(Sounds(i), s.sounds) << i << " at " << s.at << ": " << wholeRecord(s.is);
            ASSERT_EQ(wholeRecord(jingle(i)), wholeRecord(s.is)) << i;
        }
        ASSERT_EQ(told, model.told);
        ASSERT_EQ(LastPlayedJ, model.last);
        ASSERT_EQ(Ducked, model.ducked);
        ASSERT_NEAR(DispRemain, model.remain / 1000.0, 0.011);  // half a hundredth is rounded either way
        ASSERT_FLOAT_EQ(BusLevel, static_cast<float>(std::min(model.bus[0].to, model.bus[1].to)));
    }
    void compareSound() {
        for (std::size_t o = 0; o < 2; ++o) {
            const Heard sound = heard(static_cast<int>(o));
            for (std::size_t tone = 0; tone < 8; ++tone) {
                const std::vector<double> is = toneLevels(sound, static_cast<char>('a' + tone));
                ASSERT_EQ(is.size(), model.levels[o].size());
                for (std::size_t at = 0; at < is.size(); ++at)
                    ASSERT_NEAR(is[at], model.levels[o][at][tone], 0.03)
                        << static_cast<char>('a' + tone) << " of output " << o << " at " << at * kStepMs
                        << '\n'
                        << done;
            }
        }
    }

    void act() {
        const int i = kSlots[any(4)];
        Slot& s = model.slots[i];
        std::string what = " " + std::to_string(i);
        switch (any(26)) {
            case 0:
                what = "stop all";
                evStop();
                model.stopAll();
                break;
            case 1:
                ToggleAutoRep = any(2) == 0 ? 1 : 0;
                ToggleTouch = ToggleAutoRep == 0 && any(2) == 0 ? 1 : 0;
                what = "repeat " + std::to_string(ToggleAutoRep) + " touch " + std::to_string(ToggleTouch);
                break;
            case 2:
                automixSettings.AutoMix = oneOf({0, 0, 1, 2});
                automixSettings.LogFadeOut = oneOf({0, 1});
                duckSettings.AutoDuckMode = oneOf({0, 1, 1, 2});
                what = "automix " + std::to_string(automixSettings.AutoMix) + " duck " +
                       std::to_string(duckSettings.AutoDuckMode);
                break;
            case 3: {
                const unsigned palette = any(2);
                // Everything may end while it is opened: what comes then is of the new one.
                const int ends =
                    any(2) == 0 || MIDILearnActive ? -1 : static_cast<int>(any(2 * kPaletteSlots));
                int events = 0;
                modelUpcalls.pumpEvents = [&] {
                    if (events++ != ends) return;
                    evStop();
                    look(0);
                };
                what = std::string(kPalettes[palette]) + ", all ends at " + std::to_string(ends);
                OpenFile(kPalettes[palette]);
                for (const int n : {0, 1, 83}) model.palette[n] = files[palette][n];
                if (ends >= 0) model.stopAll(), model.tick(0);
                model.openPalette();
                modelUpcalls.pumpEvents = {};
                break;
            }
            case 4:
            case 5: {
                if (s.is.PlayingOtherPal && !s.waits) return;
                const bool same = any(3) != 0;
                PersistedJingle to = content(i, (s.is.Path[0] == 'F') == same ? 0 : 1);
                if (s.sounds && same) {
                    to.Loop = s.is.Loop, to.Seq = s.is.Seq;
                    // What is read ahead lies before the end of the loop.
                    const int end = to.LoopOut == 0 ? s.sound.lengthMs : s.sound.ms(to.LoopOut);
                    if (s.at + 60 > std::min(end, s.loopOut))
                        to.LoopIn = s.is.LoopIn, to.LoopOut = s.is.LoopOut;
                }
                what = "bring" + what + " " + to.Path;
                BringSlot(i, to);
                model.bring(i, to);
                break;
            }
            case 6: {
                const auto busTo = [&](double main, double aux, int ms) {
                    model.bus[0].start(main, ms), model.bus[1].start(aux, ms);
                };
                what = "talk-over";
                if (const unsigned way = any(3); way == 0)
                    RaiseMic(), busTo(0.15, 0.15, 100);
                else if (way == 1)
                    LowerMic(), busTo(1, 1, 200);
                else
                    EndTalkOver(), busTo(0.8, 0.5, 200);
                break;
            }
            case 7: {
                const int output = static_cast<int>(any(2)), percent = oneOf({100, 80, 50, 0});
                what = "volume " + std::to_string(output) + " " + std::to_string(percent);
                SetOutputVolume(output, percent);
                model.out[static_cast<std::size_t>(output)].start(percent / 100.0, 50);
                break;
            }
            case 8:
                if (!s.sounds) return;
                what = "release" + what;
                clTouchStop(i);
                model.release(i);
                break;
            case 9:
                MIDILearnActive = any(5) == 0;
                CtrlDown = any(12) == 0, ShiftDown = any(12) == 0, AltDown = any(12) == 0;
                SelectorsOn = any(6) == 0;
                minimalSettings.MinimalView = oneOf({0, 1}), ClockShown = any(2) == 0;
                what = "learns " + std::to_string(MIDILearnActive) + " held " +
                       std::to_string(CtrlDown || ShiftDown || AltDown);
                break;
            case 10:
                what = "mark" + what;  // as the batch marking does, whether it sounds or not
                for (JingleRecord* j : {&jingle(i), &s.is}) {
                    const bool loop = j->Loop == 0;
                    j->Seq = loop ? 0 : 1;
                    j->Loop = loop ? 1 : 0;
                }
                break;
            case 11:
                what = "unmark" + what;
                for (JingleRecord* j : {&jingle(i), &s.is}) j->Seq = j->Loop = 0;
                break;
            default: {
                const int velocity = oneOf({-1, -1, 127, 64, 200});
                what = "press" + what + " " + std::to_string(velocity);
                clPlay(i, velocity);
                model.press(i, velocity);
            }
        }
        done += "\n" + std::to_string(now()) + " " + what;
    }

    std::mt19937 chance;
    Model model;
    std::array<std::map<int, PersistedJingle>, 2> files;
    std::string told, done;
};

TEST_F(Chance, KeepsToThePlainModel) {
    for (unsigned seed = 1; seed <= 20 && !HasFatalFailure(); ++seed) {
        begin(seed);
        for (int i = 0; i < 120 && !HasFatalFailure(); ++i) {
            act();
            if (any(3) != 0) compare(), go(oneOf({10, 20, 50, 90, 100, 250, 400}));
            if (!HasFatalFailure()) compare();
        }
        if (!HasFatalFailure()) compareSound();
    }
    EXPECT_EQ(reports, std::vector<std::string>());
}

}  // namespace
}  // namespace zv::test
