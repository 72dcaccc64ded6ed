#include "ui/edit/colour_picker.h"

#include <array>
#include <cstddef>
#include <memory>

#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings.h"
#include "ui/edit/selection.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/highlight.h"
#include "ui/screen/shaded.h"

namespace zv {

namespace {

constexpr int kColumns = 6, kField = 600, kFieldGap = 90;  // twips
constexpr int kNoColourField = kPickFields - 1;
constexpr int kLeftMouseButton = 1;  // virtual key

constexpr std::array<Colour, 24> table{0xFF00FF, 0xCC99FF, 0xFF99CC, 0xFF9999, 0xFF6633, 0xFFCC00,
                                       0xFFFF00, 0xCCCC33, 0x669933, 0x00CC99, 0x00FF00, 0x00FFFF,
                                       0x00CCFF, 0x0099FF, 0x0066FF, 0x0000FF, 0x8080FF, 0xFFCCCC,
                                       0xFFCC99, 0xFFFFCC, 0xCCFFCC, 0x99FFFF, 0x99CCFF, 0xFFFFFF};

struct Picker {
    Control window{"frmColPick", ControlKind::window};
    std::array<std::unique_ptr<Control>, kPickFields> Color;
    Control lblDelCol{"lblDelCol", ControlKind::label, &window};

    Picker() {
        const int rows = static_cast<int>(table.size()) / kColumns;
        window.width = kColumns * (kField + kFieldGap) + kFieldGap;
        window.height = (rows + 1) * (kField + kFieldGap) + kFieldGap;
        for (int i = 0; i < kPickFields; ++i) {
            auto& field = Color[static_cast<std::size_t>(i)];
            field = std::make_unique<Control>("Color", ControlKind::colourField, &window, i);
            field->left = kFieldGap + i % kColumns * (kField + kFieldGap);
            field->top = kFieldGap + i / kColumns * (kField + kFieldGap);
            field->width = kField;
            field->height = kField;
            field->onClick = [i] { PickColour(i); };
        }
        lblDelCol.left = kFieldGap + kField + kFieldGap;
        lblDelCol.top = kFieldGap + rows * (kField + kFieldGap);
        lblDelCol.width = window.width() - lblDelCol.left() - kFieldGap;
        lblDelCol.height = kField;
        lblDelCol.onClick = [] { PickColour(kNoColourField); };
        window.onClose = [] { CloseColorPicker(); };
        window.onKeyDown = [](KeyEvent& e) {
            if (e.key == Key::escape) {
                e.consumed = true;
                CloseColorPicker();
            }
        };
    }
};

Picker& frmColPick() {
    static Picker picker;
    return picker;
}

}  // namespace

Colour PickerColour(int field) {
    return field >= 0 && field < kNoColourField ? table[static_cast<std::size_t>(field)] : kNoColour;
}

void preclColorSet(int index) {
    guarded("modClick.preclColorSet", [&] {
        if (Jingle(index).Path.empty() || Jingle(index).MissingFile) {
            return;
        }
        MenuJ = index;
        timers().TimerTrigColSel.restart();
    });
}

void TimerTrigColSelTick() {
    guarded("frmMain.TimerTrigColSel_Timer", [] {
        if (keyHeld(kLeftMouseButton)) {
            return;
        }
        timers().TimerTrigColSel.stop();
        if (Armed(frmMain().options.ckColorI)) {
            ResetJingles();
        }
        SelectorsOn = true;
        Colour back = 0;
        Colour fore = 0;
        RestColours(MenuJ, back, fore);
        PaintButton(MenuJ, back, fore);
        clColorSet(MenuJ);
    });
}

void clColorSet(int index) {
    guarded("modClick.clColorSet", [&] {
        const bool single = BuildSelJ(index);
        if (single && (Jingle(index).Path.empty() || Jingle(index).MissingFile)) {
            SelectorsOn = false;
            return;
        }
        MenuJ = index;
        for (const int i : SelJ) {
            PaintButton(i, Shaded.co, GetForeColor(Shaded.co, "jingle"));
        }
        Picker& picker = frmColPick();
        for (int i = 0; i < kNoColourField; ++i) {
            picker.Color[static_cast<std::size_t>(i)]->backColor =
                ShadeColor(table[static_cast<std::size_t>(i)], settings.ShadeOffsetVal);
        }
        picker.Color[kNoColourField]->backColor = BtnFaceColor;
        picker.window.caption = Ln("sfrmColPick");
        picker.window.backColor = frmMain().window.backColor();
        picker.lblDelCol.caption = Ln("cplblDelCol");
        picker.lblDelCol.foreColor = BtnForeColor;
        const Control& main = frmMain().window;
        picker.window.left = main.left() + (main.width() - picker.window.width()) / 2;
        picker.window.top = main.top() + (main.height() - picker.window.height()) / 2;
        ColorPickerOpen = true;
        showWindow(picker.window);
        setAlwaysOnTop(picker.window, true);
        timers().TimerCloseColorPicker.start();
    });
}

void PickColour(int field) {
    guarded("frmColPick.Color_Click", [&] {
        Disarm(frmMain().options.ckColorI);
        for (const int i : SelJ) {
            JingleRecord& j = Jingle(i);
            if (field < kNoColourField) {
                j.BTNCol = ColorToHex(PickerColour(field));
                j.BackRGB = ShadeColor(PickerColour(field), settings.ShadeOffsetVal);
            } else {
                j.BTNCol = kFaceColourText;
                j.BackRGB = BtnFaceColor;
            }
            j.ForeRGB = GetForeColor(j.BackRGB, "jingle");
        }
        ResetJingles();
        CloseColorPicker();
        OptionCode.clear();
        MarkPalToSave();
    });
}

void CloseColorPicker() {
    guarded("frmColPick.Form_Unload", [] {
        if (!ColorPickerOpen) {
            return;
        }
        ColorPickerOpen = false;
        timers().TimerCloseColorPicker.stop();
        Disarm(frmMain().options.ckColorI);
        OptionControl.clear();
        OptionCode.clear();
        ResetJingles();
        hideWindow(frmColPick().window);
    });
}

void TimerCloseColorPickerTick() {
    guarded("frmMain.TimerCloseColorPicker_Timer", [] {
        // A press elsewhere closes it.
        if (ColorPickerOpen && keyHeld(kLeftMouseButton) && !mouseOver(frmColPick().window)) {
            CloseColorPicker();
        }
    });
}

}  // namespace zv
