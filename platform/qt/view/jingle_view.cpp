// A jingle button: one widget that paints its record and the parts below it.
#include <QHash>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>
#include <vector>

#include "platform/qt/view/figures.h"
#include "platform/qt/view/jingle_face.h"
#include "platform/qt/view/jingle_marks.h"
#include "platform/qt/view/jingle_places.h"
#include "platform/qt/view/jingle_text.h"
#include "platform/qt/view/painted.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"

namespace zv::shell {
namespace {

constexpr double kCaptionSize = 15;
constexpr int kReach = 4;           ///< of small texts around their places
constexpr double kAir = 4;          ///< above and below a caption
constexpr int kNarrowButton = 110;  ///< pixels of width below which small texts give way to the name
constexpr double kServes = 0.9;     ///< of the names of a block: so many share one size

class JingleWidget;

/// All buttons, to dim those that are idle and to give the names of a block one size.
std::vector<JingleWidget*>& everyButton() {
    static std::vector<JingleWidget*> all;
    return all;
}
int soundingNow = 0;

/// The size that the names of one block share, as a share of the size that they are given.
struct Block {
    double scale = 1;
    bool settled = false;
};
QHash<const QWidget*, Block>& blocks() {
    static QHash<const QWidget*, Block> all;
    return all;
}

bool sounds(int value) { return shell::sounds(static_cast<JingleState>(value)); }

class JingleWidget final : public PaintedWidget {
  public:
    ~JingleWidget() override {
        std::erase(everyButton(), this);
        if (sounds(seen_.state)) --soundingNow;
        blocks().remove(parentWidget());
    }

    JingleWidget(Control& r, QWidget* parent) : PaintedWidget(r, parent) {
        everyButton().push_back(this);
        setAttribute(Qt::WA_AcceptTouchEvents);
        setAttribute(Qt::WA_Hover);
        setFocusPolicy(Qt::StrongFocus);
        relayEvents(*this, *this);
    }

    /// What a screen reader says of it.
    QString spokenName() const { return parts_.name.isEmpty() ? textOf(record.toolTip) : parts_.name; }

    void apply() override {
        const Seen now{record.caption(),
                       record.backColor(),
                       record.foreColor(),
                       record.enabled(),
                       record.value(),
                       record.borderColor(),
                       size(),
                       fontOf(record, kCaptionSize, QFont::DemiBold)};
        if (now == seen_) return;
        if (now.caption != seen_.caption) parts_ = splitCaption(captionOf(record.caption));
        const int before = soundingNow;
        soundingNow += (sounds(now.state) ? 1 : 0) - (sounds(seen_.state) ? 1 : 0);
        if ((before == 0) != (soundingNow == 0)) {
            for (JingleWidget* other : everyButton()) other->askAll();
        }
        seen_ = now;
        layOut();
        askAll();
        placesChanged();
        tellReaders();
    }

    bool clipped() const override {
        return empty() && record.parent != nullptr && layOutHint(size(), textOf(record.parent->toolTip)).cut;
    }
    QString fallbackTip() const override { return layout_.cut ? parts_.name : QString(); }

    void partChanged(Control& part) override {
        const JinglePart kind = partOf(part);
        if (kind == JinglePart::bar) {  // bars move at each tick
            PaintedWidget::partChanged(part);
            if (!part.caption().empty() || !left_.isEmpty()) timeLeftChanged(textOf(part.caption));
            return;
        }
        // A mark or number that came or went leaves the caption more or less room.
        const auto shown = [this] { return std::tuple(layout_, durationAt_, places_.shown()); };
        const auto before = shown();
        layOut();
        PaintedWidget::partChanged(part);
        if (kind == JinglePart::mark) {
            // Marks close up: the others may stand elsewhere now.
            for (Control* other : record.children()) {
                if (other != &part && partOf(*other) == JinglePart::mark) PaintedWidget::partChanged(*other);
            }
        }
        if (before != shown()) askAll();
    }

    void themeChanged() override {
        refresh();
        askAll();
    }

  protected:
    bool takesMouse(const Control& part) const override {
        return part.kind == ControlKind::checkBox || part.onMouseDown || part.onMouseUp || part.onClick;
    }

    QRect partPlace(const Control& part) const override {
        if (part.kind == ControlKind::shape && visibleIn(part, record)) return barPlace(part);
        QRect place = PaintedWidget::partPlace(part);
        if (!place.isEmpty() && partOf(part) == JinglePart::mark)
            return places_.placeOf(part).toAlignedRect().adjusted(-1, -1, 1, 1);
        // Small texts may be wider than the field that their record gives them.
        if (!place.isEmpty() && (part.kind == ControlKind::label || part.kind == ControlKind::symbol)) {
            place.adjust(-kReach, -kReach, kReach, kReach);
        }
        return place;
    }

    void resizeEvent(QResizeEvent*) override {
        seen_.size = QSize();
        apply();
    }
    void focusInEvent(QFocusEvent*) override { askAll(); }
    void focusOutEvent(QFocusEvent*) override { askAll(); }
    void enterEvent(QEnterEvent*) override { askAll(); }
    void leaveEvent(QEvent*) override { askAll(); }

    void paintEvent(QPaintEvent* e) override {
        QPainter p(this);
        const Theme& theme = themeOf(record);
        settleBlock();
        const QColor ink = tones(theme).ink;
        paintFace(p, theme);
        if (empty() && record.parent != nullptr) paintHint(p, size(), textOf(record.parent->toolTip), theme);
        if (!layout_.lines.isEmpty() && e->region().intersects(layout_.box.toAlignedRect())) {
            p.setFont(layout_.font);
            p.setPen(record.enabled() ? ink : theme.muted);
            for (qsizetype i = 0; i < layout_.lines.size(); ++i) {
                p.drawText(layout_.starts[static_cast<std::size_t>(i)], layout_.lines[i]);
            }
        }
        if (places_.shown().duration && !parts_.duration.isEmpty() && !empty() &&
            e->region().intersects(durationAt_.toAlignedRect())) {
            p.setFont(places_.durationFont());
            p.setPen(tones(theme).duration);
            drawFigures(p, durationAt_, Qt::AlignRight | Qt::AlignVCenter, shownTime());
        }
        if (const QRectF sign = signPlace(); e->region().intersects(sign.toAlignedRect())) {
            paintStateSign(p, sign, state(), ink, face(theme));
        }
        paintBelow(p, theme, ink, e->region());
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) {
            drawFocus(p, rect(), lightness(face(theme)) < 0.5 ? QColor(Qt::white) : theme.accent);
        }
    }

  private:
    struct Seen {
        std::string caption;
        Colour back = 0, fore = 0;
        bool enabled = true;
        int state = 0;
        Colour border = 0;
        QSize size;
        QFont font;
        bool operator==(const Seen&) const = default;
    };

    bool empty() const { return parts_.name.isEmpty() && isNeutral(record, record.backColor); }

    bool sounding() const { return sounds(record.value()); }

    /// Worked out anew only when something that they follow from changed: they are asked for at each paint.
    const JingleTones& tones(const Theme& theme) const {
        const TonesKey key{record.backColor, record.foreColor, record.borderColor, record.value,
                           soundingNow > 0,  empty(),          theme.face.rgb()};
        if (key != tonesFor_) {
            tonesFor_ = key;
            tones_ = tonesOf(record, theme, empty(), soundingNow > 0);
        }
        return tones_;
    }
    QColor face(const Theme& theme) const { return tones(theme).face; }

    QString shownTime() const { return sounding() && !left_.isEmpty() ? left_ : parts_.duration; }

    void timeLeftChanged(const QString& text) {
        if (text == left_) return;
        left_ = text;
        if (places_.shown().duration) {
            const QRect before = durationAt_.toAlignedRect();
            durationAt_ = places_.durationPlace(shownTime());
            ask(before.united(durationAt_.toAlignedRect()));
        }
    }

    /// Names of one block have one size, the smallest that nine in ten of them need.
    void settleBlock() {
        Block& block = blocks()[parentWidget()];
        if (block.settled) return;
        std::vector<double> needs;
        for (const JingleWidget* other : everyButton()) {
            if (other->parentWidget() == parentWidget() && !other->parts_.name.isEmpty())
                needs.push_back(other->need_);
        }
        std::ranges::sort(needs, std::greater{});
        block.scale = needs.empty()
                          ? 1
                          : needs[static_cast<std::size_t>(static_cast<double>(needs.size() - 1) * kServes)];
        block.settled = true;
        for (JingleWidget* other : everyButton()) {
            if (other->parentWidget() != parentWidget()) continue;
            const CaptionLayout before = other->layout_;
            other->setInBlock(block.scale);
            if (!(before == other->layout_) && other != this) other->askAll();
        }
    }

    /// Set anew in the size of the block, when that is smaller than what it could have.
    void setInBlock(double scale) {
        if (scale < need_) {
            QFont font = seen_.font;
            font.setPixelSize(std::max(8, static_cast<int>(std::lround(font.pixelSize() * scale))));
            layout_ = layOutCaption(parts_.name, font, room_, corners_);
        } else {
            layout_ = layOutCaption(parts_.name, seen_.font, room_, corners_);
        }
        if (!sounding()) return;
        // Bold while it sounds, where that neither breaks the name nor makes it smaller.
        QFont bold = layout_.font;
        bold.setWeight(QFont::ExtraBold);
        const CaptionLayout loud = layOutCaption(parts_.name, bold, room_, corners_);
        if (loud.lines == layout_.lines && loud.font.pixelSize() == layout_.font.pixelSize()) layout_ = loud;
    }

    void paintFace(QPainter& p, const Theme& theme) const {
        const bool held = isHeld(record);
        if (empty()) {
            if (held) p.fillRect(rect().adjusted(2, 2, -2, -2), mixed(theme.ground, theme.text, 0.12));
            drawOutline(p, rect(), mixed(theme.ground, theme.text, 0.2));
            return;
        }
        QColor colour = face(theme);
        const QColor ring = record.borderColor() >= 0 ? colourOf(record.borderColor, theme.accent) : QColor();
        const bool deep = lightness(colour) < 0.5;
        QColor border = isNeutral(record, record.backColor)
                            ? theme.border
                            : mixed(colour, deep ? QColor(Qt::white) : QColor(Qt::black), deep ? 0.16 : 0.2);
        if (held) colour = mixed(colour, deep ? QColor(Qt::white) : QColor(Qt::black), 0.16);
        if (!held && underMouse()) border = mixed(border, theme.text, 0.45);
        paintJingleFace(p, size(), devicePixelRatioF(), {colour, border, state(), theme.dark, ring});
    }

    using TonesKey = std::tuple<Colour, Colour, Colour, int, bool, bool, QRgb>;
    mutable TonesKey tonesFor_{};
    mutable JingleTones tones_;

    JingleState state() const { return static_cast<JingleState>(record.value()); }

    /// Left out where the name needs the room: names do not move when a state changes.
    QRectF signPlace() const {
        if (empty()) return {};
        const QRectF place = stateSignPlace(size(), state(), kMargin);
        const QRectF around = place.adjusted(-2, -2, 3, 2);
        return std::any_of(layout_.inks.begin(), layout_.inks.end(),
                           [&](const QRectF& ink) { return ink.intersects(around); })
                   ? QRectF()
                   : place;
    }

    void paintBelow(QPainter& p, const Theme& theme, const QColor& ink, const QRegion& asked) const {
        for (const JinglePlaces::Placed& placed : places_.parts()) {
            const Control& part = *placed.part;
            if (!part.visible()) continue;
            // A number's ink keeps clear of the bar above it; other small texts may reach out of their places.
            const auto touched = [&](const QRectF& place) {
                return asked.intersects(place.adjusted(-kReach, -kReach, kReach, kReach).toAlignedRect());
            };
            switch (placed.kind) {
                case JinglePart::bar:
                    if (const QRect bar = barPlace(part); asked.intersects(bar))
                        paintBar(p, part, bar, theme);
                    break;
                case JinglePart::tickBox:
                    if (touched(placed.place)) paintTickBox(p, part, placed.place, theme);
                    break;
                case JinglePart::mark:
                    if (asked.intersects(placed.place.toAlignedRect())) {
                        const Colour own = part.foreColor() >= 0 ? part.foreColor() : part.backColor();
                        paintMark(p, placed.place, textOf(part.caption),
                                  own == 0 ? QColor() : colourOf(own, ink), face(theme));
                    }
                    break;
                case JinglePart::number:
                    if (places_.shown().number &&
                        asked.intersects(placed.place.adjusted(-1, 2, 1, -2).toRect())) {
                        p.setFont(places_.numberFont());
                        p.setPen(tones(theme).number);
                        drawFigures(p, placed.place, Qt::AlignHCenter | Qt::AlignVCenter,
                                    captionOf(part.caption));
                    }
                    break;
                case JinglePart::letter:
                    if (touched(placed.place)) {
                        p.setFont(symbolFont(std::clamp(placed.place.height(), 10.0, 14.0)));
                        p.setPen(ink);
                        p.drawText(placed.place.adjusted(-kReach, -kReach, kReach, kReach), Qt::AlignCenter,
                                   captionOf(part.caption));
                    }
                    break;
                case JinglePart::ground:
                    break;
            }
        }
    }

    void paintTickBox(QPainter& p, const Control& part, const QRectF& place, const Theme& theme) const {
        const double side = std::min({16.0, place.width(), place.height()});
        // Hollow on any face: a box of another colour would look ticked.
        const JingleTones& t = tones(theme);
        drawTickBox(p, QRectF(place.topLeft(), QSizeF(side, side)), part.value() != 0, t.face, t.duration,
                    theme.accent);
    }

    /// The bar stands inside the frame of what sounds.
    QRect barPlace(const Control& part) const {
        const QRect place = placeIn(part, record);
        if (!sounding()) return place;
        const int in = kFrameLine - place.left();
        const bool above = place.center().y() < height() / 2;
        return place.translated(0, above ? in : -in) &
               rect().adjusted(kFrameLine, kFrameLine, -kFrameLine, -kFrameLine);
    }

    static void paintBar(QPainter& p, const Control& part, const QRect& bar, const Theme& theme) {
        // A track without a colour of its own is transparent.
        if (part.backColor() == kNoColour) return;
        // Two plain rectangles make a bar with its corners taken off: a hundred of them are painted at each
        // tick.
        const QColor colour = colourOf(part.backColor, theme.muted);
        p.fillRect(bar.adjusted(1, 0, -1, 0), colour);
        p.fillRect(bar.adjusted(0, 1, 0, -1), colour);
    }

    /// The name stands elsewhere than it would without anything in the corners.
    bool movedAside() const {
        const CaptionLayout free = layOutCaption(parts_.name, layout_.font, room_);
        return !layout_.starts.empty() && !free.starts.empty() && layout_.lines == free.lines &&
               layout_.starts[0] != free.starts[0];
    }

    /// On a button too small for all of it the name comes first, then the number, then the duration.
    void layOut() {
        const double air = height() < kLowButton ? 1 : kAir;
        const QRectF room = QRectF(rect()).adjusted(kMargin, air, -kMargin, -air);
        const QRectF small = QRectF(rect()).adjusted(3, air, -3, -air);
        const bool narrow = width() < kNarrowButton;
        const bool tight = narrow || height() < kLowButton;
        const auto attempt = [&](const JinglePlaces::Shown& shown) {
            places_.settle(size(), seen_.font.pixelSize(), shown);
            corners_ = places_.corners(shownTime());
            if (state() == JingleState::broken) {
                if (const QRectF sign = stateSignPlace(size(), state(), kMargin); !sign.isEmpty())
                    corners_.push_back(sign);
            }
            durationAt_ = places_.durationPlace(shownTime());
            room_ = narrow ? small : room;
            layout_ = layOutCaption(parts_.name, seen_.font, room_, corners_);
            return !layout_.cut && !(narrow && places_.cornersMeet(shownTime()));
        };
        bool whole = false;
        MarkSize marks = MarkSize::full;
        for (const MarkSize tried : {MarkSize::full, MarkSize::compact, MarkSize::dot}) {
            marks = tried;  // marks shrink before the name leaves the line of its row
            whole = attempt({true, true, marks});
            if (!movedAside()) break;
        }
        // On a tight button that is not enough, the name alone; else nothing is won by leaving them out.
        if (!whole && tight && !attempt({false, true, marks})) attempt({false, false, marks});
        Block& block = blocks()[parentWidget()];
        const double need =
            seen_.font.pixelSize() > 0 ? double(layout_.font.pixelSize()) / seen_.font.pixelSize() : 1;
        if (need != need_ || parts_.name != named_) block.settled = false;
        need_ = need;
        named_ = parts_.name;
        if (block.settled) setInBlock(block.scale);
    }

    void tellReaders() {
#if QT_CONFIG(accessibility)
        tellNameChanged(*this, spokenName(), record.backColor(), record.value());
#endif
    }

    CaptionParts parts_;
    CaptionLayout layout_;
    Seen seen_;
    std::vector<QRectF> corners_;
    QRectF room_;
    QString left_;     ///< time left, while it sounds
    double need_ = 1;  ///< share of its size that the name needs by itself
    QString named_;    ///< the name that was set last
    JinglePlaces places_{record};
    QRectF durationAt_;
};

}  // namespace

void makeJingleView(Control& record, QWidget* parent) { new JingleWidget(record, parent); }

}  // namespace zv::shell
