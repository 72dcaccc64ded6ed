#include "ui/edit/wave_canvas.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

#include "audio/edit_sound.h"
#include "audio/outline.h"
#include "audio/sounding.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/dark_settings.h"
#include "ui/edit/edited_jingle.h"
#include "ui/edit/playhead.h"
#include "ui/edit/positions_page.h"
#include "ui/screen/wave_picture.h"
#include "ui/windows/jingle_window.h"

namespace zv {

namespace {

constexpr double kDragFrom = 3;                    ///< pixels that a press may wander and still be a click
constexpr double kStep = 0.01, kFineStep = 0.001;  ///< seconds of the arrow keys
constexpr double kSpeltStep = 0.001;               ///< seconds: how exactly a handle's time is told
constexpr double kSnapReach = 0.05;  ///< seconds around the mouse in which a zero crossing is looked for
constexpr double kWheelShare = 0.1;  ///< of the picture that the wheel with Shift moves it by

enum class Hold { nothing, handle, press, picture };

struct Picture {
    WaveView view;
    Outline outline;
    SampleStretch samples;
    WaveShape shape;
    std::array<std::string, kCuePoints> names;
    std::array<double, kCuePoints> tagWidths{};
    bool shapeStale = true;

    Hold hold = Hold::nothing;
    CuePoint handle = CuePoint::start;  ///< chosen last
    std::optional<CuePoint> under;      ///< the mouse
    double from = 0, last = 0;          ///< x of the press and of the last move
    double grip = 0;                    ///< from the handle's line to where it was taken
    struct Snap {
        CuePoint point;
        double seconds;
        double from;  ///< seconds: where the handle stood
    };
    std::optional<Snap> snap;  ///< waits for samples

    std::pair<std::int64_t, std::int64_t> asked{};  ///< frames that are being read
    Job outlining, sampling;
};
Picture wave;

Control& canvas() { return frmFX().picWave; }
std::string path() { return GetFullPath(EditedRecord().Path); }
double pixels(int twips) { return static_cast<double>(twips) / kTwipsPerPixel; }

WaveMarks marks() {
    const JingleRecord& j = EditedRecord();
    const double length = wave.view.length;
    WaveMarks m;
    m.at = {EditSeconds(Edited.index, j.CueStart),
            j.StopPos == 0 ? length : EditSeconds(Edited.index, j.StopPos),
            EditSeconds(Edited.index, j.LoopIn), EditSeconds(Edited.index, j.LoopOut)};
    m.tagWidths = wave.tagWidths;
    m.loop = Edited.entry.Seq != 0;
    m.fade = j.StopPos == 0 ? 0 : j.FadeOut / 1000.0;
    m.logFade = j.LogFadeOut != 0;
    m.chosen = wave.hold == Hold::handle || focusedControl() == &canvas() ? wave.handle : wave.under;
    if (Sounds(Edited.index) || Playhead() > 0) m.playhead = Playhead();
    return m;
}

std::string spelt(CuePoint point, const WaveMarks& m) {
    return wave.names[static_cast<std::size_t>(point)] + " " + WaveTime(m[point], kSpeltStep);
}

void askSamples(std::int64_t from, std::int64_t to);

bool asked(std::int64_t from, std::int64_t to) { return wave.asked.first <= from && wave.asked.second >= to; }

/// The handle that waits goes to the nearest zero crossing once the samples around it are there. Where there are none,
/// as of a file that is gone, it goes where it was drawn to.
void snapNow() {
    if (!wave.snap) return;
    const auto [point, seconds, before] = *wave.snap;
    if (marks()[point] != before) {  // its time was typed meanwhile
        wave.snap.reset();
        return;
    }
    const auto frame = static_cast<std::int64_t>(std::llround(seconds * wave.view.rate));
    const auto reach = static_cast<std::int64_t>(kSnapReach * wave.view.rate);
    const auto end = static_cast<std::int64_t>(wave.view.length * wave.view.rate);
    const std::int64_t from = std::max<std::int64_t>(0, frame - reach), to = std::min(end, frame + reach);
    std::optional<std::int64_t> crossing;
    if (wave.samples.covers(from, to)) {
        crossing = ZeroCrossing(wave.samples, frame);
    } else if (wave.sampling.running() || !asked(from, to)) {
        askSamples(from - reach, to + reach);
        return;
    }
    wave.snap.reset();
    MovePoint(point, static_cast<double>(crossing.value_or(frame)) / wave.view.rate);
}

void askSamples(std::int64_t from, std::int64_t to) {
    if (!wave.outline) return;
    const auto [first, last] = ShownFrames(wave.view);
    // Read one stretch for the picture and a handle inside it; read a handle elsewhere first.
    if (NeedsSamples(wave.view, *wave.outline) && to >= first && from <= last) {
        from = std::min(from, first - (last - first) / 2);
        to = std::max(to, last + (last - first) / 2);
    }
    from = std::max<std::int64_t>(0, from);
    to = std::min(to, static_cast<std::int64_t>(wave.outline->length));
    // Already asked for: it is being read, or the file ends before it.
    if (asked(from, to)) return;
    wave.asked = {from, to};
    wave.sampling = ReadSamples(path(), from, to - from, [](SampleStretch read) {
        guarded("frmFX.picWave_Samples", [&] {
            wave.samples = std::move(read);
            wave.shapeStale = true;
            snapNow();
            ShowWave();
        });
    });
}

void fitView() {
    WaveView& v = wave.view;
    const double width = pixels(canvas().width), height = pixels(canvas().height);
    const double length = EditSeconds(Edited.index, EditLength(Edited.index).length);
    const bool whole = v.shown >= v.length;
    if (std::tuple(width, height, length) == std::tuple(v.width, v.height, v.length)) return;
    v.width = width;
    v.height = height;
    v.length = length;
    if (whole) v.showAll();
    v.moveBy(0);
    wave.shapeStale = true;
}

void movedView() {
    wave.shapeStale = true;
    ShowWave();
}

void moveHandle(double seconds, bool toCrossing) {
    seconds = std::clamp(seconds, 0.0, wave.view.length);
    if (toCrossing && wave.outline) {
        wave.snap = Picture::Snap{wave.handle, seconds, marks()[wave.handle]};
        snapNow();
    } else {
        wave.snap.reset();
        MovePoint(wave.handle, seconds);
    }
    ShowWave();
}

void mouseDown(const MouseEvent& e) {
    const double x = pixels(e.x), y = pixels(e.y);
    wave.from = wave.last = x;
    if (e.button != MouseButton::left) {
        wave.hold = Hold::picture;
        return;
    }
    const WaveMarks m = marks();
    const auto hit = HandleAt(wave.view, m, x, y);
    wave.hold = hit ? Hold::handle : Hold::press;
    if (!hit) return;
    wave.handle = *hit;
    wave.grip = x - wave.view.xOf(m[*hit]);
    ShowWave();
}

void mouseMove(const MouseEvent& e) {
    const double x = pixels(e.x), y = pixels(e.y);
    if (wave.hold == Hold::press && std::abs(x - wave.from) > kDragFrom) wave.hold = Hold::picture;
    const double before = std::exchange(wave.last, x);
    switch (wave.hold) {
        case Hold::handle:
            if (x != wave.from || before != x)
                moveHandle(wave.view.secondsAt(x - wave.grip), (e.shift & kShiftMask) != 0);
            return;
        case Hold::picture:
            wave.view.moveBy((before - x) * wave.view.perPixel());
            movedView();
            return;
        case Hold::press:
            return;
        case Hold::nothing:
            if (std::exchange(wave.under, HandleAt(wave.view, marks(), x, y)) == wave.under) return;
            canvas().value = wave.under ? 1 : 0;
            ShowWave();
            return;
    }
}

void mouseUp(const MouseEvent& e) {
    if (std::exchange(wave.hold, Hold::nothing) == Hold::press)
        PlacePlayhead(std::clamp(wave.view.secondsAt(pixels(e.x)), 0.0, wave.view.length));
    ShowWave();
}

void wheel(int turns, int shift) {
    if ((shift & kShiftMask) != 0)
        wave.view.moveBy(-turns * kWheelShare * wave.view.shown);
    else
        wave.view.zoom(wave.last, turns);
    movedView();
}

void choose(int step) {
    const int count = Edited.entry.Seq != 0 ? kCuePoints : 2;
    wave.handle = static_cast<CuePoint>((static_cast<int>(wave.handle) + step + count) % count);
    wave.view.reveal(marks()[wave.handle]);
    movedView();
}

void keyDown(KeyEvent& e) {
    const double step = (e.shift & kCtrlMask) != 0 ? kFineStep : kStep;
    const bool toCrossing = (e.shift & kShiftMask) != 0;
    e.consumed = true;
    switch (e.key) {
        case Key::left:
        case Key::right: {
            double to = marks()[wave.handle] + (e.key == Key::left ? -step : step);
            // A stop at the end leaves it by the guard: what is nearer to the end counts as the end.
            if (e.key == Key::left && wave.handle == CuePoint::stop && EditedRecord().StopPos == 0)
                to = wave.view.length - std::max(step, EditSeconds(Edited.index, EditedLength().minGap));
            moveHandle(to, toCrossing);
            wave.view.reveal(marks()[wave.handle]);
            movedView();
            return;
        }
        case Key::up:
        case Key::down:
            choose(e.key == Key::up ? -1 : 1);
            return;
        case Key::pageUp:
        case Key::pageDown:
            wave.view.zoom(wave.view.xOf(marks()[wave.handle]), e.key == Key::pageUp ? 1 : -1);
            movedView();
            return;
        case Key::home:
            wave.view.showAll();
            movedView();
            return;
        default:
            e.consumed = false;
    }
}

std::string describe() {
    const WaveMarks m = marks();
    std::string all;
    for (int i = 0; i < (m.loop ? kCuePoints : 2); ++i)
        all += (i == 0 ? "" : ", ") + spelt(static_cast<CuePoint>(i), m);
    return all;
}

}  // namespace

void WireWave() {
    const auto mouse = [](void (*act)(const MouseEvent&)) {
        return [act](const MouseEvent& e) {
            guarded("frmFX.picWave_Mouse", [&] {
                if (FxOpen) act(e);
            });
        };
    };
    canvas().onMouseDown = mouse(mouseDown);
    canvas().onMouseMove = mouse(mouseMove);
    canvas().onMouseUp = mouse(mouseUp);
    canvas().onDoubleClick = mouse([](const MouseEvent&) {
        wave.hold = Hold::nothing;
        wave.view.showAll();
        movedView();
    });
    canvas().onWheel = [](int turns, int shift) {
        guarded("frmFX.picWave_Wheel", [&] {
            if (FxOpen) wheel(turns, shift);
        });
    };
    canvas().onKeyDown = [](KeyEvent& e) {
        guarded("frmFX.picWave_KeyDown", [&] {
            if (FxOpen) keyDown(e);
        });
    };
    canvas().onDescribe = describe;
}

void OpenWave() {
    CloseWave();
    constexpr std::array kNames{"fxlblStartPos", "fxlblStopPos", "fxlblLI", "fxlblLO"};
    for (std::size_t i = 0; i < kCuePoints; ++i) {
        wave.names[i] = Ln(kNames[i]);
        wave.tagWidths[i] = TagWidth(wave.names[i]);
    }
    wave.view.rate = EditedRecord().Freq;
    wave.outlining = ReadOutline(path(), [](const Outline& outline, bool whole) {
        guarded("frmFX.picWave_Outline", [&] {
            if (outline || whole) wave.outline = outline;
            if (outline) wave.view.rate = outline->rate;
            wave.shapeStale = true;
            ShowWave();
        });
    });
    ShowWave();
}

void CloseWave() { wave = Picture(); }

void ShowWave() {
    if (!FxOpen || canvas().width() <= 0) return;
    fitView();
    if (wave.outline && NeedsSamples(wave.view, *wave.outline)) {
        const auto [from, to] = ShownFrames(wave.view);
        askSamples(from, to);
    }
    if (std::exchange(wave.shapeStale, false)) wave.shape = ShapeOf(wave.view, wave.outline, wave.samples);
    const WaveLook look = WaveLookOf(darkSettings.DarkMode == 1);
    const WaveMarks m = marks();
    canvas().backColor = look.ground;
    canvas().drawing = DrawWave(wave.view, m, wave.shape, wave.samples, wave.names, look);
    canvas().caption = spelt(wave.handle, m);
}

}  // namespace zv
