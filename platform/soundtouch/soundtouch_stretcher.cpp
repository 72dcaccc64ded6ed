#include "platform/soundtouch/soundtouch_stretcher.h"

#include <SoundTouch.h>

#include <algorithm>

namespace zv {
namespace {

constexpr std::uint32_t kMostChannels = SOUNDTOUCH_MAX_CHANNELS;

class SoundTouchStretcher final : public Stretcher {
  public:
    SoundTouchStretcher(std::uint32_t rate, std::uint32_t channels) : channels_(channels) {
        touch_.setSampleRate(rate);
        touch_.setChannels(channels);
    }
    void setTempo(double percent) override { touch_.setTempoChange(percent); }
    void setPitch(double semitones) override { touch_.setPitchSemiTones(semitones); }
    void setRate(double ratio) override { touch_.setRate(ratio); }
    void put(std::span<const float> in) override {
        touch_.putSamples(in.data(), static_cast<unsigned>(in.size() / channels_));
    }
    void flush() override { touch_.flush(); }
    std::size_t take(std::span<float> out) override {
        return touch_.receiveSamples(out.data(), static_cast<unsigned>(out.size() / channels_));
    }
    std::size_t ready() const override { return touch_.numSamples(); }
    void clear() override { touch_.clear(); }

  private:
    soundtouch::SoundTouch touch_;
    std::uint32_t channels_;
};

class SoundTouchSource final : public StretcherSource {
  public:
    std::unique_ptr<Stretcher> make(std::uint32_t rate, std::uint32_t channels) override {
        if (rate == 0 || channels == 0 || channels > kMostChannels) return nullptr;
        return std::make_unique<SoundTouchStretcher>(rate, channels);
    }
};

}  // namespace

std::shared_ptr<StretcherSource> soundTouchStretchers() { return std::make_shared<SoundTouchSource>(); }

}  // namespace zv
