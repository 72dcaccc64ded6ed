#include "platform/qt/view/painted.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <tuple>
#include <utility>
#include <vector>

namespace zv::shell {

namespace {

struct Asked {
    QWidget* parent;
    QRect rect;  ///< in the parent
};
std::vector<Asked>& gathered() {
    static std::vector<Asked> all;
    return all;
}
bool gathering = false;

}  // namespace

AskedTogether::AskedTogether() : outermost_(!std::exchange(gathering, true)) {}

AskedTogether::~AskedTogether() {
    if (!outermost_) return;
    gathering = false;
    auto& all = gathered();
    // Rectangles in reading order are appended; in another order a region is joined anew with each of them.
    std::ranges::sort(all, {}, [](const Asked& a) {
        return std::tuple(std::bit_cast<std::uintptr_t>(a.parent), a.rect.top(), a.rect.left());
    });
    for (auto from = all.begin(); from != all.end();) {
        QWidget* const parent = from->parent;
        QRegion region;
        for (; from != all.end() && from->parent == parent; ++from) region += from->rect;
        parent->update(region);
    }
    all.clear();
}

PaintedWidget::PaintedWidget(Control& r, QWidget* parent)
    : QWidget(parent), RecordView(r, static_cast<QWidget&>(*this)) {}

QRect PaintedWidget::partPlace(const Control& part) const {
    return visibleIn(part, record) ? placeIn(part, record) : QRect();
}

void PaintedWidget::ask(const QRect& r) {
    const QRect inside = r & rect();
    if (inside.isEmpty()) return;
    if (watched_) asked_ += inside;
    if (!gathering || isHidden() || parentWidget() == nullptr) {
        update(inside);
    } else {
        gathered().push_back({parentWidget(), inside.translated(pos())});
    }
}

QRegion PaintedWidget::takeAsked() {
    watched_ = true;
    return std::exchange(asked_, {});
}

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
