/// Text with figures of one width, so that times do not shiver. Internal to the shell. [control]
#pragma once

#include <QFont>
#include <QRectF>
#include <QString>

class QPainter;

namespace zv::shell {

/// In the painter's font and pen. Alignment as the toolkit's.
void drawFigures(QPainter& p, const QRectF& rect, int alignment, const QString& text);
double figuresWidth(const QFont& font, const QString& text);

}  // namespace zv::shell
