/// The small parts of a jingle button and where they stand: number, marks, duration, bar. Worked out when the button
/// is laid out, so that painting only looks them up. Internal to the shell. [control]
#pragma once

#include <QFont>
#include <QRectF>
#include <QSize>
#include <QString>
#include <cstdint>
#include <vector>

#include "platform/controls.h"

namespace zv::shell {

inline constexpr int kMargin = 8;      ///< pixels between the face's edge and its text
inline constexpr int kFrameLine = 5;   ///< pixels of the frame around what sounds, with its edge
inline constexpr int kLowButton = 40;  ///< pixels of height below which duration and caption share one line

enum class JinglePart : std::uint8_t { bar, mark, number, letter, tickBox, ground };
JinglePart partOf(const Control& record);

/// Marks shrink before the caption moves: chips with a glyph, smaller ones, at last dots.
enum class MarkSize : std::uint8_t { full, compact, dot };

class JinglePlaces {
  public:
    explicit JinglePlaces(const Control& button) : button_(button) {}

    /// What there is room for.
    struct Shown {
        bool duration = true, number = true;
        MarkSize marks = MarkSize::full;
        bool operator==(const Shown&) const = default;
    };
    void settle(const QSize& size, double captionPixels, const Shown& shown);

    struct Placed {
        const Control* part;
        JinglePart kind;
        QRectF place;  ///< of a bar: at rest
    };
    const std::vector<Placed>& parts() const { return parts_; }
    QRectF placeOf(const Control& part) const;

    /// Lower right, above a bar that runs there; on a low button in its middle, left of the marks.
    QRectF durationPlace(const QString& text) const;
    const QFont& durationFont() const { return durationFont_; }
    const QFont& numberFont() const { return numberFont_; }
    const Shown& shown() const { return shown_; }

    /// What stands in the corners, for the caption to keep clear of.
    std::vector<QRectF> corners(const QString& duration) const;
    /// The small texts run into each other or into a mark, or out of the button.
    bool cornersMeet(const QString& duration) const;

  private:
    void placeNumber();
    void placeMarks();
    double markSide() const;
    bool showsNumber(const Placed& p) const;

    const Control& button_;
    QSize size_;
    Shown shown_;
    std::vector<Placed> parts_;
    QFont durationFont_, numberFont_;
    double figure_ = 0, point_ = 0, durationHeight_ = 0, durationRight_ = 0, durationFoot_ = 0;
};

}  // namespace zv::shell
