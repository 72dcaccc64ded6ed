/// What of a sound a picture of it shows, and what stands where in it. Places are pixels at 100 %. [control]
#pragma once

#include <array>
#include <optional>

#include "audio/cue_points.h"

namespace zv {

inline constexpr int kCuePoints = 4;
inline constexpr double kWaveRuler = 16;   ///< height of the times at the foot
inline constexpr double kWaveTag = 15;     ///< height of a handle's name
inline constexpr double kMostPixels = 16;  ///< that a frame is wide when nothing more can be seen

struct WaveView {
    double length = 0;  ///< of the sound, seconds
    double rate = 0;    ///< Hz
    double first = 0;   ///< second at the left edge
    double shown = 0;   ///< seconds from edge to edge
    double width = 0, height = 0;

    double perPixel() const { return width > 0 ? shown / width : 0; }
    double xOf(double seconds) const { return shown > 0 ? (seconds - first) / shown * width : 0; }
    double secondsAt(double x) const { return first + x * perPixel(); }
    /// Height of what is outlined, above the ruler.
    double soundHeight() const { return height - kWaveRuler; }

    void showAll();
    /// Nearer (up) or farther, in steps; what stands at `x` stays there as far as the ends allow.
    void zoom(double x, int steps);
    void moveBy(double seconds);
    /// Scrolls as far as needed, so that `seconds` is seen.
    void reveal(double seconds);

  private:
    void hold();
};

/// What is marked in the picture. Times in seconds.
struct WaveMarks {
    std::array<double, kCuePoints> at{};         ///< by CuePoint; the stop at the end where there is none
    std::array<double, kCuePoints> tagWidths{};  ///< of the handles' names, pixels
    bool loop = false;                           ///< loop in and out are there
    double fade = 0;                             ///< from the stop on
    bool logFade = false;
    std::optional<double> playhead = {};
    std::optional<CuePoint> chosen = {};

    double operator[](CuePoint point) const { return at[static_cast<std::size_t>(point)]; }
};

/// Where a handle's name stands: start and stop above, the loop below; beside the line, away from what it bounds.
struct WaveTag {
    double x = 0, y = 0, width = 0;
};
WaveTag TagOf(const WaveView& view, const WaveMarks& marks, CuePoint point);

/// The handle at a place: its name, or its line within some pixels; of several the nearest one, in the upper half start
/// and stop first.
std::optional<CuePoint> HandleAt(const WaveView& view, const WaveMarks& marks, double x, double y);

}  // namespace zv
