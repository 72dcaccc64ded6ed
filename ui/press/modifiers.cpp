#include "ui/press/modifiers.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/language.h"
#include "ui/edit/selection.h"
#include "ui/records/armed.h"
#include "ui/records/jingle_buttons.h"
#include "ui/records/main_window.h"
#include "ui/screen/display_message.h"
#include "ui/screen/highlight.h"

namespace zv {

bool PrevCtrlDown = false, PrevShiftDown = false;

namespace {

void say(std::string_view key) {
    if (!DisplayMessageShown()) {
        frmMain().display.lblDispMessage.caption = Ln(key);
    }
}

/// Outlines the jingle that is cut or copied until it is pasted.
void outlineCarried() {
    constexpr Colour kCarried = 0x0060FF;  // the orange of a held card
    static int outlined = -1;
    if (outlined == MoveSrcJ) {
        return;
    }
    for (const auto& [index, colour] : {std::pair{outlined, kNoColour}, std::pair{MoveSrcJ, kCarried}}) {
        if (JingleButton* b = Button(index)) {
            b->b_Jingle.borderColor = colour;
            if (colour == kNoColour && SelectorsOn && !ColorPickerOpen) {
                HighlightArmed(index);  // its own border
            }
        }
    }
    outlined = MoveSrcJ;
}

void nothingHeld() {
    if (!DisplayMessageShown()) {
        const std::string armed = ArmedText();
        if (!armed.empty()) {
            frmMain().display.lblDispMessage.caption = armed;
        }
        ShowMessageLine(!armed.empty());
    }
    HideSelectors();
    ClipPath.clear();
}

}  // namespace

ModifierMessage MessageFor(bool ctrl, bool shift, bool alt) {
    const int held = (ctrl ? kCtrlMask : 0) | (shift ? kShiftMask : 0) | (alt ? kAltMask : 0);
    switch (held) {
        case kCtrlMask:
            return ModifierMessage::move;
        case kCtrlMask | kShiftMask:
            return ModifierMessage::copy;
        case kShiftMask:
            return ModifierMessage::rename;
        case kAltMask:
            return ModifierMessage::remove;
        case kCtrlMask | kAltMask:
            return ModifierMessage::removeFile;
        default:
            return ModifierMessage::none;
    }
}

void TimerKeyModifiersTick() {
    guarded("frmMain.TimerKeyModifiers_Timer", [] {
        const int held = modifierKeys();
        CtrlDown = (held & kCtrlMask) != 0;
        ShiftDown = (held & kShiftMask) != 0;
        AltDown = (held & kAltMask) != 0;
        const ModifierMessage message = MessageFor(CtrlDown, ShiftDown, AltDown);
        if (message == ModifierMessage::none) {
            nothingHeld();
        } else {
            ShowMessageLine(true);
        }
        switch (message) {
            case ModifierMessage::move:
                if (MoveSrcJ == -1) {
                    say("mlblSelJtomove");
                }
                ShowSelectors();
                break;
            case ModifierMessage::copy:
                if (MoveSrcJ == -1) {
                    say("mlblSelJtocopy");
                }
                break;
            case ModifierMessage::rename:
                if (RenameJ == -1) {
                    say("mlblSelJtorename");
                }
                break;
            case ModifierMessage::remove:
                say("mlblSelJtodelete");
                break;
            case ModifierMessage::removeFile:
                say("mlblSelJFtodelete");
                break;
            case ModifierMessage::none:
                break;
        }
        if (CtrlDown != PrevCtrlDown || ShiftDown != PrevShiftDown) {
            MoveSrcJ = -1;
        }
        outlineCarried();
        PrevCtrlDown = CtrlDown;
        PrevShiftDown = ShiftDown;
    });
}

}  // namespace zv
