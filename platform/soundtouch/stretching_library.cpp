#include "platform/soundtouch/stretching_library.h"

#include <SoundTouch.h>

namespace zv {

/// The library passes everything through its transposer first, which at an unchanged rate copies each frame by a cubic
/// interpolation and then filters what could fold over, though nothing can. The stretching stage is its output, and can
/// be fed straight.
class StretchingLibrary::Touch final : public soundtouch::SoundTouch {
  public:
    void putStraight(const float* in, unsigned frames) { output->putSamples(in, frames); }
};

StretchingLibrary::StretchingLibrary(std::uint32_t rate, std::uint32_t channels, double ratio,
                                     LibraryPart part)
    : touch_(std::make_unique<Touch>()), channels_(channels), part_(part) {
    touch_->setSampleRate(rate);
    touch_->setChannels(channels);
    touch_->setTempo(ratio);
}

StretchingLibrary::~StretchingLibrary() = default;

void StretchingLibrary::put(std::span<const float> in) {
    const auto frames = static_cast<unsigned>(in.size() / channels_);
    if (part_ == LibraryPart::stretching)
        touch_->putStraight(in.data(), frames);
    else
        touch_->putSamples(in.data(), frames);
}

std::size_t StretchingLibrary::take(std::span<float> out) {
    return touch_->receiveSamples(out.data(), static_cast<unsigned>(out.size() / channels_));
}

}  // namespace zv
