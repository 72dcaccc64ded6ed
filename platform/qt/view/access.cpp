// What screen readers see of a jingle button: a button with its name, its state, and a press. Keys and
// toggles are pressed the same way: many of their records hear of the mouse button, not of the toolkit's
// click. The toolkit's other widgets speak for themselves.
#include <QAccessible>
#include <QAccessibleWidget>
#include <QPoint>

#include "platform/qt/view/jingle_text.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

/// Whatever is pressed.
class PressInterface : public QAccessibleWidget {
  public:
    PressInterface(QWidget* widget, RecordView& view, QAccessible::Role role)
        : QAccessibleWidget(widget, role), view_(view) {}

    QString text(QAccessible::Text which) const override {
        const QString own = QAccessibleWidget::text(which);
        if (which != QAccessible::Name || !own.isEmpty()) return own;
        return captionOf(view_.record.caption);
    }

    QAccessible::State state() const override {
        QAccessible::State now = QAccessibleWidget::state();
        const Control& record = view_.record;
        if (record.kind == ControlKind::toggle) {
            now.checkable = true;
            now.checked = record.value() != 0 || !isNeutral(record, record.backColor);
        }
        return now;
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }

    void doAction(const QString& action) override {
        if (action == pressAction()) {
            if (widget()->isEnabled()) view_.press();
        } else {
            QAccessibleWidget::doAction(action);
        }
    }

  protected:
    RecordView& view_;
};

class JingleInterface final : public PressInterface {
  public:
    JingleInterface(QWidget* widget, RecordView& view) : PressInterface(widget, view, QAccessible::Button) {}

    QString text(QAccessible::Text which) const override {
        const Control& record = view_.record;
        switch (which) {
            case QAccessible::Name: {
                const CaptionParts parts = splitCaption(captionOf(record.caption));
                const QString number = QString::number(record.index);
                return parts.name.isEmpty() ? number : parts.name;
            }
            case QAccessible::Description: {
                std::string told;
                if (record.onDescribe) call([&] { told = record.onDescribe(); });
                if (!told.empty()) return textOf(told);
                const CaptionParts parts = splitCaption(captionOf(record.caption));
                return parts.duration.isEmpty() ? textOf(record.toolTip) : parts.duration;
            }
            default:
                return QAccessibleWidget::text(which);
        }
    }
};

QAccessibleInterface* make(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr) return nullptr;
    Control* record = recordOf(object);
    RecordView* view = record != nullptr ? viewOf(*record) : nullptr;
    if (view == nullptr || &view->widget != widget) return nullptr;
    if (record->kind == ControlKind::jingle) return new JingleInterface(widget, *view);
    if (record->kind == ControlKind::button || record->kind == ControlKind::toggle)
        return new PressInterface(widget, *view, QAccessible::PushButton);
    if (record->kind == ControlKind::label) return new QAccessibleWidget(widget, QAccessible::StaticText);
    return nullptr;
}

}  // namespace

void installAccessibility() { QAccessible::installFactory(make); }

void tellNameChanged(QWidget& widget, const QString& name, int colour, int state) {
    // Asked for by nobody, it is not even compared: each tick passes here.
    if (!QAccessible::isActive()) return;
    if (widget.accessibleName() != name) widget.setAccessibleName(name);  // tells the change itself
    const QVariant before = widget.property("zvState");
    const QPoint now(colour, state);
    if (before.isValid() && before.toPoint() == now) return;
    widget.setProperty("zvState", now);
    if (!before.isValid()) return;
    QAccessibleEvent event(&widget, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
}

}  // namespace zv::shell
