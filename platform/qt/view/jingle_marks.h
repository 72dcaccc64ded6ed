/// The marks of a jingle button: glyphs in chips of their option's colour. Internal to the shell. [control]
#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

namespace zv::shell {

/// Paints a mark; `colour` invalid: a mark that flashes is off, only its outline stays. In a place too small for a
/// glyph it is a dot.
void paintMark(QPainter& p, const QRectF& place, const QString& glyph, const QColor& colour,
               const QColor& face);

}  // namespace zv::shell
