// A jingle button: one widget that paints its record and the parts below it.
#include <QFontMetricsF>
#include <QHash>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/qt/view/jingle_face.h"
#include "platform/qt/view/jingle_text.h"
#include "platform/qt/view/painted.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"

namespace zv::shell {
namespace {

constexpr double kCaptionSize = 15;
constexpr double kDurationShare = 0.76;  ///< of the caption's size, and the limits of what comes out
constexpr double kDurationMin = 8, kDurationMax = 15;
constexpr double kNumberShare = 0.68;
constexpr double kNumberMin = 8, kNumberMax = 13;
constexpr double kSmallDot = 6;     ///< where a larger one would move the name
constexpr int kReach = 4;           ///< of small texts around their places
constexpr int kMargin = 8;          ///< between the face's edge and its text
constexpr double kNumberGap = 4;    ///< between a number and a mark at its side
constexpr double kDotSize = 9;      ///< of a state mark
constexpr double kAir = 4;          ///< above and below a caption
constexpr int kNarrowButton = 110;  ///< pixels of width below which small texts give way to the name
constexpr double kServes = 0.9;     ///< of the names of a block: so many share one size
constexpr int kFrameLine = 4;       ///< pixels of the frame around what sounds
constexpr int kLowButton = 40;      ///< pixels of height below which duration and caption share one line

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

    QString fallbackTip() const override { return layout_.cut ? parts_.name : QString(); }

    void partChanged(Control& part) override {
        PaintedWidget::partChanged(part);
        if (isStateMark(part)) {
            // Marks close up: the others may stand elsewhere now.
            for (Control* other : record.children()) {
                if (other != &part && isStateMark(*other)) PaintedWidget::partChanged(*other);
            }
        }
        // A mark or number that came or went leaves the caption more or less room.
        if (part.kind == ControlKind::shape) {  // bars move at each tick
            if (!part.caption().empty() || !left_.isEmpty()) timeLeftChanged(textOf(part.caption));
            return;
        }
        const auto shown = [this] {
            return std::tuple(layout_, durationAt_, marksAside_, showDuration_, showNumber_);
        };
        const auto before = shown();
        layOut();
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
        if (!place.isEmpty() && isStateMark(part))
            return dotPlace(part).toAlignedRect().adjusted(-1, -1, 1, 1);
        // Small texts may be wider than the field that their record gives them.
        if (!place.isEmpty() && (part.kind == ControlKind::label || part.kind == ControlKind::symbol)) {
            place.adjust(-4, -4, 4, 4);
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
        const Theme theme = themeOf(record);
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
        if (showDuration_ && !parts_.duration.isEmpty() && !empty() &&
            e->region().intersects(durationAt_.toAlignedRect())) {
            p.setFont(durationFont());
            p.setPen(tones(theme).duration);
            drawFigures(p, durationAt_, Qt::AlignRight | Qt::AlignVCenter, shownTime());
        }
        if (const QRectF sign = signPlace(); e->region().intersects(sign.toAlignedRect())) {
            paintStateSign(p, sign, state(), ink, face(theme));
        }
        paintBelow(p, record, theme, ink, e->region());
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
        if (showDuration_) {
            const QRect before = durationAt_.toAlignedRect();
            durationAt_ = durationPlace();
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

    void paintBelow(QPainter& p, const Control& from, const Theme& theme, const QColor& ink,
                    const QRegion& asked) const {
        for (const Control* part : from.children()) {
            if (!part->visible()) continue;
            // A number's ink keeps clear of the bar above it; other small texts may reach out of their
            // places.
            const QRect reach = isNumber(*part) ? numberAt_.adjusted(-1, 2, 1, -2).toRect()
                                : isStateMark(*part)
                                    ? partPlace(*part)
                                    : placeIn(*part, record).adjusted(-kReach, -kReach, kReach, kReach);
            if (asked.intersects(reach)) paintPart(p, *part, theme, ink);
            paintBelow(p, *part, theme, ink, asked);
        }
    }

    void paintPart(QPainter& p, const Control& part, const Theme& theme, const QColor& ink) const {
        const QRectF place = placeIn(part, record);
        switch (part.kind) {
            case ControlKind::shape:
                paintShape(p, part, theme);
                return;
            case ControlKind::checkBox: {
                const double side = std::min({16.0, place.width(), place.height()});
                // Hollow on any face: a box of another colour would look ticked.
                const JingleTones& t = tones(theme);
                drawTickBox(p, QRectF(place.topLeft(), QSizeF(side, side)), part.value() != 0, t.face,
                            t.duration, theme.accent);
                return;
            }
            case ControlKind::symbol:
            case ControlKind::label:
                paintMark(p, part, place, ink);
                return;
            default:
                return;
        }
    }

    /// The bar and its track; what is as high as wide is a mark.
    /// The bar stands inside the frame of what sounds.
    QRect barPlace(const Control& part) const {
        const QRect place = placeIn(part, record);
        if (!sounding()) return place;
        const int in = kFrameLine - place.left();
        const bool above = place.center().y() < height() / 2;
        return place.translated(0, above ? in : -in) &
               rect().adjusted(kFrameLine, kFrameLine, -kFrameLine, -kFrameLine);
    }

    void paintShape(QPainter& p, const Control& part, const Theme& theme) const {
        // A track without a colour of its own is transparent.
        if (part.backColor() == kNoColour) return;
        // Two plain rectangles make a bar with its corners taken off: a hundred of them are painted at each
        // tick.
        const QColor colour = colourOf(part.backColor, theme.muted);
        const QRect bar = barPlace(part);
        p.fillRect(bar.adjusted(1, 0, -1, 0), colour);
        p.fillRect(bar.adjusted(0, 1, 0, -1), colour);
    }

    static bool isStateMark(const Control& part) {
        static constexpr std::array<std::string_view, 4> kMarks{"lp_", "sq_", "fx_", "pm_"};
        return std::any_of(kMarks.begin(), kMarks.end(),
                           [&](std::string_view m) { return std::string_view(part.name).starts_with(m); });
    }

    void paintMark(QPainter& p, const Control& part, const QRectF& place, const QColor& ink) const {
        if (isStateMark(part)) {
            const Colour own = part.foreColor() >= 0 ? part.foreColor() : part.backColor();
            // A mark that flashes is off in black: a ring without a dot.
            const QColor colour = own == 0 ? QColor(Qt::transparent) : colourOf(own, ink);
            const QRectF dot = dotPlace(part);
            p.save();
            p.setRenderHint(QPainter::Antialiasing);
            // A thin ring in the opposite lightness, so that a dot is seen on a face of its own colour.
            const QColor under = face(themeOf(record));
            p.setPen(QPen(
                mixed(under, lightness(under) < 0.5 ? QColor(Qt::black) : QColor(0x30, 0x34, 0x3A), 0.55),
                1));
            p.setBrush(colour);
            p.drawEllipse(dot);
            p.restore();
            return;
        }
        const QString text = captionOf(part.caption);
        if (text.isEmpty() || (isNumber(part) && !showNumber_)) return;
        const bool symbol =
            part.kind == ControlKind::symbol || part.fontName() == "ZVR" || part.fontName() == "MSSSMod";
        p.setFont(symbol ? symbolFont(std::max(10.0, std::min(place.height(), 14.0))) : numberFont());
        p.setPen(symbol ? ink : tones(themeOf(record)).number);
        if (symbol) {
            p.drawText(place.adjusted(-4, -4, 4, 4), Qt::AlignCenter, text);
        } else {
            drawFigures(p, numberAt_, Qt::AlignHCenter | Qt::AlignVCenter, text);
        }
    }

    static bool isNumber(const Control& part) { return part.kind == ControlKind::label; }

    double captionSize() const { return seen_.font.pixelSize(); }
    QFont durationFont() const {
        const double size = std::min(captionSize() * kDurationShare, height() * 0.66);
        return textFont(std::clamp(size, kDurationMin, std::max(kDurationMax, height() * 0.14)),
                        QFont::DemiBold);
    }
    QFont numberFont() const {
        const double size = std::min(captionSize() * kNumberShare, height() * 0.6);
        return textFont(std::clamp(size, kNumberMin, std::max(kNumberMax, height() * 0.11)));
    }

    /// Lower right, above a bar that runs there; on a low button in its middle, left of the marks.
    QRectF durationPlace() const {
        const QFont font = durationFont();
        const double w = figuresWidth(font, shownTime()), h = QFontMetricsF(font).height();
        double right = width() - kMargin + 1;
        if (height() >= kLowButton) {
            double foot = height() - 3;
            for (const Control* part : record.children()) {
                const QRect bar = placeIn(*part, record);
                if (part->kind == ControlKind::shape && bar.center().y() > height() / 2)
                    foot = std::min(foot, bar.top() + 0.0);
            }
            return {right - w, foot - h, w, h};
        }
        for (const Control* part : record.children()) {
            if (!part->visible()) continue;
            if (isStateMark(*part)) right = std::min(right, dotPlace(*part).left() - 4);
            if (isNumber(*part) && showNumber_ && part->left() > record.width() / 2) {
                right =
                    std::min(right, numberPlace(placeIn(*part, record), captionOf(part->caption)).left() - 6);
            }
        }
        return {right - w, (height() - h) / 2, w, h};
    }

    /// The shown marks close up at the upper right: each takes the place of a hidden one at its right side.
    QRect slotOf(const Control& mark) const {
        std::vector<QRect> places;
        std::size_t taken = 0;
        const int own = mark.left();
        for (const Control* part : record.children()) {
            if (!isStateMark(*part)) continue;
            places.push_back(placeIn(*part, record));
            taken += part->visible() && part->left() > own;
        }
        std::ranges::sort(places, std::greater{}, [](const QRect& place) { return place.x(); });
        return places[taken];
    }

    /// A dot in the place of its mark, kept inside the face and clear of a number at its side.
    QRectF dotPlace(const Control& mark) const {
        const QRectF place = slotOf(mark);
        const double wanted = std::max(kDotSize, place.width() - 1);
        double side = std::min({wanted, place.width(), place.height(), height() - 6.0});
        double y = place.center().y();
        if (smallMarks_) {
            side = std::min(side, kSmallDot);
            y = place.top() + side / 2;
        }
        if (height() < kLowButton) {
            side = std::min(side, 7.0);
            y = height() / 2.0;
        }
        return {place.center().x() - side / 2 - marksAside_, y - side / 2, side, side};
    }

    /// How far the marks stand aside for a number at the upper right: by all of them, shown or not, so that
    /// none moves when another one comes.
    double marksAside() const {
        double left = width(), marks = 0;
        for (const Control* part : record.children()) {
            const QRectF place = placeIn(*part, record);
            if (isStateMark(*part)) marks = std::max(marks, place.right());
            if (isNumber(*part) && part->visible() && place.center().x() > width() / 2.0) {
                left = numberPlace(place, captionOf(part->caption)).left();
            }
        }
        return std::max(0.0, marks + kNumberGap - left);
    }

    /// Numbers keep some pixels from the edge that their place is nearer to.
    QRectF numberPlace(const QRectF& place, const QString& text) const {
        const QFont font = numberFont();
        const double w = figuresWidth(font, text), h = QFontMetricsF(font).height();
        const double middle = height() < kLowButton ? height() / 2.0 : place.center().y();
        const double y = std::clamp(middle - h / 2, 1.0, std::max(1.0, height() - h - 1));
        if (place.center().x() > width() / 2.0) return {std::min(place.right(), width() - 5.0) - w, y, w, h};
        return {std::max(place.left(), 7.0), y, w, h};
    }

    /// What stands in the corners, for the caption to keep clear of.
    std::vector<QRectF> corners() const {
        std::vector<QRectF> out;
        if (showDuration_ && !parts_.duration.isEmpty()) out.push_back(durationPlace().adjusted(-2, 3, 2, 0));
        if (state() == JingleState::broken) {
            if (const QRectF sign = stateSignPlace(size(), state(), kMargin); !sign.isEmpty())
                out.push_back(sign);
        }
        for (const Control* part : record.children()) {
            if (!part->visible()) continue;
            const QRectF place = placeIn(*part, record);
            if (isStateMark(*part)) {
                out.push_back(dotPlace(*part).adjusted(-2, -1, 2, 1));
            } else if (isNumber(*part)) {
                if (!showNumber_ || part->caption().empty()) continue;
                out.push_back(numberPlace(place, captionOf(part->caption)).adjusted(0, 2, 2, -2));
            } else if (part->kind == ControlKind::checkBox ||
                       (part->kind == ControlKind::symbol && !part->caption().empty())) {
                out.push_back(place);
            }
        }
        return out;
    }

    /// The small texts run into each other or into a mark, or out of the button.
    bool cornersMeet() const {
        std::vector<QRectF> texts, all;
        if (showDuration_ && !parts_.duration.isEmpty()) texts.push_back(durationPlace());
        for (const Control* part : record.children()) {
            if (!part->visible()) continue;
            const QRectF place = placeIn(*part, record);
            if (isStateMark(*part)) all.push_back(dotPlace(*part));
            if (isNumber(*part) && showNumber_ && !part->caption().empty()) {
                texts.push_back(numberPlace(place, captionOf(part->caption)));
            }
        }
        if (texts.size() == 2 && texts[0].intersects(texts[1])) return true;
        return std::any_of(texts.begin(), texts.end(), [&](const QRectF& t) {
            return t.left() < 2 ||
                   std::any_of(all.begin(), all.end(), [&](const QRectF& d) { return t.intersects(d); });
        });
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
        const auto attempt = [&](bool duration, bool number) {
            showDuration_ = duration;
            showNumber_ = number;
            marksAside_ = number ? marksAside() : 0;
            corners_ = corners();
            durationAt_ = durationPlace();
            for (const Control* part : record.children()) {
                if (isNumber(*part))
                    numberAt_ = numberPlace(placeIn(*part, record), captionOf(part->caption));
            }
            room_ = narrow ? small : room;
            layout_ = layOutCaption(parts_.name, seen_.font, room_, corners_);
            return !layout_.cut && !(narrow && cornersMeet());
        };
        smallMarks_ = false;
        bool whole = attempt(true, true);
        if (movedAside()) {  // marks shrink before the name leaves the line of its row
            smallMarks_ = true;
            whole = attempt(true, true);
        }
        // On a tight button that is not enough, the name alone; else nothing is won by leaving them out.
        if (!whole && tight && !attempt(false, true)) attempt(false, false);
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
    bool smallMarks_ = false;
    double marksAside_ = 0;
    QRectF durationAt_, numberAt_;
    bool showDuration_ = true, showNumber_ = true;
};

}  // namespace

void makeJingleView(Control& record, QWidget* parent) { new JingleWidget(record, parent); }

}  // namespace zv::shell
