/// What is drawn of a sound, column by column: from its outline, or from single samples where the picture is nearer than
/// the outline. [control]
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "audio/outline.h"
#include "ui/screen/wave_view.h"

namespace zv {

using WaveColumn = std::pair<float, float>;  ///< lowest and highest, -1 to 1
using WaveColumns = std::shared_ptr<const std::vector<WaveColumn>>;

/// A column a pixel from the left edge on, as far as the sound is known. By side.
struct WaveShape {
    std::array<WaveColumns, 2> peaks, rms;
    bool dots = false;  ///< single samples are far enough apart to be marked
};

/// True when the picture shows more than the outline knows, so that samples are wanted.
bool NeedsSamples(const WaveView& view, const Waveform& outline);
/// The frames that the picture shows: from, to.
std::pair<std::int64_t, std::int64_t> ShownFrames(const WaveView& view);
WaveShape ShapeOf(const WaveView& view, const Outline& outline, const SampleStretch& samples);

}  // namespace zv
