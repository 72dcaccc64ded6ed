// Included by reverb.cpp once a path, inside a namespace of the path's own; no include guard for that reason.

inline Float8 load(const float* p) { return *reinterpret_cast<const Float8Memory*>(p); }
inline void store(float* p, Float8 v) { *reinterpret_cast<Float8Memory*>(p) = v; }

/// One gain of the block: fixed, or on its way from one setting to the next.
template <bool Ramp>
struct Gain {
    float from, way;
    Gain(float a, float b) : from(Ramp ? a : b), way(Ramp ? b - a : 0) {}
    Float8 at(Float8 t) const { return Ramp ? from + way * t : from + Float8{}; }
    float at(float t) const { return Ramp ? from + way * t : from; }
};

/// Splits stereo into what each side sends into the lines.
template <bool Ramp>
void spread(const float* stereo, std::size_t frames, const Block& block, float* left, float* right) {
    const Gain<Ramp> in(block.from->send, block.to->send);
    std::size_t i = 0;
    for (; i + 8 <= frames; i += 8) {
        const Float8 a = load(stereo + 2 * i), b = load(stereo + 2 * i + 8), g = in.at(load(block.way + i));
        store(left + i, __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14) * g);
        store(right + i, __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15) * g);
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
        const Float8 delayed = load(z + i);
        const Float8 w = load(x + i) - kAllpass * delayed;
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
    Float8 former[8];
    for (std::size_t k = 0; k < 8; ++k) {
        former[k] = Float8{};
        former[k][7] = run.last[k];
    }
    for (std::size_t i = 0; i < frames; i += 8) {
        const Float8 t = load(run.way + i);
        Float8 y[8];
#pragma GCC unroll 8
        for (std::size_t k = 0; k < 8; ++k) {
            const Float8 now = load(run.line[k] + i);
            const Float8 before = __builtin_shufflevector(former[k], now, 7, 8, 9, 10, 11, 12, 13, 14);
            const Float8 c = Gain<Ramp>(block.from->damp[k], block.to->damp[k]).at(t);
            const Float8 g = Gain<Ramp>(block.from->line[k], block.to->line[k]).at(t);
            former[k] = now;
            y[k] = (now + (before - now) * c) * g;
        }
        const Float8 left = load(run.left + i), right = load(run.right + i);
        store(run.left + i, (y[0] - y[2]) + (y[4] - y[6]));
        store(run.right + i, (y[1] - y[3]) + (y[5] - y[7]));
#pragma GCC unroll 3
        for (std::size_t span = 1; span < 8; span *= 2) {
#pragma GCC unroll 8
            for (std::size_t k = 0; k < 8; ++k) {
                if ((k & span) != 0) continue;
                const Float8 a = y[k], b = y[k + span];
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
        const Float8 t = load(block.way + i);
        const Float8 g = wet.at(t), d = dry.at(t);
        const Float8 l = load(wetLeft + i) * g, r = load(wetRight + i) * g;
        const Float8 wetLow = __builtin_shufflevector(l, r, 0, 8, 1, 9, 2, 10, 3, 11);
        const Float8 wetHigh = __builtin_shufflevector(l, r, 4, 12, 5, 13, 6, 14, 7, 15);
        const Float8 dryLow = __builtin_shufflevector(d, d, 0, 0, 1, 1, 2, 2, 3, 3);
        const Float8 dryHigh = __builtin_shufflevector(d, d, 4, 4, 5, 5, 6, 6, 7, 7);
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
