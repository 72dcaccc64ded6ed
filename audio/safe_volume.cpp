#include "audio/safe_volume.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "platform/decoders.h"
#include "platform/paths.h"

namespace zv {
namespace {

constexpr double kPercent = 100;
constexpr std::size_t kSamplesAtOnce = 16384;
constexpr int kMostSafeVolume = 400;  ///< percent: what the slider reaches

}  // namespace

int MeasureSafeVol(const std::string& path, JobWork& work) {
    if (!soundDecoders) return 0;
    int error = 0;
    const std::string file = nativePath(path).string();
    std::unique_ptr<engine::Decoder> decoder = soundDecoders->openFile(file, error);
    if (!decoder) decoder = soundDecoders->openModule(file, error);
    if (!decoder) return 0;
    const std::size_t channels = std::max<std::size_t>(1, decoder->format().channels);
    std::vector<float> block(std::max<std::size_t>(1, kSamplesAtOnce / channels) * channels);
    double peak = 0;
    while (const std::size_t frames = decoder->read(block)) {
        if (work.cancelled()) return 0;
        for (std::size_t i = 0; i < frames * channels; ++i)
            if (std::isfinite(block[i])) peak = std::max(peak, std::abs(static_cast<double>(block[i])));
    }
    const double percent = peak == 0 ? kPercent : peak * kPercent;
    return static_cast<int>(std::clamp(kPercent * kPercent / percent, 1.0, double{kMostSafeVolume}));
}

}  // namespace zv
