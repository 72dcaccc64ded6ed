// The picture of a sound in the jingle editor: what stands where, what the mouse and the keys do with it, and what
// becomes of a file that changes meanwhile; the loudness beside it.

#include <chrono>
#include <cmath>
#include <optional>
#include <thread>

#include "audio/effects.h"
#include "audio/file_level.h"
#include "audio/outline.h"
#include "startup/helpers.h"
#include "tests/support/approved.h"
#include "tests/ui/window_test.h"
#include "ui/edit/jingle_editor.h"
#include "ui/edit/level_many.h"
#include "ui/edit/undo.h"
#include "ui/screen/wave_picture.h"
#include "ui/windows/jingle_window.h"
#include "ui/windows/level_window.h"

namespace zv::test {

namespace {

constexpr int kSlot = 3, kWidth = 800, kHeight = 120;
constexpr double kSecond = kBytesPerMs * 1000;

WaveView viewOf(double length) {
    return {.length = length, .rate = 48'000, .shown = length, .width = 800, .height = 116};
}

}  // namespace

TEST(WaveView, TheWheelHoldsWhatIsUnderTheMouseDownToSingleSamples) {
    WaveView v = viewOf(300);
    for (const double x : {0.0, 200.0, 800.0}) {
        v.showAll();
        const double pinned = v.secondsAt(x);
        for (int i = 0; i < 60; ++i) {
            v.zoom(x, 1);
            ASSERT_NEAR(v.xOf(pinned), x, 0.01) << i;
        }
        EXPECT_NEAR(v.width / (v.shown * v.rate), kMostPixels, 1e-6);
        for (int i = 0; i < 60; ++i) v.zoom(x, -1);
        EXPECT_EQ(std::pair(v.first, v.shown), std::pair(0.0, 300.0));
    }
    v.zoom(400, 5);
    v.moveBy(1e9);
    EXPECT_NEAR(v.first + v.shown, 300, 1e-9);
    v.reveal(10);
    EXPECT_TRUE(v.xOf(10) >= 0 && v.xOf(10) <= v.width);
}

TEST(WaveView, HandlesAreTakenAtTheirLinesAndNames) {
    const WaveView v = viewOf(8);  // 100 pixels a second, 100 high
    const WaveMarks m{.at = {1, 6, 3, 6}, .tagWidths = {40, 40, 40, 40}, .loop = true};
    const struct {
        double x, y;
        std::optional<CuePoint> hit;
    } cases[] = {{100, 50, CuePoint::start}, {104, 50, CuePoint::start},   {130, 5, CuePoint::start},
                 {130, 50, std::nullopt},    {600, 20, CuePoint::stop},    {600, 90, CuePoint::loopOut},
                 {570, 5, CuePoint::stop},   {570, 95, CuePoint::loopOut}, {330, 95, CuePoint::loopIn},
                 {300, 108, std::nullopt}};
    for (const auto& c : cases) EXPECT_EQ(HandleAt(v, m, c.x, c.y), c.hit) << c.x << ", " << c.y;
    WaveMarks alone = m;
    alone.loop = false;
    EXPECT_EQ(HandleAt(v, alone, 600, 90), CuePoint::stop);
    EXPECT_FALSE(HandleAt(v, alone, 330, 95));
}

TEST(WavePicture, ColumnsHoldPeaksAndLevelOfWhatTheyStandFor) {
    WaveformBuilder builder(48'000, 2, 96'000);
    std::vector<float> sound;
    SampleStretch samples{.rate = 48'000};
    for (int i = 0; i < 96'000; ++i) {
        const float left = i < 48'000 ? 0.5F : -0.25F, right = i % 2 == 0 ? 1.0F : -1.0F;
        sound.insert(sound.end(), {left, right});
        samples.frames.push_back({left, right});
    }
    builder.add(sound);
    const auto outline = std::make_shared<const Waveform>(builder.waveform());
    const WaveView all{.length = 2, .rate = 48'000, .shown = 2, .width = 100, .height = 116};
    const WaveShape far = ShapeOf(all, outline, {});
    WaveView v = all;
    v.first = 1;
    for (int i = 0; i < 40; ++i) v.zoom(0, 1);
    ASSERT_TRUE(NeedsSamples(v, *outline));
    const WaveShape near = ShapeOf(v, outline, samples);
    std::string drawn;
    const auto draw = [&](const WaveView& view, const WaveMarks& marks, const WaveShape& shape, bool dark) {
        int n = 0;
        for (const Stroke& s :
             DrawWave(view, marks, shape, samples, {"S", "E", "I", "O"}, WaveLookOf(dark))) {
            char line[200];
            std::snprintf(line, sizeof line, " %.3g,%.3g %.3gx%.3g %06X %d%% %g/%g%s %s", s.x, s.y, s.width,
                          s.height, static_cast<unsigned>(s.colour), s.opacity, s.thickness, s.points,
                          s.bold ? "b" : "", s.text.c_str());
            drawn += std::to_string(static_cast<int>(s.what)) + line + (++n % 9 == 0 ? "\n" : ";");
        }
        drawn += "\n";
    };
    WaveMarks marks{.at = {0.2, 1.6, 0.4, 1.2},
                    .tagWidths = {15, 15, 15, 15},
                    .loop = true,
                    .fade = 0.2,
                    .playhead = 1.0};
    draw({.length = 2, .rate = 48'000, .shown = 2, .width = 400, .height = 116}, marks,
         ShapeOf(all, outline, {}), true);
    marks = {.at = {0.1, 1.5, 0, 2},
             .tagWidths = {15, 15, 15, 15},
             .fade = 0.4,
             .logFade = true,
             .chosen = CuePoint::stop};
    draw({.length = 2, .rate = 48'000, .shown = 2, .width = 400, .height = 116}, marks, far, false);
    draw(v, marks, near, false);
    for (const WaveShape& shape :
         {far, near,
          ShapeOf({.length = 2, .rate = 48'000, .first = 0.999, .shown = 0.02, .width = 40, .height = 116},
                  outline, samples)})
        for (const auto& columns : {shape.peaks[0], shape.peaks[1], shape.rms[0], shape.rms[1]}) {
            for (std::size_t c = 0; c < columns->size(); c += columns->size() / 8 + 1) {
                char pair[40];
                std::snprintf(pair, sizeof pair, "%.3g/%.3g ", (*columns)[c].first, (*columns)[c].second);
                drawn += pair;
            }
            drawn += "\n";
        }
    expectApproved("ui/wave.txt", drawn);
    EXPECT_EQ(WaveTime(62.5, 0.5) + " " + WaveTime(59.9996, 0.001) + " " + WaveTime(3600, 60),
              "1:02.5 1:00.000 60:00");
}

class WaveTest : public WindowTest {
  protected:
    void open(const std::string& keys = {}, int ms = 8000) {
        load(kSlot, ms, keys);
        show();
    }
    void show() {
        w.picWave.width = kWidth * kTwipsPerPixel;
        w.picWave.height = kHeight * kTwipsPerPixel;
        clFXSet(kSlot);
        ASSERT_TRUE(FxOpen);
        pass(2000);  // until the outline is there
    }
    ~WaveTest() override { OKfx(); }
    static MouseEvent at(double x, double y, int shift = 0) {
        return {MouseButton::left, shift, static_cast<int>(x * kTwipsPerPixel),
                static_cast<int>(y * kTwipsPerPixel)};
    }
    void drag(double from, double to, double y, int shift = 0) {
        w.picWave.onMouseDown(at(from, y, shift));
        w.picWave.onMouseMove(at((from + to) / 2, y, shift));
        w.picWave.onMouseMove(at(to, y, shift));
        pass(100);
        w.picWave.onMouseUp(at(to, y, shift));
    }
    void key(Key which, int shift = 0) {
        KeyEvent e{.key = which, .shift = shift};
        w.picWave.onKeyDown(e);
        EXPECT_TRUE(e.consumed);
        pass(100);
    }
    std::string file() const { return path("Audio_Sample/sound_3.wav").string(); }

    JingleWindow& w = frmFX();
    JingleRecord& j = rec(kSlot);
};

TEST_F(WaveTest, KeysMoveTheChosenHandleAndSayIt) {
    open("StopPos=5989");
    key(Key::down);
    for (const int turns : {0, 12}) {  // from afar, and where single samples are seen
        SCOPED_TRACE(turns);
        if (turns > 0) w.picWave.onWheel(turns, 0);
        key(Key::right, kShiftMask);
        const auto frame = static_cast<int>(j.StopPos / kBytesPerFrame);
        const auto tone = [](int f) { return std::sin(2 * 3.14159265358979 * 1000 * f / kRate); };
        EXPECT_NE(tone(frame - 1) < 0, tone(frame) < 0) << frame;
        EXPECT_NEAR(j.StopPos / kSecond, turns == 0 ? 5.999 : 6.009, 0.001);
    }
    // The nearest crossing is not among the samples that are shown.
    OKfx();
    load(kSlot, sine(8 * kRate, 12), "StopPos=6026"), show();
    key(Key::down);
    for (int i = 0; i < 30; ++i) key(Key::pageUp);
    key(Key::right, kShiftMask);
    EXPECT_NEAR(j.StopPos / kSecond, 145.0 / 24, 1e-4);
    OKfx();
    open();  // its stop is the end of the sound
    key(Key::down), key(Key::left);
    EXPECT_EQ(j.StopPos, 8000.0 * 44 * kBytesPerFrame - 5280);
    key(Key::right);
    EXPECT_EQ(j.StopPos, 0);
}

TEST_F(WaveTest, TheOutlineComesInPartsAndIsKept) {
    load(kSlot, 30'000);
    std::vector<std::uint64_t> frames;
    int wholes = 0;
    Job job;
    const auto read = [&](int ms) {
        frames.clear();
        job = ReadOutline(GetFullPath(j.Path), [&](const Outline& outline, bool whole) {
            frames.push_back(outline->frames);
            wholes += whole ? 1 : 0;
        });
        pass(ms);
        return frames.empty() ? 0 : frames.back();
    };
    EXPECT_EQ(read(3000), 30'000U * 44);
    EXPECT_TRUE(frames.size() >= 8 && std::ranges::is_sorted(frames));
    EXPECT_EQ(read(100), 30'000U * 44);
    EXPECT_EQ(frames.size(), 1U);  // kept
    writeWav(file(), sine(44'000, 1000));
    EXPECT_EQ(read(0), 0U);
    job.cancel();
    pass(3000);
    EXPECT_TRUE(frames.empty());
    EXPECT_EQ(read(3000), 44'000U);  // another file
    EXPECT_EQ(wholes, 3);
}

TEST_F(WaveTest, AFileThatChangesTakesThePositionsAlong) {
    const struct {
        const char* what;
        std::function<void(const std::string&)> act;
        double start, stop, in, out;  // seconds
    } cases[] = {
        {"vanishes", [](const std::string& f) { std::filesystem::remove(f); }, 5, 6, 2, 4},
        {"becomes shorter", [](const std::string& f) { writeWav(f, sine(3 * kRate, 500)); }, 0, 0, 2, 3},
        {"becomes a single frame", [](const std::string& f) { writeWav(f, sine(1, 500)); }, 0, 0, 0,
         1.0 / kRate},
        {"is no sound any more", [](const std::string& f) { std::filesystem::resize_file(f, 7); }, 5, 6, 2,
         4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        open("Seq=1 CueStart=5000 StopPos=6000 LoopIn=2000 LoopOut=4000");
        const std::string facts = w.lblFacts.caption();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        c.act(file());
        pass(2500);
        EXPECT_EQ(j.CueStart, c.start * kSecond);
        EXPECT_EQ(j.StopPos, c.stop * kSecond);
        EXPECT_NEAR(j.LoopIn, c.in * kSecond, 1);
        EXPECT_NEAR(j.LoopOut, c.out * kSecond, 1);
        EXPECT_NE(w.lblFacts.caption(), facts);
        w.btUndoAll.onClick();
        drag(0, kWidth - 1, 40);
        EXPECT_LE(j.CueStart, c.out < 4 ? c.out * kSecond : 8 * kSecond);
        OKfx();
        pass(500);
    }
}

TEST(WaveLoudness, TheVolumeIsBroughtToTheTarget) {
    EXPECT_EQ(VolumeForLoudness(-16, -22, 400), 200);
    EXPECT_EQ(VolumeForLoudness(-16, -22, 150), 150);  // never above what is safe
    EXPECT_EQ(VolumeForLoudness(-16, -INFINITY, 400), 0);
    EXPECT_EQ(SafeVolume(0), 100);
    EXPECT_EQ(SafeVolume(0.3), 333);
}

TEST_F(WaveTest, SeveralJinglesAreBroughtToOneLoudnessAndBackAtOnce) {
    load(0, sine(3 * kRate, 1000, 0.0501), "Volm=90");  // -26 LUFS
    load(2, sine(3 * kRate, 1000, 0.9));
    load(4, level(3 * kRate, 0), "Volm=70");  // silence has no loudness
    const auto volumes = [] {
        std::string all;
        for (const int slot : {0, 2, 4}) all += std::to_string(rec(slot).Volm) + " ";
        return all;
    };
    BringToLoudness({0, 2, 4});
    pass(50);
    frmLoudness().btCancel.onClick();
    pass(3000);
    EXPECT_EQ(volumes(), "90 100 70 ");
    BringToLoudness({4, 0, 2});
    press(0);
    pass(3000);
    EXPECT_FALSE(frmLoudness().form.isOpen());
    EXPECT_EQ(volumes(), "314 18 70 ");
    EXPECT_TRUE(PalToSave);
    Undo();
    pass(100);
    EXPECT_EQ(volumes(), "90 100 70 ");
    BASS_BFX_VOLUME volume{};  // of the one that sounds
    BASS_FXGetParameters(JVolFx[0], &volume);
    EXPECT_FLOAT_EQ(volume.fVolume, 0.9F);
}

}  // namespace zv::test
