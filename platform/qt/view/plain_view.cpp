// Controls that only show: frames, labels, symbols, filled rectangles, progress bars, colour fields.
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

#include "platform/qt/view/figures.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr double kLabelSize = 13, kNoteSize = 12, kHeadSize = 20, kFigureSize = 26;  // of texts, pixels

Qt::Alignment sideOf(const Control& record) {
    switch (record.alignment()) {
        case 1:
            return Qt::AlignRight;
        case 2:
            return Qt::AlignHCenter;
        default:
            return Qt::AlignLeft;
    }
}

class PlainWidget final : public QWidget, public RecordView {
  public:
    PlainWidget(Control& r, QWidget* parent) : QWidget(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        if (r.kind == ControlKind::colourField) setFocusPolicy(Qt::StrongFocus);
        relayEvents(*this, *this);
    }

    void apply() override {
        if (record.kind == ControlKind::label) setAccessibleName(captionOf(record.caption));
        // In a form a text that no longer fits asks for its room; one that still does moves nothing.
        if (inForm(record) && sizeHint().width() > width()) updateGeometry();
        update();
    }

    QSize sizeHint() const override {
        const QString text = captionOf(record.caption);
        if (text.isEmpty() || !inForm(record)) return QWidget::sizeHint();
        double width = 0;
        const QStringList lines = text.split(QLatin1Char('\n'));
        for (const QString& line : lines) width = std::max(width, figuresWidth(labelFont(), line.trimmed()));
        return {static_cast<int>(std::ceil(width)) + 2,
                static_cast<int>(
                    std::ceil(QFontMetricsF(labelFont()).height() * static_cast<double>(lines.size())))};
    }

    bool clipped() const override {
        if (record.kind != ControlKind::label || record.caption().empty()) return false;
        const QString text = captionOf(record.caption);
        const QFontMetrics m(labelFont());
        if (height() < m.height() * 1.9)
            return figuresWidth(labelFont(), text) > width() + 1 || height() < m.ascent();
        return m.boundingRect(QRect(0, 0, width(), 10000), Qt::TextWordWrap, text).height() > height() + 2;
    }

    QSize minimumSizeHint() const override {
        return inForm(record) ? sizeHint() : QWidget::minimumSizeHint();
    }

    QString fallbackTip() const override { return cut_ ? captionOf(record.caption) : QString(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const Theme theme = themeOf(record);
        switch (record.kind) {
            case ControlKind::frame:
                paintFrame(p, theme);
                return;
            case ControlKind::shape:
                paintShape(p, theme);
                return;
            case ControlKind::progress:
                paintProgress(p, theme);
                return;
            case ControlKind::colourField:
                drawFace(p, rect(), colourOf(record.backColor, theme.face), theme.border);
                paintText(p, theme);
                if (record.value() != 0) paintChosen(p);
                if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
                    drawFocus(p, rect(), theme.text);
                return;
            default:
                break;
        }
        if (!isNeutral(record, record.backColor)) paintGround(p, theme);
        paintText(p, theme);
    }

  private:
    QFont labelFont() const {
        switch (dress) {
            case Dress::headTitle:
                return fontOf(record, kHeadSize, QFont::DemiBold);
            case Dress::headRight:
                return fontOf(record, kFigureSize, QFont::Medium);
            case Dress::headLine:
            case Dress::note:
                return fontOf(record, kNoteSize, QFont::Medium);
            case Dress::cardTitle:
            case Dress::value:
                return fontOf(record, kLabelSize, QFont::DemiBold);
            default:
                return fontOf(record, kLabelSize);
        }
    }

    QColor inkOf(const Theme& theme) const {
        const bool quiet = dress == Dress::rowLabel || dress == Dress::headLine || dress == Dress::note;
        const QColor ink = colourOf(record.foreColor, quiet ? theme.muted : theme.text);
        return dress == Dress::headRight ? legible(ink, theme.dark ? theme.panel : theme.field) : ink;
    }

    void paintFrame(QPainter& p, const Theme& theme) const {
        const bool neutral = isNeutral(record, record.backColor);
        const bool bordered = record.borderColor() != kNoColour;
        if (bordered) {
            // A neutral block is a panel of the window; its border is the theme's, so that it stays quiet.
            drawFace(p, rect(), neutral ? theme.panel : colourOf(record.backColor, theme.panel),
                     neutral ? theme.border : colourOf(record.borderColor, theme.border), 4);
        } else if (!neutral) {
            p.fillRect(rect(), colourOf(record.backColor, theme.panel));
        }
        if (record.caption().empty()) return;
        p.setFont(fontOf(record, kLabelSize, QFont::DemiBold));
        p.setPen(colourOf(record.foreColor, theme.muted));
        p.drawText(rect().adjusted(10, 6, -10, -6), Qt::AlignTop | Qt::AlignLeft, captionOf(record.caption));
    }

    /// A tick on the colour that is set.
    void paintChosen(QPainter& p) const {
        const bool deep = lightness(colourOf(record.backColor, Qt::white)) < 0.5;
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(deep ? Qt::white : Qt::black, 2.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const QPointF c = QRectF(rect()).center();
        p.drawPolyline(QPolygonF{c + QPointF(-7, 0), c + QPointF(-2, 5), c + QPointF(8, -6)});
    }

    void paintShape(QPainter& p, const Theme& theme) const {
        const QColor colour =
            isNeutral(record, record.backColor) ? theme.border : colourOf(record.backColor, theme.border);
        if (std::min(width(), height()) <= 3) {
            p.fillRect(rect(), colour);
            return;
        }
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(colour);
        const double radius = std::min({3.0, width() / 2.0, height() / 2.0});
        p.drawRoundedRect(QRectF(rect()), radius, radius);
    }

    void paintGround(QPainter& p, const Theme& theme) const {
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(colourOf(record.backColor, theme.panel));
        p.drawRoundedRect(QRectF(rect()), 3, 3);
    }

    void paintProgress(QPainter& p, const Theme& theme) const {
        const double radius = std::min(3.0, height() / 2.0);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(mixed(theme.ground, theme.text, 0.16));
        p.drawRoundedRect(QRectF(rect()), radius, radius);
        const int range = std::max(1, record.maximum() - record.minimum());
        const double share =
            std::clamp(static_cast<double>(record.value() - record.minimum()) / range, 0.0, 1.0);
        if (share <= 0) return;
        p.setBrush(colourOf(record.foreColor, theme.accent));
        p.drawRoundedRect(QRectF(0, 0, width() * share, height()), radius, radius);
    }

    void paintText(QPainter& p, const Theme& theme) {
        const QString text = captionOf(record.caption);
        if (text.isEmpty()) return;
        const bool symbol = record.kind == ControlKind::symbol;
        QFont font =
            symbol && record.fontSize() <= 0 ? symbolFont(std::min(24.0, height() * 0.8)) : labelFont();
        if (font.pixelSize() > height() && height() > 8) font.setPixelSize(height());
        p.setFont(font);
        QColor ink = inkOf(theme);
        // A colour field says its digits on the colour itself.
        if (record.kind == ControlKind::colourField && record.foreColor() < 0)
            ink = lightness(colourOf(record.backColor, theme.face)) < 0.5 ? QColor(Qt::white)
                                                                          : QColor(Qt::black);
        p.setPen(record.enabled() ? ink : mixed(ink, theme.panel, 0.55));
        const QRect room = isNeutral(record, record.backColor) ? rect() : rect().adjusted(6, 0, -6, 0);
        if (symbol) {
            p.drawText(rect(), Qt::AlignCenter, text);
            return;
        }
        const QFontMetricsF m(font);
        const bool lines = height() >= m.height() * 1.9;
        setCut(!lines && figuresWidth(font, text) > room.width() + 1);
        if (lines) {
            p.drawText(room, sideOf(record) | Qt::AlignVCenter | Qt::TextWordWrap, text);
        } else {
            drawFigures(p, room, static_cast<int>(sideOf(record)) | Qt::AlignVCenter,
                        m.elidedText(text.simplified(), Qt::ElideRight, room.width() + 1));
        }
    }

    /// The whole of a text that was cut is its tool tip.
    void setCut(bool cut) {
        if (cut == cut_) return;
        cut_ = cut;
        setToolTip(record.toolTip().empty() ? fallbackTip() : textOf(record.toolTip));
    }

    bool cut_ = false;
};

}  // namespace

void makePlainView(Control& record, QWidget* parent) { new PlainWidget(record, parent); }

}  // namespace zv::shell
