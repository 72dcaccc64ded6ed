// Included by mix.cpp once a path, inside a namespace of the path's own; no include guard for that reason.

void add1(float* out, const float* a, std::size_t samples, float ga) {
    std::size_t i = 0;
    for (; i + 8 <= samples; i += 8) store(out + i, load(out + i) + load(a + i) * ga);
    for (; i < samples; ++i) out[i] = out[i] + a[i] * ga;
}

void add2(float* out, const float* a, const float* b, std::size_t samples, float ga, float gb) {
    std::size_t i = 0;
    for (; i + 8 <= samples; i += 8) store(out + i, (load(out + i) + load(a + i) * ga) + load(b + i) * gb);
    for (; i < samples; ++i) out[i] = (out[i] + a[i] * ga) + b[i] * gb;
}

/// Frames ahead at which the same sounds are prefetched: with a hundred sounds in turn the processor does not
/// foresee them by itself.
constexpr std::size_t kNextBlock = 512;  // samples

inline void askForNext(const float* a, const float* b, const float* c, const float* d, std::size_t sample) {
    __builtin_prefetch(a + sample + kNextBlock);
    __builtin_prefetch(b + sample + kNextBlock);
    __builtin_prefetch(c + sample + kNextBlock);
    __builtin_prefetch(d + sample + kNextBlock);
}

void add4(float* out, const MixSource* s, std::size_t frames) {
    const float *a = s[0].frames, *b = s[1].frames, *c = s[2].frames, *d = s[3].frames;
    const float ga = s[0].fixedGain(), gb = s[1].fixedGain(), gc = s[2].fixedGain(), gd = s[3].fixedGain();
    const std::size_t samples = 2 * frames;
    std::size_t i = 0;
    for (; i + 8 <= samples; i += 8) {
        if (i % 16 == 0) askForNext(a, b, c, d, i);
        Eight v = load(out + i) + load(a + i) * ga;
        v = v + load(b + i) * gb;
        v = v + load(c + i) * gc;
        store(out + i, v + load(d + i) * gd);
    }
    for (; i < samples; ++i) out[i] = (((out[i] + a[i] * ga) + b[i] * gb) + c[i] * gc) + d[i] * gd;
}

/// Gains of four frames of a ramp, each for both sides.
inline Eight rampGains(const GainRamp& r, double at) {
    const Double4 index = at + Double4{0, 1, 2, 3};
    return pairs(__builtin_convertvector(r.from + r.step * index, Float4));
}

inline Eight pairGains(const float* g) {
    Float4 v;
    __builtin_memcpy(&v, g, sizeof v);
    return pairs(v);
}

template <bool Add, typename Gains, typename Gain>
inline void shaped(float* out, const float* in, std::size_t frames, Gains four, Gain one) {
    std::size_t i = 0;
    for (; i + 4 <= frames; i += 4) {
        const Eight v = load(in + 2 * i) * four(i);
        store(out + 2 * i, Add ? load(out + 2 * i) + v : v);
    }
    for (; i < frames; ++i) {
        const float g = one(i);
        for (std::size_t side = 0; side < 2; ++side) {
            const float v = in[2 * i + side] * g;
            out[2 * i + side] = Add ? out[2 * i + side] + v : v;
        }
    }
}

template <bool Add>
void ramped(float* out, const float* in, std::size_t frames, const GainRamp& r) {
    const double at = static_cast<double>(r.at);
    shaped<Add>(
        out, in, frames, [&](std::size_t i) { return rampGains(r, at + static_cast<double>(i)); },
        [&](std::size_t i) { return r.value(i); });
}

template <bool Add>
void gained(float* out, const float* in, std::size_t frames, const float* gains) {
    shaped<Add>(
        out, in, frames, [&](std::size_t i) { return pairGains(gains + i); },
        [&](std::size_t i) { return gains[i]; });
}

/// One source, times its gains: four frames a call, each sample for its side.
template <bool Mono>
struct Feed {
    const float* from;
    const float before;
    const GainRamp ramp;
    Double4 index;
    explicit Feed(const MixSource& s)
        : from(s.frames),
          before(s.before),
          ramp(s.gain),
          index(static_cast<double>(s.gain.at) + Double4{0, 1, 2, 3}) {}
    inline Eight four(std::size_t i) {
        const Eight gains = pairs(__builtin_convertvector(ramp.from + ramp.step * index, Float4));
        index = index + 4.0;
        if constexpr (Mono) {
            Float4 v;
            __builtin_memcpy(&v, from + i, sizeof v);
            return pairs(v) * before * gains;
        } else {
            return load(from + 2 * i) * before * gains;
        }
    }
    inline float one(std::size_t i, std::size_t side) const {
        return from[Mono ? i : 2 * i + side] * before * ramp.value(i);
    }
};

template <bool Mono>
inline void gained4(float* out, const MixSource* s, std::size_t frames) {
    Feed<Mono> a(s[0]), b(s[1]), c(s[2]), d(s[3]);
    std::size_t i = 0;
    for (; i + 4 <= frames; i += 4) {
        if (i % 8 == 0) askForNext(a.from, b.from, c.from, d.from, Mono ? i : 2 * i);
        Eight v = load(out + 2 * i) + a.four(i);
        v = v + b.four(i);
        v = v + c.four(i);
        store(out + 2 * i, v + d.four(i));
    }
    for (; i < frames; ++i)
        for (std::size_t side = 0; side < 2; ++side) {
            float& sum = out[2 * i + side];
            sum = (((sum + a.one(i, side)) + b.one(i, side)) + c.one(i, side)) + d.one(i, side);
        }
}

template <bool Mono>
inline void gained1(float* out, const MixSource& s, std::size_t frames) {
    Feed<Mono> a(s);
    std::size_t i = 0;
    for (; i + 4 <= frames; i += 4) store(out + 2 * i, load(out + 2 * i) + a.four(i));
    for (; i < frames; ++i)
        for (std::size_t side = 0; side < 2; ++side) out[2 * i + side] = out[2 * i + side] + a.one(i, side);
}

void addGained4(float* out, const MixSource* s, std::size_t frames) { gained4<false>(out, s, frames); }
void addGained1(float* out, const MixSource& s, std::size_t frames) { gained1<false>(out, s, frames); }
void addMono4(float* out, const MixSource* s, std::size_t frames) { gained4<true>(out, s, frames); }
void addMono1(float* out, const MixSource& s, std::size_t frames) { gained1<true>(out, s, frames); }

/// One source with a gain a frame.
struct CurvedFeed {
    const float *from, *gains;
    const float before;
    explicit CurvedFeed(const MixSource& s) : from(s.frames), gains(s.gains), before(s.before) {}
    inline Eight four(std::size_t i) const { return load(from + 2 * i) * before * pairGains(gains + i); }
    inline float one(std::size_t i, std::size_t side) const { return from[2 * i + side] * before * gains[i]; }
};

void addCurved4(float* out, const MixSource* s, std::size_t frames) {
    const CurvedFeed a(s[0]), b(s[1]), c(s[2]), d(s[3]);
    std::size_t i = 0;
    for (; i + 4 <= frames; i += 4) {
        if (i % 8 == 0) askForNext(a.from, b.from, c.from, d.from, 2 * i);
        store(out + 2 * i, (((load(out + 2 * i) + a.four(i)) + b.four(i)) + c.four(i)) + d.four(i));
    }
    for (; i < frames; ++i)
        for (std::size_t side = 0; side < 2; ++side) {
            float& sum = out[2 * i + side];
            sum = (((sum + a.one(i, side)) + b.one(i, side)) + c.one(i, side)) + d.one(i, side);
        }
}

void addCurved1(float* out, const MixSource& s, std::size_t frames) {
    const CurvedFeed a(s);
    std::size_t i = 0;
    for (; i + 4 <= frames; i += 4) store(out + 2 * i, load(out + 2 * i) + a.four(i));
    for (; i < frames; ++i)
        for (std::size_t side = 0; side < 2; ++side) out[2 * i + side] = out[2 * i + side] + a.one(i, side);
}

void powered(float* out, const GainCurve& curve, double base, std::size_t place, std::size_t count) {
    constexpr std::size_t kFine = GainCurve::kFine;
    const auto four = [&curve](std::size_t first) {
        Double4 v;
        __builtin_memcpy(&v, curve.fine.data() + first, sizeof v);
        return v;
    };
    const Double4 fine[kFine / 4] = {four(0), four(4), four(8), four(12)};
    for (std::size_t i = 0; i < count;) {
        const double step = base * curve.coarse[place / kFine];
        std::size_t part = 0;
        if (place % kFine == 0 && count - i >= kFine) {
#pragma GCC unroll 4
            for (std::size_t k = 0; k < kFine / 4; ++k) {
                const Float4 g = __builtin_convertvector(step * fine[k], Float4);
                __builtin_memcpy(out + i + 4 * k, &g, sizeof g);
            }
            part = kFine;
        } else {
            for (; part < count - i && (part == 0 || (place + part) % kFine != 0); ++part)
                out[i + part] = static_cast<float>(step * curve.fine[(place + part) % kFine]);
        }
        i += part;
        place += part;
        if (place < GainCurve::kSpan) continue;
        place = 0;
        base *= curve.ratio;
    }
}

void scaled(float* out, const float* in, std::size_t count, float gain) {
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) store(out + i, load(in + i) * gain);
    for (; i < count; ++i) out[i] = in[i] * gain;
}

void harmless(float* samples, std::size_t count, float loudest) {
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        const Eight v = load(samples + i);
        store(samples + i, chosen(notAbove(sizes(v), all(loudest)), v, all(0)));
    }
    for (; i < count; ++i)
        if (!(samples[i] <= loudest && samples[i] >= -loudest)) samples[i] = 0;
}
