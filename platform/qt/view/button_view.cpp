// Keys, toggles, tab headers, check boxes and options: the toolkit's buttons in the colours of their records.
#include <QCheckBox>
#include <QFontMetricsF>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <algorithm>
#include <cmath>

#include "platform/qt/view/jingle_text.h"
#include "platform/qt/view/style.h"
#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr double kKeySize = 13;  ///< of a key's text; more on high keys
constexpr double kHighKeySize = 17;
constexpr int kFormKey = 30, kKeyMargins = 32;  ///< of a key in a form, pixels

constexpr QColor kDarkAccept(0x3A, 0x86, 0xB0);  ///< the accent, lighter where the ground is dark
constexpr QColor kPlayFace(0xC0, 0xFF, 0xC0);    ///< of a key that lets something sound
constexpr QColor kDestroyLine(0xC6, 0x2C, 0x26);

QColor faceOf(const Control& record, const Theme& theme, Dress dress = Dress::plain) {
    if (dress == Dress::acceptKey) return theme.dark ? kDarkAccept : theme.accent;
    if (dress == Dress::playKey && isNeutral(record, record.backColor)) return kPlayFace;
    return isNeutral(record, record.backColor) ? theme.face : colourOf(record.backColor, theme.face);
}

QColor inkOn(const Control& record, const Theme& theme, const QColor& face, Dress dress = Dress::plain) {
    if (dress == Dress::acceptKey) return Qt::white;
    if (dress == Dress::playKey) return lightness(face) < 0.5 ? QColor(Qt::white) : QColor(0x16, 0x18, 0x1B);
    if (dress == Dress::destroyKey) return legible(kDestroyLine, face);
    if (record.foreColor() >= 0) return colourOf(record.foreColor, theme.text);
    if (isNeutral(record, record.backColor)) return theme.text;
    return lightness(face) < 0.5 ? QColor(Qt::white) : QColor(0x16, 0x18, 0x1B);
}

/// Headers of tabs are toggles of this name; they join their panel instead of standing as keys.
bool isTabHeader(const Control& record) { return record.name == "ckTab"; }

class KeyWidget final : public QPushButton, public RecordView {
  public:
    KeyWidget(Control& r, QWidget* parent)
        : QPushButton(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        setFocusPolicy(Qt::StrongFocus);
        setAutoDefault(false);
        QObject::connect(this, &QPushButton::clicked, this, [this] { call(record.onClick); });
        relayEvents(*this, *this);
    }

    void apply() override {
        // Screen readers say this text: ampersands stay as they are.
        setText(captionOf(record.caption).replace(QLatin1Char('&'), QLatin1String("&&")));
        // A screen reader says the tool tip of a key whose caption is a symbol.
        const QString spoken = isSpoken() ? QString() : textOf(record.toolTip);
        if (accessibleName() != spoken) setAccessibleName(spoken);
        QPalette p = paletteOf(themeOf(record));
        p.setColor(QPalette::Button, faceOf(record, themeOf(record), dress));
        setPalette(p);
        tellToggled(*this);
        update();
    }

    QString fallbackTip() const override { return cut_ ? captionOf(record.caption) : QString(); }

    bool clipped() const override {
        if (!inForm(record)) return !isSymbol() && captionIn(captionRoom(), QFont::DemiBold).cut;
        return sizeHint().width() - kKeyMargins > width() - 10;
    }

    QSize sizeHint() const override {
        if (!inForm(record)) return QPushButton::sizeHint();
        const double width = QFontMetricsF(fontOf(record, kKeySize, QFont::DemiBold))
                                 .horizontalAdvance(captionOf(record.caption));
        return {static_cast<int>(std::ceil(width)) + kKeyMargins, kFormKey};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        const Theme theme = themeOf(record);
        if (isTabHeader(record)) {
            paintHeader(p, theme);
            return;
        }
        QStyleOptionButton o;
        initStyleOption(&o);
        if (window()->testAttribute(Qt::WA_KeyboardFocusChange)) o.state |= QStyle::State_KeyboardFocusChange;
        const QColor face = faceOf(record, theme, dress);
        const bool deep = lightness(face) < 0.5;
        o.palette.setColor(QPalette::Mid,
                           isNeutral(record, record.backColor)
                               ? theme.border
                               : mixed(face, deep ? QColor(Qt::white) : QColor(Qt::black), 0.16));
        if (dress == Dress::destroyKey && record.enabled()) o.palette.setColor(QPalette::Mid, kDestroyLine);
        style()->drawPrimitive(QStyle::PE_PanelButtonCommand, &o, &p, this);
        QColor ink = inkOn(record, theme, face, dress);
        if (!record.enabled()) ink = mixed(ink, face, 0.6);
        paintCaption(p, ink, captionRoom(), QFont::Medium);
    }

  private:
    bool isSymbol() const { return record.fontName() == "ZVR" || record.fontName() == "MSSSMod"; }
    bool isSpoken() const {
        const QString caption = captionOf(record.caption);
        return !isSymbol() &&
               std::any_of(caption.begin(), caption.end(), [](QChar c) { return c.isLetterOrNumber(); });
    }

    void paintHeader(QPainter& p, const Theme& theme) {
        const bool active = record.value() != 0 || record.fontBold();
        if (underMouse() && !active) p.fillRect(rect(), mixed(theme.panel, theme.text, 0.05));
        p.fillRect(QRect(0, height() - 1, width(), 1), theme.border);
        if (active)
            p.fillRect(QRect(0, height() - 2, width(), 2), theme.accent.lighter(theme.dark ? 150 : 110));
        paintCaption(p, active ? theme.text : theme.muted, QRectF(rect()).adjusted(4, 0, -4, -2),
                     active ? QFont::DemiBold : QFont::Medium);
        if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange))
            drawFocus(p, rect(), theme.accent);
    }

    QRectF captionRoom() const { return QRectF(rect()).adjusted(5, 2, -5, -2); }

    CaptionLayout captionIn(const QRectF& room, int weight) const {
        return layOutCaption(captionOf(record.caption).trimmed(),
                             fontOf(record, std::clamp(height() * 0.22, kKeySize, kHighKeySize), weight),
                             room);
    }

    void paintCaption(QPainter& p, const QColor& ink, const QRectF& room, int weight) {
        const QString text = captionOf(record.caption);
        p.setPen(ink);
        if (isSymbol()) {
            const double size =
                record.fontSize() > 0 ? record.fontSize() * 4 / 3 : std::min(22.0, height() * 0.62);
            p.setFont(symbolFont(std::min(size, height() * 0.9)));
            p.drawText(rect(), Qt::AlignCenter, text);
            return;
        }
        const CaptionLayout set = captionIn(room, weight);
        if (set.cut != cut_) {
            cut_ = set.cut;
            setToolTip(record.toolTip().empty() ? fallbackTip() : textOf(record.toolTip));
        }
        p.setFont(set.font);
        for (qsizetype i = 0; i < set.lines.size(); ++i)
            p.drawText(set.starts[static_cast<std::size_t>(i)], set.lines[i]);
    }

    bool cut_ = false;
};

/// A check box or an option.
template <class Widget>
class TickWidget final : public Widget, public RecordView {
  public:
    TickWidget(Control& r, QWidget* parent) : Widget(parent), RecordView(r, static_cast<QWidget&>(*this)) {
        Widget::setFocusPolicy(Qt::StrongFocus);
        Widget::setAutoExclusive(false);  // options are exclusive by their records
        QObject::connect(this, &Widget::clicked, this, [this](bool on) { userTicked(on); });
        relayEvents(*this, *this);
    }

    void apply() override {
        Widget::setText(captionOf(record.caption).replace(QLatin1Char('&'), QLatin1String("&&")));
        Widget::setFont(fontOf(record, kKeySize));
        const Theme theme = themeOf(record);
        QPalette p = paletteOf(theme);
        p.setColor(QPalette::WindowText, colourOf(record.foreColor, theme.text));
        Widget::setPalette(p);
        Widget::setChecked(record.value() != 0);
    }

    bool clipped() const override { return sizeHint().width() > Widget::width() + 1; }

    QSize sizeHint() const override {
        if (!record.segmented) return Widget::sizeHint();
        return {Widget::fontMetrics().horizontalAdvance(Widget::text()) + kKeyMargins, kFormKey};
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    bool hitButton(const QPoint& at) const override {
        return record.segmented ? Widget::rect().contains(at) : Widget::hitButton(at);
    }

    void paintEvent(QPaintEvent* e) override {
        if (!record.segmented) {
            Widget::paintEvent(e);
            return;
        }
        QPainter p(this);
        const Theme theme = themeOf(record);
        drawSegment(p, Widget::rect(), captionOf(record.caption), theme, Widget::isChecked(),
                    Widget::isEnabled(), Widget::underMouse());
        if (Widget::hasFocus() && Widget::window()->testAttribute(Qt::WA_KeyboardFocusChange))
            drawFocus(p, Widget::rect(), theme.text);
    }

  private:
    void userTicked(bool on) {
        if (record.kind == ControlKind::option) {
            on = true;
            Widget::setChecked(true);
            if (record.parent != nullptr) {
                for (Control* other : record.parent->children()) {
                    if (other != &record && other->kind == ControlKind::option) other->value = 0;
                }
            }
        }
        record.value = on ? 1 : 0;
        call(record.onChange);
        call(record.onClick);
    }
};

}  // namespace

void makeButtonView(Control& record, QWidget* parent) {
    switch (record.kind) {
        case ControlKind::checkBox:
            new TickWidget<QCheckBox>(record, parent);
            return;
        case ControlKind::option:
            new TickWidget<QRadioButton>(record, parent);
            return;
        default:
            new KeyWidget(record, parent);
            return;
    }
}

}  // namespace zv::shell
