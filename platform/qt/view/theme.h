/// Neutral colours and fonts. Everything colourful comes from the records; what they leave open (grounds of
/// lists, borders, muted text) follows from the lightness of the window's own back colour. [control]
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>
#include <string>

#include "platform/controls.h"

namespace zv::shell {

struct Theme {
    bool dark = false;
    QColor ground;  ///< of a window
    QColor panel;   ///< of a block inside it
    QColor face;    ///< of a key
    QColor field;   ///< of a list or text box
    QColor border;  ///< around all of them
    QColor text;
    QColor muted;   ///< text of lesser rank
    QColor accent;  ///< selection, focus
    QColor accentText;
};

/// The theme of a window record: dark when its back colour is.
Theme themeFor(const Control& window);
/// The theme of the window that the control stands in; each is worked out once.
const Theme& themeOf(const Control& control);
/// For message boxes and menus: the theme of the window shown first.
const Theme& programTheme();
void setProgramTheme(const Theme& theme);
QPalette paletteOf(const Theme& theme);

/// A record's colour; a theme colour or none at all gives `fallback`.
QColor colourOf(Colour colour, const QColor& fallback);
/// True when the colour is the theme's face or left open, in either mode, as seen from that control.
bool isNeutral(const Control& control, Colour colour);
QColor mixed(const QColor& a, const QColor& b, double shareOfB);
/// 0 black .. 1 white, as the eye weighs it.
double lightness(const QColor& colour);

/// The eye's luminance of a colour, 0 black .. 1 white, and the ratio of two colours' luminances, 1 .. 21.
double luminance(const QColor& colour);
double contrast(const QColor& a, const QColor& b);
/// What a text needs to be read on its ground.
inline constexpr double kTextContrast = 4.5;
/// A face as the theme shows it: in a dark window bright faces are shaded to their hue's deep tone.
QColor shadedFace(const QColor& face, const Theme& theme);

/// A text colour on a ground, made lighter or darker where it could hardly be read there.
QColor legible(const QColor& ink, const QColor& ground);

/// The program's text font at `pixels`; weights as QFont has them.
QFont textFont(double pixels, int weight = QFont::Normal);
/// The font of the symbols; letters are symbols there. Never merged with another font.
QFont symbolFont(double pixels);
/// The font that a record asks for, `pixels` and `weight` where it asks for nothing.
QFont fontOf(const Control& control, double pixels, int weight = QFont::Normal);

/// UTF-8 record text to the toolkit's.
QString textOf(const std::string& text);
/// The same without the marks of a key letter: "&&" is an ampersand, a single one is dropped.
QString captionOf(const std::string& text);
std::string utf8(const QString& text);

/// Twips to the toolkit's pixels.
inline int px(int twips) { return twips / kTwipsPerPixel; }

}  // namespace zv::shell
