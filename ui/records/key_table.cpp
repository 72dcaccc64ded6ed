#include "ui/records/key_table.h"

#include <vector>

#include "model/actions.h"
#include "platform/controls.h"
#include "ui/records/main_window.h"

namespace zv {

namespace {

using enum KeyHeld;
using enum KeyRepeat;
using A = Action;

constexpr int paged = static_cast<int>(PaletteKey::repeated);

constexpr Key letter(char c) { return static_cast<Key>(c); }

std::vector<KeyRow> made() {
    const MainWindow& w = frmMain();
    return {
        // clang-format off
        {Key::f1, any, A::shortcuts, 0, acts, true, "F1", "", "scF1", nullptr},
        {Key::f2, any, A::settings, 0, acts, true, "F2", "", "scF2", &w.keys.btSettings},
        {Key::f3, any, A::search, 0, acts, true, "F3", "", "scF3", &w.palettes.btSearchJingle},
        {Key::f4, eventAlt, A::close, 0, acts, true, "", "", "", nullptr},
        {Key::f5, any, A::tab, 0, acts, true, "F5", "", "scF5", nullptr},
        {Key::f6, any, A::tab, 1, acts, true, "F6", "", "scF6", nullptr},
        {Key::f7, any, A::tab, 2, acts, true, "F7", "", "scF7", nullptr},
        {Key::f8, any, A::tab, 3, acts, true, "F8", "", "scF8", nullptr},
        {Key::f9, noEventAlt, A::minimalView, 0, acts, true, "", "", "", nullptr},
        {Key::f9, eventAlt, A::joinedButtons, 0, acts, true, "Alt", "F9", "scAltF9", nullptr},
        {Key::f10, any, A::hotJinglesPlace, 0, acts, true, "F10", "", "scF10", nullptr},
        {Key::f11, any, A::fullScreen, 0, acts, true, "F11", "", "scF11", nullptr},
        {Key::space, any, A::pressLast, 0, swallowed, false, "scKeySpace", "", "scSpace", nullptr},
        {Key::escape, any, A::stopAll, 0, acts, false, "scKeyEscape", "", "scEscape", nullptr},
        {Key::pageUp, any, A::paletteUp, paged, acts, false, "scKeyPageUp", "", "scPageUp", nullptr},
        {Key::pageDown, any, A::paletteDown, paged, acts, false, "scKeyPageDown", "", "scPageDown", nullptr},
        {Key::del, any, A::remove, 0, acts, false, "scKeyDelete", "", "scDelete", nullptr},
        {letter('R'), any, A::autoRepeat, 0, swallowed, false, "R", "", "scR", nullptr},
        {letter('T'), any, A::touch, 0, swallowed, false, "T", "", "scT", nullptr},
        {letter('M'), any, A::autoMix, 0, swallowed, false, "M", "", "scM", nullptr},
        {letter('E'), any, A::newPalette, 0, swallowed, false, "E", "", "scE", nullptr},
        {letter('S'), any, A::savePalette, 0, swallowed, false, "S", "", "scS", nullptr},
        {letter('A'), noCtrl, A::assign, 0, swallowed, false, "A", "", "scA", nullptr},
        {letter('L'), any, A::loop, 0, swallowed, false, "L", "", "scL", nullptr},
        {letter('F'), any, A::effects, 0, swallowed, false, "F", "", "scF", &w.options.ckFXI},
        {letter('N'), any, A::announcer, 0, swallowed, false, "N", "", "scN", &w.announcer.ckTmAnn},
        {letter('C'), neither, A::announcerJingle, 0, swallowed, false, "C", "", "scC", &w.announcer.b_tmAnJin},
        {Key::none, any, A::none, 0, acts, false, "scKeyCtrl", "", "scCtrl", nullptr},
        {Key::none, any, A::none, 0, acts, false, "scKeyCtrl", "scKeyShift", "scCtrlShift", nullptr},
        {Key::none, any, A::none, 0, acts, false, "scKeyShift", "", "scShift", nullptr},
        {Key::none, any, A::none, 0, acts, false, "Alt", "", "scAlt", nullptr},
        {Key::none, any, A::none, 0, acts, false, "scKeyCtrl", "Alt", "scCtrlAlt", nullptr},
        {letter('A'), ctrl, A::tickAll, 0, swallowed, false, "scKeyCtrl", "A", "scCtrlA", nullptr},
        {letter('C'), ctrlNoAlt, A::copyCaptions, 0, swallowed, false, "scKeyCtrl", "C", "scCtrlC", nullptr},
        {letter('Z'), eventCtrl, A::undo, 0, swallowed, false, "scKeyCtrl", "Z", "scCtrlZ", nullptr},
        {letter('Y'), eventCtrl, A::redo, 0, swallowed, false, "scKeyCtrl", "Y", "scCtrlY", nullptr},
        {letter('Z'), eventCtrlShift, A::redo, 0, swallowed, false, "", "", "", nullptr},
        {letter('C'), altNoCtrl, A::userScript, 0, swallowed, false, "Alt", "C", "scAltC", nullptr},
        {letter('X'), alt, A::console, 0, swallowed, false, "Alt", "X", "scAltX", nullptr},
        // clang-format on
    };
}

}  // namespace

const std::vector<KeyRow>& KeyTable() {
    static const std::vector<KeyRow> rows = made();
    return rows;
}

}  // namespace zv
