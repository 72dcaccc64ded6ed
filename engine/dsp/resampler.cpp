#include "engine/dsp/resampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <numeric>
#include <utility>

#include "engine/dsp/lanes.h"
#include "engine/dsp/mix.h"

namespace zv::engine::dsp {

/// Row p holds the filter for a frame that lies p / phases behind the middle of the window; one row more than
/// phases.
struct ResamplerTable {
    std::size_t taps = 0, phases = 0;
    std::vector<float> rows;
};

namespace {

__extension__ using Wide = unsigned __int128;

/// One call of the kernel.
struct Conversion {
    const float* rows;
    std::size_t taps, phases;
    const float* window;  // of the first channel
    std::size_t stride;   // from one channel's window to the next
    std::uint32_t channels;
    std::uint64_t whole, fraction;  // first frame, from the beginning of the window
    std::uint64_t stepWhole, stepFraction;
    std::size_t otherSide = 0;  // from one side's window to the other's
};

#define ZV_KERNELS "engine/dsp/resampler_kernels.h"
#include "engine/dsp/two_paths.h"

constexpr double kAttenuation = 116;          // dB in the stop band
constexpr double kCorrectedAttenuation = 98;  // the same of equal rates, which are only ever corrected
constexpr double kPassEdge = 0.45;            // of the lower rate
constexpr double kStopEdge = 0.5;
constexpr double kPhases = 512;           // linear interpolation between them stays under -105 dB
constexpr std::size_t kMostExact = 1024;  // output frames until the phases repeat that get rows of their own
constexpr std::size_t kWindowRoom = 1024;
constexpr std::uint32_t kSides = 2;

/// Modified Bessel function of the first kind, order 0, of 2 sqrt(q): exact for the window's q, up to 35. A
/// table takes it fifty thousand times, while someone opens a file.
double bessel0(double q) {
    static constexpr auto terms = [] {
        std::array<double, 29> c{1};
        for (std::size_t k = 1; k < c.size(); ++k) c[k] = c[k - 1] / static_cast<double>(k * k);
        return c;
    }();
    double sum = 0;
    for (std::size_t k = terms.size(); k-- > 0;) sum = sum * q + terms[k];
    return sum;
}

std::shared_ptr<const ResamplerTable> makeTable(std::uint32_t in, std::uint32_t out) {
    // Equal rates are only ever corrected by parts per million: a filter through half the rate, whose phase 0
    // is the sample itself, so that a correction comes and goes without a seam.
    const double lower = std::min(in, out) / static_cast<double>(in);
    const double stop = in == out ? 1 - kPassEdge : kStopEdge;
    const double width = (stop - kPassEdge) * lower, cutoff = (stop + kPassEdge) / 2 * lower;
    const double attenuation = in == out ? kCorrectedAttenuation : kAttenuation;
    const double length = (attenuation - 8) / (2.285 * 2 * std::numbers::pi * width);
    const double beta = 0.1102 * (attenuation - 8.7), most = beta * beta / 4, scale = 1 / bessel0(most);

    ResamplerTable table;
    table.taps = (static_cast<std::size_t>(length) + 16) / 16 * 16;
    const std::size_t repeat = out / std::gcd(in, out);
    const auto wanted = static_cast<std::size_t>(std::ceil(std::max(16.0, kPhases * lower)));
    table.phases = repeat <= kMostExact ? repeat * ((wanted + repeat - 1) / repeat) : wanted;
    table.rows.resize((table.phases + 1) * table.taps);

    const double half = static_cast<double>(table.taps) / 2;
    std::vector<double> row(table.taps);
    for (std::size_t p = 0; p <= table.phases / 2; ++p) {
        const double back = static_cast<double>(p) / static_cast<double>(table.phases);
        for (std::size_t k = 0; k < table.taps; ++k) {
            const double x = static_cast<double>(k) - half + 1 - back,
                         angle = 2 * std::numbers::pi * cutoff * x;
            const double place = 1 - (x / half) * (x / half);
            const double sinc = std::fabs(x) < 1e-12 ? 1 : std::sin(angle) / angle;
            row[k] = place <= 0 ? 0 : sinc * bessel0(most * place) * scale;
        }
        const double sum = std::accumulate(row.begin(), row.end(), 0.0);
        float* to = table.rows.data() + p * table.taps;
        for (std::size_t k = 0; k < table.taps; ++k) to[k] = static_cast<float>(row[k] / sum);
        // The filter is even: what lies as far behind the next frame is the mirror image.
        std::reverse_copy(to, to + table.taps, table.rows.data() + (table.phases - p) * table.taps);
    }
    if (in == out) {  // exactly the sample: the rounding of sin(k pi) is removed
        for (std::size_t k = 0; k < table.taps; ++k) {
            table.rows[k] = k == table.taps / 2 - 1 ? 1.0f : 0.0f;
            table.rows[table.phases * table.taps + k] = k == table.taps / 2 ? 1.0f : 0.0f;
        }
    }
    return std::make_shared<const ResamplerTable>(std::move(table));
}

std::shared_ptr<const ResamplerTable> tableFor(std::uint32_t in, std::uint32_t out) {
    static std::mutex guard;
    static std::map<std::pair<std::uint32_t, std::uint32_t>, std::shared_ptr<const ResamplerTable>> made;
    const std::uint32_t common = std::gcd(in, out);
    std::lock_guard lock(guard);
    auto& table = made[{in / common, out / common}];
    if (!table) table = makeTable(in / common, out / common);
    return table;
}

}  // namespace

Resampler::Resampler(std::uint32_t inRate, std::uint32_t outRate)
    : inRate_(std::max(inRate, 1u)), outRate_(std::max(outRate, 1u)) {
    table_ = tableFor(inRate_, outRate_);
    setCorrection(0);
    stride_ = 2 * table_->taps + kWindowRoom + 2 * (static_cast<std::size_t>(step_.whole) + 1);
    window_.assign(stride_ * kSides, 0.0f);
    reset();
}

Resampler::~Resampler() = default;

void Resampler::setCorrection(double ppm) {
    constexpr double kMost = 2000, kOne = 18446744073709551616.0;  // 2^64
    correctionPpm_ = std::clamp(ppm, -kMost, kMost);
    step_.whole = inRate_ / outRate_;
    step_.fraction = static_cast<std::uint64_t>((static_cast<Wide>(inRate_ % outRate_) << 64) / outRate_);
    if (correctionPpm_ == 0) return;
    const double change = static_cast<double>(inRate_) / outRate_ * correctionPpm_ * 1e-6;
    const auto size = static_cast<std::uint64_t>(std::min(std::fabs(change), 0.99) * kOne);
    // Taking away is adding the complement and one whole frame less.
    step_ += change >= 0 ? Fixed{0, size} : Fixed{~std::uint64_t{0}, ~size + 1};
}

void Resampler::glide(int direction) {
    constexpr std::uint64_t size = (std::uint64_t{1} << 63) / (kGlideFrames / 2);
    setCorrection(direction * 1e6 / kGlideFrames);
    step_ = direction > 0 ? Fixed{1, size} : Fixed{0, ~size + 1};
}

void Resampler::reset() {
    at_ = {};
    fed_ = 0;
    filled_ = table_->taps / 2;
    for (std::uint32_t c = 0; c < kSides; ++c) std::fill_n(window_.data() + c * stride_, filled_, 0.0f);
}

void Resampler::takeBack(std::size_t frames) {
    frames = std::min(frames, static_cast<std::size_t>(std::max(0.0, held())));
    fed_ -= frames;
    filled_ -= frames;
}

double Resampler::position() const {
    return static_cast<double>(at_.whole) + static_cast<double>(at_.fraction) * 0x1p-64;
}

std::size_t Resampler::inputNeeded(std::size_t outFrames) const {
    if (outFrames == 0) return 0;
    const Wide fraction = static_cast<Wide>(step_.fraction) * (outFrames - 1) + at_.fraction;
    const std::uint64_t last =
        at_.whole + step_.whole * (outFrames - 1) + static_cast<std::uint64_t>(fraction >> 64);
    const std::uint64_t end = last + 1 + (bypassed() ? 0 : table_->taps / 2);
    return end > fed_ ? static_cast<std::size_t>(end - fed_) : 0;
}

std::uint64_t Resampler::framesBefore(std::uint64_t sourceFrame) const {
    const auto wide = [](const Fixed& f) { return (static_cast<Wide>(f.whole) << 64) + f.fraction; };
    const Wide to = static_cast<Wide>(sourceFrame) << 64, at = wide(at_), step = wide(step_);
    // Steps are rounded down to 2^-64 of a frame: their sum lies slightly below the whole frame that is meant.
    constexpr Wide kTrifle = Wide{1} << 32;
    return at + kTrifle >= to ? 0 : static_cast<std::uint64_t>((to - at - kTrifle + step - 1) / step);
}

/// Sides of stereo frames, each to a place of its own.
static void splitSides(const float* in, std::size_t frames, float* left, float* right) {
    using Four = float __attribute__((vector_size(16), aligned(4), may_alias));
    std::size_t i = 0;
    for (; i + 4 <= frames; i += 4) {
        const Four a = *reinterpret_cast<const Four*>(in + 2 * i);
        const Four b = *reinterpret_cast<const Four*>(in + 2 * i + 4);
        *reinterpret_cast<Four*>(left + i) = __builtin_shufflevector(a, b, 0, 2, 4, 6);
        *reinterpret_cast<Four*>(right + i) = __builtin_shufflevector(a, b, 1, 3, 5, 7);
    }
    for (; i < frames; ++i) {
        left[i] = in[2 * i];
        right[i] = in[2 * i + 1];
    }
}

/// Appends frames to the window. When it is full, first drops the oldest frames that no filter reaches any more.
void Resampler::push(const float* in, std::size_t frames) {
    if (filled_ + frames > stride_) {
        const auto behind = static_cast<std::size_t>(fed_ - std::min(fed_, at_.whole));  // still to be heard
        const std::size_t keep = std::min(filled_, behind + table_->taps / 2);
        for (std::uint32_t c = 0; c < kSides; ++c) {
            float* window = window_.data() + c * stride_;
            std::copy(window + filled_ - keep, window + filled_, window);
        }
        filled_ = keep;
    }
    float* const first = window_.data() + filled_;
    splitSides(in, frames, first, first + stride_);
    filled_ += frames;
    fed_ += frames;
}

void Resampler::render(float* out, std::size_t frames) {
    // Frame `whole` of the source is the middle of the window that begins taps / 2 - 1 before it.
    const std::uint64_t first = fed_ - filled_;  // of the window; may lie before 0, the arithmetic wraps
    Conversion c{table_->rows.data(), table_->taps, table_->phases, window_.data(), stride_, kSides, 0,
                 at_.fraction,        step_.whole,  step_.fraction};
    c.whole = at_.whole - first - (table_->taps / 2 - 1);
    if (bypassed()) {
        for (std::size_t i = 0; i < frames; ++i)
            for (std::uint32_t channel = 0; channel < kSides; ++channel)
                *out++ = window_[channel * stride_ + static_cast<std::size_t>(at_.whole - first) + i];
    } else {
        (wideChosen() ? wide::convert : plain::convert)(c, out, frames);
    }
    advance(frames);
}

void Resampler::advance(std::size_t frames) {
    const Wide fraction = static_cast<Wide>(step_.fraction) * frames + at_.fraction;
    at_.whole += step_.whole * frames + static_cast<std::uint64_t>(fraction >> 64);
    at_.fraction = static_cast<std::uint64_t>(fraction);
}

void Resampler::align(std::uint64_t outFrames) { at_.fraction = step_.fraction * outFrames; }

std::size_t Resampler::mostAtOnce() const {
    return std::max<std::size_t>(kWindowRoom / (static_cast<std::size_t>(step_.whole) + 1), 1);
}

std::size_t Resampler::span(std::size_t frames) const {
    if (frames == 0) return 0;
    const Wide last = static_cast<Wide>(step_.fraction) * (frames - 1) + at_.fraction;
    return step_.whole * (frames - 1) + static_cast<std::size_t>(last >> 64) + table_->taps;
}

void Resampler::addWindow(float* sum, std::size_t stride, std::size_t frames, float gain) const {
    const std::uint64_t first = fed_ - filled_;
    const float* from = window_.data() + (at_.whole - first - (table_->taps / 2 - 1));
    for (std::size_t side = 0; side < 2; ++side)
        addScaled(sum + side * stride, from + side * stride_, span(frames), gain);
}

void Resampler::convertWindow(const ResamplerPhase& phase, const float* sum, std::size_t stride,
                              std::span<float> out) {
    const ResamplerTable& table = *phase.table;
    const Conversion c{table.rows.data(), table.taps,      table.phases,      sum, stride, 2, 0,
                       phase.fraction,    phase.stepWhole, phase.stepFraction};
    (wideChosen() ? wide::convert : plain::convert)(c, out.data(), out.size() / 2);
}

void Resampler::process(std::span<const float> in, std::span<float> out) {
    std::size_t wanted = out.size() / kSides;
    const float* from = in.data();
    float* to = out.data();
    if (bypassed() && fed_ == at_.whole) {  // nothing held: only the window's memory has to follow
        std::copy_n(from, wanted * kSides, to);
        const std::size_t tail = std::min(wanted, kWindowRoom);
        fed_ += wanted - tail;
        at_.whole += wanted;
        push(from + (wanted - tail) * kSides, tail);
        return;
    }
    const std::size_t room = mostAtOnce();
    while (wanted > 0) {
        const std::size_t part = std::min(wanted, room);
        const std::size_t need = inputNeeded(part);
        push(from, need);
        from += need * kSides;
        render(to, part);
        to += part * kSides;
        wanted -= part;
    }
}

}  // namespace zv::engine::dsp
