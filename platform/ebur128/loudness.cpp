#include "platform/loudness.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <utility>

namespace zv {
namespace {

struct StateDeleter {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};
using State = std::unique_ptr<ebur128_state, StateDeleter>;

class Meter : public LoudnessMeter {
  public:
    explicit Meter(State state) : state_(std::move(state)) {}

    void add(std::span<const float> frames) override {
        if (ebur128_add_frames_float(state_.get(), frames.data(), frames.size() / state_->channels) ==
            EBUR128_ERROR_NOMEM)
            throw std::bad_alloc();
    }

    Loudness result() const override {
        Loudness loudness;
        ebur128_loudness_global(state_.get(), &loudness.integrated);
        double peak = 0;
        for (unsigned side = 0; side < state_->channels; ++side) {
            double value = 0;
            ebur128_true_peak(state_.get(), side, &value);
            peak = std::max(peak, value);
        }
        loudness.truePeak = 20 * std::log10(peak);
        return loudness;
    }

  private:
    State state_;
};

}  // namespace

std::unique_ptr<LoudnessMeter> makeLoudnessMeter(std::uint32_t rate, std::uint32_t channels) {
    State state(
        ebur128_init(channels, rate, EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK | EBUR128_MODE_HISTOGRAM));
    if (!state) return nullptr;
    if (channels == 1) ebur128_set_channel(state.get(), 0, EBUR128_DUAL_MONO);
    return std::make_unique<Meter>(std::move(state));
}

}  // namespace zv
