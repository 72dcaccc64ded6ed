#include "platform/soundtouch/soundtouch_stretcher.h"

#include <SoundTouch.h>

#include <algorithm>
#include <vector>

namespace zv {
namespace {

constexpr std::uint32_t kMostChannels = SOUNDTOUCH_MAX_CHANNELS;

/// The library passes everything through its transposer first, which at an unchanged rate copies each frame
/// by a cubic interpolation and then filters what could fold over, though nothing can: together half of what
/// the stretching itself takes. The stretching stage is its output, and can be fed straight.
class Touch final : public soundtouch::SoundTouch {
  public:
    void putStraight(const float* in, unsigned frames) { output->putSamples(in, frames); }
    /// A library can be built so that its output is another stage. Tried once.
    static bool canBeFedStraight() {
        static const bool can = [] {
            constexpr unsigned frames = 44100;
            Touch touch;
            touch.setSampleRate(frames);
            touch.setChannels(1);
            touch.setRate(1);
            touch.setTempo(2);
            touch.putStraight(std::vector<float>(frames).data(), frames);
            return touch.numSamples() > 0 && touch.numSamples() < frames * 6 / 10;
        }();
        return can;
    }
};

class SoundTouchStretcher final : public engine::Stretcher {
  public:
    SoundTouchStretcher(std::uint32_t rate, std::uint32_t channels, bool plain)
        : channels_(channels), straight_(!plain && Touch::canBeFedStraight()) {
        touch_.setSampleRate(rate);
        touch_.setChannels(channels);
        touch_.setRate(1);
        touch_.setPitch(1);
        if (!plain) touch_.setSetting(SETTING_USE_AA_FILTER, 0);
    }
    void setTempo(double ratio) override { touch_.setTempo(ratio); }
    void put(std::span<const float> in) override {
        const auto frames = static_cast<unsigned>(in.size() / channels_);
        if (straight_) {
            touch_.putStraight(in.data(), frames);
        } else {
            touch_.putSamples(in.data(), frames);
        }
    }
    std::size_t take(std::span<float> out) override {
        return touch_.receiveSamples(out.data(), static_cast<unsigned>(out.size() / channels_));
    }
    std::size_t ready() const override { return touch_.numSamples(); }
    std::size_t sequence() const override {
        return static_cast<std::size_t>(std::max(1, touch_.getSetting(SETTING_NOMINAL_OUTPUT_SEQUENCE)));
    }
    void clear() override { touch_.clear(); }

  private:
    Touch touch_;
    std::uint32_t channels_;
    bool straight_;
};

class SoundTouchSource final : public engine::StretcherSource {
  public:
    explicit SoundTouchSource(bool plain) : plain_(plain) {}
    std::unique_ptr<engine::Stretcher> make(std::uint32_t rate, std::uint32_t channels) override {
        if (rate == 0 || channels == 0 || channels > kMostChannels) return nullptr;
        return std::make_unique<SoundTouchStretcher>(rate, channels, plain_);
    }

  private:
    bool plain_;
};

}  // namespace

std::shared_ptr<engine::StretcherSource> soundTouchStretchers() {
    return std::make_shared<SoundTouchSource>(false);
}
std::shared_ptr<engine::StretcherSource> plainSoundTouchStretchers() {
    return std::make_shared<SoundTouchSource>(true);
}

}  // namespace zv
