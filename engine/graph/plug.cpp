#include "engine/graph/plug.h"

namespace zv::engine {
namespace {
constexpr double kMeterSeconds = 1.0;
}

Plug::Plug(std::uint32_t from, std::uint32_t to)
    : rate(to), meter(std::make_shared<Metering>(to, kMeterSeconds)) {
    if (from == to) return;
    resampler = std::make_unique<dsp::Resampler>(from, to);
    in.resize((resampler->inputNeeded(kBlock) + 64) * 2);
    out.resize(std::size_t{kBlock} * 2);
}

void Plug::restart() {
    if (resampler) resampler->reset();
    pending = 0;
    fed = 0;
    drained = false;
}

void Plug::align(std::uint64_t clock) {
    if (resampler && fed == 0 && pending == 0) resampler->align(clock);
}

}  // namespace zv::engine
