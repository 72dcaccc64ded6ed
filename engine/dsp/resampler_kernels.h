// Included by resampler.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

/// `taps` is a multiple of 16.
inline float dot(const float* x, const float* row, std::size_t taps) {
    Eight a{}, b{};
    for (std::size_t k = 0; k < taps; k += 16) {
        a = a + load(x + k) * load(row + k);
        b = b + load(x + k + 8) * load(row + k + 8);
    }
    return sumOf(a + b);
}

/// The same frames through two neighbouring phases, `f` of the way from one to the other.
inline float dotBetween(const float* x, const float* row, const float* next, std::size_t taps, float f) {
    Eight a{}, b{};
    for (std::size_t k = 0; k < taps; k += 8) {
        const Eight v = load(x + k);
        a = a + v * load(row + k);
        b = b + v * load(next + k);
    }
    const float low = sumOf(a), high = sumOf(b);
    return low + f * (high - low);
}

void convert(const Conversion& c, float* out, std::size_t frames) {
    constexpr float kNearly = 1.0f / (1 << 20);  // closer to a phase than this is that phase
    std::uint64_t whole = c.whole, fraction = c.fraction;
    for (std::size_t i = 0; i < frames; ++i) {
        const Wide product = static_cast<Wide>(fraction) * c.phases;
        const auto phase = static_cast<std::size_t>(product >> 64);
        const float f = static_cast<float>(static_cast<std::uint64_t>(product) >> 40) * (1.0f / (1 << 24));
        const float* row = c.rows + phase * c.taps;
        const float* next = row + c.taps;
        const float* x = c.window + whole;
        for (std::uint32_t channel = 0; channel < c.channels; ++channel, x += c.stride)
            *out++ = f < kNearly       ? dot(x, row, c.taps)
                     : f > 1 - kNearly ? dot(x, next, c.taps)
                                       : dotBetween(x, row, next, c.taps, f);
        fraction += c.stepFraction;
        whole += c.stepWhole + (fraction < c.stepFraction ? 1 : 0);
    }
}
