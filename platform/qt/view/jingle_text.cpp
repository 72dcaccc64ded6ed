#include "platform/qt/view/jingle_text.h"

#include <QFontMetricsF>
#include <QHash>
#include <QTextLayout>
#include <algorithm>
#include <array>
#include <cmath>

namespace zv::shell {
namespace {

bool isLetter(QChar c) { return c.isLetterOrNumber(); }

/// The name broken into lines of that width; words that are too long are broken anywhere (`torn` tells), with
/// a hyphen.
QStringList broken(const QString& name, const QFont& font, double width, bool* torn = nullptr) {
    const QFontMetricsF m(font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QStringList lines;
    for (QString rest : name.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        while (!rest.isEmpty()) {
            QTextLayout layout(rest, font);
            layout.setTextOption(option);
            layout.beginLayout();
            QTextLine line = layout.createLine();
            line.setLineWidth(width);
            layout.endLayout();
            qsizetype length = std::max(1, line.textLength());
            const bool tears =
                length > 1 && length < rest.size() && isLetter(rest[length - 1]) && isLetter(rest[length]);
            QString text = rest.left(length).trimmed();
            if (tears) {
                while (length > 2 && m.horizontalAdvance(rest.left(length) + QLatin1Char('-')) > width)
                    --length;
                text = rest.left(length) + QLatin1Char('-');
                if (torn != nullptr) *torn = true;
            }
            lines << text;
            rest = rest.mid(length).trimmed();
        }
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
    // Two lines, the first with a figure, are duration and name; what failed to open tells more or less than
    // that.
    const qsizetype end = text.indexOf(QLatin1Char('\n'));
    if (end > 0 && end == text.lastIndexOf(QLatin1Char('\n'))) {
        const QString first = text.left(end).trimmed();
        if (std::any_of(first.begin(), first.end(), [](QChar c) { return c.isDigit(); })) {
            return {first, text.mid(end + 1).trimmed()};
        }
    }
    return {{}, text.trimmed()};
}

namespace {

/// One way to set a name: how large, in how many lines, and how far from the middle, as a share of the
/// height.
struct Way {
    double scale;
    int lines;
    bool mayTear;  ///< words may be broken apart
    bool beside;   ///< in what the corners leave free of one line, not in the middle of the room
};

/// The user's size first, then two lines in it, then down to three quarters; a word is torn only at last.
constexpr std::array kWays{
    Way{1, 1, false, false},    Way{1, 2, false, false},   Way{0.87, 1, false, false},
    Way{0.87, 2, false, false}, Way{0.87, 1, false, true}, Way{0.75, 1, false, false},
    Way{0.75, 2, false, false}, Way{0.75, 1, false, true}, Way{0.87, 2, true, false},
    Way{0.75, 2, true, false},
};
constexpr std::array kShifts{0.0, -0.06, 0.06, -0.12, 0.12, 0.2};

class Setter {
  public:
    Setter(const QString& name, const QFont& font, const QRectF& room, const std::vector<QRectF>& corners)
        : name_(name), font_(font), room_(room), corners_(corners) {}

    CaptionLayout set() {
        for (const Way& way : kWays) {
            if (tryWay(way)) return made_;
        }
        return cutShort();
    }

  private:
    QFont scaled(double scale) const {
        QFont f = font_;
        f.setPixelSize(std::max(8, static_cast<int>(std::lround(font_.pixelSize() * scale))));
        return f;
    }

    bool tryWay(const Way& way) {
        const QFont f = scaled(way.scale);
        const double line = QFontMetricsF(f).height();
        if (way.lines > 1 && line * way.lines > room_.height() + 2) return false;
        const QRectF room = way.beside ? freeSpan(line) : room_;
        bool torn = false;
        QStringList lines = broken(name_, f, room.width(), &torn);
        if (lines.isEmpty() || lines.size() > way.lines || (torn && !way.mayTear)) return false;
        if (way.lines == 2 && !torn) lines = balanced(name_, f, room.width());
        for (const double shift : kShifts) {
            if (place(lines, f, room, shift * room_.height())) return true;
        }
        return false;
    }

    /// Sets the lines around the middle of the room; false when they touch a corner.
    bool place(const QStringList& lines, const QFont& f, const QRectF& room, double shift) {
        const QFontMetricsF m(f);
        const double line = m.height();
        CaptionLayout out;
        out.font = f;
        out.lines = lines;
        double top = room.center().y() + shift - line * static_cast<double>(lines.size()) / 2;
        for (const QString& text : lines) {
            const double w = m.horizontalAdvance(text);
            const QPointF start(std::round(room.center().x() - w / 2), std::round(top + m.ascent()));
            // Measure the ink, not the line's height.
            const QRectF tight = m.tightBoundingRect(text);
            const QRectF ink(start.x() - 2, start.y() + tight.top() - 1, w + 4, tight.height() + 2);
            if (ink.top() < room_.top() - 1 || ink.bottom() > room_.bottom() + 1) return false;
            for (const QRectF& corner : corners_) {
                if (corner.intersects(ink)) return false;
            }
            out.starts.push_back(start);
            out.inks.push_back(ink);
            out.box |= QRectF(start.x(), top, w, line).adjusted(-2, -2, 2, 2);
            top += line;
        }
        made_ = out;
        return true;
    }

    /// What the corners leave of the room for one line in its middle.
    QRectF freeSpan(double line) const {
        QRectF span = room_;
        const double top = room_.center().y() - line * 0.36, bottom = top + line * 0.72;
        for (const QRectF& c : corners_) {
            if (c.bottom() < top || c.top() > bottom) continue;
            if (c.center().x() < room_.center().x()) {
                span.setLeft(std::max(span.left(), c.right() + 4));
            } else {
                span.setRight(std::min(span.right(), c.left() - 4));
            }
        }
        return span;
    }

    /// Too long for all ways: as much of it as there is room for, with an ellipsis.
    CaptionLayout cutShort() {
        constexpr std::array kScales{0.87, 0.75};
        const auto tried = [&](const QStringList& lines, const QFont& f, const QRectF& room) {
            return std::any_of(kShifts.begin(), kShifts.end(),
                               [&](double shift) { return place(lines, f, room, shift * room_.height()); });
        };
        const QString whole = name_.simplified();
        // Two lines tell more than one.
        for (const double scale : kScales) {
            const QFont f = scaled(scale);
            const QFontMetricsF m(f);
            if (m.height() * 2 > room_.height() + 2) continue;
            const QStringList all = broken(name_, f, room_.width());
            if (all.size() < 2) continue;
            const bool hyphen = !whole.startsWith(all[0]);
            const QString rest = whole.mid(all[0].size() - (hyphen ? 1 : 0)).trimmed();
            if (tried({all[0], m.elidedText(rest, Qt::ElideRight, room_.width())}, f, room_)) return cutOff();
        }
        for (const double scale : kScales) {
            const QFont f = scaled(scale);
            const QFontMetricsF m(f);
            if (tried({m.elidedText(whole, Qt::ElideRight, room_.width())}, f, room_)) return cutOff();
            const QRectF beside = freeSpan(m.height());
            if (beside.width() > m.averageCharWidth() * 6 &&
                tried({m.elidedText(whole, Qt::ElideRight, beside.width())}, f, beside)) {
                return cutOff();
            }
        }
        // Not even that is free of the corners: the name goes before the small texts.
        corners_.clear();
        const QFont f = scaled(0.75);
        place({QFontMetricsF(f).elidedText(name_.simplified(), Qt::ElideRight, room_.width())}, f, room_, 0);
        made_.font = f;
        made_.cut = true;
        return made_;
    }

    CaptionLayout cutOff() {
        made_.cut = true;
        return made_;
    }

    QString name_;
    QFont font_;
    QRectF room_;
    std::vector<QRectF> corners_;
    CaptionLayout made_;
};

constexpr qsizetype kMostKnown = 1000;  // several palettes of buttons

/// All that a layout follows from. A palette that opens looks up hundreds: no text is made of it.
struct Given {
    QString name;
    QFont font;
    QRectF room;
    std::vector<QRectF> corners;
    bool operator==(const Given&) const = default;
};

std::size_t qHash(const Given& given, std::size_t seed) {
    const QRectF& room = given.room;
    return qHashMulti(seed, given.name, given.font.pixelSize(), room.width(), room.height(),
                      given.corners.size());
}

}  // namespace

CaptionLayout layOutCaption(const QString& name, const QFont& font, const QRectF& room,
                            const std::vector<QRectF>& corners) {
    if (name.isEmpty() || room.width() < 8) {
        CaptionLayout none;
        none.font = font;
        return none;
    }
    // A name that does not fit goes through all ways, and a palette that opens shows the same ones again and
    // again.
    static QHash<Given, CaptionLayout> known;
    const Given key{name, font, room, corners};
    if (const auto found = known.constFind(key); found != known.constEnd()) return *found;
    if (known.size() >= kMostKnown) known.clear();
    return *known.insert(key, Setter(name, font, room, corners).set());
}

}  // namespace zv::shell
