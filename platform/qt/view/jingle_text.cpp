#include "platform/qt/view/jingle_text.h"

#include <QFontMetricsF>
#include <QRegularExpression>
#include <QTextLayout>
#include <algorithm>
#include <array>
#include <cmath>

namespace zv::shell {
namespace {

/// The name broken into lines of that width; words that are too long are broken anywhere (`torn` tells).
QStringList broken(const QString& name, const QFont& font, double width, bool* torn = nullptr) {
    QStringList lines;
    for (const QString& given : name.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        QTextLayout layout(given, font);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            const int end = line.textStart() + line.textLength();
            if (torn != nullptr && end < given.size()) {
                *torn = *torn || (given[end - 1].isLetterOrNumber() && given[end].isLetterOrNumber());
            }
            lines << given.mid(line.textStart(), line.textLength()).trimmed();
        }
        layout.endLayout();
    }
    return lines;
}

/// Two lines of about the same length read better than a full one and a rest.
QStringList balanced(const QString& name, const QFont& font, double width) {
    const QStringList full = broken(name, font, width);
    if (full.size() != 2) return full;
    const QFontMetricsF m(font);
    const double narrow = std::max(m.horizontalAdvance(full[0]), m.horizontalAdvance(full[1])) * 0.5;
    QStringList best = full;
    for (double w = width * 0.95; w > narrow; w *= 0.95) {
        bool torn = false;
        const QStringList tried = broken(name, font, w, &torn);
        if (tried.size() != 2 || torn) break;
        best = tried;
    }
    return best;
}

}  // namespace

CaptionParts splitCaption(const QString& caption) {
    QString text = caption;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    static const QRegularExpression duration(QStringLiteral("^\\s*[0-9][0-9:.,]*\\s*$"));
    const qsizetype end = text.indexOf(QLatin1Char('\n'));
    if (end > 0 && duration.match(text.left(end)).hasMatch()) {
        return {text.left(end).trimmed(), text.mid(end + 1).trimmed()};
    }
    return {{}, text.trimmed()};
}

CaptionLayout layOutCaption(const QString& name, const QFont& font, const QRectF& room, double corner) {
    CaptionLayout made;
    made.font = font;
    if (name.isEmpty() || room.width() < 8) return made;
    const double size = font.pixelSize();
    struct Try {
        double scale;
        int lines;
        bool mayTear;
    };
    // The user's size first, then two lines in it, then down to three quarters of it; a word is torn only at
    // last.
    static constexpr std::array kTries{Try{1, 1, false},    Try{1, 2, false},    Try{0.9, 1, false},
                                       Try{0.87, 2, false}, Try{0.75, 1, false}, Try{0.75, 2, false},
                                       Try{1, 2, true},     Try{0.75, 2, true}};
    for (const Try& t : kTries) {
        QFont f = font;
        f.setPixelSize(std::max(8, static_cast<int>(std::lround(size * t.scale))));
        const double line = QFontMetricsF(f).height();
        if (t.lines == 2 && line * 2 + corner > room.height()) continue;
        bool torn = false;
        QStringList lines = broken(name, f, room.width(), &torn);
        if (lines.size() > t.lines || (torn && !t.mayTear)) continue;
        if (t.lines == 2 && !torn) lines = balanced(name, f, room.width());
        made.font = f;
        made.lines = lines;
        break;
    }
    const auto elided = [&](const QString& text) {
        return QFontMetricsF(made.font).elidedText(text, Qt::ElideRight, room.width());
    };
    if (made.lines.isEmpty()) {
        made.cut = true;
        made.font.setPixelSize(std::max(8, static_cast<int>(std::lround(size * 0.87))));
        const QFontMetricsF m(made.font);
        const QStringList lines = broken(name, made.font, room.width());
        if (lines.size() > 1 && m.height() * 2 + corner <= room.height()) {
            // The second line takes all the rest, so that the ellipsis stands where the room ends.
            QString rest = name.simplified().mid(lines[0].size()).trimmed();
            made.lines = {lines[0], elided(rest)};
        } else {
            made.lines = {elided(name.simplified())};
        }
    }
    const QFontMetricsF m(made.font);
    const double line = m.height();
    double top = room.center().y() - line * static_cast<double>(made.lines.size()) / 2;
    for (const QString& text : made.lines) {
        const double w = m.horizontalAdvance(text);
        const QPointF start(std::round(room.center().x() - w / 2), std::round(top + m.ascent()));
        made.starts.push_back(start);
        made.box |= QRectF(start.x(), top, w, line);
        top += line;
    }
    made.box.adjust(-2, -2, 2, 2);
    return made;
}

}  // namespace zv::shell
