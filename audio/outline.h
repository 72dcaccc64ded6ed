/// Outlines of sound files and single samples of them, read by workers. Of the last 32 files the outline is kept. [control]
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/jobs.h"
#include "platform/waveform.h"

namespace zv {

using Outline = std::shared_ptr<const Waveform>;

/// Outlines the file at `path` (absolute). `show` is given what there is so far, several times on the way, and at the
/// end, with `whole`, all of it; null for a file that cannot be read. One that was kept comes whole at once. Nothing is
/// told any more once the job is cancelled.
[[nodiscard]] Job ReadOutline(const std::string& path,
                              std::function<void(const Outline& outline, bool whole)> show);

/// Neighbouring frames of a file, left and right.
struct SampleStretch {
    std::uint32_t rate = 0;  ///< Hz
    std::int64_t first = 0;  ///< frame
    std::vector<std::array<float, 2>> frames = {};

    std::int64_t end() const { return first + static_cast<std::int64_t>(frames.size()); }
    bool covers(std::int64_t from, std::int64_t to) const { return rate > 0 && first <= from && end() >= to; }
};

/// Reads `count` frames from `first` on, fewer where the file ends; `done` is given what was read.
[[nodiscard]] Job ReadSamples(const std::string& path, std::int64_t first, std::int64_t count,
                              std::function<void(SampleStretch)> done);

/// The frame nearest to `frame` at which the sum of both sides changes its sign; nothing where there is none.
std::optional<std::int64_t> ZeroCrossing(const SampleStretch& stretch, std::int64_t frame);

}  // namespace zv
