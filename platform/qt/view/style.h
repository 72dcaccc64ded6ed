/// The look of the toolkit's own widgets: flat faces, borders of one pixel, small radius, everything from the
/// palette that a widget was given. Internal to the shell. [control]
#pragma once

#include <QColor>
#include <QRectF>

class QPainter;

namespace zv::shell {

struct Theme;

inline constexpr double kRadius = 3.5;  ///< of keys and fields, pixels

/// A rounded face with a border of one device-true pixel.
void drawFace(QPainter& p, const QRectF& rect, const QColor& face, const QColor& border,
              double radius = kRadius);
/// The dashed outline of something that is not there.
void drawOutline(QPainter& p, const QRectF& rect, const QColor& colour, double radius = kRadius);
/// The ring around what has the keyboard's focus.
void drawFocus(QPainter& p, const QRectF& rect, const QColor& colour);
/// A box with or without its tick.
void drawTickBox(QPainter& p, const QRectF& rect, bool on, const QColor& face, const QColor& border,
                 const QColor& tick);
/// A key of a segmented choice.
void drawSegment(QPainter& p, const QRectF& rect, const QString& text, const Theme& theme, bool on,
                 bool enabled, bool hovered);

}  // namespace zv::shell
