// What each key asks for, by the modifier keys held with it.

#include "model/actions.h"
#include "tests/ui/window_test.h"
#include "ui/press/keyboard.h"

namespace zv::test {

class KeysTest : public WindowTest {};

TEST_F(KeysTest, everyKeyOfTheTable) {
    constexpr int c = kCtrlMask, s = kShiftMask, a = kAltMask;
    constexpr int paged = static_cast<int>(PaletteKey::repeated);
    const struct {
        Key key;
        int held;  ///< modifier keys, in the event and as they are polled
        Action action;
        int argument = 0;
        bool window = false;  ///< the focused control sees it too
    } rows[] = {
        {Key::f1, 0, Action::shortcuts, 0, true},
        {Key::f2, 0, Action::settings, 0, true},
        {Key::f3, 0, Action::search, 0, true},
        {Key::f4, 0, Action::none},
        {Key::f4, a, Action::close, 0, true},
        {Key::f5, 0, Action::tab, 0, true},
        {Key::f6, 0, Action::tab, 1, true},
        {Key::f7, 0, Action::tab, 2, true},
        {Key::f8, 0, Action::tab, 3, true},
        {Key::f9, c, Action::minimalView, 0, true},
        {Key::f9, a, Action::joinedButtons, 0, true},
        {Key::f10, 0, Action::hotJinglesPlace, 0, true},
        {Key::f11, 0, Action::fullScreen, 0, true},
        {Key::del, 0, Action::remove},
        {Key::escape, 0, Action::stopAll},
        {Key::pageUp, 0, Action::paletteUp, paged},
        {Key::pageDown, 0, Action::paletteDown, paged},
        {Key{'X'}, 0, Action::none},
        {Key{'X'}, a, Action::console},
        {Key{'R'}, c, Action::autoRepeat},
        {Key{'T'}, s, Action::touch},
        {Key{'M'}, a, Action::autoMix},
        {Key{'E'}, 0, Action::newPalette},
        {Key{'A'}, s, Action::assign},
        {Key{'A'}, c, Action::tickAll},
        {Key{'S'}, 0, Action::savePalette},
        {Key{'F'}, 0, Action::effects},
        {Key{'L'}, 0, Action::loop},
        {Key{'N'}, 0, Action::announcer},
        {Key{'C'}, a, Action::userScript},
        {Key{'C'}, s, Action::announcerJingle},
        {Key{'C'}, c, Action::copyCaptions},
        {Key{'C'}, c | a, Action::none},
        {Key{'Z'}, c, Action::undo},
        {Key{'Z'}, c | s, Action::redo},
        {Key{'Y'}, c, Action::redo},
        {Key{'Z'}, 0, Action::none},
        {Key::space, 0, Action::pressLast},
    };
    const auto real = zv::perform;
    for (const auto& row : rows) {
        Action action = Action::none;
        int argument = 0;
        zv::perform = [&](Action asked, int with, int) {
            action = asked, argument = with;
            return true;
        };
        CtrlDown = (row.held & c) != 0, ShiftDown = (row.held & s) != 0, AltDown = (row.held & a) != 0;
        KeyEvent e{row.key, row.held};
        Form_KeyDown(e);
        const auto what = std::to_string(static_cast<int>(row.key)) + " with " + std::to_string(row.held);
        EXPECT_EQ(action, row.action) << what;
        EXPECT_EQ(argument, row.argument) << what;
        EXPECT_EQ(e.consumed, !row.window && row.action != Action::none) << what;
    }
    zv::perform = real;
    CtrlDown = ShiftDown = AltDown = false;
}

}  // namespace zv::test
