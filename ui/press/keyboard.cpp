#include "ui/press/keyboard.h"

#include "model/actions.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "platform/jobs.h"
#include "startup/guard.h"
#include "startup/settings/window_settings.h"
#include "ui/records/key_table.h"
#include "ui/records/main_window.h"
#include "ui/screen/layout.h"

namespace zv {

namespace {

constexpr int kWindowModes = 2;  // normal window, full screen

/// Keys belong to the text while one is typed.
bool typing() {
    const Control* focus = focusedControl();
    return focus != nullptr && (focus->kind == ControlKind::textBox || focus->kind == ControlKind::comboBox ||
                                focus->kind == ControlKind::number);
}

bool asHeld(KeyHeld held, int shift) {
    switch (held) {
        case KeyHeld::any:
            return true;
        case KeyHeld::eventAlt:
            return (shift & kAltMask) != 0;
        case KeyHeld::noEventAlt:
            return (shift & kAltMask) == 0;
        case KeyHeld::eventCtrl:
            return shift == kCtrlMask;
        case KeyHeld::eventCtrlShift:
            return shift == (kCtrlMask | kShiftMask);
        case KeyHeld::ctrl:
            return CtrlDown;
        case KeyHeld::noCtrl:
            return !CtrlDown;
        case KeyHeld::alt:
            return AltDown;
        case KeyHeld::altNoCtrl:
            return AltDown && !CtrlDown;
        case KeyHeld::ctrlNoAlt:
            return CtrlDown && !AltDown;
        case KeyHeld::neither:
            return !CtrlDown && !AltDown;
    }
    return false;
}

const KeyRow* rowFor(const KeyEvent& event) {
    if (event.key == Key::none) {
        return nullptr;
    }
    for (const KeyRow& row : KeyTable()) {
        if (row.key == event.key && asHeld(row.held, event.shift)) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

void Form_KeyDown(KeyEvent& event) {
    guarded(".Form_KeyDown", [&] {
        const KeyRow* row = rowFor(event);
        if (row == nullptr || (!row->window && typing())) {
            return;
        }
        if (event.repeat && row->repeat == KeyRepeat::swallowed) {
            // Until something was played, Space goes to the button with the focus.
            event.consumed = row->action != Action::pressLast || LastPlayedJ >= 0;
            return;
        }
        const bool done = perform(row->action, row->argument, -1);
        event.consumed = !row->window && done;
    });
}

void Form_KeyUp(KeyEvent& event) {
    guarded(".Form_KeyUp", [&] {
        if (event.key == Key::space && !typing() && !event.repeat) {
            event.consumed = perform(Action::releaseLast, 0, -1);
        }
    });
}

void ChangeWindowMode() {
    guarded("frmMain.ChangeWindowMode", [] {
        windowSettings.FullScreen = windowSettings.FullScreen == 1 ? 0 : 1;
        windowSettings.WindowMode = windowSettings.FullScreen == 1 ? kWindowModes : 0;
        FormDraw("init");
    });
}

}  // namespace zv
