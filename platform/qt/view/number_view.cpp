// An up-down field: digits between a minus and a plus key. Both keys repeat while they are held; the wheel and the
// arrow keys step; digits count as soon as they are within the limits, and are brought into them at the end.
#include <QAbstractButton>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>

#include "platform/qt/view/native.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr int kHeight = 30, kStepKey = 30, kDigits = 64, kLeastDigits = 28, kGap = 4;  // pixels
constexpr int kNarrow = 90;     ///< pixels: below it the keys stand above each other behind the digits
constexpr int kNarrowKey = 18;  ///< pixels
constexpr int kRepeatAfterMs = 400, kRepeatEachMs = 60;
constexpr int kPageSteps = 10;
constexpr double kTextSize = 13;

class StepKey final : public QAbstractButton {
  public:
    StepKey(const Control& record, bool up, QWidget* parent)
        : QAbstractButton(parent), record_(record), up_(up) {
        setText(up ? QStringLiteral("+") : QString(QChar(0x2212)));
        setFocusPolicy(Qt::NoFocus);
        setAutoRepeat(true);
        setAutoRepeatDelay(kRepeatAfterMs);
        setAutoRepeatInterval(kRepeatEachMs);
        setAttribute(Qt::WA_Hover);
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const Theme theme = themeOf(record_);
        const bool limit = up_ ? record_.value() >= record_.maximum() : record_.value() <= record_.minimum();
        QColor face = theme.face;
        if (isDown())
            face = mixed(face, theme.text, 0.14);
        else if (underMouse())
            face = mixed(face, theme.text, 0.05);
        drawFace(p, rect(), face, theme.border);
        p.setPen(QPen(isEnabled() && !limit ? theme.text : mixed(theme.ground, theme.text, 0.38), 1.5));
        const QPointF c = QRectF(rect()).center();
        if (height() < kHeight) {
            const double tip = up_ ? -1.75 : 1.75;
            p.setRenderHint(QPainter::Antialiasing);
            p.drawLine(c + QPointF(-3.5, -tip), c + QPointF(0, tip));
            p.drawLine(c + QPointF(0, tip), c + QPointF(3.5, -tip));
            return;
        }
        p.drawLine(c + QPointF(-4.5, 0), c + QPointF(4.5, 0));
        if (up_) p.drawLine(c + QPointF(0, -4.5), c + QPointF(0, 4.5));
    }

  private:
    const Control& record_;
    bool up_;
};

class NumberWidget final : public QWidget, public RecordView {
  public:
    NumberWidget(Control& r, QWidget* parent)
        : QWidget(parent),
          RecordView(r, static_cast<QWidget&>(*this)),
          less_(new StepKey(r, false, this)),
          edit_(new QLineEdit(this)),
          more_(new StepKey(r, true, this)) {
        edit_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        edit_->setTextMargins(2, 0, 2, 0);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
        setFocusPolicy(Qt::StrongFocus);
        setFocusProxy(edit_);
        QObject::connect(less_, &QAbstractButton::clicked, this, [this] { stepBy(-1); });
        QObject::connect(more_, &QAbstractButton::clicked, this, [this] { stepBy(1); });
        QObject::connect(edit_, &QLineEdit::textEdited, this, [this] { typed(false); });
        QObject::connect(edit_, &QLineEdit::editingFinished, this, [this] { typed(true); });
        edit_->installEventFilter(this);
        relayEvents(*this, *this);
        relayEvents(*this, *edit_);
    }

    void apply() override {
        edit_->setFont(fontOf(record, kTextSize, QFont::Medium));
        edit_->setAccessibleName(accessibleName());
        if (!typing_) showValue();
        less_->update();
        more_->update();
    }

    void type(const QString& text) {
        edit_->setFocus();
        edit_->selectAll();
        typeInto(*edit_, text);
        typed(true);
    }

    bool eventFilter(QObject* watched, QEvent* e) override {
        if (watched != edit_ || e->type() != QEvent::KeyPress) return false;
        switch (static_cast<QKeyEvent*>(e)->key()) {
            case Qt::Key_Up:
                stepBy(1);
                return true;
            case Qt::Key_Down:
                stepBy(-1);
                return true;
            case Qt::Key_PageUp:
                stepBy(kPageSteps);
                return true;
            case Qt::Key_PageDown:
                stepBy(-kPageSteps);
                return true;
            default:
                return false;
        }
    }

    QSize sizeHint() const override { return {2 * (kStepKey + kGap) + kDigits, kHeight}; }
    QSize minimumSizeHint() const override { return {2 * (kStepKey + kGap) + kLeastDigits, kHeight}; }

  protected:
    void resizeEvent(QResizeEvent*) override {
        if (width() < kNarrow) {
            const int digits = width() - kNarrowKey + 1;
            edit_->setGeometry(0, 0, digits, kHeight);
            more_->setGeometry(digits - 1, 0, kNarrowKey, kHeight / 2);
            less_->setGeometry(digits - 1, kHeight / 2, kNarrowKey, kHeight / 2);
            return;
        }
        const int digits = std::min(width() - 2 * (kStepKey + kGap), kDigits);
        less_->setGeometry(0, 0, kStepKey, kHeight);
        edit_->setGeometry(kStepKey + kGap, 0, digits, kHeight);
        more_->setGeometry(kStepKey + 2 * kGap + digits, 0, kStepKey, kHeight);
    }

    void wheelEvent(QWheelEvent* e) override {
        turned_ += e->angleDelta().y();
        const int turns = turned_ / QWheelEvent::DefaultDeltasPerStep;
        turned_ -= turns * QWheelEvent::DefaultDeltasPerStep;
        if (turns != 0) stepBy(turns);
        e->accept();
    }

  private:
    void showValue() {
        const QString wanted = QString::number(record.value());
        if (edit_->text() != wanted) edit_->setText(wanted);
    }

    void set(int value) {
        value = std::clamp(value, record.minimum(), std::max(record.minimum(), record.maximum()));
        if (value == record.value()) return;
        record.value = value;
        call(record.onChange);
    }

    void stepBy(int steps) {
        typing_ = false;
        set(record.value() + steps * record.step);
        showValue();
    }

    void typed(bool done) {
        bool number = false;
        const int value = edit_->text().trimmed().toInt(&number);
        typing_ = !done;
        const bool within = value >= record.minimum() && value <= record.maximum();
        if (number && (done || within)) set(value);
        if (done) showValue();
    }

    StepKey* less_;
    QLineEdit* edit_;
    StepKey* more_;
    bool typing_ = false;  ///< what stands there is not yet a number within the limits
    int turned_ = 0;       ///< eighths of a degree
};

}  // namespace

void makeNumberView(Control& record, QWidget* parent) { new NumberWidget(record, parent); }

bool userTypesNumber(RecordView& view, const QString& text) {
    auto* number = dynamic_cast<NumberWidget*>(&view);
    if (number == nullptr) return false;
    number->type(text);
    return true;
}

}  // namespace zv::shell
