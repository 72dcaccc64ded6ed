#include "ui/windows/jingle_window.h"

#include <cstdio>

namespace zv {

namespace {

constexpr int kWidth = 1000, kHeight = 760, kWaveHeight = 88, kPlayheadHeight = 20, kWaveGap = 2, kRowGap = 4,
              kLineHeight = 30;  // pixels
constexpr int kFieldPixels = 46, kRangePixels = 84, kTargetPixels = 100, kLoudnessPixels = 154,
              kPlayPixels = 180;
constexpr int kMostMinutes = 999, kCarrySeconds = 60, kCarryHundredths = 100;
constexpr int kLongestReverb = 3000, kReverbStep = 20;  // ms
constexpr int kRateStep = 5;
constexpr int kLongestFade = 200;  // tenths of a second
constexpr int kPositionStep = 10;  // hundredths
constexpr int kFullVolume = 100;

void ranged(Control& control, int least, int most, int standard, int step = 1) {
    control.minimum = least;
    control.maximum = most;
    control.standard = standard;
    control.step = step;
}

/// The three fields of a time in a row.
std::vector<FormCell> cellsOfTime(const TimeFields& t, const char* tip) {
    return {{.control = t.min, .tip = tip, .width = kFieldPixels},
            {.control = t.sec, .tip = tip, .width = kFieldPixels},
            {.control = t.cs, .tip = tip, .width = kFieldPixels}};
}

/// A time that is only shown, as one figure.
FormCell figureOf(const TimeFields& t, const char* tip) {
    return {.control = t.min, .tip = tip, .joined = {t.marks[0], t.sec, t.marks[1], t.cs}};
}

}  // namespace

std::string TwoDigits(int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d", value);
    return text;
}

void TimeFields::show(const FieldTime& time) const {
    min->value = time.minutes;
    sec->value = time.seconds;
    cs->value = time.hundredths;
    if (min->kind != ControlKind::label) return;
    marks[0]->caption = std::string(":");
    marks[1]->caption = std::string(".");
    min->caption = TwoDigits(time.minutes);
    sec->caption = TwoDigits(time.seconds);
    cs->caption = TwoDigits(time.hundredths);
}

FieldTime TimeFields::shown() const { return {min->value(), sec->value(), cs->value()}; }

void TimeFields::setVisible(bool seen) const {
    for (Control* c : {min, sec, cs, marks[0], marks[1]})
        if (c != nullptr) c->visible = seen;
}

TimeFields JingleWindow::fields(const std::string& name, ControlKind kind) {
    TimeFields t{&form.control(name + "Min", kind), &form.control(name + "Sec", kind),
                 &form.control(name + "Cs", kind)};
    // One step beyond the normal form carries into the field before it.
    ranged(*t.min, 0, kMostMinutes, kNoStandard);
    ranged(*t.sec, -1, kCarrySeconds, kNoStandard);
    ranged(*t.cs, -1, kCarryHundredths, kNoStandard);
    if (kind == ControlKind::label)
        t.marks = {&form.control(name + "Colon", kind), &form.control(name + "Point", kind)};
    return t;
}

FormCard JingleWindow::equaliser() {
    FormCard card{.title = "fxEqualiser", .upright = true};
    for (int i = 0; i < kEqBands; ++i) {
        const auto band = static_cast<std::size_t>(i);
        lblEQ[band] = &form.control("lblEQ", ControlKind::label, {}, i);
        sldEQ[band] = &form.control("sldEQ", ControlKind::slider, {}, i);
        lblEQV[band] = &form.control("lblEQV", ControlKind::label, {}, i);
        sldEQ[band]->standard = 0;
        sldEQ[band]->alignment = 1;  // a lift is stored below zero and stands above
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
    FormCard card{.title = "fxSound", .gap = kRowGap};
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
    card.rows[1].cells.push_back({.control = &lblSamplerateHz, .tip = "fxSamplerateTip"});
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
    for (Control* option : optStartEnd) option->segmented = true;
    ranged(sldFadeOut, 0, kLongestFade, 0);
    sldPos.step = kPositionStep;
    FormRow time{.cells = cellsOfTime(TxtPos, "fxTimeTip")};
    time.cells.push_back({.control = &sldPos, .tip = "fxTimeTip", .width = kRestOfRow});
    return {.title = "fxStartAndStop",
            .rows = {{.cells = {{.control = optStartEnd[0], .tip = "fxMoveStartTip", .width = kRestOfRow},
                                figureOf(StartTxtPos, "fxStartTip")}},
                     {.cells = {{.control = optStartEnd[1], .tip = "fxMoveStopTip", .width = kRestOfRow},
                                figureOf(StopTxtPos, "fxStopTip")}},
                     time,
                     {.cells = {{.control = &PlayFromStart, .tip = "fxPlayFromStartTip"}}},
                     {.label = "fxlblFadeOut",
                      .cells = {{.control = &sldFadeOut,
                                 .tip = "fxFadeOutTip",
                                 .width = kRestOfRow,
                                 .unit = lblFadeOutVal}}},
                     {.cells = {{.control = &ckLogFadeOut, .tip = "fxLogFadeOutTip"}}}},
            .share = 6,
            .gap = kRowGap};
}

FormCard JingleWindow::loop() {
    sldLI.step = sldLO.step = kPositionStep;
    FormRow in{.label = lblLI, .cells = cellsOfTime(TxtLI, "fxLoopInTip")};
    in.cells.push_back({.control = &sldLI, .tip = "fxLoopInTip", .width = kRestOfRow});
    FormRow out{.label = lblLO, .cells = cellsOfTime(TxtLO, "fxLoopOutTip")};
    out.cells.push_back({.control = &sldLO, .tip = "fxLoopOutTip", .width = kRestOfRow});
    const FormRow length{
        .label = lblLoopLength,
        .cells = {figureOf(lblLDur, "fxLoopLengthTip"), {.control = &imgLockLoopLength, .tip = "fxLinkTip"}},
        .height = kLineHeight};
    return {.title = lblSeqMod,
            .rows = {{.cells = {{.control = &lblSeqModNotice, .width = kRestOfRow}}},
                     in,
                     out,
                     length,
                     {.cells = {{.control = &PlayFromLoopIn, .tip = "fxPlayFromLoopInTip"},
                                {.control = &TestLoopOut, .tip = "fxTestLoopOutTip"}}},
                     {.cells = {{.control = &btCopyStartPos, .tip = "fxCopyStartTip"},
                                {.control = &ckLinkLILO, .tip = "fxLinkTip"}}},
                     {.cells = {{.control = &ckLoopFadeOut, .tip = "fxLoopFadeOutTip"}}}},
            .share = 8,
            .gap = kRowGap};
}

FormCard JingleWindow::level() {
    ranged(SlideVolCh, 0, kFullVolume, kFullVolume);
    cmbRange.items = std::vector<std::string>{"100 %", "200 %", "300 %", "400 %"};
    return {
        .title = "fxLevel",
        .rows =
            {{.cells = {{.control = &SlideVolCh, .tip = "fxVolTip", .width = kRestOfRow, .unit = lblVolVal},
                        {.control = &cmbRange, .tip = "fxRangeTip", .width = kRangePixels}}},
             {.cells = {{.control = &lblLoudness, .tip = "fxLoudnessTip", .width = kLoudnessPixels},
                        {.control = &cmbTarget, .tip = "fxTargetTip", .width = kTargetPixels}}},
             {.cells = {{.control = &btMaxVol, .tip = "fxMaxVolTip", .width = kRestOfRow},
                        {.control = &btLoudness, .tip = "fxbtLoudnessTip", .width = kRestOfRow}}},
             {.cells = {{.control = &ckAutoDuck, .tip = "fxAutoDuckTip"}}},
             {.cells = {{.control = &ckNoTrigDuck, .tip = "fxNoTrigDuckTip"}}},
             {.cells = {{.control = &ckNoAutomix, .tip = "fxNoAutomixTip"}}}},
        .share = 6,
        .gap = kRowGap};
}

JingleWindow::JingleWindow() {
    // A single text shows the digits.
    for (Control* c : {&JID, &lblPosMinVal, &lblPosSecVal, &lblPosCs}) c->visible = false;
    SlidePos.step = kPositionStep;
    form.alwaysCentred = true;
    form.describe(
        {.header = {.title = lblJingleToFX, .line = lblFacts, .right = lblPos},
         .blocks =
             {{{.rows = {{.cells = {{.control = &picWave, .tip = "fxWaveTip", .width = kRestOfRow}},
                          .height = kWaveHeight,
                          .grows = true},
                         {.cells = {{.control = &SlidePos, .tip = "fxPlayheadTip", .width = kRestOfRow}},
                          .height = kPlayheadHeight}},
                .bare = true,
                .gap = kWaveGap}}},
         .pager = &TabFX,
         .pages = {{.name = "fxTab0", .blocks = {{equaliser(), sound()}}},
                   {.name = "fxTab1", .blocks = {{startAndStop(), loop(), level()}}}},
         .note = "fxNote",
         .keysLeft = {{.control = &ckPlay, .tip = "fxPlayTip", .width = kPlayPixels}},
         .keys = {{.control = &btUndoAll, .tip = "fxUndoAllTip"},
                  {.control = &btReset, .tip = "fxResetTip"},
                  {.control = &btOK, .tip = "fxOKTip", .role = KeyRole::accept}},
         .width = kWidth,
         .height = kHeight,
         .modal = true});
}

void JingleWindow::showLoop(bool shown, const std::string& notice) {
    for (const TimeFields& t : {TxtLI, TxtLO, lblLDur}) t.setVisible(shown);
    for (Control* c : {&lblLI, &lblLO, &lblLoopLength, &sldLI, &sldLO, &ckLinkLILO, &btCopyStartPos,
                       &PlayFromLoopIn, &TestLoopOut, &ckLoopFadeOut})
        c->visible = shown;
    lblSeqModNotice.caption = notice;
    lblSeqModNotice.visible = !shown;
    lblSeqMod.toolTip = notice;
}

JingleWindow& frmFX() {
    static JingleWindow window;
    return window;
}

}  // namespace zv
