#include "platform/soundtouch/soundtouch_stretcher.h"

#include <SoundTouch.h>

#include <cmath>

namespace zv {
namespace {

constexpr std::uint32_t kMostChannels = SOUNDTOUCH_MAX_CHANNELS;

class SoundTouchStretcher final : public Stretcher {
  public:
    SoundTouchStretcher(std::uint32_t rate, std::uint32_t channels, bool plain)
        : channels_(channels), plain_(plain) {
        touch_.setSampleRate(rate);
        touch_.setChannels(channels);
    }
    void setTempo(double percent) override {
        tempo_ = 1 + percent / 100;
        touch_.setTempo(tempo_);
    }
    void setPitch(double semitones) override {
        pitch_ = std::exp2(semitones / 12);
        touch_.setPitch(pitch_);
        chooseFilter();
    }
    void setRate(double ratio) override {
        rate_ = ratio;
        touch_.setRate(rate_);
        chooseFilter();
    }
    void put(std::span<const float> in) override {
        touch_.putSamples(in.data(), static_cast<unsigned>(in.size() / channels_));
    }
    void flush() override { touch_.flush(); }
    std::size_t take(std::span<float> out) override {
        return touch_.receiveSamples(out.data(), static_cast<unsigned>(out.size() / channels_));
    }
    std::size_t ready() const override { return touch_.numSamples(); }
    void clear() override { touch_.clear(); }
    double lag() const override {
        // The sound is cut into sequences that play at their own speed and are strung together at another:
        // their middle lies in place, their beginnings and ends do not. The first one begins in place.
        const double inner = tempo_ / pitch_;
        return inner == 1 ? 0 : (1 - 1 / inner) * touch_.getSetting(SETTING_NOMINAL_INPUT_SEQUENCE) / 2;
    }

  private:
    /// Nothing is transposed: nothing can fold over, and the filter against that costs a quarter of
    /// everything.
    void chooseFilter() {
        const bool filters = plain_ || pitch_ != 1 || rate_ != 1;
        if (filters == filters_) return;
        filters_ = filters;
        touch_.setSetting(SETTING_USE_AA_FILTER, filters ? 1 : 0);
    }

    double tempo_ = 1, pitch_ = 1, rate_ = 1;
    soundtouch::SoundTouch touch_;
    std::uint32_t channels_;
    bool plain_, filters_ = true;
};

class SoundTouchSource final : public StretcherSource {
  public:
    explicit SoundTouchSource(bool plain) : plain_(plain) {}
    std::unique_ptr<Stretcher> make(std::uint32_t rate, std::uint32_t channels) override {
        if (rate == 0 || channels == 0 || channels > kMostChannels) return nullptr;
        return std::make_unique<SoundTouchStretcher>(rate, channels, plain_);
    }

  private:
    bool plain_;
};

}  // namespace

std::shared_ptr<StretcherSource> soundTouchStretchers() { return std::make_shared<SoundTouchSource>(false); }
std::shared_ptr<StretcherSource> plainSoundTouchStretchers() {
    return std::make_shared<SoundTouchSource>(true);
}

}  // namespace zv
