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
#include "startup/settings/editor_settings.h"
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
        EXPECT_DOUBLE_EQ(v.shown, 300);
        EXPECT_EQ(v.first, 0);
    }
    v.zoom(400, 5);
    v.moveBy(1e9);
    EXPECT_NEAR(v.first + v.shown, 300, 1e-9);
    v.reveal(10);
    EXPECT_TRUE(v.xOf(10) >= 0 && v.xOf(10) <= v.width);
    WaveView frame = viewOf(1.0 / 48'000);  // of one frame
    frame.zoom(400, 10);
    EXPECT_EQ(frame.shown, frame.length);
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
    WaveView v{.length = 2, .rate = 48'000, .shown = 2, .width = 100, .height = 116};
    const WaveShape far = ShapeOf(v, outline, {});
    ASSERT_EQ(far.peaks[0]->size(), 100U);
    EXPECT_EQ((*far.peaks[0])[10], WaveColumn(0.5F, 0.5F));
    EXPECT_EQ((*far.peaks[0])[90], WaveColumn(-0.25F, -0.25F));
    EXPECT_EQ((*far.peaks[1])[10], WaveColumn(-1.0F, 1.0F));
    EXPECT_NEAR((*far.rms[0])[90].second, 0.25F, 1e-6);
    v.first = 1;
    for (int i = 0; i < 40; ++i) v.zoom(0, 1);
    ASSERT_TRUE(NeedsSamples(v, *outline));
    const WaveShape near = ShapeOf(v, outline, samples);
    EXPECT_TRUE(near.dots);
    // 16 pixels a frame: a column holds the straight line between two samples.
    const auto [low, high] = (*near.peaks[1])[4];
    EXPECT_NEAR(high, 0.5F, 0.01F);
    EXPECT_NEAR(low, 0.375F, 0.01F);
    // What stands on the picture: by colour, kind, left edge and width.
    WaveView all{.length = 2, .rate = 48'000, .shown = 2, .width = 100, .height = 116};
    const WaveMarks marks{.at = {0.2, 1.6, 0.4, 1.2}, .loop = true, .fade = 0.2, .playhead = 1.0};
    const WaveLook look = WaveLookOf(true);
    const Drawing drawn = DrawWave(all, marks, ShapeOf(all, outline, {}), {}, {"S", "E", "I", "O"}, look);
    const auto at = [&](Colour colour, Stroke::What what) {
        std::string places;
        for (const Stroke& s : drawn)
            if (s.colour == colour && s.what == what)
                places += std::to_string(std::lround(s.x)) + "+" + std::to_string(std::lround(s.width)) + " ";
        return places;
    };
    EXPECT_EQ(at(look.peaks, Stroke::What::peaks), "0+100 0+100 ");
    EXPECT_EQ(at(look.rms, Stroke::What::peaks), "0+100 0+100 ");
    EXPECT_EQ(at(look.shade, Stroke::What::area), "0+10 90+10 ") << "before the start, behind the fade";
    EXPECT_EQ(at(look.loop, Stroke::What::area).substr(0, 6), "20+40 ");
    EXPECT_EQ(at(look.playhead, Stroke::What::area), "50+2 ");
    EXPECT_TRUE(at(look.axis, Stroke::What::line).starts_with("0+100 0+100 "));
    std::string names;
    for (const Stroke& s : drawn) names += s.what == Stroke::What::text && s.text.size() == 1 ? s.text : "";
    EXPECT_EQ(names, "IOSE");
    EXPECT_EQ(WaveTime(62.5, 0.5), "1:02.5");
    EXPECT_EQ(WaveTime(59.9996, 0.001), "1:00.000");
    EXPECT_EQ(WaveTime(3600, 60), "60:00");
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

TEST_F(WaveTest, HandlesTakeTheWayAndTheLimitsOfTheFields) {
    const double length = 8000.0 * 44 * kBytesPerFrame;
    const auto x = [&](double bytes) { return bytes / length * kWidth; };
    open("Seq=1 LoopIn=2000 LoopOut=4000");
    drag(0, x(1.234567 * kSecond), 40);
    EXPECT_NEAR(j.CueStart, 1.234567 * kSecond, kBytesPerFrame * 44);  // the mouse stands on whole twips
    EXPECT_EQ(w.TxtPos.shown(), FieldsOf(j.CueStart / kSecond));
    EXPECT_EQ(w.optStartEnd[0]->value(), 1);
    drag(kWidth, x(6.5 * kSecond), 40);
    EXPECT_NEAR(j.StopPos, 6.5 * kSecond, kBytesPerFrame * 44);
    EXPECT_EQ(w.TxtPos.shown(), FieldsOf(j.StopPos / kSecond));
    drag(x(2 * kSecond), x(5 * kSecond), 80);
    EXPECT_NEAR(j.LoopIn, 5 * kSecond, kBytesPerFrame * 44);
    EXPECT_EQ(j.LoopOut, j.LoopIn + 5280);
    drag(x(j.CueStart), 3 * kWidth, 40);
    EXPECT_EQ(j.CueStart, length - 5280);
    EXPECT_TRUE(PalToSave);
}

TEST_F(WaveTest, KeysMoveTheChosenHandleAndSayIt) {
    open("CueStart=1000 StopPos=6000");
    const struct {
        Key key;
        int shift;
        double start, stop;  // seconds
    } cases[] = {{Key::right, 0, 1.01, 6},
                 {Key::right, kCtrlMask, 1.011, 6},
                 {Key::left, 0, 1.001, 6},
                 {Key::down, 0, 1.001, 6},
                 {Key::left, 0, 1.001, 5.99},
                 {Key::pageUp, 0, 1.001, 5.99},
                 {Key::left, kCtrlMask, 1.001, 5.989},
                 {Key::home, 0, 1.001, 5.989}};
    for (const auto& c : cases) {
        key(c.key, c.shift);
        EXPECT_NEAR(j.CueStart / kSecond, c.start, 1e-4);
        EXPECT_NEAR(j.StopPos / kSecond, c.stop, 1e-4);
    }
    EXPECT_TRUE(w.picWave.caption().ends_with(" 0:05.989")) << w.picWave.caption();
    EXPECT_TRUE(w.picWave.onDescribe().ends_with(" 0:01.001, Stop 0:05.989")) << w.picWave.onDescribe();
    for (const int turns : {0, 12}) {  // from afar, and where single samples are seen
        SCOPED_TRACE(turns);
        if (turns > 0) w.picWave.onWheel(turns, 0);
        key(Key::right, kShiftMask);
        const auto frame = static_cast<int>(j.StopPos / kBytesPerFrame);
        const auto tone = [](int f) { return std::sin(2 * 3.14159265358979 * 1000 * f / kRate); };
        EXPECT_NE(tone(frame - 1) < 0, tone(frame) < 0) << frame;
        EXPECT_NEAR(j.StopPos / kSecond, turns == 0 ? 5.999 : 6.009, 0.001);
    }
}

TEST_F(WaveTest, AStopLeavesTheEndByTheKeys) {
    open();
    key(Key::down);
    key(Key::left);
    EXPECT_EQ(j.StopPos, 8000.0 * 44 * kBytesPerFrame - 5280);
    key(Key::right);
    EXPECT_EQ(j.StopPos, 0);
}

TEST_F(WaveTest, AClickPlacesThePlayheadAndADraggedPictureDoesNot) {
    open();
    w.ckPlay.onClick();
    w.picWave.onMouseDown(at(400, 60));
    w.picWave.onMouseUp(at(400, 60));
    const auto seconds = [&] {
        return static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE)) / kSecond;
    };
    EXPECT_NEAR(seconds(), 3.99, 0.02);
    w.picWave.onWheel(4, 0);
    drag(400, 100, 60);
    EXPECT_NEAR(seconds(), 4.09, 0.02);
    EXPECT_EQ(j.CueStart, 0);
    const std::size_t strokes = w.picWave.drawing().size();
    pass(100);
    EXPECT_EQ(w.picWave.drawing().size(), strokes);
    EXPECT_FALSE(PalToSave);
}

TEST_F(WaveTest, ThePlayheadGoesWithItsSliderAndStaysInSilence) {
    open();
    const auto slide = [&](int hundredths) {
        w.SlidePos.value = hundredths;
        w.SlidePos.onChange();
    };
    const auto letter = [&](char which) {
        KeyEvent e{static_cast<Key>(which)};
        w.form.window.onKeyDown(e);
    };
    ASSERT_EQ(w.SlidePos.maximum(), 798);  // 352,000 frames
    slide(250);
    EXPECT_EQ(w.lblPos.caption() + w.lblPosSecVal.caption() + w.lblPosCs.caption(), "0:02.500250");
    letter('I');
    EXPECT_NEAR(j.CueStart, 2.5 * kSecond, kBytesPerFrame * 44);
    EXPECT_EQ(w.StartTxtPos.sec->caption() + w.StartTxtPos.cs->caption(), "0250");
    w.ckPlay.onClick();  // from the start
    slide(600);
    EXPECT_NEAR(static_cast<double>(BASS_ChannelGetPosition(j.hPlay, BASS_POS_BYTE)), 6 * kSecond,
                0.03 * kSecond);
    pass(500);
    EXPECT_NEAR(w.SlidePos.value(), 650, 6);
    w.ckPlay.onClick();
    const int left = w.SlidePos.value();
    pass(200);
    EXPECT_EQ(w.SlidePos.value(), left);
    slide(798);
    letter('O');
    EXPECT_EQ(j.StopPos, 0);
    w.picWave.onMouseDown(at(400, 60));
    w.picWave.onMouseUp(at(400, 60));
    EXPECT_EQ(w.SlidePos.onDescribe(), "0:03.99");
}

TEST_F(WaveTest, TheOutlineComesInPartsAndIsKept) {
    load(kSlot, 30'000);
    std::vector<std::uint64_t> frames;
    int wholes = 0;
    const auto read = [&] {
        return ReadOutline(GetFullPath(j.Path), [&](const Outline& outline, bool whole) {
            ASSERT_TRUE(outline);
            frames.push_back(outline->frames);
            wholes += whole ? 1 : 0;
        });
    };
    Job job = read();
    pass(3000);
    EXPECT_GE(frames.size(), 8U);
    EXPECT_TRUE(std::ranges::is_sorted(frames));
    EXPECT_EQ(frames.back(), 30'000U * 44);
    frames.clear();
    job = read();
    pass(100);
    EXPECT_EQ(frames.size(), 1U);  // kept
    writeWav(file(), sine(44'000, 1000));
    frames.clear();
    job = read();
    job.cancel();
    pass(3000);
    EXPECT_TRUE(frames.empty());
    job = read();
    pass(3000);
    EXPECT_EQ(frames.back(), 44'000U);  // another file
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
    EXPECT_TRUE(reports.empty());
}

TEST_F(WaveTest, WithoutItsFileAHandleStillMovesAndNothingIsReadForEver) {
    open("StopPos=6000");
    std::filesystem::remove(file());
    w.picWave.onMouseMove(at(400, 60));
    w.picWave.onWheel(12, 0);
    key(Key::right, kShiftMask);
    pass(200);
    EXPECT_NEAR(j.CueStart, 0.01 * kSecond, kBytesPerFrame);
    key(Key::down);
    key(Key::left, kShiftMask);
    pass(200);
    EXPECT_NEAR(j.StopPos, 5.99 * kSecond, kBytesPerFrame);
}

TEST_F(WaveTest, AStopBeforeTheStartIsTold) {
    open("StopPos=3000");
    const std::string facts = w.lblFacts.caption();
    const auto start = [&](int seconds) {
        w.optStartEnd[0]->onChange();
        w.TxtPos.show({0, seconds, 0});
        w.TxtPos.cs->onChange();
        pass(100);
    };
    start(5);
    EXPECT_GT(j.CueStart, j.StopPos);
    EXPECT_NE(w.lblFacts.caption(), facts);
    start(1);
    EXPECT_EQ(w.lblFacts.caption(), facts);
}

TEST_F(WaveTest, ASoundOfOneFrameIsHeld) {
    load(kSlot, std::vector<std::int16_t>{1000, -1000}, "Seq=1");
    show();
    for (const double to : {0.0, 300.0, 800.0, 5000.0}) drag(400, to, 40);
    for (const Key k : {Key::left, Key::right, Key::down, Key::right, Key::pageUp, Key::home})
        key(k, kShiftMask);
    w.ckPlay.onClick();
    pass(500);
    EXPECT_EQ(j.CueStart, 0);
    EXPECT_EQ(j.StopPos, 0);
    EXPECT_LE(j.LoopOut, kBytesPerFrame);
    OKfx();
    EXPECT_TRUE(reports.empty());
}

TEST_F(WaveTest, LoudnessOfThePartBringsTheVolumeToTheTarget) {
    EXPECT_EQ(VolumeForLoudness(-16, -22, 400), 200);
    EXPECT_EQ(VolumeForLoudness(-16, -22, 150), 150);  // never above what is safe
    EXPECT_EQ(VolumeForLoudness(-16, -INFINITY, 400), 0);
    EXPECT_EQ(SafeVolume(0), 100);
    EXPECT_EQ(SafeVolume(0.3), 333);
    // Three seconds at -26 dB, three at -40: -26 LUFS of a tone of 1 kHz on both sides.
    std::vector<std::int16_t> sound = sine(3 * kRate, 1000, 0.0501);
    const auto quiet = sine(3 * kRate, 1000, 0.01);
    sound.insert(sound.end(), quiet.begin(), quiet.end());
    load(kSlot, sound);
    show();
    EXPECT_TRUE(w.lblLoudness.caption().starts_with("-26.2 LUFS")) << w.lblLoudness.caption();
    w.btLoudness.onClick();
    EXPECT_NEAR(j.Volm, 323, 2);
    EXPECT_TRUE(w.lblLoudness.caption().starts_with("-16.0 LUFS")) << w.lblLoudness.caption();
    w.optStartEnd[0]->onChange();
    w.TxtPos.show({0, 3, 0});
    w.TxtPos.cs->onChange();
    pass(2000);
    w.cmbTarget.listIndex = 3;
    w.cmbTarget.onChange();
    EXPECT_EQ(editorSettings.LoudnessTarget, -14);
    w.btLoudness.onClick();
    EXPECT_EQ(j.Volm, 400);  // the safe one, as far as the slider reaches
    EXPECT_TRUE(read("zv.ini").find("LoudnessTarget=-14") != std::string::npos);
}

TEST_F(WaveTest, SeveralJinglesAreBroughtToOneLoudnessAndBackAtOnce) {
    load(0, sine(3 * kRate, 1000, 0.0501), "Volm=90");  // -26 LUFS
    load(1, sine(3 * kRate, 1000, 0.1585), "Volm=80");  // -16
    load(2, sine(3 * kRate, 1000, 0.9));
    load(4, level(3 * kRate, 0), "Volm=70");
    const auto volumes = [] { return std::vector<int>{rec(0).Volm, rec(1).Volm, rec(2).Volm, rec(4).Volm}; };
    LevelWindow& window = frmLoudness();
    BringToLoudness({0, 1, 2, 4});
    EXPECT_TRUE(window.form.isOpen());
    pass(50);
    window.btCancel.onClick();
    pass(3000);
    EXPECT_EQ(volumes(), (std::vector<int>{90, 80, 100, 70}));
    BringToLoudness({0, 1, 2, 4});
    press(0);
    pass(3000);
    EXPECT_FALSE(window.form.isOpen());
    const std::vector<int> found = volumes();
    EXPECT_NEAR(found[0], 316, 4);
    EXPECT_NEAR(found[1], 100, 2);
    EXPECT_NEAR(found[2], 18, 1);
    EXPECT_EQ(found[3], 70);  // silence has no loudness
    EXPECT_TRUE(PalToSave);
    Undo();
    pass(100);
    EXPECT_EQ(volumes(), (std::vector<int>{90, 80, 100, 70}));
    for (const int slot : {0, 2}) {  // one of them sounds
        BASS_BFX_VOLUME volume{};
        BASS_FXGetParameters(JVolFx[static_cast<std::size_t>(slot)], &volume);
        EXPECT_FLOAT_EQ(volume.fVolume, static_cast<float>(rec(slot).Volm * 0.01));
    }
}

}  // namespace zv::test
