/// The face of a jingle button below its texts: colour, border, and what tells its state without colours.
/// Internal to the shell. [control]
#pragma once

#include <QColor>
#include <QRectF>
#include <QSize>

#include "platform/controls.h"
#include "platform/qt/view/jingle_text.h"

class QPainter;

namespace zv::shell {

struct Theme;

/// The colours of a button below its border: every text has a contrast of at least 4.5 to the face.
struct JingleTones {
    QColor face, ink, duration, number;
};
JingleTones tonesOf(const Control& record, const Theme& theme, bool empty, bool othersSound);

inline bool sounds(JingleState state) {
    return state == JingleState::sounding || state == JingleState::otherPalette;
}

struct JingleFace {
    QColor colour, border;
    JingleState state = JingleState::rest;
    bool dark = false;  ///< in a dark window
    QColor ring =
        {};  ///< of a wide border: the armed option can go here, or the jingle is carried; else invalid
};

/// The frame of a sounding face, in its hue where that can be, and the thin line around the frame. The frame has a
/// contrast of at least 3 to its own face; one of the two has it to every idle face of the window.
struct FrameColours {
    QColor frame, edge;
};
FrameColours frameColours(const QColor& face, bool dark);

/// Paints the face over the whole of a button. Faces of one size and look are painted once and copied from
/// then on.
void paintJingleFace(QPainter& p, const QSize& size, double pixelRatio, const JingleFace& face);

/// The sign of a state and its place at the foot of a button: a triangle at the left while it sounds (hollow
/// when it belongs to another palette), a warning sign at the right when it cannot sound. Empty without one.
QRectF stateSignPlace(const QSize& size, JingleState state, double margin);
void paintStateSign(QPainter& p, const QRectF& place, JingleState state, const QColor& ink,
                    const QColor& ground);

/// What an empty button says that can be done there, in the room of a button.
CaptionLayout layOutHint(const QSize& size, const QString& hint);
/// Nothing for an empty text.
void paintHint(QPainter& p, const QSize& size, const QString& hint, const Theme& theme);

}  // namespace zv::shell
