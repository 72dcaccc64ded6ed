/// Seven-segment figures as outlines, so that they are crisp at every size. Internal to the shell. [control]
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace zv::shell {

/// Lit segments of a digit, a colon or a point; empty for anything else.
QPainterPath litSegments(QChar figure, const QRectF& box);
/// All seven segments, for those that are not lit.
QPainterPath allSegments(const QRectF& box);
/// The box that a figure takes in the place of its label: proportions kept, on the label's foot.
QRectF figureBox(const QRectF& place);

}  // namespace zv::shell
