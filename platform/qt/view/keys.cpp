#include "platform/qt/view/keys.h"

#include <QKeyEvent>
#include <algorithm>
#include <array>
#include <utility>

namespace zv::shell {
namespace {

constexpr std::array kNamed{
    std::pair{Qt::Key_Backspace, Key::backspace},
    std::pair{Qt::Key_Tab, Key::tab},
    std::pair{Qt::Key_Return, Key::enter},
    std::pair{Qt::Key_Enter, Key::enter},
    std::pair{Qt::Key_Shift, Key::shift},
    std::pair{Qt::Key_Control, Key::control},
    std::pair{Qt::Key_Alt, Key::alt},
    std::pair{Qt::Key_Escape, Key::escape},
    std::pair{Qt::Key_Space, Key::space},
    std::pair{Qt::Key_PageUp, Key::pageUp},
    std::pair{Qt::Key_PageDown, Key::pageDown},
    std::pair{Qt::Key_End, Key::end},
    std::pair{Qt::Key_Home, Key::home},
    std::pair{Qt::Key_Left, Key::left},
    std::pair{Qt::Key_Up, Key::up},
    std::pair{Qt::Key_Right, Key::right},
    std::pair{Qt::Key_Down, Key::down},
    std::pair{Qt::Key_Insert, Key::insert},
    std::pair{Qt::Key_Delete, Key::del},
    std::pair{Qt::Key_Backtab, Key::tab},
};

constexpr int kFirstFunction = static_cast<int>(Key::f1);
constexpr int kLastFunction = static_cast<int>(Key::f12);

bool isPlain(int code) { return (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z'); }

}  // namespace

Key keyOf(const QKeyEvent& event) {
    const int key = event.key();
    const auto* named = std::ranges::find(kNamed, key, &std::pair<Qt::Key, Key>::first);
    if (named != kNamed.end()) return named->second;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return static_cast<Key>(kFirstFunction + key - Qt::Key_F1);
    return isPlain(key) ? static_cast<Key>(key) : Key::none;
}

int qtKeyOf(Key key) {
    const auto* named = std::ranges::find(kNamed, key, &std::pair<Qt::Key, Key>::second);
    if (named != kNamed.end()) return named->first;
    const int code = static_cast<int>(key);
    if (code >= kFirstFunction && code <= kLastFunction) return Qt::Key_F1 + code - kFirstFunction;
    return isPlain(code) ? code : Qt::Key_unknown;
}

int shiftOf(Qt::KeyboardModifiers m) {
    return (m.testFlag(Qt::ShiftModifier) ? kShiftMask : 0) |
           (m.testFlag(Qt::ControlModifier) ? kCtrlMask : 0) | (m.testFlag(Qt::AltModifier) ? kAltMask : 0);
}

Qt::KeyboardModifiers modifiersOf(int shift) {
    Qt::KeyboardModifiers m = Qt::NoModifier;
    m.setFlag(Qt::ShiftModifier, (shift & kShiftMask) != 0);
    m.setFlag(Qt::ControlModifier, (shift & kCtrlMask) != 0);
    m.setFlag(Qt::AltModifier, (shift & kAltMask) != 0);
    return m;
}

MouseButton buttonOf(Qt::MouseButton button) {
    switch (button) {
        case Qt::RightButton:
            return MouseButton::right;
        case Qt::MiddleButton:
            return MouseButton::middle;
        default:
            return MouseButton::left;
    }
}

Qt::MouseButton qtButtonOf(MouseButton button) {
    switch (button) {
        case MouseButton::right:
            return Qt::RightButton;
        case MouseButton::middle:
            return Qt::MiddleButton;
        default:
            return Qt::LeftButton;
    }
}

}  // namespace zv::shell
