// Synthetic input: events injected at the platform window, from where they take the same way as those of a real
// mouse, finger or keyboard.
#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QScrollArea>
#include <QTouchEvent>
#include <QUrl>
#include <QWindow>
#include <map>

#include "platform/clock.h"
#include "platform/qt/view/keys.h"
#include "platform/qt/view/native.h"
#include "platform/qt/view/shell.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"
#include "platform/qt/view/windows.h"
#include "platform/waiting.h"

// The toolkit's own gates for the events of a test: the same way that a screen's driver takes, with a time of
// our own, so that two quick presses are a double click here too.
Q_GUI_EXPORT void qt_handleMouseEvent(QWindow* window, const QPointF& local, const QPointF& global,
                                      Qt::MouseButtons state, Qt::MouseButton button, QEvent::Type type,
                                      Qt::KeyboardModifiers mods, int timestamp);
Q_GUI_EXPORT void qt_handleTouchEvent(QWindow* window, const QPointingDevice* device,
                                      const QList<QEventPoint>& points, Qt::KeyboardModifiers mods);

namespace zv::shell {
namespace {

struct Target {
    QWidget* widget = nullptr;
    QPoint at;  ///< in the widget
};

/// Where a press on the record lands; nothing when it is hidden, disabled or covered.
Target targetOf(Control& control, Place place, const MouseEvent* press = nullptr) {
    flushChanged();
    deliverEvents();
    if (!takesNow(control, press)) {
        if (press != nullptr) call(refusedMeanwhile);
        return {};
    }
    QWidget* widget = widgetOf(control);
    if (widget == nullptr || !isShown(control) || !control.enabled() || !widget->isEnabled()) return {};
    // What is scrolled away is scrolled to, as a hand would.
    for (QWidget* above = widget->parentWidget(); above != nullptr; above = above->parentWidget()) {
        if (auto* area = qobject_cast<QScrollArea*>(above)) area->ensureWidgetVisible(widget);
    }
    QRect area = widget->rect();
    if (RecordView* view = viewOf(control); view == nullptr || &view->widget != widget) {
        const Control* top = recordOf(widget);
        if (top == nullptr) return {};
        area = placeIn(control, *top);
    }
    const QPoint at(area.left() + (place.x < 0 ? area.width() / 2 : px(place.x)),
                    area.top() + (place.y < 0 ? area.height() / 2 : px(place.y)));
    QWidget* window = widget->window();
    const QPoint there = widget->mapTo(window, at);
    if (!window->rect().contains(there)) return {};
    QWidget* hit = window->childAt(there);
    if (hit == nullptr) hit = window;
    // Lists, text boxes and the like have an inside of their own.
    if (hit != widget && !widget->isAncestorOf(hit)) return {};
    return {widget, at};
}

/// The record that a painted widget would give the press to must be the one meant.
bool reaches(const Target& target, Control& control) {
    if (target.widget == nullptr) return false;
    const Control* top = recordOf(target.widget);
    RecordView* view = top != nullptr ? viewOf(*top) : nullptr;
    if (view == nullptr || !view->paintsChildren()) return true;
    const Control* part = view->partAt(target.at);
    return (part != nullptr ? part : top) == &control;
}

int& heldButtons() {
    static int buttons = 0;
    return buttons;
}

Qt::MouseButtons qtButtons(int held) {
    Qt::MouseButtons out;
    for (const MouseButton b : {MouseButton::left, MouseButton::right, MouseButton::middle}) {
        out.setFlag(qtButtonOf(b), (held & static_cast<int>(b)) != 0);
    }
    return out;
}

void sendMouse(QWidget& widget, QPoint at, QEvent::Type type, Qt::MouseButton button, int shift) {
    QWidget* window = widget.window();
    QWindow* door = window->windowHandle();
    if (door == nullptr) return;
    const QPointF local = widget.mapTo(window, at);
    const QPointF global = window->mapToGlobal(local.toPoint());
    const int stamp = static_cast<int>(monotonicMs() & 0x7FFFFFFF);
    qt_handleMouseEvent(door, local, global, qtButtons(heldButtons()), button, type, modifiersOf(shift),
                        stamp);
    deliverEvents();
}

void press(QWidget& widget, QPoint at, MouseButton button, int shift) {
    heldButtons() |= static_cast<int>(button);
    sendMouse(widget, at, QEvent::MouseButtonPress, qtButtonOf(button), shift);
}

void release(QWidget& widget, QPoint at, MouseButton button, int shift) {
    heldButtons() &= ~static_cast<int>(button);
    sendMouse(widget, at, QEvent::MouseButtonRelease, qtButtonOf(button), shift);
}

/// Fingers that are down, with the place they came down at.
std::map<int, std::pair<Control*, QPointF>>& fingers() {
    static auto* map = new std::map<int, std::pair<Control*, QPointF>>;
    return *map;
}

const QPointingDevice& touchScreen() {
    static auto* device =
        new QPointingDevice(QStringLiteral("touch screen"), 1, QInputDevice::DeviceType::TouchScreen,
                            QPointingDevice::PointerType::Finger, QInputDevice::Capability::Position, 10, 0);
    return *device;
}

bool sendTouch(QWidget& window, QPointF local, int finger, QEventPoint::State state) {
    QWindow* door = window.windowHandle();
    if (door == nullptr) return false;
    QList<QEventPoint> points;
    const auto add = [&](int id, QEventPoint::State what, QPointF at) {
        points << QEventPoint(id, what, at, window.mapToGlobal(at.toPoint()));
    };
    for (const auto& [id, held] : fingers()) {
        if (id != finger) add(id, QEventPoint::Stationary, held.second);
    }
    add(finger, state, local);
    qt_handleTouchEvent(door, &touchScreen(), points, Qt::NoModifier);
    deliverEvents();
    return true;
}

QWindow* doorOfKeys() {
    const Control* window = activeWindow();
    RecordView* view = window != nullptr ? viewOf(*window) : nullptr;
    return view != nullptr ? view->widget.windowHandle() : nullptr;
}

}  // namespace

bool clickAt(QWidget& widget, QPoint at) {
    press(widget, at, MouseButton::left, 0);
    release(widget, at, MouseButton::left, 0);
    return true;
}

void typeInto(QWidget& focused, const QString& text) {
    QWindow* door = focused.window()->windowHandle();
    if (door == nullptr) return;
    const auto type = [&](int key, const QString& letter) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, letter);
        QCoreApplication::sendEvent(door, &down);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, letter);
        QCoreApplication::sendEvent(door, &up);
    };
    if (text.isEmpty()) type(Qt::Key_Backspace, {});
    for (const QChar c : text) type(c.toUpper().unicode(), QString(c));
}

bool mouseDown(Control& control, MouseButton button, int shift, Place at) {
    const MouseEvent event{button, shift};
    const Target target = targetOf(control, at, &event);
    if (!reaches(target, control)) return false;
    press(*target.widget, target.at, button, shift);
    return true;
}

bool mouseUp(Control& control, MouseButton button, int shift, Place at) {
    // A release goes to whoever got the press, even when it is covered or disabled by now.
    QWidget* widget = widgetOf(control);
    if (widget == nullptr || (heldButtons() & static_cast<int>(button)) == 0) return false;
    QRect area = widget->rect();
    if (viewOf(control) == nullptr) area = placeIn(control, *recordOf(widget));
    const QPoint there(area.left() + (at.x < 0 ? area.width() / 2 : px(at.x)),
                       area.top() + (at.y < 0 ? area.height() / 2 : px(at.y)));
    release(*widget, there, button, shift);
    return true;
}

bool mouseMove(Control& control, int held, int shift, Place at) {
    const Target target = targetOf(control, at);
    if (target.widget == nullptr) return false;
    const int before = std::exchange(heldButtons(), held);
    sendMouse(*target.widget, target.at, QEvent::MouseMove, Qt::NoButton, shift);
    heldButtons() = before;
    return true;
}

bool click(Control& control, MouseButton button, int shift, Place at) {
    return mouseDown(control, button, shift, at) && mouseUp(control, button, shift, at);
}

bool doubleClick(Control& control, int shift, Place at) {
    if (!click(control, MouseButton::left, shift, at)) return false;
    const MouseEvent event{MouseButton::left, shift};
    const Target target = targetOf(control, at, &event);
    if (!reaches(target, control)) return false;
    press(*target.widget, target.at, MouseButton::left, shift);
    release(*target.widget, target.at, MouseButton::left, shift);
    return true;
}

bool touchDown(Control& control, int finger) {
    const MouseEvent plain;
    const Target target = targetOf(control, {}, &plain);
    if (!reaches(target, control) || fingers().contains(finger)) return false;
    QWidget* window = target.widget->window();
    const QPointF local = target.widget->mapTo(window, target.at);
    fingers()[finger] = {&control, local};
    return sendTouch(*window, local, finger, QEventPoint::Pressed);
}

bool touchUp(Control& control, int finger) {
    const auto found = fingers().find(finger);
    QWidget* widget = widgetOf(control);
    if (found == fingers().end() || found->second.first != &control || widget == nullptr) return false;
    const QPointF local = found->second.second;
    fingers().erase(found);
    return sendTouch(*widget->window(), local, finger, QEventPoint::Released);
}

bool keyDown(Key key, int shift, bool repeat, std::string_view text) {
    flushChanged();
    QWindow* door = doorOfKeys();
    if (door == nullptr) return false;
    QString typed = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    const int code = static_cast<int>(key);
    const bool letter = (code >= 'A' && code <= 'Z') || (code >= '0' && code <= '9');
    if (typed.isEmpty() && letter && (shift & (kCtrlMask | kAltMask)) == 0) {
        typed = QChar(code);
        if ((shift & kShiftMask) == 0) typed = typed.toLower();
    }
    if (typed.isEmpty() && key == Key::space) typed = QStringLiteral(" ");
    QKeyEvent e(QEvent::KeyPress, qtKeyOf(key), modifiersOf(shift), typed, repeat);
    QCoreApplication::sendEvent(door, &e);
    return true;
}

bool keyUp(Key key, int shift) {
    flushChanged();
    QWindow* door = doorOfKeys();
    if (door == nullptr) return false;
    QKeyEvent e(QEvent::KeyRelease, qtKeyOf(key), modifiersOf(shift));
    QCoreApplication::sendEvent(door, &e);
    return true;
}

bool typeText(Control& control, std::string_view text) {
    RecordView* view = targetOf(control, {}).widget != nullptr ? viewOf(control) : nullptr;
    return view != nullptr && userTypes(*view, text);
}

bool selectRow(Control& control, int row) {
    RecordView* view = row >= 0 && targetOf(control, {}).widget != nullptr ? viewOf(control) : nullptr;
    return view != nullptr && userSelectsRow(*view, row);
}

bool moveSlider(Control& control, int value) {
    RecordView* view = targetOf(control, {}).widget != nullptr ? viewOf(control) : nullptr;
    return view != nullptr && userMovesSlider(*view, value);
}

bool setTicked(Control& control, bool on) {
    const bool ticks = control.kind == ControlKind::checkBox || control.kind == ControlKind::option;
    if (!ticks || targetOf(control, {}).widget == nullptr) return false;
    if ((control.value() != 0) == on) return true;
    if (control.kind == ControlKind::option && !on) return false;
    // At the box itself: it stands at the left of its text.
    const int side = std::min(control.height(), control.width());
    return click(control, MouseButton::left, 0, {side / 2, control.height() / 2});
}

bool dropFiles(Control& control, const std::vector<std::string>& paths) {
    const Target target = targetOf(control, {});
    if (!reaches(target, control)) return false;
    QWidget* receiver = target.widget->childAt(target.at);
    if (receiver == nullptr) receiver = target.widget;
    const QPoint at = receiver->mapFrom(target.widget, target.at);
    QMimeData data;
    QList<QUrl> urls;
    for (const std::string& path : paths) urls.push_back(QUrl::fromLocalFile(textOf(path)));
    data.setUrls(urls);
    QDragEnterEvent enter(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QCoreApplication::sendEvent(receiver, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop(QPointF(at), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(receiver, &drop);
    return drop.isAccepted();
}

}  // namespace zv::shell
