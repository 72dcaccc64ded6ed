// A level meter: the bar in the colours of its look, with a line that stays at the highest level for a while.
#include <QPaintEvent>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <cmath>

#include "platform/clock.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr double kPeakFall = 0.0006;  ///< shares of the bar that the peak line falls a millisecond
constexpr int kPeakLine = 2;          ///< pixels
constexpr int kClipMark = 6;          ///< pixels

class MeterWidget final : public QWidget, public RecordView {
  public:
    MeterWidget(Control& r, QWidget* parent) : QWidget(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        setAttribute(Qt::WA_OpaquePaintEvent);
        relayEvents(*this, *this);
    }

    void apply() override {
        if (!(look_ == record.meterLook())) {
            look_ = record.meterLook();
            strip_ = {};
            update();
        }
        const double share = shareOfValue();
        if (share != share_) {
            const int before = lengthOf(share_);
            share_ = share;
            // A solid bar changes its colour as a whole.
            if (look_.solid) {
                update();
            } else {
                updateBetween(before, lengthOf(share_));
            }
        }
        if (share_ >= peak_) setPeak(share_, monotonicMs());
    }

    void advance(std::int64_t now) override {
        if (!look_.peak || peak_ <= share_) {
            peakSince_ = now;
            return;
        }
        if (now - peakSince_ <= look_.peakDelayMs) return;
        const double down =
            static_cast<double>(now - std::max(lastFall_, peakSince_ + look_.peakDelayMs)) * kPeakFall;
        lastFall_ = now;
        movePeak(std::max(share_, peak_ - std::max(0.0, down)));
    }

  protected:
    void resizeEvent(QResizeEvent*) override { strip_ = {}; }

    void paintEvent(QPaintEvent* e) override {
        QPainter p(this);
        const QColor back = colourOf(look_.backColor, Qt::black);
        const QColor track = mixed(back, lightness(back) < 0.5 ? QColor(Qt::white) : QColor(Qt::black), 0.04);
        p.fillRect(e->rect(), track);
        if (strip_.isNull()) makeStrip();
        const int length = lengthOf(share_);
        if (length > 0) {
            const QRect bar = between(0, length);
            if (look_.solid) {
                p.fillRect(bar, zone(share_));
            } else {
                p.drawPixmap(bar, strip_, deviceRect(bar));
            }
        }
        if (look_.peak && peak_ > 0.005) p.fillRect(peakRect(peak_), peakColour());
        if (look_.clipped) {
            const QRect mark = between(std::max(0, full() - kClipMark), full());
            p.fillRect(mark, Qt::red);
            p.setPen(Qt::white);
            p.drawRect(mark.adjusted(0, 0, -1, -1));
        }
    }

  private:
    bool upright() const { return look_.vertical; }
    int full() const { return upright() ? height() : width(); }
    int lengthOf(double share) const { return static_cast<int>(std::lround(share * full())); }

    double shareOfValue() const {
        const int range = record.maximum() - record.minimum();
        if (range <= 0) return 0;
        return std::clamp(static_cast<double>(record.value() - record.minimum()) / range, 0.0, 1.0);
    }

    /// The part of the meter from one length to another, counted from its foot.
    QRect between(int from, int to) const {
        return upright() ? QRect(0, height() - to, width(), to - from) : QRect(from, 0, to - from, height());
    }
    void updateBetween(int a, int b) { update(between(std::min(a, b) - 1, std::max(a, b) + 1) & rect()); }
    QRect peakRect(double share) const {
        const int at = std::clamp(lengthOf(share), kPeakLine, std::max(kPeakLine, full()));
        return between(at - kPeakLine, at);
    }
    QRect deviceRect(const QRect& r) const {
        const double ratio = strip_.devicePixelRatio();
        return QRectF(r.x() * ratio, r.y() * ratio, r.width() * ratio, r.height() * ratio).toRect();
    }

    QColor zone(double share) const {
        const double percent = share * 100;
        if (percent >= look_.hiLevel) return colourOf(look_.hiColor, Qt::red);
        if (percent >= look_.midLevel) return colourOf(look_.midColor, Qt::yellow);
        return colourOf(look_.lowColor, Qt::green);
    }
    QColor peakColour() const {
        const QColor own = zone(peak_);
        return own == colourOf(look_.lowColor, Qt::green) ? colourOf(look_.midColor, own) : own;
    }

    void setPeak(double share, std::int64_t now) {
        peakSince_ = lastFall_ = now;
        movePeak(share);
    }
    void movePeak(double share) {
        if (share == peak_) return;
        if (look_.peak) update(peakRect(peak_).adjusted(0, -1, 0, 1));
        peak_ = share;
        if (look_.peak) update(peakRect(peak_).adjusted(0, -1, 0, 1));
    }

    /// The full bar, painted once a size and look.
    void makeStrip() {
        const double ratio = devicePixelRatioF();
        strip_ = QPixmap((QSizeF(size()) * ratio).toSize().expandedTo(QSize(1, 1)));
        strip_.setDevicePixelRatio(ratio);
        QPainter p(&strip_);
        const QColor low = colourOf(look_.lowColor, Qt::green), mid = colourOf(look_.midColor, Qt::yellow),
                     hi = colourOf(look_.hiColor, Qt::red);
        const double m = std::clamp(look_.midLevel / 100.0, 0.0, 1.0),
                     h = std::clamp(look_.hiLevel / 100.0, m, 1.0);
        if (look_.gradient) {
            QLinearGradient run(upright() ? QPointF(0, height()) : QPointF(0, 0),
                                upright() ? QPointF(0, 0) : QPointF(width(), 0));
            run.setColorAt(0, low);
            run.setColorAt(m * 0.85, low);
            run.setColorAt(std::min(0.999, (m + h) / 2), mid);
            run.setColorAt(1, hi);
            p.fillRect(rect(), run);
            return;
        }
        p.fillRect(rect(), low);
        p.fillRect(between(lengthOf(m), full()), mid);
        p.fillRect(between(lengthOf(h), full()), hi);
    }

    MeterLook look_;
    double share_ = 0;
    double peak_ = 0;
    std::int64_t peakSince_ = 0, lastFall_ = 0;
    QPixmap strip_;
};

}  // namespace

void makeMeterView(Control& record, QWidget* parent) { new MeterWidget(record, parent); }

}  // namespace zv::shell
