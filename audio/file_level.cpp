#include "audio/file_level.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <span>
#include <vector>

#include "audio/sound_file.h"

namespace zv {
namespace {

constexpr double kPercent = 100;
constexpr double kDecibels = 20;  ///< of a ratio of amplitudes of ten
constexpr std::size_t kSamplesAtOnce = 1U << 17;
constexpr int kMostSafeVolume = 400;  ///< percent: what the slider reaches
constexpr double kSilent = -std::numeric_limits<double>::infinity();

}  // namespace

FileLevel MeasureLevel(const std::string& path, double from, double to, JobWork& work) {
    FileLevel level{.part = {kSilent, kSilent}};
    const std::unique_ptr<engine::Decoder> decoder = OpenSoundFile(path);
    if (!decoder || decoder->format().channels == 0) return level;
    const std::size_t channels = decoder->format().channels;
    const auto frameAt = [&](double seconds) {
        return static_cast<std::size_t>(std::llround(std::max(0.0, seconds) * decoder->format().rate));
    };
    const std::size_t first = frameAt(from);
    const std::size_t last = to <= 0 ? std::numeric_limits<std::size_t>::max() : frameAt(to);
    const auto meter = makeLoudnessMeter(decoder->format().rate, static_cast<std::uint32_t>(channels));
    std::vector<float> block(std::max<std::size_t>(1, kSamplesAtOnce / channels) * channels);
    const auto length = static_cast<std::size_t>(decoder->length().value_or(0));
    double peak = 0;
    std::size_t done = 0;
    while (const std::size_t frames = decoder->read(block)) {
        if (work.cancelled()) return level;
        for (float& sample : std::span(block).first(frames * channels)) {
            if (!std::isfinite(sample)) sample = 0;
            peak = std::max(peak, std::abs(static_cast<double>(sample)));
        }
        const std::size_t begin = std::clamp(first, done, done + frames) - done;
        const std::size_t end = std::clamp(last, done, done + frames) - done;
        if (meter && end > begin)
            meter->add(std::span(block).subspan(begin * channels, (end - begin) * channels));
        done += frames;
        if (length > 0) work.progress(static_cast<int>(std::min(done, length) * 100 / length));
    }
    level.safeVolume = SafeVolume(peak);
    if (meter) level.part = meter->result();
    return level;
}

int SafeVolume(double peak) {
    const double percent = peak <= 0 ? kPercent : peak * kPercent;
    return static_cast<int>(std::clamp(kPercent * kPercent / percent, 1.0, double{kMostSafeVolume}));
}

int VolumeForLoudness(double target, double integrated, int safeVolume) {
    if (!std::isfinite(integrated) || safeVolume <= 0) return 0;
    const double wanted = kPercent * std::pow(10, (target - integrated) / kDecibels);
    return static_cast<int>(std::clamp(std::round(wanted), 1.0, static_cast<double>(safeVolume)));
}

double DecibelsOfVolume(int percent) {
    return percent <= 0 ? kSilent : kDecibels * std::log10(percent / kPercent);
}

}  // namespace zv
