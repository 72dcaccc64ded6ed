// A canvas: paints the strokes of its record; mouse, wheel and keys go to the record. Its value is 1 while the mouse
// stands on something that can be moved sideways.
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "platform/qt/view/figures.h"
#include "platform/qt/view/keys.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr double kPixelsPerPoint = 96.0 / 72.0;

class CanvasWidget final : public QWidget, public RecordView {
  public:
    CanvasWidget(Control& r, QWidget* parent) : QWidget(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        setFocusPolicy(Qt::StrongFocus);
        setMouseTracking(true);
        relayEvents(*this, *this);
    }

    void apply() override {
        const auto pointer = record.value() == 1 ? Qt::SizeHorCursor : Qt::ArrowCursor;
        if (cursor().shape() != pointer) setCursor(pointer);
        const Drawing& now = record.drawing();
        if (shownBack_ != record.backColor() || shown_.size() != now.size()) {
            update();
        } else {
            for (std::size_t i = 0; i < now.size(); ++i) {
                if (shown_[i] == now[i]) continue;
                update(placeOf(shown_[i]));
                update(placeOf(now[i]));
            }
        }
        shown_ = now;
        shownBack_ = record.backColor();
    }

  protected:
    void paintEvent(QPaintEvent* e) override {
        QPainter p(this);
        const Theme theme = themeOf(record);
        const QRectF all(rect());
        drawFace(p, all, colourOf(record.backColor, Qt::black), theme.border);
        p.setClipRect(all.adjusted(1, 1, -1, -1));
        for (const Stroke& stroke : shown_) paint(p, stroke, e->rect());
        p.setClipping(false);
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            drawFocus(p, all, theme.accent);
    }

    void wheelEvent(QWheelEvent* e) override {
        if (!record.onWheel) {
            e->ignore();
            return;
        }
        turned_ += e->angleDelta().y();
        const int turns = turned_ / QWheelEvent::DefaultDeltasPerStep;
        turned_ -= turns * QWheelEvent::DefaultDeltasPerStep;
        if (turns != 0) call([&] { record.onWheel(turns, shiftOf(e->modifiers())); });
        e->accept();
    }

  private:
    /// What painting a stroke may touch.
    static QRect placeOf(const Stroke& s) {
        const int reach = 2 + static_cast<int>(std::ceil(s.thickness));
        return QRectF(s.x, s.y, s.width, s.height)
            .normalized()
            .toAlignedRect()
            .adjusted(-reach, -reach, reach, reach);
    }

    void paint(QPainter& p, const Stroke& s, const QRect& wanted) {
        if (!placeOf(s).intersects(wanted)) return;
        QColor colour = colourOf(s.colour, themeOf(record).text);
        colour.setAlphaF(static_cast<float>(std::clamp(s.opacity, 0, 100)) / 100.0F);
        const QRectF place(s.x, s.y, s.width, s.height);
        switch (s.what) {
            case Stroke::What::area:
                p.fillRect(place, colour);
                return;
            case Stroke::What::frame:
                p.setPen(colour);
                p.setBrush(Qt::NoBrush);
                p.drawRect(place.adjusted(0.5, 0.5, -0.5, -0.5));
                return;
            case Stroke::What::line: {
                const bool straight = s.width == 0 || s.height == 0;
                p.setRenderHint(QPainter::Antialiasing, !straight);
                p.setPen(QPen(colour, s.thickness));
                p.drawLine(place.topLeft(), place.topLeft() + QPointF(s.width, s.height));
                p.setRenderHint(QPainter::Antialiasing, false);
                return;
            }
            case Stroke::What::peaks:
                paintPeaks(p, s, colour, wanted);
                return;
            case Stroke::What::text:
                p.setPen(colour);
                p.setFont(textFont(s.points * kPixelsPerPoint, s.bold ? QFont::DemiBold : QFont::Normal));
                drawFigures(p, place, Qt::AlignLeft | Qt::AlignVCenter, textOf(s.text));
                return;
        }
    }

    static void paintPeaks(QPainter& p, const Stroke& s, const QColor& colour, const QRect& wanted) {
        if (!s.peaks || s.peaks->empty()) return;
        const double each = s.width / static_cast<double>(s.peaks->size());
        const double middle = s.y + s.height / 2, half = s.height / 2;
        QVector<QRectF> columns;
        columns.reserve(static_cast<qsizetype>(std::min(s.width, static_cast<double>(wanted.width()) + 4)));
        double x = s.x - each;
        for (const auto& [low, high] : *s.peaks) {
            x += each;
            if (x + each < wanted.left() || x > wanted.right() + 1) continue;
            const double top = middle - half * static_cast<double>(high);
            const double foot = middle - half * static_cast<double>(low);
            columns.push_back(QRectF(x, top, std::max(each, 0.5), std::max(1.0, foot - top)));
        }
        p.setPen(Qt::NoPen);
        p.setBrush(colour);
        p.drawRects(columns);
    }

    Drawing shown_;
    Colour shownBack_ = kNoColour;
    int turned_ = 0;
};

}  // namespace

void makeCanvasView(Control& record, QWidget* parent) { new CanvasWidget(record, parent); }

}  // namespace zv::shell
