#include "platform/qt/view/style.h"

#include <QApplication>
#include <QComboBox>
#include <QPainter>
#include <QPainterPath>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <cmath>

#include "platform/qt/view/theme.h"
#include "platform/qt/view/view.h"

namespace zv::shell {
namespace {

constexpr int kScrollBarWidth = 12;
constexpr int kSliderThumb = 16;
constexpr double kAlike = 0.12;  ///< difference of lightness that is not seen
constexpr int kTickBox = 16;
constexpr int kMenuRow = 28;

/// One device pixel or a whole number of them, in logical pixels.
double hairline(const QPainter& p) {
    const double ratio = p.device()->devicePixelRatioF();
    return std::max(1.0, std::floor(ratio)) / ratio;
}

QColor shadedFor(const QStyleOption& o, const QColor& face) {
    if (!(o.state & QStyle::State_Enabled)) return face;
    const QColor towards = lightness(face) < 0.5 ? QColor(Qt::white) : QColor(Qt::black);
    if (o.state & QStyle::State_Sunken) return mixed(face, towards, 0.14);
    if (o.state & QStyle::State_MouseOver) return mixed(face, towards, 0.05);
    return face;
}

bool keyboardFocus(const QStyleOption& o) {
    return (o.state & QStyle::State_HasFocus) && (o.state & QStyle::State_KeyboardFocusChange);
}

/// Of a field; on a dark ground the one with the keyboard is lighter than the accent colour itself.
QColor fieldBorder(const QStyleOption& o) {
    const QPalette& c = o.palette;
    if (!(o.state & QStyle::State_HasFocus)) return c.color(QPalette::Mid);
    return c.color(QPalette::Highlight).lighter(lightness(c.color(QPalette::Base)) < 0.5 ? 150 : 100);
}

void drawArrow(QPainter& p, const QRectF& box, const QColor& colour, bool up) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF c = box.center();
    const double h = up ? -1 : 1;
    p.drawPolyline(QPolygonF{{c.x() - 4, c.y() - 2 * h}, {c.x(), c.y() + 2 * h}, {c.x() + 4, c.y() - 2 * h}});
    p.restore();
}

class Style final : public QProxyStyle {
  public:
    Style() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    void drawPrimitive(PrimitiveElement element, const QStyleOption* o, QPainter* p,
                       const QWidget* w) const override {
        const QPalette& c = o->palette;
        switch (element) {
            case PE_FrameFocusRect:
                return;
            case PE_PanelLineEdit:
                if (qobject_cast<const QComboBox*>(w != nullptr ? w->parentWidget() : nullptr) != nullptr) {
                    return;  // the combo box has drawn its field
                }
                drawFace(*p, o->rect, c.color(QPalette::Base), fieldBorder(*o));
                return;
            case PE_FrameLineEdit:
                return;
            case PE_Frame:
                drawFace(*p, o->rect, c.color(QPalette::Base), fieldBorder(*o));
                return;
            case PE_PanelButtonCommand: {
                const QColor face = c.color(QPalette::Button);
                drawFace(*p, o->rect, shadedFor(*o, face), c.color(QPalette::Mid));
                if (keyboardFocus(*o)) drawFocusOn(*p, o->rect, face, c);
                return;
            }
            case PE_IndicatorCheckBox:
                drawTickBox(*p, o->rect, o->state & State_On, shadedFor(*o, c.color(QPalette::Base)),
                            keyboardFocus(*o) ? c.color(QPalette::Highlight) : c.color(QPalette::Mid),
                            c.color(QPalette::Highlight));
                if (keyboardFocus(*o) && (o->state & State_On))
                    drawFocusOn(*p, o->rect, c.color(QPalette::Highlight), c);
                return;
            case PE_IndicatorRadioButton: {
                p->save();
                p->setRenderHint(QPainter::Antialiasing);
                const QRectF r = QRectF(o->rect).adjusted(0.5, 0.5, -0.5, -0.5);
                p->setPen(QPen(keyboardFocus(*o) ? c.color(QPalette::Highlight) : c.color(QPalette::Mid), 1));
                p->setBrush(shadedFor(*o, c.color(QPalette::Base)));
                p->drawEllipse(r);
                if (o->state & State_On) {
                    p->setPen(Qt::NoPen);
                    p->setBrush(c.color(QPalette::Highlight));
                    p->drawEllipse(r.adjusted(3.5, 3.5, -3.5, -3.5));
                }
                p->restore();
                return;
            }
            case PE_PanelItemViewRow:
                return;
            case PE_PanelItemViewItem: {
                if (o->state & State_Selected) {
                    p->fillRect(o->rect, c.color(QPalette::Highlight));
                } else if (o->state & State_MouseOver) {
                    p->fillRect(o->rect, mixed(c.color(QPalette::Base), c.color(QPalette::Text), 0.07));
                }
                return;
            }
            case PE_PanelMenu:
            case PE_FrameMenu:
                p->fillRect(o->rect, c.color(QPalette::Mid));
                p->fillRect(o->rect.adjusted(1, 1, -1, -1), c.color(QPalette::Base));
                return;
            case PE_PanelTipLabel:
                p->fillRect(o->rect, c.color(QPalette::Mid));
                p->fillRect(o->rect.adjusted(1, 1, -1, -1), c.color(QPalette::ToolTipBase));
                return;
            default:
                QProxyStyle::drawPrimitive(element, o, p, w);
        }
    }

    void drawControl(ControlElement element, const QStyleOption* o, QPainter* p,
                     const QWidget* w) const override {
        switch (element) {
            case CE_ScrollBarAddLine:
            case CE_ScrollBarSubLine:
            case CE_ScrollBarAddPage:
            case CE_ScrollBarSubPage:
                return;
            case CE_ScrollBarSlider:
                drawThumb(*o, *p);
                return;
            case CE_MenuItem:
                drawMenuItem(static_cast<const QStyleOptionMenuItem&>(*o), *p);
                return;
            case CE_ShapedFrame:
                if (w != nullptr && w->inherits("QAbstractScrollArea")) {
                    if (w->inherits("QScrollArea")) return;  // its contents have frames of their own
                    proxy()->drawPrimitive(PE_Frame, o, p, w);
                    return;
                }
                break;
            default:
                break;
        }
        QProxyStyle::drawControl(element, o, p, w);
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* o, QPainter* p,
                            const QWidget* w) const override {
        switch (control) {
            case CC_Slider:
                drawSlider(static_cast<const QStyleOptionSlider&>(*o), *p);
                return;
            case CC_ComboBox:
                drawCombo(static_cast<const QStyleOptionComboBox&>(*o), *p);
                return;
            case CC_ScrollBar: {
                const auto& bar = static_cast<const QStyleOptionSlider&>(*o);
                const bool ofArea = w != nullptr && w->parentWidget() != nullptr &&
                                    w->parentWidget()->parentWidget() != nullptr &&
                                    w->parentWidget()->parentWidget()->inherits("QScrollArea");
                if (!ofArea) p->fillRect(o->rect, o->palette.color(QPalette::Base));
                QStyleOptionSlider thumb(bar);
                thumb.rect = proxy()->subControlRect(CC_ScrollBar, &bar, SC_ScrollBarSlider, w);
                drawThumb(thumb, *p);
                return;
            }
            default:
                QProxyStyle::drawComplexControl(control, o, p, w);
        }
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* o, SubControl part,
                         const QWidget* w) const override {
        if (control == CC_ScrollBar) return scrollBarPart(static_cast<const QStyleOptionSlider&>(*o), part);
        if (control == CC_ComboBox) {
            const QRect& r = o->rect;
            if (part == SC_ComboBoxArrow) return {r.right() - 26, r.top(), 26, r.height()};
            if (part == SC_ComboBoxEditField) return r.adjusted(9, 1, -28, -1);
            if (part == SC_ComboBoxFrame) return r;
        }
        return QProxyStyle::subControlRect(control, o, part, w);
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* o, const QWidget* w) const override {
        switch (metric) {
            case PM_ScrollBarExtent:
                return kScrollBarWidth;
            case PM_ScrollBarSliderMin:
                return 28;
            case PM_SliderLength:
            case PM_SliderThickness:
            case PM_SliderControlThickness:
                return kSliderThumb;
            case PM_IndicatorWidth:
            case PM_IndicatorHeight:
            case PM_ExclusiveIndicatorWidth:
            case PM_ExclusiveIndicatorHeight:
                return kTickBox;
            case PM_CheckBoxLabelSpacing:
            case PM_RadioButtonLabelSpacing:
                return 8;
            case PM_ButtonShiftHorizontal:
            case PM_ButtonShiftVertical:
                return 0;  // nothing moves when a key is pressed
            case PM_DefaultFrameWidth:
                return 1;
            case PM_MenuPanelWidth:
                return 1;
            case PM_MenuVMargin:
                return 4;
            case PM_FocusFrameHMargin:
                return 6;
            default:
                return QProxyStyle::pixelMetric(metric, o, w);
        }
    }

    int styleHint(StyleHint hint, const QStyleOption* o, const QWidget* w,
                  QStyleHintReturn* r) const override {
        switch (hint) {
            case SH_ComboBox_Popup:
                return 0;
            case SH_Slider_AbsoluteSetButtons:
                return Qt::LeftButton;
            case SH_EtchDisabledText:
            case SH_DitherDisabledText:
                return 0;
            case SH_DialogButtonBox_ButtonsHaveIcons:
            case SH_UnderlineShortcut:
                return 0;
            case SH_ItemView_ShowDecorationSelected:
                return 1;
            case SH_Widget_Animate:
            case SH_Widget_Animation_Duration:
                return 0;
            case SH_BlinkCursorWhenTextSelected:
                return 0;
            case SH_ScrollBar_LeftClickAbsolutePosition:
                return 1;
            default:
                return QProxyStyle::styleHint(hint, o, w, r);
        }
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* o, const QSize& size,
                           const QWidget* w) const override {
        const QSize made = QProxyStyle::sizeFromContents(type, o, size, w);
        if (type == CT_MenuItem) {
            const auto& item = static_cast<const QStyleOptionMenuItem&>(*o);
            return {made.width() + 30, item.menuItemType == QStyleOptionMenuItem::Separator ? 9 : kMenuRow};
        }
        if (type == CT_PushButton) return {std::max(made.width(), 96), std::max(made.height(), 34)};
        return made;
    }

    void polish(QWidget* w) override {
        QProxyStyle::polish(w);
        if (w->inherits("QAbstractButton") || w->inherits("QComboBox") || w->inherits("QScrollBar")) {
            w->setAttribute(Qt::WA_Hover);
        }
    }

  private:
    static void drawThumb(const QStyleOption& o, QPainter& p) {
        const QColor c = mixed(o.palette.color(QPalette::Base), o.palette.color(QPalette::Text),
                               o.state & State_Sunken ? 0.55 : 0.32);
        const QRectF r = QRectF(o.rect).adjusted(3, 3, -3, -3);
        p.save();
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        p.setBrush(c);
        const double radius = std::min(r.width(), r.height()) / 2;
        p.drawRoundedRect(r, radius, radius);
        p.restore();
    }

    static QRect scrollBarPart(const QStyleOptionSlider& o, SubControl part) {
        const QRect& r = o.rect;
        const bool flat = o.orientation == Qt::Horizontal;
        const int length = flat ? r.width() : r.height();
        const int range = o.maximum - o.minimum;
        const int thumb =
            range <= 0 ? length : std::clamp(length * o.pageStep / (range + o.pageStep), 28, length);
        const int at =
            sliderPositionFromValue(o.minimum, o.maximum, o.sliderPosition, length - thumb, o.upsideDown);
        const auto piece = [&](int from, int size) {
            return flat ? QRect(r.left() + from, r.top(), size, r.height())
                        : QRect(r.left(), r.top() + from, r.width(), size);
        };
        switch (part) {
            case SC_ScrollBarGroove:
                return r;
            case SC_ScrollBarSlider:
                return piece(at, thumb);
            case SC_ScrollBarSubPage:
                return piece(0, at);
            case SC_ScrollBarAddPage:
                return piece(at + thumb, length - at - thumb);
            default:
                return {};
        }
    }

    /// On a face in the colour of the focus the ring has the colour of the text on it.
    static void drawFocusOn(QPainter& p, const QRectF& rect, const QColor& face, const QPalette& c) {
        const QColor focus = c.color(QPalette::Highlight);
        const bool alike =
            std::abs(lightness(face) - lightness(focus)) < kAlike && face.hslHue() == focus.hslHue();
        drawFocus(p, rect, !alike ? focus : lightness(face) < 0.5 ? QColor(Qt::white) : QColor(Qt::black));
    }

    void drawSlider(const QStyleOptionSlider& o, QPainter& p) const {
        const QRectF thumb = QProxyStyle::subControlRect(CC_Slider, &o, SC_SliderHandle, nullptr);
        const bool flat = o.orientation == Qt::Horizontal;
        const QRectF r = o.rect;
        const QColor on =
            o.state & State_Enabled ? o.palette.color(QPalette::Highlight) : o.palette.color(QPalette::Mid);
        p.save();
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(Qt::NoPen);
        const QPointF c = thumb.center();
        const QRectF groove = flat ? QRectF(r.left() + 4, r.center().y() - 2, r.width() - 8, 4)
                                   : QRectF(r.center().x() - 2, r.top() + 4, 4, r.height() - 8);
        p.setBrush(mixed(o.palette.color(QPalette::Window), o.palette.color(QPalette::Text), 0.22));
        p.drawRoundedRect(groove, 2, 2);
        QRectF filled = groove;
        if (flat) {
            filled.setRight(c.x());
        } else {
            filled.setTop(c.y());
        }
        p.setBrush(on);
        p.drawRoundedRect(filled, 2, 2);
        p.setBrush(keyboardFocus(o) ? on : o.palette.color(QPalette::Button));
        p.setPen(
            QPen(keyboardFocus(o) || (o.state & State_Sunken) ? on : o.palette.color(QPalette::Shadow), 1.4));
        p.drawEllipse(c, 7, 7);
        p.restore();
    }

    static void drawCombo(const QStyleOptionComboBox& o, QPainter& p) {
        drawFace(p, o.rect, o.palette.color(QPalette::Base), fieldBorder(o));
        drawArrow(p, QRectF(o.rect.right() - 24, o.rect.top(), 22, o.rect.height()),
                  o.palette.color(o.state & State_Enabled ? QPalette::Text : QPalette::Mid), false);
    }

    static void drawMenuItem(const QStyleOptionMenuItem& o, QPainter& p) {
        const QPalette& c = o.palette;
        p.fillRect(o.rect, c.color(QPalette::Base));
        if (o.menuItemType == QStyleOptionMenuItem::Separator) {
            p.fillRect(QRect(o.rect.left() + 8, o.rect.center().y(), o.rect.width() - 16, 1),
                       c.color(QPalette::Mid));
            return;
        }
        const bool on = o.state & State_Enabled;
        const bool chosen = on && (o.state & State_Selected);
        if (chosen) p.fillRect(o.rect, c.color(QPalette::Highlight));
        const QColor ink = chosen ? c.color(QPalette::HighlightedText)
                                  : c.color(on ? QPalette::Active : QPalette::Disabled, QPalette::Text);
        if (o.checked) {
            p.save();
            p.setRenderHint(QPainter::Antialiasing);
            p.setPen(QPen(ink, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            const QPointF at(o.rect.left() + 15, o.rect.center().y() + 0.5);
            p.drawPolyline(QPolygonF{at + QPointF(-4, 0), at + QPointF(-1, 3.5), at + QPointF(5, -4)});
            p.restore();
        }
        p.setPen(ink);
        p.setFont(textFont(13));
        p.drawText(o.rect.adjusted(30, 0, -12, 0), Qt::AlignVCenter | Qt::TextHideMnemonic, o.text);
    }
};

}  // namespace

void drawFace(QPainter& p, const QRectF& rect, const QColor& face, const QColor& border, double radius) {
    const double line = hairline(p);
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(border);
    p.drawRoundedRect(rect, radius, radius);
    p.setBrush(face);
    p.drawRoundedRect(rect.adjusted(line, line, -line, -line), radius - line, radius - line);
    p.restore();
}

void drawOutline(QPainter& p, const QRectF& rect, const QColor& colour, double radius) {
    const double line = hairline(p);
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    QPen pen(colour, line);
    pen.setDashPattern({3, 3});
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(rect.adjusted(line / 2, line / 2, -line / 2, -line / 2), radius, radius);
    p.restore();
}

void drawFocus(QPainter& p, const QRectF& rect, const QColor& colour) {
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(colour, 2));
    p.setBrush(Qt::NoBrush);
    p.drawRoundedRect(rect.adjusted(1, 1, -1, -1), kRadius, kRadius);
    p.restore();
}

void drawTickBox(QPainter& p, const QRectF& rect, bool on, const QColor& face, const QColor& border,
                 const QColor& tick) {
    drawFace(p, rect, on ? tick : face, on ? tick : border, 3);
    if (!on) return;
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(Qt::white, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF c = rect.center();
    const double u = rect.width() / 16;
    p.drawPolyline(QPolygonF{c + QPointF(-4, 0) * u, c + QPointF(-1, 3) * u, c + QPointF(4.5, -3.5) * u});
    p.restore();
}

void drawSegment(QPainter& p, const QRectF& rect, const QString& text, const Theme& theme, bool on,
                 bool enabled, bool hovered) {
    QColor face = on ? theme.accent : theme.face;
    if (hovered && enabled && !on) face = mixed(face, theme.text, 0.05);
    drawFace(p, rect, face, on ? theme.accent : theme.border);
    const QColor ink = on ? theme.accentText : theme.text;
    p.setPen(enabled ? ink : mixed(ink, face, 0.6));
    p.setFont(textFont(13, on ? QFont::DemiBold : QFont::Medium));
    p.drawText(rect, Qt::AlignCenter, text);
}

void installStyle() {
    QApplication::setStyle(new Style);
    QApplication::setFont(textFont(13));
    QApplication::setPalette(paletteOf(programTheme()));
}

}  // namespace zv::shell
