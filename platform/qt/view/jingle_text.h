/// The caption of a jingle button: what of it is the duration, and how the name is set in the room there is.
/// Internal to the shell. [control]
#pragma once

#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <QStringList>
#include <vector>

class QWidget;

namespace zv::shell {

struct CaptionParts {
    QString duration;  ///< empty without one
    QString name;      ///< further lines joined by line feeds
};
/// Of two lines "1:04.2 CR LF name" the first is the duration; other texts are all name.
CaptionParts splitCaption(const QString& caption);

struct CaptionLayout {
    QStringList lines;            ///< one or two
    std::vector<QPointF> starts;  ///< of each line's base line
    QFont font;                   ///< as asked for or somewhat smaller
    QRectF box;                   ///< around all of it
    std::vector<QRectF> inks;     ///< what each line covers
    bool cut = false;             ///< an ellipsis stands for the rest

    bool operator==(const CaptionLayout&) const = default;
};
/// Sets the name in the middle: in one line, else in two, else smaller, else with an ellipsis, clear of what
/// stands in the corners (number, marks, duration).
CaptionLayout layOutCaption(const QString& name, const QFont& font, const QRectF& room,
                            const std::vector<QRectF>& corners = {});

/// Tells screen readers of a new name, or of a new state (with its colour), when either changed.
void tellNameChanged(QWidget& widget, const QString& name, int colour, int state);

}  // namespace zv::shell
