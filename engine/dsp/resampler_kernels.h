// Included by resampler.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

/// One frame of both sides: the products of window and row, still to be summed up. `taps` is a multiple of 16.
inline void products(const Conversion& c, std::uint64_t whole, std::uint64_t fraction, Eight& left,
                     Eight& right) {
    constexpr float kNearly = 1.0f / (1 << 20);  // closer to a phase than this is that phase
    const Wide product = static_cast<Wide>(fraction) * c.phases;
    const auto phase = static_cast<std::size_t>(product >> 64);
    const float f = static_cast<float>(static_cast<std::uint64_t>(product) >> 40) * (1.0f / (1 << 24));
    const float* row = c.rows + (f > 1 - kNearly ? phase + 1 : phase) * c.taps;
    const float* x = c.window + whole;
    const float* y = x + c.otherSide;
    Eight l0{}, l1{}, r0{}, r1{};
    if (f < kNearly || f > 1 - kNearly) {
        for (std::size_t k = 0; k < c.taps; k += 16) {
            const Eight g = load(row + k), h = load(row + k + 8);
            l0 = l0 + load(x + k) * g;
            l1 = l1 + load(x + k + 8) * h;
            r0 = r0 + load(y + k) * g;
            r1 = r1 + load(y + k + 8) * h;
        }
    } else {
        const float* next = row + c.taps;
        for (std::size_t k = 0; k < c.taps; k += 16) {
            const Eight a = load(row + k), b = load(row + k + 8);
            const Eight g = a + (load(next + k) - a) * f, h = b + (load(next + k + 8) - b) * f;
            l0 = l0 + load(x + k) * g;
            l1 = l1 + load(x + k + 8) * h;
            r0 = r0 + load(y + k) * g;
            r1 = r1 + load(y + k + 8) * h;
        }
    }
    left = l0 + l1;
    right = r0 + r1;
}

/// Two sides that lie `otherSide` apart; of a single one both are the same.
void convertPair(const Conversion& c, float* out, std::size_t frames, std::size_t stride, std::size_t sides) {
    std::uint64_t whole = c.whole, fraction = c.fraction;
    std::size_t i = 0;
    const auto step = [&] {
        fraction += c.stepFraction;
        whole += c.stepWhole + (fraction < c.stepFraction ? 1 : 0);
    };
    if (stride == 2 && sides == 2) {
        for (; i + 4 <= frames; i += 4) {
            Eight v[8];
            for (std::size_t k = 0; k < 8; k += 2) {
                products(c, whole, fraction, v[k], v[k + 1]);
                step();
            }
            store(out + 2 * i, sumsOf(v));
        }
    }
    for (; i < frames; ++i, step()) {
        Eight left, right;
        products(c, whole, fraction, left, right);
        out[stride * i] = sumOf(left);
        if (sides == 2) out[stride * i + 1] = sumOf(right);
    }
}

void convert(Conversion c, float* out, std::size_t frames) {
    for (std::uint32_t channel = 0; channel < c.channels; channel += 2) {
        const std::size_t sides = std::min(c.channels - channel, 2U);
        c.otherSide = sides == 2 ? c.stride : 0;
        convertPair(c, out + channel, frames, c.channels, sides);
        c.window += 2 * c.stride;
    }
}
