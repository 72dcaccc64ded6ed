// Included by reverb.cpp once a path, inside a namespace of the path's own; no include guard for that reason.

/// One gain of the block: fixed, or on its way from one setting to the next.
template <bool Ramp>
struct Gain {
    float from, way;
    Gain(float a, float b) : from(Ramp ? a : b), way(Ramp ? b - a : 0) {}
    Eight at(Eight t) const { return Ramp ? from + way * t : all(from); }
    float at(float t) const { return Ramp ? from + way * t : from; }
};

/// Splits stereo into what each side sends into the lines.
template <bool Ramp>
void spread(const float* stereo, std::size_t frames, const Block& block, float* left, float* right) {
    const Gain<Ramp> in(block.from->send, block.to->send);
    std::size_t i = 0;
    for (; i + 8 <= frames; i += 8) {
        const Eight a = load(stereo + 2 * i), b = load(stereo + 2 * i + 8), g = in.at(load(block.way + i));
        store(left + i, evens(a, b) * g);
        store(right + i, odds(a, b) * g);
    }
    for (; i < frames; ++i) {
        left[i] = stereo[2 * i] * in.at(block.way[i]);
        right[i] = stereo[2 * i + 1] * in.at(block.way[i]);
    }
}

/// y = z + g w, w = x - g z: flat in level, dense in time. `z` is the delay's own memory: what comes out of
/// it is replaced by what goes in.
void diffuse(float* x, float* z, std::size_t frames) {
    constexpr float kAllpass = 0.5f;
    std::size_t i = 0;
    for (; i + 8 <= frames; i += 8) {
        const Eight delayed = load(z + i);
        const Eight w = load(x + i) - kAllpass * delayed;
        store(z + i, w);
        store(x + i, delayed + kAllpass * w);
    }
    for (; i < frames; ++i) {
        const float delayed = z[i];
        const float w = x[i] - kAllpass * delayed;
        z[i] = w;
        x[i] = delayed + kAllpass * w;
    }
}

/// One turn of the eight lines, `frames` a multiple of 8. The sides bring the diffused input and take the wet
/// sound; the lines' memory is replaced as in diffuse().
template <bool Ramp>
void network(const Run& run, std::size_t frames, const Block& block) {
    constexpr float kHadamard = 0.35355339f;  // 1 / sqrt(8)
    Eight former[8];
    for (std::size_t k = 0; k < 8; ++k) {
        former[k] = all(run.last[k]);
    }
    for (std::size_t i = 0; i < frames; i += 8) {
        const Eight t = load(run.way + i);
        Eight y[8];
#pragma GCC unroll 8
        for (std::size_t k = 0; k < 8; ++k) {
            const Eight now = load(run.line[k] + i);
            const Eight before = delayed(former[k], now);
            const Eight c = Gain<Ramp>(block.from->damp[k], block.to->damp[k]).at(t);
            const Eight g = Gain<Ramp>(block.from->line[k], block.to->line[k]).at(t);
            former[k] = now;
            y[k] = (now + (before - now) * c) * g;
        }
        const Eight left = load(run.left + i), right = load(run.right + i);
        store(run.left + i, (y[0] - y[2]) + (y[4] - y[6]));
        store(run.right + i, (y[1] - y[3]) + (y[5] - y[7]));
#pragma GCC unroll 3
        for (std::size_t span = 1; span < 8; span *= 2) {
#pragma GCC unroll 8
            for (std::size_t k = 0; k < 8; ++k) {
                if ((k & span) != 0) continue;
                const Eight a = y[k], b = y[k + span];
                y[k] = a + b;
                y[k + span] = a - b;
            }
        }
#pragma GCC unroll 8
        for (std::size_t k = 0; k < 8; ++k)
            store(run.line[k] + i, y[k] * kHadamard + (k % 2 == 0 ? left : right));
    }
}

template <bool Ramp>
void blend(float* stereo, std::size_t frames, const Block& block, const float* wetLeft,
           const float* wetRight) {
    const Gain<Ramp> wet(block.from->wet, block.to->wet), dry(block.from->dry, block.to->dry);
    std::size_t i = 0;
    for (; i + 8 <= frames; i += 8) {
        const Eight t = load(block.way + i);
        const Eight g = wet.at(t), d = dry.at(t);
        const Eight l = load(wetLeft + i) * g, r = load(wetRight + i) * g;
        const Eight wetLow = zipLow(l, r);
        const Eight wetHigh = zipHigh(l, r);
        const Eight dryLow = zipLow(d, d);
        const Eight dryHigh = zipHigh(d, d);
        store(stereo + 2 * i, load(stereo + 2 * i) * dryLow + wetLow);
        store(stereo + 2 * i + 8, load(stereo + 2 * i + 8) * dryHigh + wetHigh);
    }
    for (; i < frames; ++i) {
        const float t = block.way[i];
        const float g = wet.at(t), d = dry.at(t);
        stereo[2 * i] = stereo[2 * i] * d + wetLeft[i] * g;
        stereo[2 * i + 1] = stereo[2 * i + 1] * d + wetRight[i] * g;
    }
}
