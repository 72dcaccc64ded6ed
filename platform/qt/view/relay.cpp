// Events of widgets as calls of the records' handlers: mouse, fingers, keys, focus, files let go.
#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointer>
#include <QTouchEvent>
#include <QUrl>
#include <QWindow>
#include <cstdint>
#include <set>
#include <unordered_map>
#include <utility>

#include "platform/qt/view/changes.h"
#include "platform/qt/view/keys.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"
#include "platform/waiting.h"

namespace zv::shell {
namespace {

/// The records that are held down: a release goes to the record of its press, wherever it happens.
struct Held {
    Control* part = nullptr;
    int buttons = 0;
    std::unordered_map<int, Control*> fingers;
};

std::unordered_map<const Control*, int>& heldCounts() {
    static auto* counts = new std::unordered_map<const Control*, int>;
    return *counts;
}

void hold(const Control* record, int by) {
    if (record == nullptr) return;
    int& count = heldCounts()[record];
    count = std::max(0, count + by);
}

/// A press whose handler runs, and how many windows were open when it began: what a question over the grid keeps
/// waiting is no longer held.
struct RunningPress {
    const Control* record = nullptr;
    std::uint64_t opened = 0;
};
RunningPress runningPress;

class Relay final : public QObject {
  public:
    Relay(RecordView& view, QWidget& source)
        : QObject(&source), view_(view), record_(view.record), source_(source) {
        source.installEventFilter(this);
    }
    ~Relay() override {
        heldCounts().erase(&record_);  // the view is gone by now, the record is not
        if (held_.part != nullptr) heldCounts().erase(held_.part);
        for (const auto& [id, record] : held_.fingers) heldCounts().erase(record);
    }

    bool eventFilter(QObject* watched, QEvent* e) override {
        if (watched != &source_) return false;
        switch (e->type()) {
            case QEvent::MouseButtonPress:
            case QEvent::MouseButtonDblClick:
                return mousePressed(*static_cast<QMouseEvent*>(e));
            case QEvent::MouseButtonRelease:
                return mouseReleased(*static_cast<QMouseEvent*>(e));
            case QEvent::MouseMove:
                return mouseMoved(*static_cast<QMouseEvent*>(e));
            case QEvent::ContextMenu:
                // Of the mouse the right button's press and release are told; the menu key tells both here.
                if (static_cast<QContextMenuEvent*>(e)->reason() == QContextMenuEvent::Keyboard) menuAsked();
                return true;
            case QEvent::TouchBegin:
            case QEvent::TouchUpdate:
            case QEvent::TouchEnd:
            case QEvent::TouchCancel:
                return touched(*static_cast<QTouchEvent*>(e));
            case QEvent::KeyPress:
                return keyPressed(*static_cast<QKeyEvent*>(e));
            case QEvent::KeyRelease:
                return keyReleased(*static_cast<QKeyEvent*>(e));
            case QEvent::FocusIn:
                call(view_.record.onFocus);
                return false;
            case QEvent::DragEnter:
            case QEvent::DragMove:
                return dragged(*static_cast<QDropEvent*>(e));
            case QEvent::Drop:
                return dropped(*static_cast<QDropEvent*>(e));
            default:
                return false;
        }
    }

  private:
    /// True for what has no widget of the toolkit behind it, which would tell clicks itself.
    bool painted() const {
        switch (view_.record.kind) {
            case ControlKind::button:
            case ControlKind::toggle:
            case ControlKind::checkBox:
            case ControlKind::option:
            case ControlKind::listBox:
            case ControlKind::comboBox:
            case ControlKind::textBox:
            case ControlKind::slider:
            case ControlKind::number:
            case ControlKind::tabs:
                return false;
            default:
                return true;
        }
    }

    void showHeld() {
        if (view_.record.kind == ControlKind::jingle) view_.widget.update();
    }

    Control& hit(QPoint at) const {
        Control* part = view_.partAt(toView(at));
        return part != nullptr ? *part : view_.record;
    }

    QPoint toView(QPoint at) const { return source_.mapTo(&view_.widget, at); }

    MouseEvent told(const Control& record, QPoint at, MouseButton button, int shift) const {
        QPoint inside = toView(at);
        if (&record != &view_.record) inside -= placeIn(record, view_.record).topLeft();
        return {button, shift, inside.x() * kTwipsPerPixel, inside.y() * kTwipsPerPixel};
    }

    bool mousePressed(QMouseEvent& e) {
        // A finger comes as a touch event; the mouse that the system makes of it would press a second time.
        if (e.source() == Qt::MouseEventSynthesizedBySystem &&
            view_.widget.testAttribute(Qt::WA_AcceptTouchEvents)) {
            return true;
        }
        const QPoint at = e.position().toPoint();
        Control& record = held_.part != nullptr ? *held_.part : hit(at);
        if (held_.part == nullptr) {
            held_.part = &record;
            hold(&record, 1);
        }
        const MouseButton button = buttonOf(e.button());
        held_.buttons |= static_cast<int>(button);
        showHeld();
        const MouseEvent event = told(record, at, button, shiftOf(e.modifiers()));
        // A quick second press is a press as well: on air each counts.
        const QPointer<QWidget> alive(&source_);
        const std::uint64_t opened = openedSoFar();
        const RunningPress outer = std::exchange(runningPress, {&record, opened});
        call(record.onMouseDown, event);
        runningPress = outer;
        if (alive && openedSoFar() != opened) {
            endPress(event);
            return true;  // nor does the widget look pressed
        }
        if (alive && e.type() == QEvent::MouseButtonDblClick) call(record.onDoubleClick, event);
        return painted();
    }

    /// The release went to what the press has opened: it counts here, as one beside the control.
    void endPress(const MouseEvent& event) {
        if (held_.part == nullptr) return;
        Control& record = *held_.part;
        held_.buttons = 0;
        held_.part = nullptr;
        hold(&record, -1);
        showHeld();
        call(record.onMouseUp, event);
    }

    bool mouseReleased(QMouseEvent& e) {
        if (held_.part == nullptr) return painted();
        Control& record = *held_.part;
        const QPoint at = e.position().toPoint();
        const MouseButton button = buttonOf(e.button());
        held_.buttons &= ~static_cast<int>(button);
        if (held_.buttons == 0) {
            hold(&record, -1);
            held_.part = nullptr;
        }
        showHeld();
        const MouseEvent event = told(record, at, button, shiftOf(e.modifiers()));
        const QPointer<QWidget> alive(&source_);
        call(record.onMouseUp, event);
        if (!alive || !painted()) return painted();
        if (button == MouseButton::left && &hit(at) == &record && source_.rect().contains(at))
            clicked(record);
        return true;
    }

    /// Painted records have no widget that would tell a click.
    void clicked(Control& record) {
        if (record.kind == ControlKind::checkBox && record.enabled()) {
            record.value = record.value() == 0 ? 1 : 0;
            call(record.onChange);
        }
        call(record.onClick);
    }

    bool mouseMoved(QMouseEvent& e) {
        const QPoint at = e.position().toPoint();
        Control& record = held_.part != nullptr ? *held_.part : hit(at);
        const MouseButton button = held_.buttons & 2 ? MouseButton::right : MouseButton::left;
        call(record.onMouseMove, told(record, at, button, shiftOf(e.modifiers())));
        return false;
    }

    bool touched(QTouchEvent& e) {
        if (!view_.widget.testAttribute(Qt::WA_AcceptTouchEvents)) return false;
        const int shift = shiftOf(e.modifiers());
        if (e.type() == QEvent::TouchCancel) {
            auto fingers = std::exchange(held_.fingers, {});
            for (const auto& [id, record] : fingers) fingerUp(*record, {}, shift, false);
            e.accept();
            return true;
        }
        for (const QEventPoint& point : e.points()) {
            const QPoint at = point.position().toPoint();
            if (point.state() == QEventPoint::Pressed) {
                Control& record = hit(at);
                held_.fingers[point.id()] = &record;
                hold(&record, 1);
                showHeld();
                call(record.onMouseDown, told(record, at, MouseButton::left, shift));
            } else if (point.state() == QEventPoint::Released) {
                const auto found = held_.fingers.find(point.id());
                if (found == held_.fingers.end()) continue;
                Control& record = *found->second;
                held_.fingers.erase(found);
                fingerUp(record, at, shift, source_.rect().contains(at) && &hit(at) == &record);
            }
        }
        e.accept();
        return true;
    }

    void fingerUp(Control& record, QPoint at, int shift, bool inside) {
        hold(&record, -1);
        showHeld();
        call(record.onMouseUp, told(record, at, MouseButton::left, shift));
        if (inside) clicked(record);
    }

    bool keyPressed(QKeyEvent& e) {
        if (view_.record.kind == ControlKind::window) return false;  // it saw the key first
        const int key = e.key();
        // Moving between controls is the shell's; a control never sees these keys.
        if (key == Qt::Key_Tab || key == Qt::Key_Backtab) return false;
        if (view_.record.kind == ControlKind::jingle) return jingleKey(e);
        const bool arrow =
            key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
        if (view_.record.kind == ControlKind::colourField && arrow) {
            focusNeighbour(key);
            return true;
        }
        KeyEvent event{keyOf(e), shiftOf(e.modifiers()), e.isAutoRepeat(), false};
        if (view_.record.onKeyDown) call([&] { view_.record.onKeyDown(event); });
        if (event.consumed) return true;
        const bool pressable = view_.record.kind == ControlKind::button ||
                               view_.record.kind == ControlKind::toggle ||
                               view_.record.kind == ControlKind::colourField;
        if (pressable && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space)) {
            if (!e.isAutoRepeat()) view_.press();
            return true;
        }
        return false;
    }

    bool jingleKey(QKeyEvent& e) {
        switch (e.key()) {
            case Qt::Key_Left:
            case Qt::Key_Right:
            case Qt::Key_Up:
            case Qt::Key_Down:
                focusNeighbour(e.key());
                return true;
            case Qt::Key_Return:
            case Qt::Key_Enter:
                // Space belongs to the window as soon as something was played; Enter always presses the
                // button that has the focus, down and up as the key goes.
                if (!e.isAutoRepeat() && e.modifiers() == Qt::NoModifier) {
                    hold(&view_.record, 1);
                    showHeld();
                    call(view_.record.onMouseDown, middle());
                }
                return true;
            default:
                break;
        }
        KeyEvent event{keyOf(e), shiftOf(e.modifiers()), e.isAutoRepeat(), false};
        if (view_.record.onKeyDown) call([&] { view_.record.onKeyDown(event); });
        return event.consumed;
    }

    bool keyReleased(QKeyEvent& e) {
        if (view_.record.kind == ControlKind::window) return false;
        if (e.isAutoRepeat()) return true;
        if (view_.record.kind == ControlKind::jingle &&
            (e.key() == Qt::Key_Return || e.key() == Qt::Key_Enter)) {
            if (heldCounts()[&view_.record] > 0) {
                hold(&view_.record, -1);
                showHeld();
                call(view_.record.onMouseUp, middle());
            }
            return true;
        }
        KeyEvent event{keyOf(e), shiftOf(e.modifiers()), false, false};
        if (view_.record.onKeyUp) call([&] { view_.record.onKeyUp(event); });
        return event.consumed;
    }

    void menuAsked() {
        if (view_.record.kind != ControlKind::jingle) return;
        MouseEvent event = middle();
        event.button = MouseButton::right;
        const QPointer<QWidget> alive(&source_);
        call(view_.record.onMouseDown, event);
        menuAskedFor = &source_;
        if (alive) call(view_.record.onMouseUp, event);
        menuAskedFor = nullptr;
    }

    MouseEvent middle() const {
        return {MouseButton::left, 0, view_.record.width / 2, view_.record.height / 2};
    }

    /// The nearest control of its kind in that direction takes the focus.
    void focusNeighbour(int key) {
        const QPoint from = view_.widget.mapToGlobal(view_.widget.rect().center());
        QWidget* best = nullptr;
        int bestCost = 0;
        for (Control* c : allControls()) {
            const RecordView* other = c->kind == view_.record.kind ? viewOf(*c) : nullptr;
            if (other == nullptr || other == &view_ || !other->widget.isVisible()) continue;
            if (other->widget.window() != view_.widget.window()) continue;
            const QPoint d = other->widget.mapToGlobal(other->widget.rect().center()) - from;
            const bool sideways = key == Qt::Key_Left || key == Qt::Key_Right;
            const int ahead = key == Qt::Key_Left    ? -d.x()
                              : key == Qt::Key_Right ? d.x()
                              : key == Qt::Key_Up    ? -d.y()
                                                     : d.y();
            if (ahead <= 0) continue;
            const int cost = ahead + 4 * std::abs(sideways ? d.y() : d.x());
            if (best == nullptr || cost < bestCost) {
                best = &other->widget;
                bestCost = cost;
            }
        }
        if (best != nullptr) best->setFocus(Qt::TabFocusReason);
    }

    bool dragged(QDropEvent& e) {
        if (!view_.record.onDrop && !(view_.record.onDropFiles && e.mimeData()->hasUrls())) return false;
        e.acceptProposedAction();
        return true;
    }

    bool dropped(QDropEvent& e) {
        if (!view_.record.onDrop && !view_.record.onDropFiles) return false;
        std::vector<std::string> paths;
        for (const QUrl& url : e.mimeData()->urls())
            if (url.isLocalFile()) paths.push_back(utf8(url.toLocalFile()));
        e.acceptProposedAction();
        if (view_.record.onDropFiles) {
            call([&] { view_.record.onDropFiles(paths); });
        } else if (paths.size() <= 1) {  // more are ignored without a word
            call([&] { view_.record.onDrop(paths.empty() ? std::string() : paths.front()); });
        }
        return true;
    }

    RecordView& view_;
    Control& record_;
    QWidget& source_;
    Held held_;
};

std::set<Key>& keysDown() {
    static auto* keys = new std::set<Key>;
    return *keys;
}

/// Gives the window each key once, before the focused control: filters the events of the native window, which the
/// toolkit has not yet passed from widget to widget.
class WindowKeys final : public QObject {
  public:
    explicit WindowKeys(RecordView& view)
        : QObject(&view.widget), record_(view.record), widget_(view.widget) {
        view.widget.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* e) override {
        if (watched == &widget_) {
            // The door is made with the window on the screen.
            if (e->type() == QEvent::WinIdChange || e->type() == QEvent::Show) watchDoor();
            return false;
        }
        // Releases while another program has the keyboard never arrive.
        if (e->type() == QEvent::FocusOut) keysDown().clear();
        if (e->type() != QEvent::KeyPress && e->type() != QEvent::KeyRelease) return false;
        auto& key = *static_cast<QKeyEvent*>(e);
        if (e->type() == QEvent::KeyRelease && key.isAutoRepeat()) return true;
        KeyEvent event{keyOf(key), shiftOf(key.modifiers()), key.isAutoRepeat(), false};
        if (e->type() == QEvent::KeyPress) {
            keysDown().insert(event.key);
        } else {
            keysDown().erase(event.key);
        }
        const Waiting* waiting = waitingNow();
        if (waiting != nullptr && waiting->what == Waiting::For::answer && waiting->window != &record_)
            return keyForAnswer(*waiting, e->type(), event);
        const auto& handler = e->type() == QEvent::KeyPress ? record_.onKeyDown : record_.onKeyUp;
        if (handler) call([&] { handler(event); });
        return event.consumed;
    }

  private:
    /// The keyboard belongs to the question. In the window that it stands in, its own controls have the key next.
    bool keyForAnswer(const Waiting& waiting, QEvent::Type type, KeyEvent& event) {
        const Control* card = waiting.window;
        if (card == nullptr) {  // a dialog of the toolkit: it has its own keys in its own window
            if (type != QEvent::KeyPress || event.key != Key::escape || event.repeat) return true;
            stopSound();
            call(waiting.cancel);
            return true;
        }
        const auto handler = type == QEvent::KeyPress ? card->onKeyDown : card->onKeyUp;
        if (handler) call([&] { handler(event); });
        const RecordView* view = viewOf(*card);
        if (event.consumed || view == nullptr || view->widget.window() != &widget_) return true;
        // A press on a jingle has taken it.
        QWidget* own = view->widget.focusWidget();
        if (own != nullptr && !view->widget.isAncestorOf(QApplication::focusWidget()))
            own->setFocus(Qt::OtherFocusReason);
        return own == nullptr;
    }

    void watchDoor() {
        QWindow* door = widget_.windowHandle();
        if (door == nullptr || door == door_) return;
        door_ = door;
        door->installEventFilter(this);
    }

    Control& record_;
    QWidget& widget_;  // events still come while the widget goes, when its view is gone
    QPointer<QWindow> door_;
};

}  // namespace

void relayEvents(RecordView& view, QWidget& source) {
    new Relay(view, source);  // owned by the widget
    source.setAcceptDrops(true);
}

void relayWindowKeys(RecordView& view) { new WindowKeys(view); }

void stopSound() {
    const Control* main = findControl("frmMain");
    if (main == nullptr || !main->onKeyDown) return;
    KeyEvent escape{Key::escape};
    call([&] { main->onKeyDown(escape); });
}

bool isKeyDown(Key key) { return keysDown().contains(key); }

bool isHeld(const Control& record) {
    if (runningPress.record == &record && runningPress.opened != openedSoFar()) return false;
    const auto found = heldCounts().find(&record);
    return found != heldCounts().end() && found->second > 0;
}

}  // namespace zv::shell
