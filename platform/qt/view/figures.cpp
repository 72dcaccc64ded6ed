#include "platform/qt/view/figures.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QHash>
#include <QList>
#include <QPainter>
#include <QRawFont>
#include <algorithm>
#include <array>

namespace zv::shell {
namespace {

constexpr QLatin1String kTimeSigns("0123456789.:");
constexpr qsizetype kMostFonts = 100;

/// What a font says of the signs that times consist of. A hundred times are painted at each tick, and the toolkit
/// would look up the font and shape each figure anew.
struct Signs {
    QRawFont font;
    QList<quint32> glyphs;  ///< by their places in kTimeSigns; 0 where the font lacks one
    std::array<double, kTimeSigns.size()> widths{};
    double figure = 0, ascent = 0, descent = 0;

    explicit Signs(const QFont& f)
        : font(QRawFont::fromFont(f)), glyphs(font.glyphIndexesForString(kTimeSigns)) {
        const QFontMetricsF m(f);
        std::ranges::transform(kTimeSigns, widths.begin(),
                               [&](char c) { return m.horizontalAdvance(QLatin1Char(c)); });
        figure = widths[0];
        ascent = m.ascent();
        descent = m.descent();
    }
};

QHash<QFont, Signs>& knownSigns() {
    static QHash<QFont, Signs> known;
    return known;
}

const Signs& signsOf(const QFont& font) {
    auto& known = knownSigns();
    if (known.empty()) qAddPostRoutine([] { knownSigns().clear(); });  // none outlives the toolkit
    const auto found = known.constFind(font);
    if (found != known.constEnd()) return *found;
    if (known.size() >= kMostFonts) known.clear();
    return *known.emplace(font, font);
}

/// The place of a sign in kTimeSigns; its size for what is none.
std::size_t signAt(QChar c) {
    return static_cast<std::size_t>(std::ranges::find(kTimeSigns, c.toLatin1()) - kTimeSigns.begin());
}

bool isTime(const Signs& signs, const QString& text) {
    return std::ranges::all_of(
        text, [&](QChar c) { return signs.glyphs.value(static_cast<qsizetype>(signAt(c))) != 0; });
}

void drawTime(QPainter& p, const Signs& signs, const QString& text, QPointF at) {
    QList<quint32> glyphs;
    QList<QPointF> places;
    for (const QChar c : text) {
        const std::size_t sign = signAt(c);
        const double own = signs.widths.at(sign), room = c.isDigit() ? signs.figure : own;
        glyphs << signs.glyphs[static_cast<qsizetype>(sign)];
        places << at + QPointF((room - own) / 2, 0);
        at.rx() += room;
    }
    QGlyphRun run;
    run.setRawFont(signs.font);
    run.setGlyphIndexes(glyphs);
    run.setPositions(places);
    p.drawGlyphRun({}, run);
}

}  // namespace

double figuresWidth(const QFont& font, const QString& text) {
    const Signs& signs = signsOf(font);
    double width = 0;
    for (const QChar c : text) {
        const std::size_t sign = signAt(c);
        width += c.isDigit()                ? signs.figure
                 : sign < kTimeSigns.size() ? signs.widths[sign]
                                            : QFontMetricsF(font).horizontalAdvance(c);
    }
    return width;
}

void drawFigures(QPainter& p, const QRectF& rect, int alignment, const QString& text) {
    const Signs& signs = signsOf(p.font());
    double x = rect.left();
    if (alignment & Qt::AlignRight) x = rect.right() - figuresWidth(p.font(), text);
    if (alignment & Qt::AlignHCenter) x = rect.center().x() - figuresWidth(p.font(), text) / 2;
    double y = rect.top() + signs.ascent;
    if (alignment & Qt::AlignBottom) y = rect.bottom() - signs.descent;
    if (alignment & Qt::AlignVCenter) y = rect.center().y() + (signs.ascent - signs.descent) / 2;
    if (isTime(signs, text)) {
        drawTime(p, signs, text, {x, y});
        return;
    }
    const QFontMetricsF m(p.font());
    // Runs without figures are drawn whole, so that letters keep their kerning.
    for (qsizetype i = 0; i < text.size();) {
        if (text[i].isDigit()) {
            const double own = m.horizontalAdvance(text[i]);
            p.drawText(QPointF(x + (signs.figure - own) / 2, y), QString(text[i]));
            x += signs.figure;
            ++i;
            continue;
        }
        qsizetype end = i;
        while (end < text.size() && !text[end].isDigit()) ++end;
        const QString run = text.mid(i, end - i);
        p.drawText(QPointF(x, y), run);
        x += m.horizontalAdvance(run);
        i = end;
    }
}

}  // namespace zv::shell
