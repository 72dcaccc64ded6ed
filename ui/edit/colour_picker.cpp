#include "ui/edit/colour_picker.h"

#include <array>
#include <cstddef>

#include "model/colours.h"
#include "model/jingle.h"
#include "model/state.h"
#include "platform/controls.h"
#include "platform/desktop.h"
#include "startup/guard.h"
#include "startup/helpers.h"
#include "startup/language.h"
#include "startup/settings/dark_settings.h"
#include "ui/edit/selection.h"
#include "ui/edit/undo.h"
#include "ui/edit/unsaved.h"
#include "ui/records/armed.h"
#include "ui/records/main_window.h"
#include "ui/records/timers.h"
#include "ui/screen/button_faces.h"
#include "ui/screen/highlight.h"
#include "ui/screen/shaded.h"
#include "ui/windows/form_window.h"

namespace zv {

namespace {

constexpr int kColumns = 6, kField = 44;  // pixels
constexpr int kNoColourField = kPickFields - 1;
constexpr int kLeftMouseButton = 1;  // virtual key

constexpr std::array<Colour, 24> table{0xFF00FF, 0xCC99FF, 0xFF99CC, 0xFF9999, 0xFF6633, 0xFFCC00,
                                       0xFFFF00, 0xCCCC33, 0x669933, 0x00CC99, 0x00FF00, 0x00FFFF,
                                       0x00CCFF, 0x0099FF, 0x0066FF, 0x0000FF, 0x8080FF, 0xFFCCCC,
                                       0xFFCC99, 0xFFFFCC, 0xCCFFCC, 0x99FFFF, 0x99CCFF, 0xFFFFFF};

struct Picker {
    FormWindow form{"frmColPick", "sfrmColPick"};
    std::array<Control*, kPickFields> Color{};
    Control& lblDelCol = form.control("lblDelCol", ControlKind::label, "cplblDelCol");

    Picker() {
        FormCard card;
        for (int i = 0; i < kPickFields; ++i) {
            Control& field = form.control("Color", ControlKind::colourField, {}, i);
            Color[static_cast<std::size_t>(i)] = &field;
            field.onClick = [i] { PickColour(i); };
            if (i % kColumns == 0) {
                card.rows.push_back({.height = kField});
            }
            card.rows.back().cells.push_back({.control = &field, .width = kField});
        }
        card.rows.back().cells.push_back({.control = &lblDelCol, .width = kRestOfRow});
        lblDelCol.onClick = [] { PickColour(kNoColourField); };
        card.gap = 8;
        card.bare = true;
        form.describe({.blocks = {{card}}});
        form.alwaysCentred = true;
        form.onClosed = [] { CloseColorPicker(); };
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
        // The colour that the button has is marked, and takes the keyboard.
        int set = kNoColourField;
        for (int i = 0; i < kPickFields; ++i) {
            Control& field = *picker.Color[static_cast<std::size_t>(i)];
            const Colour colour = PickerColour(i);
            field.backColor =
                i < kNoColourField ? ShadeColor(colour, darkSettings.ShadeOffsetVal) : BtnFaceColor;
            const std::string digits = i < kNoColourField ? ColorToHex(colour) : std::string(kFaceColourText);
            field.toolTip = i < kNoColourField ? "#" + digits : Ln("cplblDelCol");
            const bool has = SameText(Jingle(MenuJ).BTNCol, digits);
            field.value = has ? 1 : 0;
            if (has) {
                set = i;
            }
        }
        ColorPickerOpen = true;
        picker.form.open(picker.Color[static_cast<std::size_t>(set)]);
        setAlwaysOnTop(picker.form.window, true);
        timers().TimerCloseColorPicker.start();
    });
}

void PickColour(int field) {
    guarded("frmColPick.Color_Click", [&] {
        const UndoStep step("unColour");
        for (const int i : SelJ) {
            JingleRecord& j = Jingle(i);
            if (field < kNoColourField) {
                j.BTNCol = ColorToHex(PickerColour(field));
                j.BackRGB = ShadeColor(PickerColour(field), darkSettings.ShadeOffsetVal);
            } else {
                j.BTNCol = kFaceColourText;
                j.BackRGB = BtnFaceColor;
            }
            j.ForeRGB = GetForeColor(j.BackRGB, "jingle");
        }
        CloseColorPicker();
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
        DisarmOptions();
        OptionControl.clear();
        OptionCode.clear();
        ResetJingles();
        frmColPick().form.close();
    });
}

void TimerCloseColorPickerTick() {
    guarded("frmMain.TimerCloseColorPicker_Timer", [] {
        // A press elsewhere closes it.
        if (ColorPickerOpen && keyHeld(kLeftMouseButton) && !mouseOver(frmColPick().form.window)) {
            CloseColorPicker();
        }
    });
}

}  // namespace zv
