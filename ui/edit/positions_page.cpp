#include "ui/edit/positions_page.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "audio/cue_points.h"
#include "audio/edit_sound.h"
#include "audio/play.h"
#include "audio/sounding.h"
#include "model/state.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "ui/edit/edited_jingle.h"
#include "ui/windows/jingle_window.h"

namespace zv {

namespace {

constexpr int kHundredths = 100;
constexpr int kFadeStepMs = 100;
constexpr double kTenths = 10;

/// The loop as it was when one of its fields took the keyboard: what a number pushes while it is typed digit by digit
/// comes back with the digits that follow.
struct {
    double in = 0, out = 0;
} loopAtFocus;

bool settingMode = false;  ///< the fields change their point: nothing is checked

double seconds(double bytes) { return EditSeconds(Edited.index, bytes); }
double bytesOf(const TimeFields& fields) { return EditBytes(Edited.index, SecondsOf(fields.shown())); }

bool hasKeyboard(const TimeFields& t) {
    const Control* focused = focusedControl();
    return focused != nullptr && (focused == t.min || focused == t.sec || focused == t.cs);
}

bool startChosen() { return frmFX().optStartEnd[0]->value == 1; }

CuePoints pointsOf(const JingleRecord& j) {
    return {.start = j.CueStart,
            .stop = j.StopPos,
            .loopIn = j.LoopIn,
            .loopOut = j.LoopOut,
            .loopLen = j.LoopLen,
            .lengthLocked = frmFX().imgLockLoopLength.visible};
}

void showOn(Control& slider, double bytes, const SoundLength& sound) {
    slider.value =
        sound.length <= 0 ? 0 : static_cast<int>(std::lround(bytes * slider.maximum() / sound.length));
}

void showPoint(const TimeFields& fields, Control& slider, double bytes, const SoundLength& sound) {
    fields.show(FieldsOf(seconds(bytes)));
    showOn(slider, bytes, sound);
}

double stopOf(const JingleRecord& j, const SoundLength& sound) {
    return j.StopPos == 0 ? sound.length : j.StopPos;
}

void showLoop() {
    const JingleRecord& j = EditedRecord();
    const SoundLength sound = EditedLength();
    showPoint(frmFX().TxtLI, frmFX().sldLI, j.LoopIn, sound);
    showPoint(frmFX().TxtLO, frmFX().sldLO, j.LoopOut, sound);
    UpdateLoopDuration();
}

/// The loop's points as they are now: record, channel, fields.
void takeLoop(const CuePoints& points) {
    JingleRecord& j = EditedRecord();
    j.LoopIn = points.loopIn;
    j.LoopOut = points.loopOut;
    j.LoopLen = points.loopLen;
    EditLoop(Edited.index);
    showLoop();
    UpdateJFX();
}

void takeLoopIn(double position) {
    CuePoints points = pointsOf(EditedRecord());
    MoveLoopIn(points, EditedLength(), position);
    takeLoop(points);
}

void takeLoopOut(double position) {
    CuePoints points = pointsOf(EditedRecord());
    MoveLoopOut(points, EditedLength(), position);
    takeLoop(points);
}

void takeStart(double position) {
    JingleWindow& w = frmFX();
    JingleRecord& j = EditedRecord();
    const SoundLength sound = EditedLength();
    CuePoints points = pointsOf(j);
    MoveStart(points, sound, position);
    j.CueStart = points.start;
    if (Sounds(Edited.index)) EditSeek(Edited.index, j.CueStart);
    showPoint(w.TxtPos, w.sldPos, j.CueStart, sound);
    w.StartTxtPos.show(w.TxtPos.shown());
    UpdateJFX();
}

void takeStop(double position) {
    JingleWindow& w = frmFX();
    const SoundLength sound = EditedLength();
    CuePoints points = pointsOf(EditedRecord());
    MoveStop(points, sound, position);
    showPoint(w.TxtPos, w.sldPos, points.stop == 0 ? sound.length : points.stop, sound);
    w.StopTxtPos.show(w.TxtPos.shown());
    SetEndSync(points.stop);
    UpdateJFX();
}

/// A slider's place as seconds in the fields of its point; at its end the length exactly.
void fromSlider(const Control& slider, const TimeFields& fields) {
    const SoundLength sound = EditedLength();
    fields.show(FieldsOf(seconds(sound.length * slider.value() / std::max(1, slider.maximum()))));
}

void sldPos_Change() {
    fromSlider(frmFX().sldPos, frmFX().TxtPos);
    checktimecue();
}

void sldLI_Change() {
    fromSlider(frmFX().sldLI, frmFX().TxtLI);
    checktimeLI();
}

void sldLO_Change() {
    fromSlider(frmFX().sldLO, frmFX().TxtLO);
    checktimeLO();
}

void showFade() {
    JingleWindow& w = frmFX();
    const JingleRecord& j = EditedRecord();
    w.sldFadeOut.value = j.FadeOut / kFadeStepMs;
    std::string fade = NumberText(j.FadeOut / kFadeStepMs / kTenths);
    if (const auto point = fade.find('.'); point != std::string::npos)
        fade.replace(point, 1, Ln("fxDecimal"));
    w.lblFadeOutVal.caption = fade;
    w.ckLogFadeOut.value = j.LogFadeOut;
    w.ckLoopFadeOut.value = j.LoopFadeOut;
}

/// A stop position that is waited for takes the fade that it was given.
void rearm() {
    if (Sounds(Edited.index)) ArmStopSync(Edited.index);
}

void sldFadeOut_Change() {
    EditedRecord().FadeOut = frmFX().sldFadeOut.value() * kFadeStepMs;
    rearm();
    showFade();
    UpdateJFX();
}

void setLogFade(bool on) {
    JingleRecord& j = EditedRecord();
    j.LogFadeOut = on ? 1 : 0;
    j.FadeAttrib = FadeAttribOf(j);
    rearm();
}

void ckLogFadeOut_Click() {
    setLogFade(frmFX().ckLogFadeOut.value == 1);
    UpdateJFX();
}

void ckLoopFadeOut_Click() {
    EditedRecord().LoopFadeOut = frmFX().ckLoopFadeOut.value == 1 ? 1 : 0;
    UpdateJFX();
}

void ckLinkLILO_Click() {
    JingleWindow& w = frmFX();
    w.imgLockLoopLength.visible = w.ckLinkLILO.value == 1;
    JingleRecord& j = EditedRecord();
    j.LoopLen = j.LoopOut - j.LoopIn;
}

void btCopyStartPos_Click() {
    frmFX().TxtLI.show(frmFX().TxtPos.shown());
    checktimeLI();
}

}  // namespace

void checktimecue() {
    if (settingMode) return;
    const double position = bytesOf(frmFX().TxtPos);
    if (startChosen())
        takeStart(position);
    else
        takeStop(position);
}

void SetEndSync(double stop) {
    EditedRecord().StopPos = stop;
    ArmStopSync(Edited.index);
}

void checktimeLI() {
    const TimeFields& fields = frmFX().TxtLI;
    if (hasKeyboard(fields)) EditedRecord().LoopOut = loopAtFocus.out;
    takeLoopIn(bytesOf(fields));
}

void checktimeLO() {
    const JingleWindow& w = frmFX();
    const SoundLength sound = EditedLength();
    if (hasKeyboard(w.TxtLO)) EditedRecord().LoopIn = loopAtFocus.in;
    const double position = bytesOf(w.TxtLO);
    const bool atEnd = w.sldLO.value >= w.sldLO.maximum() && position >= sound.length - sound.minGap;
    takeLoopOut(atEnd ? sound.length : position);
}

void UpdateLoopDuration() { frmFX().lblLDur.show(FieldsOf(seconds(EditedRecord().LoopLen))); }

void optStartEnd_Click(int which) {
    JingleWindow& w = frmFX();
    settingMode = true;
    for (int i = 0; i < 2; ++i) w.optStartEnd[static_cast<std::size_t>(i)]->value = i == which ? 1 : 0;
    const JingleRecord& j = EditedRecord();
    const SoundLength sound = EditedLength();
    showPoint(w.TxtPos, w.sldPos, which == 0 ? j.CueStart : stopOf(j, sound), sound);
    ShowPositionTexts();
    settingMode = false;
}

void MovePoint(CuePoint point, double at) {
    const double position = EditBytes(Edited.index, at);
    switch (point) {
        case CuePoint::start:
        case CuePoint::stop:
            optStartEnd_Click(point == CuePoint::start ? 0 : 1);
            if (point == CuePoint::start)
                takeStart(position);
            else
                takeStop(position);
            return;
        case CuePoint::loopIn:
            takeLoopIn(position);
            return;
        case CuePoint::loopOut:
            takeLoopOut(position);
            return;
    }
}

void ShowPositionTexts() {
    JingleWindow& w = frmFX();
    const bool start = startChosen();
    w.PlayFromStart.caption = Ln(start ? "fxPlayFromStart" : "fxPlayToStop");
    const std::pair<const TimeFields&, const char*> times[] = {
        {w.TxtPos, start ? "fxlblStartPos" : "fxlblStopPos"}, {w.TxtLI, "fxlblLI"}, {w.TxtLO, "fxlblLO"}};
    for (const auto& [fields, name] : times) {
        fields.min->toolTip = Ln(name) + ": " + Ln("fxlblPosMin");
        fields.sec->toolTip = Ln(name) + ": " + Ln("fxlblPosSec");
        fields.cs->toolTip = Ln(name) + ": " + Ln("fxlblPosCs");
    }
}

bool HoldPositions() {
    JingleRecord& j = EditedRecord();
    CuePoints points = pointsOf(j);
    if (!BringInto(points, EditedLength())) return false;
    j.CueStart = points.start;
    j.LoopIn = points.loopIn;
    j.LoopOut = points.loopOut;
    SetEndSync(points.stop);
    EditLoop(Edited.index);
    return true;
}

void ShowPositions() {
    JingleWindow& w = frmFX();
    JingleRecord& j = EditedRecord();
    const SoundLength sound = EditedLength();
    const int ticks = std::max(1, static_cast<int>(std::lround(seconds(sound.length) * kHundredths)));
    for (Control* slider : {&w.sldPos, &w.sldLI, &w.sldLO, &w.SlidePos}) slider->maximum = ticks;
    HoldPositions();
    j.LoopLen = j.LoopOut - j.LoopIn;
    w.imgLockLoopLength.caption = Ln("fxLocked");
    w.imgLockLoopLength.visible = w.ckLinkLILO.value == 1;
    w.StartTxtPos.show(FieldsOf(seconds(j.CueStart)));
    w.StopTxtPos.show(FieldsOf(seconds(stopOf(j, sound))));
    optStartEnd_Click(w.optStartEnd[1]->value == 1 ? 1 : 0);
    showLoop();
    showFade();
}

void ResetPositions() {
    JingleRecord& j = EditedRecord();
    j.CueStart = 0;
    j.StopPos = 0;
    j.FadeOut = 0;
    j.LoopFadeOut = 0;
    setLogFade(false);
    ArmStopSync(Edited.index);
    ShowPositions();
    UpdateJFX();
}

void WirePositionsPage() {
    JingleWindow& w = frmFX();
    const std::pair<Control&, const TimeFields&> told[] = {
        {w.sldLI, w.TxtLI}, {w.sldLO, w.TxtLO}, {w.sldPos, w.TxtPos}};
    for (const auto& [slider, fields] : told)
        slider.onDescribe = [&time = fields] { return TimeText(time.shown()); };
    w.sldFadeOut.onDescribe = [] { return frmFX().lblFadeOutVal.caption(); };
    const auto onTime = [](const TimeFields& t, const char* procedure, void (*check)()) {
        for (Control* c : {t.min, t.sec, t.cs})
            c->onChange = [procedure, check] { guarded(procedure, check); };
    };
    onTime(w.TxtPos, "frmFX.checktimecue", checktimecue);
    onTime(w.TxtLI, "frmFX.checktimeLI", checktimeLI);
    onTime(w.TxtLO, "frmFX.checktimeLO", checktimeLO);
    for (const TimeFields& t : {w.TxtLI, w.TxtLO})
        for (Control* c : {t.min, t.sec, t.cs})
            c->onFocus = [] {
                if (FxOpen) loopAtFocus = {EditedRecord().LoopIn, EditedRecord().LoopOut};
            };
    w.sldPos.onChange = [] { guarded("frmFX.sldPos_Change", sldPos_Change); };
    w.sldLI.onChange = [] { guarded("frmFX.sldLI_Change", sldLI_Change); };
    w.sldLO.onChange = [] { guarded("frmFX.sldLO_Change", sldLO_Change); };
    w.sldFadeOut.onChange = [] { guarded("frmFX.sldFadeOut_Change", sldFadeOut_Change); };
    w.ckLogFadeOut.onChange = [] { guarded("frmFX.ckLogFadeOut_Click", ckLogFadeOut_Click); };
    w.ckLoopFadeOut.onChange = [] { guarded("frmFX.ckLoopFadeOut_Click", ckLoopFadeOut_Click); };
    w.ckLinkLILO.onChange = [] { guarded("frmFX.ckLinkLILO_Click", ckLinkLILO_Click); };
    w.btCopyStartPos.onClick = [] { guarded("frmFX.btCopyStartPos_Click", btCopyStartPos_Click); };
    for (int i = 0; i < 2; ++i)
        w.optStartEnd[static_cast<std::size_t>(i)]->onChange = [i] {
            guarded("frmFX.optStartEnd_Click", [&] { optStartEnd_Click(i); });
        };
}

}  // namespace zv
