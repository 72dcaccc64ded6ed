#include "ui/windows/jingle_window.h"

#include <cstdio>

namespace zv {

namespace {

constexpr int kWidth = 1000, kFieldPixels = 104, kRangePixels = 96, kPlayPixels = 180;
constexpr int kMostMinutes = 999, kCarrySeconds = 60, kCarryHundredths = 100;
constexpr int kLongestReverb = 3000, kReverbStep = 20;  // ms
constexpr int kRateStep = 5;
constexpr int kLongestFade = 200;  // tenths of a second
constexpr int kPositionStep = 10;  // hundredths
constexpr int kFullVolume = 100;

std::string twoDigits(int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d", value);
    return text;
}

void ranged(Control& control, int least, int most, int standard, int step = 1) {
    control.minimum = least;
    control.maximum = most;
    control.standard = standard;
    control.step = step;
}

/// A time in a row: "0:02.84" of labels, or three fields.
std::vector<FormCell> cellsOfTime(const TimeFields& t, const char* tip) {
    if (t.min->kind == ControlKind::number)
        return {{.control = t.min, .tip = tip, .width = kFieldPixels},
                {.control = t.sec, .tip = tip, .width = kFieldPixels},
                {.control = t.cs, .tip = tip, .width = kFieldPixels}};
    return {{.control = t.min, .tip = tip, .unit = *t.colon},
            {.control = t.sec, .tip = tip, .unit = *t.point},
            {.control = t.cs, .tip = tip}};
}

}  // namespace

void TimeFields::show(const FieldTime& time) const {
    min->value = time.minutes;
    sec->value = time.seconds;
    cs->value = time.hundredths;
    if (min->kind != ControlKind::label) return;
    min->caption = twoDigits(time.minutes);
    sec->caption = twoDigits(time.seconds);
    cs->caption = twoDigits(time.hundredths);
}

FieldTime TimeFields::shown() const { return {min->value(), sec->value(), cs->value()}; }

TimeFields JingleWindow::fields(const std::string& name, ControlKind kind) {
    TimeFields t{&form.control(name + "Min", kind), &form.control(name + "Sec", kind),
                 &form.control(name + "Cs", kind)};
    if (kind == ControlKind::label) {
        t.colon = &form.control(name + "Colon", kind);
        t.point = &form.control(name + "Point", kind);
        t.colon->caption = ":";
        t.point->caption = ".";
    }
    // One step beyond the normal form carries into the field before it.
    ranged(*t.min, 0, kMostMinutes, kNoStandard);
    ranged(*t.sec, -1, kCarrySeconds, kNoStandard);
    ranged(*t.cs, -1, kCarryHundredths, kNoStandard);
    return t;
}

FormCard JingleWindow::equaliser() {
    FormCard card{.title = "fxEqualiser"};
    for (int i = 0; i < kEqBands; ++i) {
        const auto band = static_cast<std::size_t>(i);
        lblEQ[band] = &form.control("lblEQ", ControlKind::label, {}, i);
        sldEQ[band] = &form.control("sldEQ", ControlKind::slider, {}, i);
        lblEQV[band] = &form.control("lblEQV", ControlKind::label, {}, i);
        sldEQ[band]->standard = 0;
        sldEQ[band]->alignment = 1;  // a lift is stored below zero and stands at the right
        card.rows.push_back(
            {.label = *lblEQ[band],
             .cells = {
                 {.control = sldEQ[band], .tip = "fxEqTip", .width = kRestOfRow, .unit = *lblEQV[band]}}});
    }
    return card;
}

FormCard JingleWindow::sound() {
    static constexpr const char* kNames[] = {"fxlblTempo", "fxlblSamplerate", "fxlblPitch"};
    static constexpr const char* kTips[] = {"fxTempoTip", "fxSamplerateTip", "fxPitchTip"};
    FormCard card{.title = "fxSound"};
    for (int i = 0; i < 3; ++i) {
        const auto part = static_cast<std::size_t>(i);
        sldTempo[part] = &form.control("sldTempo", ControlKind::slider, {}, i);
        lblTempoVal[part] = &form.control("lblTempoVal", ControlKind::label, {}, i);
        sldTempo[part]->standard = 0;
        card.rows.push_back({.label = kNames[i],
                             .cells = {{.control = sldTempo[part],
                                        .tip = kTips[i],
                                        .width = kRestOfRow,
                                        .unit = *lblTempoVal[part]}}});
    }
    sldTempo[1]->step = kRateStep;
    card.rows.insert(
        card.rows.begin() + 2,
        {.label = "fxRateHz", .cells = {{.control = &lblSamplerateHz, .tip = "fxSamplerateTip"}}});
    ranged(sldReverb, 0, kLongestReverb, 0, kReverbStep);
    card.rows.push_back(
        {.label = "fxlblReverb",
         .cells = {
             {.control = &sldReverb, .tip = "fxReverbTip", .width = kRestOfRow, .unit = lblReverbVal}}});
    card.rows.push_back(
        {.label = "fxlblFXpreset",
         .cells = {{.control = &cmbFXpreset, .tip = "fxPresetTip", .width = kRestOfRow},
                   {.control = &btDelFXpreset, .tip = "fxDelPresetTip", .role = KeyRole::destroy}}});
    card.rows.push_back({.label = "fxPresetName",
                         .cells = {{.control = &txtFXpreset, .tip = "fxPresetNameTip", .width = kRestOfRow},
                                   {.control = &btAddFXpreset, .tip = "fxAddPresetTip"}}});
    return card;
}

FormCard JingleWindow::startAndStop() {
    optStartEnd[0] = &form.control("optStartEnd", ControlKind::option, "fxlblStartPos", 0);
    optStartEnd[1] = &form.control("optStartEnd", ControlKind::option, "fxlblStopPos", 1);
    ranged(sldFadeOut, 0, kLongestFade, 0);
    sldPos.step = kPositionStep;
    FormRow start{.label = "fxlblStartPos", .cells = cellsOfTime(StartTxtPos, "fxStartTip")};
    FormRow stop{.label = "fxlblStopPos", .cells = cellsOfTime(StopTxtPos, "fxStopTip")};
    return {
        .title = "fxStartAndStop",
        .rows = {
            start,
            stop,
            {.label = "fxMove",
             .cells = {{.control = optStartEnd[0], .tip = "fxMoveStartTip"},
                       {.control = optStartEnd[1], .tip = "fxMoveStopTip"},
                       {},
                       {.control = &PlayFromStart, .tip = "fxPlayFromStartTip"}}},
            {.label = "fxTime", .cells = cellsOfTime(TxtPos, "fxTimeTip")},
            {.cells = {{.control = &sldPos, .tip = "fxTimeTip", .width = kRestOfRow}}},
            {.label = "fxlblFadeOut",
             .cells = {
                 {.control = &sldFadeOut, .tip = "fxFadeOutTip", .width = kRestOfRow, .unit = lblFadeOutVal},
                 {.control = &ckLogFadeOut, .tip = "fxLogFadeOutTip"}}}}};
}

FormCard JingleWindow::loop() {
    sldLI.step = sldLO.step = kPositionStep;
    FormRow length{.label = lblLoopLength, .cells = cellsOfTime(lblLDur, "fxLoopLengthTip")};
    length.cells.push_back({.control = &ckLinkLILO, .tip = "fxLinkTip"});
    length.cells.push_back({.control = &imgLockLoopLength, .tip = "fxLinkTip"});
    return {.title = lblSeqMod,
            .rows = {{.cells = {{.control = &lblSeqModNotice, .width = kRestOfRow}}},
                     {.label = lblLI, .cells = cellsOfTime(TxtLI, "fxLoopInTip")},
                     {.cells = {{.control = &sldLI, .tip = "fxLoopInTip", .width = kRestOfRow},
                                {.control = &btCopyStartPos, .tip = "fxCopyStartTip"}}},
                     {.label = lblLO, .cells = cellsOfTime(TxtLO, "fxLoopOutTip")},
                     {.cells = {{.control = &sldLO, .tip = "fxLoopOutTip", .width = kRestOfRow}}},
                     length,
                     {.cells = {{.control = &PlayFromLoopIn, .tip = "fxPlayFromLoopInTip"},
                                {.control = &TestLoopOut, .tip = "fxTestLoopOutTip"},
                                {.control = &ckLoopFadeOut, .tip = "fxLoopFadeOutTip"}}}}};
}

FormCard JingleWindow::level() {
    ranged(SlideVolCh, 0, kFullVolume, kFullVolume);
    cmbRange.items = std::vector<std::string>{"100 %", "200 %", "300 %", "400 %"};
    return {
        .title = "fxLevel",
        .rows = {
            {.label = "fxlblVol",
             .cells = {{.control = &SlideVolCh, .tip = "fxVolTip", .width = kRestOfRow, .unit = lblVolVal},
                       {.control = &cmbRange, .tip = "fxRangeTip", .width = kRangePixels},
                       {.control = &btMaxVol, .tip = "fxMaxVolTip"}}},
            {.cells = {{.control = &ckAutoDuck, .tip = "fxAutoDuckTip"},
                       {.control = &ckNoTrigDuck, .tip = "fxNoTrigDuckTip"},
                       {.control = &ckNoAutomix, .tip = "fxNoAutomixTip"}}}}};
}

JingleWindow::JingleWindow() {
    for (Control* c : {&JID, &lblPosMinVal, &lblPosSecVal, &lblPosCs})
        c->visible = false;  // lblPos shows them
    form.alwaysCentred = true;
    form.describe(
        {.header = {.title = lblJingleToFX, .line = lblFacts, .right = lblPos},
         .blocks =
             {{{.rows = {{.cells = {{.control = &SlidePos, .tip = "fxPlayheadTip", .width = kRestOfRow}}}},
                .bare = true}}},
         .pager = &TabFX,
         .pages = {{.name = "fxTab0", .blocks = {{equaliser(), sound()}}},
                   {.name = "fxTab1", .blocks = {{startAndStop(), loop()}, {level()}}}},
         .note = "fxNote",
         .keysLeft = {{.control = &ckPlay, .tip = "fxPlayTip", .width = kPlayPixels}},
         .keys = {{.control = &btUndoAll, .tip = "fxUndoAllTip"},
                  {.control = &btReset, .tip = "fxResetTip"},
                  {.control = &btOK, .tip = "fxOKTip", .role = KeyRole::accept}},
         .width = kWidth,
         .modal = true});
}

void JingleWindow::showLoop(bool shown, const std::string& notice) {
    for (const TimeFields& t : {TxtLI, TxtLO, lblLDur})
        for (Control* c : {t.min, t.sec, t.cs, t.colon, t.point})
            if (c != nullptr) c->visible = shown;
    for (Control* c : {&lblLI, &lblLO, &lblLoopLength, &sldLI, &sldLO, &ckLinkLILO, &btCopyStartPos,
                       &PlayFromLoopIn, &TestLoopOut, &ckLoopFadeOut})
        c->visible = shown;
    lblSeqModNotice.caption = notice;
}

JingleWindow& frmFX() {
    static JingleWindow window;
    return window;
}

}  // namespace zv
