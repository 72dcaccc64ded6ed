// What screen readers see of a jingle button: a button with its name, its state, and a press. Keys and
// toggles are pressed the same way: many of their records hear of the mouse button, not of the toolkit's
// click. The toolkit's other widgets speak for themselves.
#include <QAccessible>
#include <QAccessibleWidget>
#include <QPoint>

#include "platform/qt/view/jingle_text.h"
#include "platform/qt/view/native.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

bool isOn(const Control& toggle) { return toggle.value() != 0 || !isNeutral(toggle, toggle.backColor); }

/// Whatever is pressed.
class PressInterface : public QAccessibleWidget {
  public:
    PressInterface(QWidget* widget, RecordView& view, QAccessible::Role role)
        : QAccessibleWidget(widget, role), view_(view) {}

    QString text(QAccessible::Text which) const override {
        if (which == QAccessible::Description)
            if (const QString text = described(); !text.isEmpty()) return text;
        const QString own = QAccessibleWidget::text(which);
        if (which != QAccessible::Name || !own.isEmpty()) return own;
        return captionOf(view_.record.caption);
    }

    QAccessible::State state() const override {
        QAccessible::State now = QAccessibleWidget::state();
        if (role() == QAccessible::PageTab) {
            now.selectable = true;
            now.selected = isOn(view_.record);
        } else if (view_.record.kind == ControlKind::toggle) {
            now.checkable = true;
            now.checked = isOn(view_.record);
        }
        return now;
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }

    void doAction(const QString& action) override {
        if (action == pressAction()) {
            // Later: the reader waits for the end of this call, and a press may ask a question.
            QMetaObject::invokeMethod(
                widget(),
                [view = &view_] {
                    if (view->widget.isEnabled()) view->press();
                },
                Qt::QueuedConnection);
        } else {
            QAccessibleWidget::doAction(action);
        }
    }

  protected:
    /// What the record says of itself.
    QString described() const {
        std::string told;
        if (view_.record.onDescribe) call([&] { told = view_.record.onDescribe(); });
        return textOf(told);
    }

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
                if (const QString text = described(); !text.isEmpty()) return text;
                const CaptionParts parts = splitCaption(captionOf(record.caption));
                return parts.duration.isEmpty() ? textOf(record.toolTip) : parts.duration;
            }
            default:
                return QAccessibleWidget::text(which);
        }
    }
};

/// The display: what stands on its glass, as one text.
class PanelInterface final : public QAccessibleWidget {
  public:
    PanelInterface(QWidget* widget, RecordView& view)
        : QAccessibleWidget(widget, QAccessible::StaticText), view_(view) {}

    QString text(QAccessible::Text which) const override {
        switch (which) {
            case QAccessible::Name:
                return figures();
            case QAccessible::Description:
                return others().join(QLatin1String(", "));
            default:
                return QAccessibleWidget::text(which);
        }
    }

  private:
    static bool isFigure(const Control& part) {
        return part.name.starts_with("lblPos") || part.name.starts_with("sep");
    }

    QString figures() const {
        QString out;
        for (const Control* part : view_.record.children()) {
            if (part->visible() && isFigure(*part)) out += textOf(part->caption);
        }
        return out;
    }

    QStringList others() const {
        QStringList out;
        for (const Control* part : view_.record.children()) {
            if (!part->visible() || isFigure(*part)) continue;
            const QString told = textOf(part->kind == ControlKind::symbol ? part->toolTip : part->caption);
            if (!told.trimmed().isEmpty()) out << told.trimmed();
        }
        return out;
    }

    RecordView& view_;
};

/// A picture that is worked with: its name is what is chosen in it, its description all that stands in it.
class CanvasInterface final : public QAccessibleWidget {
  public:
    CanvasInterface(QWidget* widget, RecordView& view)
        : QAccessibleWidget(widget, QAccessible::Graphic), view_(view) {}

    QString text(QAccessible::Text which) const override {
        if (which != QAccessible::Description || !view_.record.onDescribe)
            return QAccessibleWidget::text(which);
        std::string told;
        call([&] { told = view_.record.onDescribe(); });
        return textOf(told);
    }

  private:
    RecordView& view_;
};

/// A slider whose value is told in words, as a time or with its unit. One that stands upside down counts as it is seen.
class SliderInterface final : public QAccessibleWidget, public QAccessibleValueInterface {
  public:
    SliderInterface(QWidget* widget, RecordView& view)
        : QAccessibleWidget(widget, QAccessible::Slider), view_(view) {}

    QString text(QAccessible::Text which) const override {
        if (which != QAccessible::Description && which != QAccessible::Value)
            return QAccessibleWidget::text(which);
        std::string told;
        call([&] { told = view_.record.onDescribe(); });
        return textOf(told);
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return seen(view_.record.value); }
    void setCurrentValue(const QVariant& value) override { userMovesSlider(view_, seen(value.toInt())); }
    QVariant minimumValue() const override { return view_.record.minimum(); }
    QVariant maximumValue() const override { return view_.record.maximum(); }
    QVariant minimumStepSize() const override { return view_.record.step; }

  private:
    int seen(int value) const {
        const Control& r = view_.record;
        return r.alignment() == 1 ? r.minimum() + r.maximum() - value : value;
    }

    RecordView& view_;
};

QAccessibleInterface* make(const QString&, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr) return nullptr;
    Control* record = recordOf(object);
    RecordView* view = record != nullptr ? viewOf(*record) : nullptr;
    if (view == nullptr || &view->widget != widget) return nullptr;
    if (record->kind == ControlKind::jingle) return new JingleInterface(widget, *view);
    if (record->kind == ControlKind::button)
        return new PressInterface(widget, *view, QAccessible::PushButton);
    if (record->kind == ControlKind::toggle) {
        // Readers tell whether it is on of what they call a check box, and which one is open of tabs.
        const bool tab = record->name == "ckTab";
        return new PressInterface(widget, *view, tab ? QAccessible::PageTab : QAccessible::CheckBox);
    }
    if (record->kind == ControlKind::canvas) return new CanvasInterface(widget, *view);
    if (record->kind == ControlKind::slider && record->onDescribe) return new SliderInterface(widget, *view);
    if (record->kind == ControlKind::panel) return new PanelInterface(widget, *view);
    if (record->kind == ControlKind::label) return new QAccessibleWidget(widget, QAccessible::StaticText);
    return nullptr;
}

}  // namespace

QString fieldName(const Control& field) {
    // A canvas that says what is chosen in it is heard by that, anew whenever it changes.
    if (field.kind == ControlKind::canvas && !field.caption().empty()) return captionOf(field.caption);
    if (!field.toolTip().empty() || field.parent == nullptr) return textOf(field.toolTip);
    // The label at its left or above it, whichever is nearer.
    const QRect own = placeOf(field);
    const Control* best = nullptr;
    int bestCost = 0;
    for (const Control* other : field.parent->children()) {
        if (other->kind != ControlKind::label || !other->visible() || other->caption().empty()) continue;
        const QRect place = placeOf(*other);
        const bool beside = place.center().x() < own.left() && place.top() <= own.center().y() &&
                            place.bottom() >= own.center().y();
        const bool above = place.bottom() <= own.top() + 2 && place.left() <= own.center().x() &&
                           place.right() >= own.left();
        if (!beside && !above) continue;
        const int cost = beside ? own.left() - place.right() : own.top() - place.bottom();
        if (best == nullptr || cost < bestCost) {
            best = other;
            bestCost = cost;
        }
    }
    if (best != nullptr) return captionOf(best->caption);
    // Alone on its tab it bears the tab's name.
    const Control* header =
        field.parent->name == "fraTab" ? findControl("ckTab", field.parent->index) : nullptr;
    return header != nullptr ? captionOf(header->caption) : QString();
}

void installAccessibility() { QAccessible::installFactory(make); }

void tellToggled(RecordView& toggle) {
    if (!QAccessible::isActive() || toggle.record.kind != ControlKind::toggle) return;
    const QVariant before = toggle.widget.property("zvOn");
    const bool on = isOn(toggle.record);
    if (before.isValid() && before.toBool() == on) return;
    toggle.widget.setProperty("zvOn", on);
    if (!before.isValid()) return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(&toggle.widget, changed);
    QAccessible::updateAccessibility(&event);
}

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
