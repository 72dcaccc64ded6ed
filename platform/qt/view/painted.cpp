#include "platform/qt/view/painted.h"

#include <algorithm>

namespace zv::shell {

PaintedWidget::PaintedWidget(Control& r, QWidget* parent)
    : QWidget(parent), RecordView(r, static_cast<QWidget&>(*this)) {}

QRect PaintedWidget::partPlace(const Control& part) const {
    return visibleIn(part, record) ? placeIn(part, record) : QRect();
}

void PaintedWidget::ask(const QRect& r) {
    const QRect inside = r & rect();
    if (inside.isEmpty()) return;
    if (asked_.rectCount() < 64) asked_ += inside;
    update(inside);
}

QRegion PaintedWidget::takeAsked() { return std::exchange(asked_, {}); }

/// A bar of one colour that is longer or shorter than before: nothing but its end has to be painted.
bool PaintedWidget::grew(const Shown& before, const Shown& now) {
    return !before.place.isEmpty() && !now.place.isEmpty() && before.colour == now.colour &&
           before.place.topLeft() == now.place.topLeft() && before.place.height() == now.place.height() &&
           before.place.width() != now.place.width();
}

void PaintedWidget::partChanged(Control& part) {
    const Shown now{partPlace(part), part.backColor()};
    Shown& before = shown_[&part];
    // Something antialiased may reach half a pixel over its place.
    if (part.kind == ControlKind::shape && grew(before, now)) {
        const int shorter = std::min(before.place.right(), now.place.right());
        const int longer = std::max(before.place.right(), now.place.right());
        ask(QRect(QPoint(shorter, now.place.top()), QPoint(longer, now.place.bottom()))
                .adjusted(-2, -1, 1, 1));
    } else {
        if (!before.place.isEmpty()) ask(before.place.adjusted(-1, -1, 1, 1));
        if (!now.place.isEmpty() && now.place != before.place) ask(now.place.adjusted(-1, -1, 1, 1));
    }
    before = now;
    // Parts inside a part go with it.
    for (Control* child : part.children()) partChanged(*child);
}

void PaintedWidget::remember(const Control& from) {
    for (const Control* child : from.children()) {
        shown_[child] = {partPlace(*child), child->backColor()};
        remember(*child);
    }
}

void PaintedWidget::placesChanged() { remember(record); }

Control* PaintedWidget::partAt(QPoint at) const { return hitBelow(record, at); }

Control* PaintedWidget::hitBelow(const Control& from, QPoint at) const {
    const auto& children = from.children();
    for (auto it = children.rbegin(); it != children.rend(); ++it) {
        Control& part = **it;
        if (!part.visible()) continue;
        if (Control* deeper = hitBelow(part, at)) return deeper;
        if (takesMouse(part) && placeIn(part, record).contains(at)) return &part;
    }
    return nullptr;
}

}  // namespace zv::shell
