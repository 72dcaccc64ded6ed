#include "platform/qt/view/painted.h"

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

void PaintedWidget::partChanged(Control& part) {
    const QRect now = partPlace(part);
    QRect& before = places_[&part];
    // Something antialiased may reach half a pixel over its place.
    if (!before.isEmpty()) ask(before.adjusted(-1, -1, 1, 1));
    if (!now.isEmpty() && now != before) ask(now.adjusted(-1, -1, 1, 1));
    before = now;
    // Parts inside a part go with it.
    for (Control* child : part.children()) partChanged(*child);
}

void PaintedWidget::remember(const Control& from) {
    for (const Control* child : from.children()) {
        places_[child] = partPlace(*child);
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
