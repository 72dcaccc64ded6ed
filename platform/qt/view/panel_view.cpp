// The display: black glass with seven-segment figures, date and time, the palette's name and the message
// mark.
#include <QHelpEvent>
#include <QPainter>
#include <algorithm>
#include <unordered_map>

#include "platform/qt/view/figures.h"
#include "platform/qt/view/painted.h"
#include "platform/qt/view/segments.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"

namespace zv::shell {
namespace {

constexpr double kUnlit = 0.14;  ///< how much of the lit colour an unlit segment shows
constexpr double kTextSize = 14;

bool startsWith(const std::string& text, std::string_view head) {
    return text.size() >= head.size() &&
           std::equal(head.begin(), head.end(), text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

bool isFigure(const Control& part) { return startsWith(part.name, "lblPos"); }
bool isSeparator(const Control& part) { return startsWith(part.name, "sep"); }

class PanelWidget final : public PaintedWidget {
  public:
    PanelWidget(Control& r, QWidget* parent) : PaintedWidget(r, parent) {
        setAttribute(Qt::WA_AcceptTouchEvents);
        relayEvents(*this, *this);
    }

    void apply() override {
        placesChanged();
        askAll();
    }

    void partChanged(Control& part) override {
        if (part.foreColor() >= 0 && part.foreColor() != record.backColor()) lit_[&part] = part.foreColor();
        // A tool tip belongs to the place under the mouse; Qt asks for it with an event.
        PaintedWidget::partChanged(part);
    }

    bool clipped() const override { return clippedBelow(record); }

  protected:
    bool takesMouse(const Control& part) const override {
        return part.onMouseDown || part.onMouseUp || part.onClick || !part.toolTip().empty();
    }

    QRect partPlace(const Control& part) const override {
        // Figures show their unlit segments even while they are hidden.
        return isFigure(part) ? placeIn(part, record) : PaintedWidget::partPlace(part);
    }

    bool event(QEvent* e) override {
        if (e->type() == QEvent::ToolTip) {
            const Control* part = partAt(static_cast<QHelpEvent*>(e)->pos());
            setToolTip(textOf(part != nullptr ? part->toolTip() : record.toolTip()));
        }
        return PaintedWidget::event(e);
    }

    void paintEvent(QPaintEvent* e) override {
        QPainter p(this);
        const QColor back = colourOf(record.backColor, Qt::black);
        const Theme theme = themeOf(record);
        drawFace(p, rect(), back, mixed(back, theme.dark ? theme.border : QColor(0x60, 0x64, 0x6A), 0.75), 4);
        p.setRenderHint(QPainter::Antialiasing);
        paintParts(p, record, back, e->region());
    }

  private:
    void paintParts(QPainter& p, const Control& from, const QColor& back, const QRegion& asked) {
        for (const Control* part : from.children()) {
            const QRect place = partPlace(*part);
            if (place.isEmpty() || !asked.intersects(place.adjusted(-1, -1, 1, 1))) continue;
            if (isFigure(*part)) {
                paintFigure(p, *part, back);
            } else if (isSeparator(*part)) {
                paintSeparator(p, *part, back);
            } else {
                paintText(p, *part, place);
            }
            if (part->visible()) paintParts(p, *part, back, asked);
        }
    }

    QColor inkOf(const Control& part, const QColor& fallback) const {
        const auto found = lit_.find(&part);
        return colourOf(part.foreColor, colourOf(found != lit_.end() ? found->second : kNoColour, fallback));
    }

    void paintFigure(QPainter& p, const Control& part, const QColor& back) {
        const QRectF box = figureBox(placeIn(part, record));
        const QColor ink = inkOf(part, QColor(0x80, 0xFF, 0xFF));
        // While a figure blinks away its colour is the ground's: the unlit segments keep the last lit colour.
        const auto found = lit_.find(&part);
        const QColor glass = found != lit_.end() ? colourOf(found->second, ink) : ink;
        p.setPen(Qt::NoPen);
        p.setBrush(mixed(back, glass, kUnlit));
        p.drawPath(allSegments(box));
        const QString text = textOf(part.caption);
        if (!part.visible() || text.isEmpty() || ink == back) return;
        p.setBrush(ink);
        p.drawPath(litSegments(text.front(), box));
    }

    void paintSeparator(QPainter& p, const Control& part, const QColor& back) {
        const QString text = textOf(part.caption);
        const QColor ink = inkOf(part, QColor(0x80, 0xFF, 0xFF));
        if (!part.visible() || text.isEmpty() || ink == back) return;
        p.setPen(Qt::NoPen);
        p.setBrush(ink);
        p.drawPath(litSegments(text.front(), placeIn(part, record)));
    }

    /// Somewhat smaller than asked for where that shows the whole text.
    static QFont textFontFor(const Control& part, const QRect& place) {
        QFont font = fontOf(part, kTextSize, QFont::DemiBold);
        // A font size meant for another font must not leave its field.
        if (font.pixelSize() > place.height() * 0.92)
            font.setPixelSize(std::max(9, static_cast<int>(place.height() * 0.92)));
        const double w = QFontMetricsF(font).horizontalAdvance(captionOf(part.caption));
        if (w > place.width() && w < place.width() * 1.25)
            font.setPixelSize(std::max(9, static_cast<int>(font.pixelSize() * place.width() / w)));
        return font;
    }

    bool clippedBelow(const Control& from) const {
        return std::ranges::any_of(from.children(), [this](const Control* part) {
            if (!part->visible() || part->kind == ControlKind::shape) return false;
            const QRect place = placeIn(*part, record);
            const QString text = captionOf(part->caption).trimmed();
            const bool written = part->kind == ControlKind::label && !isFigure(*part) &&
                                 !isSeparator(*part) && part->fontName().empty();
            return (written &&
                    QFontMetricsF(textFontFor(*part, place)).horizontalAdvance(text) > place.width() + 1) ||
                   clippedBelow(*part);
        });
    }

    void paintText(QPainter& p, const Control& part, const QRect& place) const {
        const QString text = captionOf(part.caption);
        if (!part.visible()) return;
        if (part.kind == ControlKind::shape) {
            p.fillRect(place, colourOf(part.backColor, Qt::black));
            return;
        }
        if (text.isEmpty()) return;
        const bool symbol =
            part.kind == ControlKind::symbol || part.fontName() == "ZVR" || part.fontName() == "MSSSMod";
        p.setPen(colourOf(part.foreColor, QColor(0xFF, 0x80, 0x00)));
        if (symbol) {
            p.setFont(symbolFont(std::min<double>(place.height() * 0.86, 26)));
            p.drawText(place.adjusted(-2, -2, 2, 2), Qt::AlignCenter, text);
            return;
        }
        const QFont font = textFontFor(part, place);
        p.setFont(font);
        const int side = part.alignment() == 1   ? Qt::AlignRight
                         : part.alignment() == 2 ? Qt::AlignHCenter
                                                 : Qt::AlignLeft;
        const QString shown =
            QFontMetricsF(font).elidedText(text.trimmed(), Qt::ElideRight, place.width() + 1);
        drawFigures(p, place, side | Qt::AlignVCenter, shown);
    }

    std::unordered_map<const Control*, Colour> lit_;
};

}  // namespace

void makePanelView(Control& record, QWidget* parent) { new PanelWidget(record, parent); }

}  // namespace zv::shell
