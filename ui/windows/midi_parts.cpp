#include "ui/windows/midi_parts.h"

#include <algorithm>

#include "midi/learn_commands.h"
#include "midi/upcalls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "startup/upcalls.h"

namespace zv {

namespace {

constexpr Colour kDark = 0x505050, kRed = 0x0000FF, kGreen = 0x00FF00, kCyan = 0xFFFF00;

Colour colourOf(LearnLight light) {
    switch (light) {
        case LearnLight::red:
            return kRed;
        case LearnLight::green:
            return kGreen;
        case LearnLight::cyan:
            return kCyan;
        case LearnLight::dark:
            break;
    }
    return kDark;
}

}  // namespace

void ShowLamp(Control& lamp, LearnLight light) {
    const double size = kLampPixels;
    lamp.drawing = Drawing{{.width = size, .height = size, .colour = colourOf(light)}};
}

std::string SpacedCode(const std::string& code) {
    if (code == kNoCode) {
        return code;
    }
    std::string spaced;
    for (std::size_t i = 0; i < code.size(); ++i) {
        spaced += (i > 0 && i % 2 == 0 ? " " : "") + code.substr(i, 1);
    }
    return spaced;
}

void ShowMonitor(Control& list, const std::vector<std::string>& messages) {
    std::vector<std::string> rows;
    rows.reserve(messages.size());
    for (const std::string& message : messages) {
        rows.push_back(SpacedCode(message));
    }
    if (rows == list.items()) {
        return;
    }
    list.items = rows;
    list.topRow = std::max(0, static_cast<int>(rows.size()) - visibleListRows(list));
}

void OnClick(Control& button, const char* procedure, std::function<void()> handler) {
    button.onClick = [procedure, handler = std::move(handler)] { guarded(procedure, handler); };
}

void AcceptLearn() {
    const std::string name = MIDILearn.name;
    const std::string former = LearnOK();
    if (!former.empty()) {
        messageBox(LnBox("sMIDIPrevControl1") + " '" + former + "'\r\n" + LnBox("sMIDIPrevControl2") + " '" +
                       name + "'",
                   "Zentrova", BoxKind::information, BoxButtons::ok);
    }
}

MessageBoxes::MessageBoxes(FormWindow& form, const char* name, int row) {
    for (int box = 0; box < kMessageBoxes; ++box) {
        Control& field = form.control(name, ControlKind::textBox, {}, box);
        boxes_[static_cast<std::size_t>(box)] = &field;
        field.onChange = [&field, row, box] {
            guarded("frmMIDI.txtMIDIOut_Change", [&] {
                const std::string typed = TypedHex(field.caption());
                MIDILearn.rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(box)] = typed;
                field.caption = typed;
            });
        };
        field.onFocus = [&field] {
            guarded("frmMIDI.txtMIDIOut_GotFocus", [&] {
                // What was typed into the box before is brought into range.
                for (int r = 0; r < kOutputRows; ++r) {
                    for (int b = 0; b < kMessageBoxes; ++b) {
                        const auto& boxes = MIDILearn.rows[static_cast<std::size_t>(r)];
                        SetLearnBox(r, b, boxes[static_cast<std::size_t>(b)]);
                    }
                }
                callUp(midiUpcalls.learnChanged);
                selectAllText(field);
            });
        };
    }
}

void MessageBoxes::show(const MessageRow& row) {
    for (std::size_t box = 0; box < boxes_.size(); ++box) {
        boxes_[box]->caption = row[box];
    }
}

std::vector<FormCell> MessageBoxes::cells() const {
    static constexpr const char* kTips[] = {"mMIDIBoxStatusTip", "mMIDIBoxData1Tip", "mMIDIBoxData2Tip"};
    std::vector<FormCell> all;
    for (std::size_t box = 0; box < boxes_.size(); ++box) {
        all.push_back({.control = boxes_[box], .tip = kTips[box], .width = kBoxPixels});
    }
    return all;
}

void MessageBoxes::setVisible(bool on) {
    for (Control* box : boxes_) {
        box->visible = on;
    }
}

}  // namespace zv
