#include "platform/qt/view/theme.h"

#include <QCoreApplication>
#include <QFontDatabase>
#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace zv::shell {
namespace {

constexpr double kPixelsPerPoint = 96.0 / 72.0;
constexpr double kDarkBelow = 0.42;  ///< lightness of a window below which text on it is light

Theme light() {
    Theme t;
    t.dark = false;
    t.ground = QColor(0xE9, 0xEB, 0xEE);
    t.panel = QColor(0xF4, 0xF5, 0xF7);
    t.face = QColor(0xFF, 0xFF, 0xFF);
    t.field = QColor(0xFF, 0xFF, 0xFF);
    t.border = QColor(0xC3, 0xC7, 0xCD);
    t.text = QColor(0x16, 0x18, 0x1B);
    t.muted = QColor(0x67, 0x6D, 0x75);
    t.accent = QColor(0x2D, 0x6E, 0x92);
    t.accentText = QColor(0xFF, 0xFF, 0xFF);
    return t;
}

Theme dark(const QColor& face) {
    Theme t;
    t.dark = true;
    // Keys wear the window's own colour; the ground below them is deeper so that they stand out from it.
    t.ground = mixed(face, QColor(0x0C, 0x0E, 0x11), 0.62);
    t.panel = mixed(face, QColor(0x0C, 0x0E, 0x11), 0.34);
    t.face = mixed(face, QColor(0xB8, 0xC6, 0xD8), 0.07);
    t.field = mixed(face, QColor(0x0A, 0x0C, 0x0F), 0.5);
    t.border = mixed(face, QColor(0xB8, 0xC6, 0xD8), 0.2);
    t.text = QColor(0xEC, 0xEE, 0xF0);
    t.muted = QColor(0x9B, 0xA1, 0xA9);
    t.accent = QColor(0x2D, 0x6E, 0x92);
    t.accentText = QColor(0xFF, 0xFF, 0xFF);
    return t;
}

Theme& program() {
    static Theme theme = light();
    return theme;
}

/// The first of these families that is installed; asked for once.
const QString& textFamily() {
    static const QString family = [] {
        for (const char* name : {"Inter", "Noto Sans", "DejaVu Sans", "Liberation Sans"}) {
            if (QFontDatabase::hasFamily(QString::fromLatin1(name))) return QString::fromLatin1(name);
        }
        return QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
    }();
    return family;
}

/// By pixels and weight. A copy shares what the first use of a font has looked up.
std::map<std::pair<int, int>, QFont>& knownFonts() {
    static std::map<std::pair<int, int>, QFont> known;
    return known;
}

void makeCrisp(QFont& font) {
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(QFont::PreferAntialias);
}

}  // namespace

double lightness(const QColor& c) { return 0.299 * c.redF() + 0.587 * c.greenF() + 0.114 * c.blueF(); }

double luminance(const QColor& c) {
    const auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double x = luminance(a) + 0.05, y = luminance(b) + 0.05;
    return std::max(x, y) / std::min(x, y);
}

QColor legible(const QColor& ink, const QColor& ground) {
    const QColor towards =
        contrast(Qt::white, ground) > contrast(Qt::black, ground) ? QColor(Qt::white) : QColor(Qt::black);
    QColor out = ink;
    for (double share = 0.1; share <= 1.01 && contrast(out, ground) < kTextContrast; share += 0.1)
        out = mixed(ink, towards, share);
    return out;
}

QColor shadedFace(const QColor& face, const Theme& theme) {
    constexpr double kDeepest =
        0.05;                    // luminance beside which a frame of 3 : 1 can also stand on a bright face
    constexpr int kVivid = 150;  // saturation of a shaded pastel
    if (!theme.dark || luminance(face) <= kDeepest) return face;
    const int saturation =
        face.hslSaturation() < 20 || face.saturation() < 12 ? face.saturation() / 2 : kVivid;
    int low = 0, high = 255;
    while (high - low > 1) {
        const int middle = (low + high) / 2;
        (luminance(QColor::fromHsv(std::max(0, face.hsvHue()), saturation, middle)) > kDeepest ? high : low) =
            middle;
    }
    return QColor::fromHsv(std::max(0, face.hsvHue()), saturation, low);
}

QColor mixed(const QColor& a, const QColor& b, double s) {
    const auto part = [s](int x, int y) { return static_cast<int>(std::lround(x + (y - x) * s)); };
    return {part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue())};
}

QColor colourOf(Colour colour, const QColor& fallback) {
    if (colour < 0) return fallback;
    return {colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF};
}

Theme themeFor(const Control& window) {
    const QColor back = colourOf(window.backColor, QColor(Qt::white));
    return lightness(back) < kDarkBelow ? dark(back) : light();
}

const Theme& themeOf(const Control& control) {
    static std::map<Colour, Theme> known;
    const Control& window = windowOf(control);
    const auto found = known.find(window.backColor);
    return found != known.end() ? found->second
                                : known.emplace(window.backColor(), themeFor(window)).first->second;
}

const Theme& programTheme() { return program(); }

void setProgramTheme(const Theme& theme) { program() = theme; }

bool isNeutral(const Control& control, Colour colour) {
    return colour < 0 || colour == windowOf(control).backColor;
}

QPalette paletteOf(const Theme& t) {
    QPalette p;
    p.setColor(QPalette::Window, t.ground);
    p.setColor(QPalette::WindowText, t.text);
    p.setColor(QPalette::Base, t.field);
    p.setColor(QPalette::AlternateBase, t.panel);
    p.setColor(QPalette::Text, t.text);
    p.setColor(QPalette::PlaceholderText, t.muted);
    p.setColor(QPalette::Button, t.face);
    p.setColor(QPalette::ButtonText, t.text);
    p.setColor(QPalette::BrightText, t.text);
    p.setColor(QPalette::Light, t.panel);
    p.setColor(QPalette::Midlight, t.panel);
    p.setColor(QPalette::Mid, t.border);
    p.setColor(QPalette::Dark, t.border);
    p.setColor(QPalette::Shadow, t.muted);
    p.setColor(QPalette::Highlight, t.accent);
    p.setColor(QPalette::HighlightedText, t.accentText);
    p.setColor(QPalette::Link, t.accent);
    p.setColor(QPalette::ToolTipBase, t.face);
    p.setColor(QPalette::ToolTipText, t.text);
    const QColor off = mixed(t.ground, t.text, 0.38);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        p.setColor(QPalette::Disabled, role, off);
    }
    return p;
}

QFont textFont(double pixels, int weight) {
    const int size = std::max(6, static_cast<int>(std::lround(pixels)));
    if (knownFonts().empty()) qAddPostRoutine([] { knownFonts().clear(); });  // none outlives the toolkit
    const auto [at, isNew] = knownFonts().try_emplace({size, weight});
    if (isNew) {
        QFont font(textFamily());
        font.setPixelSize(size);
        font.setWeight(static_cast<QFont::Weight>(weight));
        makeCrisp(font);
        at->second = font;
    }
    return at->second;
}

QFont symbolFont(double pixels) {
    QFont font(QStringLiteral("ZVR"));
    font.setPixelSize(std::max(6, static_cast<int>(std::lround(pixels))));
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setStyleStrategy(static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoFontMerging));
    return font;
}

QFont fontOf(const Control& control, double pixels, int weight) {
    const double size = control.fontSize() > 0 ? control.fontSize() * kPixelsPerPoint : pixels;
    const std::string& name = control.fontName();
    QFont font = control.kind == ControlKind::symbol || name == "ZVR" || name == "MSSSMod"
                     ? symbolFont(size)
                     : textFont(size, control.fontBold ? std::max<int>(weight, QFont::Bold) : weight);
    // "MS Sans Serif" stands for "the program's own" where that font does not exist.
    if (!name.empty() && name != "MS Sans Serif" && QFontDatabase::hasFamily(textOf(name))) {
        font.setFamily(textOf(name));
    }
    font.setItalic(control.fontItalic);
    return font;
}

QString textOf(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString captionOf(const std::string& text) {
    const QString in = textOf(text);
    if (!in.contains(QLatin1Char('&'))) return in;
    QString out;
    out.reserve(in.size());
    for (qsizetype i = 0; i < in.size(); ++i) {
        if (in[i] == QLatin1Char('&')) {
            if (++i >= in.size()) break;
        }
        out += in[i];
    }
    return out;
}

std::string utf8(const QString& text) { return text.toStdString(); }

}  // namespace zv::shell
