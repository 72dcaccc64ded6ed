#include "platform/qt/view/jingle_places.h"

#include <QFontMetricsF>
#include <algorithm>
#include <array>
#include <string_view>

#include "platform/qt/view/figures.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr double kDurationShare = 0.76;  // of the caption's size, and the limits of what comes out
constexpr double kDurationMin = 8, kDurationMax = 15;
constexpr double kNumberShare = 0.68;
constexpr double kNumberMin = 8, kNumberMax = 13;
constexpr double kMarkShare = 0.2;  // of the height
constexpr double kMarkMin = 11, kMarkMax = 26;
constexpr double kCompactMark = 10, kLowMark = 12, kDot = 6;
constexpr double kMarkGap = 3;
constexpr double kNumberGap = 4;  // between a number and a mark at its side

}  // namespace

JinglePart partOf(const Control& record) {
    static constexpr std::array<std::string_view, 4> kMarks{"lp_", "sq_", "fx_", "pm_"};
    switch (record.kind) {
        case ControlKind::shape:
            return JinglePart::bar;
        case ControlKind::checkBox:
            return JinglePart::tickBox;
        case ControlKind::label:
            return JinglePart::number;
        case ControlKind::symbol:
            return std::any_of(
                       kMarks.begin(), kMarks.end(),
                       [&](std::string_view m) { return std::string_view(record.name).starts_with(m); })
                       ? JinglePart::mark
                       : JinglePart::letter;
        default:
            return JinglePart::ground;
    }
}

void JinglePlaces::settle(const QSize& size, double captionPixels, const Shown& shown) {
    size_ = size;
    shown_ = shown;
    const double height = size.height();
    durationFont_ = textFont(std::clamp(std::min(captionPixels * kDurationShare, height * 0.66), kDurationMin,
                                        std::max(kDurationMax, height * 0.14)),
                             QFont::DemiBold);
    numberFont_ = textFont(std::clamp(std::min(captionPixels * kNumberShare, height * 0.6), kNumberMin,
                                      std::max(kNumberMax, height * 0.11)));
    const QFontMetricsF m(durationFont_);
    figure_ = m.horizontalAdvance(QLatin1Char('0'));
    point_ = m.horizontalAdvance(QLatin1Char('.'));
    durationHeight_ = m.height();
    parts_.clear();
    for (const Control* part : button_.children())
        parts_.push_back({part, partOf(*part), placeIn(*part, button_)});
    placeNumber();
    placeMarks();
    durationRight_ = size.width() - kMargin + 1;
    durationFoot_ = height - 3;
    const bool low = height < kLowButton;
    for (const Placed& p : parts_) {
        if (!low) {
            if (p.kind == JinglePart::bar && p.place.center().y() > height / 2)
                durationFoot_ = std::min(durationFoot_, p.place.top());
        } else if (p.part->visible()) {
            const bool right = p.place.center().x() > size.width() / 2.0;
            if (p.kind == JinglePart::mark) durationRight_ = std::min(durationRight_, p.place.left() - 4);
            if (showsNumber(p) && right) durationRight_ = std::min(durationRight_, p.place.left() - 6);
        }
    }
    if (low) durationFoot_ = (height + durationHeight_) / 2;
}

bool JinglePlaces::showsNumber(const Placed& p) const {
    return p.kind == JinglePart::number && p.part->visible() && shown_.number && !p.part->caption().empty();
}

/// A number keeps some pixels from the edge that its place is nearer to.
void JinglePlaces::placeNumber() {
    for (Placed& p : parts_) {
        if (p.kind != JinglePart::number) continue;
        const double w = figuresWidth(numberFont_, captionOf(p.part->caption));
        const double h = QFontMetricsF(numberFont_).height();
        const double middle = size_.height() < kLowButton ? size_.height() / 2.0 : p.place.center().y();
        const double y = std::clamp(middle - h / 2, 1.0, std::max(1.0, size_.height() - h - 1));
        const bool right = p.place.center().x() > size_.width() / 2.0;
        p.place = {right ? std::min(p.place.right(), size_.width() - 5.0) - w : std::max(p.place.left(), 7.0),
                   y, w, h};
    }
}

double JinglePlaces::markSide() const {
    double side = std::clamp(size_.height() * kMarkShare, kMarkMin, kMarkMax);
    if (size_.height() < kLowButton) side = kLowMark;
    if (shown_.marks == MarkSize::compact) side = std::min(side, kCompactMark);
    if (shown_.marks == MarkSize::dot) side = kDot;
    return std::min({side, size_.height() - 6.0, (size_.width() - 2.0 * kMargin) / 4 - kMarkGap});
}

/// The marks that are shown close up at the upper right, or at a number that stands there.
void JinglePlaces::placeMarks() {
    std::vector<Placed*> marks;
    double right = size_.width() - kMargin;
    for (Placed& p : parts_) {
        if (p.kind == JinglePart::mark && p.part->visible()) marks.push_back(&p);
        if (showsNumber(p) && p.place.center().x() > size_.width() / 2.0)
            right = std::min(right, p.place.left() - kNumberGap);
    }
    std::ranges::sort(marks, std::greater{}, [](const Placed* p) { return p->place.left(); });
    const double side = markSide();
    for (Placed* p : marks) {
        const double top = size_.height() < kLowButton      ? (size_.height() - side) / 2
                           : shown_.marks == MarkSize::full ? p->place.top() + 1
                                                            : p->place.top();
        p->place = {right - side, top, side, side};
        right -= side + kMarkGap;
    }
}

QRectF JinglePlaces::placeOf(const Control& part) const {
    const auto found = std::ranges::find(parts_, &part, &Placed::part);
    return found == parts_.end() ? QRectF() : found->place;
}

QRectF JinglePlaces::durationPlace(const QString& text) const {
    double w = 0;
    bool known = true;
    for (const QChar c : text) {
        w += c.isDigit() ? figure_ : point_;
        known = known && (c.isDigit() || c == QLatin1Char('.'));
    }
    if (!known) w = figuresWidth(durationFont_, text);
    return {durationRight_ - w, durationFoot_ - durationHeight_, w, durationHeight_};
}

std::vector<QRectF> JinglePlaces::corners(const QString& duration) const {
    std::vector<QRectF> out;
    if (shown_.duration && !duration.isEmpty()) out.push_back(durationPlace(duration).adjusted(-2, 3, 2, 0));
    for (const Placed& p : parts_) {
        if (!p.part->visible()) continue;
        if (p.kind == JinglePart::mark) {
            out.push_back(shown_.marks == MarkSize::dot ? p.place.adjusted(-2, 0, 2, 0)
                                                        : p.place.adjusted(-2, -1, 2, 1));
        } else if (showsNumber(p)) {
            out.push_back(p.place.adjusted(0, 2, 2, -2));
        } else if (p.kind == JinglePart::tickBox ||
                   (p.kind == JinglePart::letter && !p.part->caption().empty())) {
            out.push_back(p.place);
        }
    }
    return out;
}

bool JinglePlaces::cornersMeet(const QString& duration) const {
    std::vector<QRectF> texts, marks;
    if (shown_.duration && !duration.isEmpty()) texts.push_back(durationPlace(duration));
    for (const Placed& p : parts_) {
        if (p.kind == JinglePart::mark && p.part->visible()) marks.push_back(p.place);
        if (showsNumber(p)) texts.push_back(p.place);
    }
    if (texts.size() == 2 && texts[0].intersects(texts[1])) return true;
    return std::any_of(texts.begin(), texts.end(), [&](const QRectF& t) {
        return t.left() < 2 || std::any_of(marks.begin(), marks.end(),
                                           [&](const QRectF& mark) { return t.intersects(mark); });
    });
}

}  // namespace zv::shell
