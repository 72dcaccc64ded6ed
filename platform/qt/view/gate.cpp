// While something waits for the presenter: what reaches a window and what waits with it. One filter before all
// widgets, so that those of the toolkit wait as painted ones do.
#include <QApplication>
#include <QMouseEvent>
#include <QTouchEvent>
#include <QWidget>
#include <optional>

#include "platform/qt/view/keys.h"
#include "platform/qt/view/view.h"
#include "platform/waiting.h"

namespace zv::shell {
namespace {

/// A press of a mouse or finger, and the place of it in the widget.
struct Press {
    MouseEvent event;
    QPoint at;
};

std::optional<Press> pressOf(const QEvent& e) {
    switch (e.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: {
            const auto& mouse = static_cast<const QMouseEvent&>(e);
            return Press{{buttonOf(mouse.button()), shiftOf(mouse.modifiers())}, mouse.position().toPoint()};
        }
        case QEvent::TouchBegin: {
            const auto& touch = static_cast<const QTouchEvent&>(e);
            return Press{{MouseButton::left, shiftOf(touch.modifiers())},
                         touch.points().empty() ? QPoint() : touch.points().front().position().toPoint()};
        }
        default:
            return std::nullopt;
    }
}

bool isInput(QEvent::Type type) {
    switch (type) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::TouchBegin:
        case QEvent::Wheel:
        case QEvent::ContextMenu:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::KeyPress:
        case QEvent::Shortcut:
            return true;
        default:
            return false;
    }
}

class Gate final : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* e) override {
        if (!onlyPlays() || !isInput(e->type())) return false;
        auto* widget = qobject_cast<QWidget*>(watched);
        // Menus close by what happens beside them; a dialog of the toolkit is no record.
        if (widget == nullptr || widget->window()->windowType() == Qt::Popup) return false;
        const Control* record = recordOf(widget);
        if (record == nullptr) return false;
        const std::optional<Press> press = pressOf(*e);
        if (press) {
            const RecordView* view = viewOf(*record);
            const Control* part = view->partAt(widget->mapTo(&view->widget, press->at));
            if (part != nullptr) record = part;
        }
        if (takesNow(*record, press ? &press->event : nullptr)) return false;
        if (press || e->type() == QEvent::Drop) call(refusedMeanwhile);
        return true;
    }
};

}  // namespace

void installGate() { QApplication::instance()->installEventFilter(new Gate(QApplication::instance())); }

}  // namespace zv::shell
