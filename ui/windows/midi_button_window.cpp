#include "ui/windows/midi_button_window.h"

#include <string>

#include "midi/learn.h"
#include "midi/learn_commands.h"
#include "startup/guard.h"
#include "startup/language.h"

namespace zv {

namespace {

constexpr int kWidth = 1000, kMonitorHeight = 60, kTestPixels = 76, kDeletePixels = 76;
constexpr int kLargestVelocity = 127;
constexpr const char* kDownArrow = "\u2193";
constexpr const char* kDeleteKey = "mMIDIOutClear";

}  // namespace

MidiButtonWindow::MidiButtonWindow() {
    static constexpr const char* kBoxes[] = {"mMIDIBoxStatus", "mMIDIBoxData1", "mMIDIBoxData2"};
    for (int box = 0; box < kMessageBoxes; ++box) {
        const auto at = static_cast<std::size_t>(box);
        lblBox[at] = &form.control("lblBox", ControlKind::label, kBoxes[box], box);
        lblCpyvalKey[at] = &form.control("lblCpyval", ControlKind::button, {}, box);
        lblCpyAllKey[at] = &form.control("lblCpyAll", ControlKind::button, {}, box);
        lblCpyvalKey[at]->caption = std::string(kDownArrow);
        lblCpyAllKey[at]->caption = std::string(kDownArrow) + kDownArrow;
    }
    for (int row = 0; row < kOutputRows; ++row) {
        const auto at = static_cast<std::size_t>(row);
        lblRow[at] = &form.control("lblRow", ControlKind::label, {}, row);
        btTest[at] = &form.control("btTest", ControlKind::button, "mMIDIOutTest", row);
        imgDeleteKey[at] = &form.control("imgDelete", ControlKind::button, kDeleteKey, row);
    }
    SlideVelocity.maximum = kLargestVelocity;
    SlideVelocity.standard = kLargestVelocity;
    FormCard codes{
        .title = "mMIDICodes",
        .rows = {{.label = "mMIDIPress",
                  .cells = {{.control = &lblPressCode, .width = kCodePixels},
                            {.control = &Picture1, .tip = "mMIDILampTip", .width = kLampPixels}},
                  .height = kLampPixels},
                 {.label = "mMIDIRelease", .cells = {{.control = &lblReleaseCode, .width = kCodePixels}}},
                 {.label = lblVelocityTitle,
                  .cells = {{.control = &SlideVelocity, .tip = "mMIDIVelocityTip", .unit = lblVelocity}}},
                 {.cells = {{.control = &ckVelocityLimit, .tip = "mMIDILimitTip"},
                            {.control = &lblVelocityCode, .width = kCodePixels}}},
                 {.cells = {{.control = &lblMonitor, .width = kRestOfRow},
                            {.control = &btClear, .tip = "mMIDIInClearTip"}}},
                 {.cells = {{.control = &lstMidiInDump, .tip = "mMIDIMonitorTip", .width = kRestOfRow}},
                  .height = kMonitorHeight,
                  .grows = true}},
        .share = 3};
    FormCard sent{.title = "mMIDIOutTitle", .rows = outputRows(), .share = 3};
    form.describe({.header = {.title = lblName, .line = "mMIDIHint"},
                   .blocks = {{codes, sent}},
                   .keysLeft = {{.control = &btClearOutKey, .tip = "mMIDIOutCopyTip"},
                                {.control = &btCpyPrevKey, .tip = "mMIDICpyPrevTip"}},
                   .keys = {{.control = &btCancel, .tip = "mMIDICancelTip", .role = KeyRole::cancel},
                            {.control = &btOK, .tip = "mMIDIOKTip", .role = KeyRole::accept}},
                   .width = kWidth,
                   .modal = true});
    wire();
}

std::vector<FormRow> MidiButtonWindow::outputRows() {
    std::vector<FormRow> all;
    FormRow heads{.label = "mMIDIOutRows"};
    FormRow down{.label = "mMIDICpyval"}, every{.label = lblCpyAllTitle};
    for (std::size_t box = 0; box < lblBox.size(); ++box) {
        heads.cells.push_back({.control = lblBox[box], .width = kBoxPixels});
        down.cells.push_back({.control = lblCpyvalKey[box], .tip = "mMIDICpyvalTip", .width = kBoxPixels});
        every.cells.push_back({.control = lblCpyAllKey[box], .tip = "mMIDICpyAllTip", .width = kBoxPixels});
    }
    all.push_back(heads);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        FormRow line{.label = *lblRow[row], .cells = rows[row].cells()};
        line.cells.push_back({.control = btTest[row], .tip = "mMIDIOutTestTip", .width = kTestPixels});
        line.cells.push_back(
            {.control = imgDeleteKey[row], .tip = "mMIDIOutClearTip", .width = kDeletePixels});
        all.push_back(line);
    }
    all.push_back(down);
    all.push_back(every);
    return all;
}

void MidiButtonWindow::wire() {
    OnClick(btOK, "frmMIDIButton.btOK_Click", AcceptLearn);
    OnClick(btCancel, "frmMIDIButton.btCancel_Click", LearnCancel);
    OnClick(btClear, "frmMIDIButton.btClear_Click", LearnClear);
    OnClick(btClearOutKey, "frmMIDIButton.btClearOut_Click", btClearOut);
    OnClick(btCpyPrevKey, "frmMIDIButton.btCpyPrev_Click", btCpyPrev);
    for (int box = 0; box < kMessageBoxes; ++box) {
        const auto at = static_cast<std::size_t>(box);
        OnClick(*lblCpyvalKey[at], "frmMIDIButton.lblCpyval_Click", [box] { lblCpyval(box); });
        OnClick(*lblCpyAllKey[at], "frmMIDIButton.lblCpyAll_Click", [box] { lblCpyAll(box); });
    }
    for (int row = 0; row < kOutputRows; ++row) {
        const auto at = static_cast<std::size_t>(row);
        OnClick(*imgDeleteKey[at], "frmMIDIButton.imgDelete_Click", [row] { imgDelete(row); });
        const auto down = [row] { guarded("frmMIDIButton.btTest_MouseDown", [row] { btTestDown(row); }); };
        const auto up = [] { guarded("frmMIDIButton.btTest_MouseUp", btTestUp); };
        btTest[at]->onMouseDown = [down](const MouseEvent& e) {
            if (e.button == MouseButton::left) {
                down();
            }
        };
        btTest[at]->onMouseUp = [up](const MouseEvent& e) {
            if (e.button == MouseButton::left) {
                up();
            }
        };
        // The keyboard's way: the lamp is lit while the space bar is held.
        btTest[at]->onKeyDown = [down](KeyEvent& e) {
            if (e.key == Key::space && !e.repeat) {
                down();
            }
        };
        btTest[at]->onKeyUp = [up](KeyEvent& e) {
            if (e.key == Key::space) {
                up();
            }
        };
    }
    SlideVelocity.onChange = [this] {
        MIDILearn.SlideVelocity = SlideVelocity.value;
        show();
    };
    ckVelocityLimit.onChange = [this] { MIDILearn.ckVelocityLimit = ckVelocityLimit.value == 1; };
}

void MidiButtonWindow::show() {
    const Learning& l = MIDILearn;
    lblName.caption = l.name;
    lblPressCode.caption = SpacedCode(l.MIDILearnDown);
    lblReleaseCode.caption = SpacedCode(l.MIDILearnUp);
    ShowLamp(Picture1, l.Picture1);
    SlideVelocity.value = l.SlideVelocity;
    lblVelocity.caption = std::to_string(l.SlideVelocity);
    ckVelocityLimit.value = l.ckVelocityLimit ? 1 : 0;
    for (Control* c : {&lblVelocityTitle, &SlideVelocity, &lblVelocity, &ckVelocityLimit, &lblVelocityCode,
                       &lblCpyAllTitle, &btCpyPrevKey, lblCpyAllKey[0], lblCpyAllKey[1], lblCpyAllKey[2]}) {
        c->visible = l.velocityRule;
    }
    lblVelocityCode.caption = l.lblVelocityCode.empty() ? "" : "\u2192 " + l.lblVelocityCode;
    btCpyPrevKey.enabled = l.copyFromPrevious;
    btClearOutKey.caption = Ln(LearnHasClipboard() ? "mMIDIOutPaste" : "mMIDIOutCopy");
    ShowMonitor(lstMidiInDump, l.lstMidiInDump);
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const bool used = row < l.rowLabels.size();
        rows[row].setVisible(used);
        for (Control* c : {lblRow[row], btTest[row], imgDeleteKey[row]}) {
            c->visible = used;
        }
        if (used) {
            rows[row].show(l.rows[row]);
            lblRow[row]->caption = Ln(l.rowLabels[row]);
        }
    }
}

MidiButtonWindow& frmMIDIButton() {
    static MidiButtonWindow window;
    return window;
}

}  // namespace zv
