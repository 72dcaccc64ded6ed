// Whatever a presenter does, in any order: a plain model says what every record holds, what was told and how loud
// each tone went out. All of it is compared, the records after every act and tick, the sound after every run.
#include <map>
#include <optional>
#include <random>
#include <sstream>

#include "audio/automix.h"
#include "audio/bring_slot.h"
#include "audio/duck.h"
#include "audio/open_palette.h"
#include "audio/sounding.h"
#include "audio/talk_over.h"
#include "model/colours.h"
#include "model/palette_lines.h"
#include "startup/settings/automix_settings.h"
#include "startup/settings/duck_settings.h"
#include "startup/settings/volumes_settings.h"
#include "tests/show/show.h"
#include "tests/support/ear.h"

namespace zv::test {
namespace {

constexpr int kStepMs = 10, kTickMs = 40, kSpentMs = 100, kTones = 8;
constexpr int kSlots[] = {0, 1, 2, 96};

/// A level on its way, in steps of 1 ms.
struct Slide {
    double now = 1, to = 1, ratio = 1;
    int left = 0;
    bool logarithmic = false, stops = false;

    void start(double target, int ms, bool log = false, bool stopsAtEnd = false) {
        to = target, left = ms, stops = stopsAtEnd;
        logarithmic = log && now > 0;
        if (ms == 0) now = target;
        if (logarithmic && ms > 0) ratio = std::pow(0.001, 1.0 / ms);  // 60 dB
    }
    /// Mean level of the next millisecond.
    double pass() {
        if (left == 0) return now;
        const double before = now;
        now = logarithmic ? now * ratio : now + (to - now) / left;
        const double mean = (before + now) / 2;
        if (--left == 0) now = to;
        return mean;
    }
};

struct Slot {
    JingleRecord is;
    int lengthMs = 0, at = 0, loopIn = 0, loopOut = 0;
    bool sounds = false, loops = false;
    bool turns = false;          ///< stands at the end of its loop: it is told of as at its beginning
    int stopAt = 0, stopMs = 0;  ///< the stop position in force, 0 none
    bool stopLog = false;
    Slide vol, dsp, own;  ///< `own`: Volm, 10 ms on its way
    std::optional<PersistedJingle> after;

    int place() const { return turns ? loopIn : at; }
    int endOffset() const {
        return is.StopPos == 0 ? 0 : std::max(0, lengthMs - msOf(is.StopPos) + is.FadeOut);
    }
    /// Until its end; what is less than a tenth of a second is nothing.
    int left() const {
        const int ms = lengthMs - place() - endOffset();
        return ms < kSpentMs ? 0 : ms;
    }
    static int msOf(double bytes) { return static_cast<int>(std::lround(bytes / kBytesPerMs)); }
};

/// The first tone of a file is 300 ms long; each slot has two of its own, turned round in the second palette's files.
bool second(const PersistedJingle& j) { return j.Path.find("second") != std::string::npos; }
int toneAt(int slotNumber, const Slot& s) { return 2 * slotNumber + ((s.at >= 300) != second(s.is)); }

std::string whole(const JingleRecord& j) {
    std::ostringstream out;
    const auto colours = [](std::int32_t rgb) { return std::to_string(rgb); };
    out << j.Path << " Volm " << j.Volm << " AutoDuck " << int{j.AutoDuck} << '"' << j.AutoDuckKey
        << "\" NoAutomix " << int{j.NoAutomix} << " NoTrigDuck " << int{j.NoTrigDuck} << " Loop "
        << int{j.Loop} << " Seq " << int{j.Seq} << " LoopIn " << j.LoopIn << " LoopOut " << j.LoopOut
        << " FadeOut " << j.FadeOut << " LogFadeOut " << int{j.LogFadeOut} << " LoopFadeOut "
        << int{j.LoopFadeOut} << " BTNCol " << j.BTNCol << " PlayMod " << static_cast<int>(j.PlayMod)
        << " CueStart " << j.CueStart << " StopPos " << j.StopPos << " FXV " << j.FXV << " Playlist "
        << j.Playlist << " Stored " << j.KeepsStored << j.StoredVolm << int{j.StoredLoop} << int{j.StoredSeq}
        << " | Unplayable " << j.Unplayable << " Missing " << j.MissingFile << " BassErr " << j.BassErr
        << " colours " << colours(j.BackRGB) << ' ' << colours(j.ForeRGB) << " Duration " << j.Duration
        << " EndOffset " << j.EndOffset << " FadeAttrib " << j.FadeAttrib << " Freq " << j.Freq
        << " PlayingOtherPal " << j.PlayingOtherPal << " LoopLen " << j.LoopLen << " Playing " << j.Playing
        << " Leaving " << j.Leaving << " State " << static_cast<int>(j.State) << " Kind "
        << static_cast<int>(j.Kind) << " ReverbMs " << j.ReverbMs << " FadeSync " << j.FadeSync
        << " SeqBefore " << int{j.SeqBefore} << " Pressed " << int{j.Pressed};
    return out.str();
}

class Chance : public ShowTest {
  protected:
    Chance() {
        duckSettings.AutoDuckMode = kDuckByTime;
        duckSettings.AttnVol = 15;
        duckSettings.FadeOutSpeed = 100;
        duckSettings.FadeInSpeed = 200;
        duckSettings.FadeInAdvance = 300;
        volumeSettings.Volume = 80;
        volumeSettings.VolumeAux = 50;
        automixSettings.AutoMixTime = 300;
        SetupMixers();
        BusLevel = 1;
        Ducked = DuckWanted = false;
        audioUpcalls.playStarting = [this](int i) { told += " starting" + std::to_string(i); };
        audioUpcalls.playStarted = [this](int i) { told += " started" + std::to_string(i); };
        audioUpcalls.loopLeft = [this](int i) { told += " left" + std::to_string(i); };
        audioUpcalls.feedback = [this](int i, Feedback what) {
            if (what == Feedback::stopping) told += " stopping" + std::to_string(i);
        };
        for (const int i : kSlots)
            for (const bool other : {false, true}) writeWav(path(fileOf(i, other)), tones(scoreOf(i, other)));
    }

    static std::string fileOf(int i, bool other) {
        return (other ? "second" : "first") + std::to_string(i) + ".wav";
    }
    static int lengthOf(bool other) { return other ? 900 : 1200; }
    static int numberOf(int i) { return i == 96 ? 3 : i; }
    static std::string scoreOf(int i, bool other) {
        const char a = static_cast<char>('a' + 2 * numberOf(i) + (other ? 1 : 0));
        const char b = static_cast<char>('a' + 2 * numberOf(i) + (other ? 0 : 1));
        return std::string(1, a) + "300 " + b + std::to_string(lengthOf(other) - 300);
    }

    unsigned any(unsigned below) { return static_cast<unsigned>(chance() % below); }
    int oneOf(std::initializer_list<int> values) {
        return values.begin()[any(static_cast<unsigned>(values.size()))];
    }
    static double bytes(int ms) { return bytesOf(ms); }

    PersistedJingle content(int i, bool other) {
        PersistedJingle j;
        j.Path = fileOf(i, other);
        j.Volm = oneOf({100, 100, 50, 80});
        j.AutoDuck = static_cast<std::uint8_t>(any(3));
        j.AutoDuckKey = j.AutoDuck == 0 ? "" : std::to_string(j.AutoDuck);
        j.NoTrigDuck = j.AutoDuck == 1 || any(4) == 0 ? 1 : 0;
        j.NoAutomix = any(4) == 0 ? 1 : 0;
        j.FadeOut = oneOf({0, 50, 200, 400});
        j.LogFadeOut = any(3) == 0 ? 1 : 0;
        j.LoopFadeOut = any(2) == 0 ? 1 : 0;
        j.PlayMod = static_cast<PlayMode>(oneOf({0, 0, 1, 2, 3, 4}));
        j.CueStart = bytes(oneOf({0, 0, 100}));
        j.StopPos = bytes(oneOf({0, 0, 450, 700}));
        j.BTNCol = any(2) == 0 ? kFaceColourText : "102030";
        loops(j);
        return j;
    }
    void loops(PersistedJingle& j) {
        j.Loop = any(5) == 0 ? 1 : 0;
        j.Seq = j.Loop == 0 && any(3) == 0 ? 1 : 0;
        j.LoopIn = bytes(oneOf({0, 200, 250}));
        j.LoopOut = bytes(oneOf({0, 350, 600}));
    }

    // ---- the model ----
    static void derive(Slot& s) {
        JingleRecord& j = s.is;
        s.lengthMs = lengthOf(second(j));
        if (j.LoopOut == 0) j.LoopOut = bytes(s.lengthMs);
        j.FXV = "0,0,0,0,0,0,0,0,0,44100,0";
        j.FadeAttrib = j.LogFadeOut == 1 ? 0x1000002 : 2;
        j.BackRGB = ButtonColour(j.BTNCol);
        j.ForeRGB = GetForeColor(j.BackRGB, "jingle");
        j.EndOffset = bytes(s.endOffset());
        j.Duration = std::max(0, s.lengthMs - Slot::msOf(j.CueStart) - s.endOffset()) / 1000.0;
    }
    static void open(Slot& s, const PersistedJingle& of) {
        s = Slot();
        s.is.persisted() = of;
        s.is.Freq = 44100;
        s.is.Kind = SlotKind::stream;
        derive(s);
        s.own.start(of.Volm / 100.0, 0);
        s.at = Slot::msOf(of.CueStart);
    }
    void fade(Slot& s, int ms, bool log) {
        s.vol.start(0, ms, log, true);
        if (ms == 0) s.sounds = false;
    }
    void leave(Slot& s, int ms) {
        s.is.Leaving = true;
        fade(s, ms, s.is.LogFadeOut == 1);
    }
    void arm(Slot& s) {
        s.stopAt = Slot::msOf(s.is.StopPos);
        s.stopMs = s.is.FadeOut;
        s.stopLog = s.is.LogFadeOut == 1;
    }
    void startModel(int i, int velocity) {
        Slot& s = model[i];
        if (automixSettings.AutoMix == 2) {
            bool left = remain != 0;
            for (const auto& [n, other] : model)
                left = left || (other.is.Playing && other.sounds && other.left() > 0);
            if (left) return;
        }
        s.loops = s.is.Loop != 0 || s.is.Seq != 0;
        s.loopIn = s.is.Seq != 0 ? Slot::msOf(s.is.LoopIn) : 0;
        s.loopOut = s.is.Seq != 0 ? Slot::msOf(s.is.LoopOut) : s.lengthMs;
        s.at = Slot::msOf(s.is.CueStart);
        s.vol.start(velocity / 127.0, 10);
        s.dsp.start(1, 0);
        s.sounds = true;
        s.turns = false;
        arm(s);
        s.is.Playing = true;
        s.is.Leaving = false;
        s.is.State = PlayState::playing;
        should += " starting" + std::to_string(i) + " started" + std::to_string(i);
    }
    void stopModel(int i) {
        Slot& s = model[i];
        should += " stopping" + std::to_string(i);
        s.is.State = PlayState::stopping;
        s.is.Playing = false;
        leave(s, s.is.FadeOut);
    }
    void sequenceModel(int i) {
        using enum PlayState;
        Slot& s = model[i];
        const int in = Slot::msOf(s.is.LoopIn);
        const bool keeps = s.is.LoopFadeOut != 0;
        if (!keeps) s.loops = false, should += " left" + std::to_string(i);
        const PlayState before = s.is.State;
        if (before == playing && s.place() > in && !keeps) s.is.State = leavingLoop;
        if ((before == playing && (s.place() < in || (s.place() > in && keeps))) || before == leavingLoop) {
            leave(s, s.is.FadeOut);
            s.is.State = stopping;
        }
        if (before == stopping) leave(s, 0), s.is.State = idle;
    }
    void pressModel(int i, int velocity) {
        last = i;
        if (MIDILearnActive) return;
        Slot& s = model[i];
        if (velocity < 0 || velocity > 127) velocity = 127;
        if (automixSettings.AutoMix == 1)
            for (auto& [n, other] : model)
                if (n != i && other.is.NoAutomix == 0 && other.sounds) {
                    fade(other, 300, automixSettings.LogFadeOut == 1);
                    other.is.Leaving = true;
                }
        const PlayMode own = s.is.PlayMod;
        const bool global = own == PlayMode::global;
        if (!s.sounds) return startModel(i, velocity);
        if (CtrlDown) return;
        if (s.is.Seq != 0) return sequenceModel(i);
        if (own == PlayMode::autoRepeat || (global && ToggleAutoRep == 1)) {
            s.dsp.start(0, 10);
            step(), step();
            s.sounds = false;
            return startModel(i, velocity);
        }
        if (own == PlayMode::touch || (global && ToggleTouch == 1)) return startModel(i, velocity);
        if (own == PlayMode::noStop) return;
        if (s.is.State != PlayState::stopping) return stopModel(i);
        s.sounds = s.is.Playing = false;
        s.is.State = PlayState::idle;
    }
    void paletteModel(bool other) {
        for (auto& [i, s] : model) {
            if (i == 96) continue;
            if (s.sounds) {
                s.is.PlayingOtherPal = true;
                s.is.Kind = SlotKind::nothing;
            } else {
                open(s, files[other][i]);
            }
        }
        held = other;
    }
    void bringModel(int i, const PersistedJingle& to) {
        Slot& s = model[i];
        if (s.is.Path != to.Path) {
            if (!s.sounds) return open(s, to);
            s.after = to;
            s.is.PlayingOtherPal = true;
            return;
        }
        if (s.after) s.after.reset(), s.is.PlayingOtherPal = false;
        s.is.persisted() = to;
        derive(s);
        s.own.start(to.Volm / 100.0, s.sounds ? 10 : 0);
        if (s.sounds) return arm(s);
        s.at = Slot::msOf(to.CueStart);
        s.vol.start(1, 0);
    }
    void duckModel(bool down) {
        for (auto& [i, s] : model)
            if (s.is.AutoDuck == 1 && !s.is.Leaving)
                s.vol.start(down ? 0.15 : s.is.Volm / 100.0, down ? 100 : 200);
    }
    void tickModel() {
        int least = 0, duckLeft = 0;
        bool wanted = false;
        for (auto& [i, s] : model) {
            JingleRecord& j = s.is;
            if (s.sounds) {
                const int left = s.left();
                if (left > 0 && (least == 0 || left < least)) least = left;
                if (j.AutoDuck == 1) continue;
                if (duckLeft == 0 || duckLeft > left) duckLeft = left;
                wanted = wanted || (j.NoTrigDuck == 0 && duckLeft > 300);
                continue;
            }
            j.State = PlayState::idle;
            j.Playing = j.Leaving = false;
            if (!j.PlayingOtherPal) continue;
            open(s, s.after ? PersistedJingle(*s.after) : i == 96 ? hot : files[held][i]);
        }
        remain = least;
        if (duckLeft < 300 && ducked) {
            ducked = wanted = false;
            duckModel(false);
        }
        if (wanted) ducked = true, duckModel(true);
    }
    /// 10 ms of sound.
    void step() {
        std::array<std::array<double, kTones>, 2> level{};
        std::array<std::array<double, kStepMs>, 2> outputs{};
        for (std::size_t o = 0; o < 2; ++o)
            for (double& ms : outputs[o]) ms = bus[o].pass() * out[o].pass();
        for (auto& [i, s] : model) {
            if (s.turns && s.loops) s.at = s.loopIn;
            s.turns = false;
            if (s.at >= s.lengthMs) s.sounds = false;
            if (s.sounds && s.stopAt != 0 && s.at == s.stopAt) {
                s.stopAt = 0;
                s.is.Leaving = true;
                fade(s, s.stopMs, s.stopLog);
            }
            const auto tone = static_cast<std::size_t>(toneAt(numberOf(i), s));
            const bool sounded = s.sounds;
            for (std::size_t ms = 0; ms < kStepMs; ++ms) {
                const bool slides = s.vol.left > 0;
                const double gain = s.vol.pass() * s.dsp.pass() * s.own.pass();
                for (std::size_t o = 0; o < 2; ++o)
                    if (s.sounds) level[o][tone] += gain * outputs[o][ms] / kStepMs;
                if (slides && s.vol.left == 0 && s.vol.stops) s.sounds = false;
            }
            if (!sounded) continue;
            s.at += kStepMs;
            s.turns = s.loops && s.at == s.loopOut;
        }
        for (std::size_t o = 0; o < 2; ++o) expected[o].push_back(level[o]);
    }

    // ---- both ----
    void go(int ms) {
        for (; ms > 0; ms -= kStepMs) {
            pass(kStepMs);
            step();
            if (expected[0].size() % (kTickMs / kStepMs) == 0) tick();
        }
    }
    void tick() {
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
        tickModel();
    }
    std::size_t now() const { return expected[0].size() * kStepMs; }
    void compare() {
        SCOPED_TRACE(done + "\n" + std::to_string(now()));
        for (const auto& [i, s] : model) {
            ASSERT_EQ(Sounds(i), s.sounds) << i << " at " << s.at << ' ' << whole(s.is);
            ASSERT_EQ(whole(jingle(i)), whole(s.is)) << i;
        }
        ASSERT_EQ(told, should);
        ASSERT_EQ(LastPlayedJ, last);
        ASSERT_EQ(Ducked, ducked);
        ASSERT_NEAR(DispRemain, remain / 1000.0, 1e-9);
        ASSERT_FLOAT_EQ(BusLevel, static_cast<float>(std::min(bus[0].to, bus[1].to)));
    }
    void compareSound() {
        for (std::size_t o = 0; o < 2; ++o) {
            const Heard sound = heard(static_cast<int>(o));
            for (std::size_t tone = 0; tone < kTones; ++tone) {
                const std::vector<double> is = toneLevels(sound, static_cast<char>('a' + tone));
                ASSERT_EQ(is.size(), expected[o].size());
                for (std::size_t at = 0; at < is.size(); ++at)
                    ASSERT_NEAR(is[at], expected[o][at][tone], 0.03)
                        << "output " << o << ", " << static_cast<char>('a' + tone) << " at " << at * kStepMs
                        << done;
            }
        }
    }
    void busTo(double main, double aux, int ms) { bus[0].start(main, ms), bus[1].start(aux, ms); }

    void act() {
        const int i = kSlots[any(4)];
        const auto note = [&](const std::string& what) { done += "\n" + std::to_string(now()) + " " + what; };
        const std::string of = " " + std::to_string(i);
        switch (any(24)) {
            case 0:
                note("stop all");
                evStop();
                if (!MIDILearnActive)
                    for (auto& [n, s] : model) s.sounds = false;
                break;
            case 1:
                ToggleAutoRep = any(2) == 0 ? 1 : 0;
                ToggleTouch = ToggleAutoRep == 0 && any(2) == 0 ? 1 : 0;
                note("repeat " + std::to_string(ToggleAutoRep) + " touch " + std::to_string(ToggleTouch));
                break;
            case 2:
                automixSettings.AutoMix = oneOf({0, 0, 1, 2});
                automixSettings.LogFadeOut = oneOf({0, 1});
                note("automix " + std::to_string(automixSettings.AutoMix));
                break;
            case 3: {
                const bool other = any(2) == 0;
                note(other ? "second palette" : "first palette");
                OpenFile(other ? "Second" : "First");
                paletteModel(other);
                break;
            }
            case 4:
            case 5: {
                Slot& s = model[i];
                if (s.is.PlayingOtherPal && !s.after) break;
                PersistedJingle to = content(i, any(3) == 0 ? !second(s.is) : second(s.is));
                if (s.sounds && to.Path == s.is.Path)
                    to.Loop = s.is.Loop, to.Seq = s.is.Seq, to.LoopIn = s.is.LoopIn,
                    to.LoopOut = s.is.LoopOut;
                note("brings" + of + " " + to.Path);
                BringSlot(i, to);
                bringModel(i, to);
                break;
            }
            case 6: {
                const int what = static_cast<int>(any(3));
                note("talk-over " + std::to_string(what));
                const double aux = volumeSettings.VolumeAux / 100.0, main = volumeSettings.Volume / 100.0;
                if (what == 0) RaiseMic(), busTo(0.15, 0.15, 100);
                if (what == 1) LowerMic(), busTo(1, 1, 200);
                if (what == 2) EndTalkOver(), busTo(main, aux, 200);
                break;
            }
            case 7: {
                const int output = static_cast<int>(any(2)), percent = oneOf({100, 80, 50, 0});
                note("volume " + std::to_string(output) + " " + std::to_string(percent));
                SetOutputVolume(output, percent);
                out[static_cast<std::size_t>(output)].start(percent / 100.0, 50);
                break;
            }
            case 8:
                if (!model[i].sounds) break;
                note("release" + of);
                clTouchStop(i);
                stopModel(i);
                break;
            case 9:
                MIDILearnActive = any(8) == 0;
                CtrlDown = any(6) == 0;
                note("learns " + std::to_string(MIDILearnActive) + " ctrl " + std::to_string(CtrlDown));
                break;
            default: {
                const int velocity = oneOf({-1, -1, 127, 64, 200});
                note("press" + of + " " + std::to_string(velocity));
                clPlay(i, velocity);
                pressModel(i, velocity);
            }
        }
    }

    std::mt19937 chance;
    std::map<int, Slot> model;
    std::map<bool, std::map<int, PersistedJingle>> files;  ///< of the two palettes
    PersistedJingle hot;
    bool held = false, ducked = false;
    int remain = 0, last = -1;  ///< ms
    std::array<Slide, 2> bus, out;
    std::array<std::vector<std::array<double, kTones>>, 2> expected;
    std::string told, should, done;
};

TEST_F(Chance, KeepsToThePlainModel) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        done = "\nseed " + std::to_string(seed);
        chance.seed(seed);
        MIDILearnActive = CtrlDown = false;
        evStop();
        tick();
        automixSettings.AutoMix = 0;
        const auto lines = [&](int i, bool other, PersistedJingle& kept) {
            JingleRecord j;
            j.persisted() = kept = content(i, other);
            std::string text;
            for (const auto& [key, value] : JingleLines(j, i == 96 ? 0 : i, j.Path))
                text += iniLine(key, value);
            return text;
        };
        std::string palettes;
        for (const bool other : {false, true}) {
            palettes += other ? "[Second]\r\n" : "[First]\r\n";
            for (const int i : {0, 1, 2}) palettes += lines(i, other, files[other][i]);
        }
        write("palette.ini", palettes);
        write("HotJingles.ini", "[HotJingles]\r\n" + lines(96, false, hot));
        OpenFile();
        OpenFile("First");
        model.clear();
        for (const int i : {0, 1, 2}) open(model[i], files[false][i]);
        open(model[96], hot);
        EndTalkOver(), LowerMic(), SetOutputVolume(0, 80), SetOutputVolume(1, 50);
        pass(400);
        heard(0), heard(1);
        for (auto& o : expected) o.clear();
        for (Slide& b : bus) b = {};
        out[0].start(0.8, 0), out[1].start(0.5, 0);
        told.clear(), should.clear();
        held = ducked = false;
        remain = 0, last = LastPlayedJ;
        DuckTickBegin();
        for (int i = 0; i < 120; ++i) {
            act();
            compare();
            if (HasFatalFailure()) return;
            if (any(3) != 0) go(oneOf({10, 20, 50, 90, 100, 250, 400}));
            compare();
            if (HasFatalFailure()) return;
        }
        compareSound();
        if (HasFatalFailure()) return;
    }
    EXPECT_EQ(reports, std::vector<std::string>());
}

}  // namespace
}  // namespace zv::test
