/// The face of a jingle button below its texts: colour, border, and what tells its state without colours.
/// Internal to the shell. [control]
#pragma once

#include <QColor>
#include <QRectF>
#include <QSize>

#include "platform/controls.h"

class QPainter;

namespace zv::shell {

struct JingleFace {
    QColor colour, border;
    JingleState state = JingleState::rest;
    QColor accent;  ///< of the frame of a sounding face that has no colour of its own
};

/// Paints the face over the whole of a button. Faces of one size and look are painted once and copied from
/// then on.
void paintJingleFace(QPainter& p, const QSize& size, double pixelRatio, const JingleFace& face);

/// The sign of a state and its place at the foot of a button: a triangle at the left while it sounds (hollow
/// when it belongs to another palette), a warning sign at the right when it cannot sound. Empty without one.
QRectF stateSignPlace(const QSize& size, JingleState state, double margin);
void paintStateSign(QPainter& p, const QRectF& place, JingleState state, const QColor& ink,
                    const QColor& ground);

}  // namespace zv::shell
