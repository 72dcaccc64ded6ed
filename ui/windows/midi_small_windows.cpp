#include "ui/windows/midi_small_windows.h"

#include <string>

#include "midi/codes.h"
#include "midi/learn.h"
#include "midi/learn_commands.h"
#include "startup/guard.h"

namespace zv {

namespace {

constexpr int kWidth = 560, kMonitorHeight = 140, kNarrow = 440;
constexpr int kBlinkMs = 500, kFlashMs = 50;

FormCard monitor(Control& list) {
    return {.title = "mMIDIMonitor",
            .rows = {{.cells = {{.control = &list, .tip = "mMIDIMonitorTip", .width = kRestOfRow}},
                      .height = kMonitorHeight,
                      .grows = true}}};
}

std::vector<FormCell> okAndCancel(Control& ok, Control& cancel) {
    return {{.control = &cancel, .tip = "mMIDICancelTip", .role = KeyRole::cancel},
            {.control = &ok, .tip = "mMIDIOKTip", .role = KeyRole::accept}};
}

}  // namespace

MidiScrollWindow::MidiScrollWindow()
    : TimerBlinkLearn("TimerBlinkLearn", kBlinkMs, {}), TimerFlashLearn("TimerFlashLearn", kFlashMs, {}) {
    const auto code = [](const char* label, Control& text, Control& lamp) {
        return FormRow{.label = label,
                       .cells = {{.control = &text, .width = kCodePixels},
                                 {.control = &lamp, .tip = "mMIDIWheelTip", .width = kLampPixels}},
                       .height = kLampPixels};
    };
    lstMidiInDumpUnique.visible = false;
    form.describe({.header = {.title = lblName, .line = "mMIDIHintWheel"},
                   .blocks = {{{.title = "mMIDICodes",
                                .rows = {code("mMIDIAntiClockwise", lblAntiClockwiseCode, picAntiClockw),
                                         code("mMIDIClockwise", lblClockwiseCode, picClockw)}}},
                              {monitor(lstMidiInDump)}},
                   .keysLeft = {{.control = &btClear, .tip = "mMIDIInClearTip"}},
                   .keys = okAndCancel(btOK, btCancel),
                   .width = kWidth,
                   .modal = true});
    OnClick(btOK, "frmMIDIScroll.btOK_Click", AcceptLearn);
    OnClick(btCancel, "frmMIDIScroll.btCancel_Click", LearnCancel);
    OnClick(btClear, "frmMIDIScroll.btClear_Click", LearnClear);
    TimerBlinkLearn.handler = [this] {
        guarded("frmMIDIScroll.TimerBlinkLearn_Timer", [this] {
            MIDILearn.picClockw = MIDILearn.picClockw == LearnLight::red ? LearnLight::cyan : LearnLight::red;
            show();
        });
    };
    TimerFlashLearn.handler = [this] {
        guarded("frmMIDIScroll.TimerFlashLearn_Timer", [this] {
            TimerFlashLearn.stop();
            MIDILearn.flashing = 0;
            show();
        });
    };
}

void MidiScrollWindow::show() {
    const Learning& l = MIDILearn;
    lblName.caption = l.name;
    lblAntiClockwiseCode.caption = SpacedCode(l.MIDILearnUp);
    lblClockwiseCode.caption = SpacedCode(l.MIDILearnDown);
    lstMidiInDumpUnique.items = l.lstMidiInDumpUnique;
    ShowMonitor(lstMidiInDump, l.lstMidiInDump);
    ShowLamp(picAntiClockw, l.flashing < 0 ? LearnLight::green : l.picAntiClockw);
    ShowLamp(picClockw, l.flashing > 0 ? LearnLight::green : l.picClockw);
    if (l.window == LearnWindow::scroll && l.lstMidiInDumpUnique.size() == 1) {
        TimerBlinkLearn.start();
    } else {
        TimerBlinkLearn.stop();
    }
    if (l.flashing != 0) {
        TimerFlashLearn.restart();
    }
}

MidiFaderWindow::MidiFaderWindow() {
    SlideFader.maximum = kLargestData;
    form.describe({.header = {.title = lblName, .line = "mMIDIHintFader"},
                   .blocks = {{{.title = "mMIDICodes",
                                .rows = {{.label = "mMIDIFaderControl",
                                          .cells = {{.control = &lblFaderCode, .width = kCodePixels}}},
                                         {.cells = {{.control = &SlideFader,
                                                     .tip = "mMIDIFaderTip",
                                                     .width = kRestOfRow,
                                                     .unit = lblFader}}},
                                         {.cells = {{.control = &ckReverse, .tip = "mMIDIReverseTip"}}}}}},
                              {monitor(lstMidiInDump)}},
                   .keysLeft = {{.control = &btClear, .tip = "mMIDIInClearTip"}},
                   .keys = okAndCancel(btOK, btCancel),
                   .width = kWidth,
                   .modal = true});
    OnClick(btOK, "frmMIDIFader.btOK_Click", AcceptLearn);
    OnClick(btCancel, "frmMIDIFader.btCancel_Click", LearnCancel);
    OnClick(btClear, "frmMIDIFader.btClear_Click", LearnClear);
    ckReverse.onChange = [this] { MIDILearn.ckReverse = ckReverse.value == 1; };
    lstMidiInDump.onChange = [this] {
        guarded("frmMIDIFader.lstMidiInDump_Click", [this] { LearnPickFader(lstMidiInDump.listIndex); });
    };
    // The slider shows what the fader does; the mouse does not move it.
    SlideFader.onChange = [this] { SlideFader.value = MIDILearn.SlideFader; };
}

void MidiFaderWindow::show() {
    const Learning& l = MIDILearn;
    lblName.caption = l.name;
    lblFaderCode.caption = SpacedCode(l.MIDILearnDown);
    ckReverse.value = l.ckReverse ? 1 : 0;
    SlideFader.value = l.SlideFader;
    lblFader.caption = std::to_string(l.SlideFader);
    ShowMonitor(lstMidiInDump, l.lstMidiInDump);
}

MidiResetWindow::MidiResetWindow() {
    form.describe({.header = {.title = "mMIDIOutReset"},
                   .blocks = {{{.rows = {{.cells = {{.control = &form.control("lblDesc", ControlKind::label,
                                                                              "mMIDIOutResetDesc"),
                                                     .width = kRestOfRow}}},
                                         {.label = "mMIDIOutReset", .cells = boxes.cells()}}}}},
                   .keys = okAndCancel(btOK, btCancel),
                   .width = kNarrow,
                   .modal = true});
    OnClick(btOK, "frmMIDIReset.btOK_Click", AcceptLearn);
    OnClick(btCancel, "frmMIDIReset.btCancel_Click", LearnCancel);
}

void MidiResetWindow::show() { boxes.show(MIDILearn.rows[0]); }

MidiScrollWindow& frmMIDIScroll() {
    static MidiScrollWindow window;
    return window;
}
MidiFaderWindow& frmMIDIFader() {
    static MidiFaderWindow window;
    return window;
}
MidiResetWindow& frmMIDIReset() {
    static MidiResetWindow window;
    return window;
}

}  // namespace zv
