/// The picture of a sound: outline or single samples of both sides, handles, fade, playhead, times. [control]
#pragma once

#include <array>
#include <string>

#include "platform/controls.h"
#include "ui/screen/wave_columns.h"

namespace zv {

struct WaveLook {
    Colour ground, peaks, rms, axis, shade, start, stop, loop, fade, playhead, text, tagText;
};
WaveLook WaveLookOf(bool dark);

/// `names` are the handles' names by CuePoint; `samples` as for the shape.
Drawing DrawWave(const WaveView& view, const WaveMarks& marks, const WaveShape& shape,
                 const SampleStretch& samples, const std::array<std::string, kCuePoints>& names,
                 const WaveLook& look);

/// Pixels that a handle's name takes.
double TagWidth(const std::string& name);
/// "1:02.5": as many decimals as steps of `step` seconds need.
std::string WaveTime(double seconds, double step);

}  // namespace zv
