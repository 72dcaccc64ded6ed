// Included by two_paths.h for reverb.cpp, once a path; no include guard for that reason.

/// One gain of the block: fixed, or on its way from one setting to the next.
template <bool Ramp>
struct Gain {
    Eight from{};
    float way = 0;
    Gain() = default;
    Gain(float a, float b) : from(all(Ramp ? a : b)), way(Ramp ? b - a : 0) {}
    Eight at(Eight t) const { return Ramp ? from + way * t : from; }
};

/// Reads `groups` times eight frames from the delays and writes the new ones in their place. With Part, only the first
/// `lanes` frames of one group; the delays keep what lies behind those.
template <bool Ramp, bool Part>
void network(const Run& from, std::size_t groups, std::int32_t lanes) {
    constexpr float kAllpass = 0.5f;          // of a diffuser: flat in level, dense in time
    constexpr float kHadamard = 0.35355339f;  // 1 / sqrt(8)
    const Run run = from;                     // a copy, which no store below can change
    const Mask valid = lanesOf(0, lanes);
    const ReverbGains &a = *run.from, &b = *run.to;
    const Gain<Ramp> send(a.send, b.send), wet(a.wet, b.wet), dry(a.dry, b.dry);
    Gain<Ramp> damp[kLines], fall[kLines];
    for (std::size_t k = 0; k < kLines; ++k) {
        damp[k] = Gain<Ramp>(a.damp[k], b.damp[k]);
        fall[k] = Gain<Ramp>(a.line[k], b.line[k]);
    }

    for (std::size_t group = 0; group < groups; ++group) {
        const std::size_t i = 8 * group;
        const Eight t =
            Ramp ? (static_cast<float>(run.rampAt + i) + counting()) / static_cast<float>(run.rampFrames)
                 : Eight{};
        const Eight low = load(run.stereo + 2 * i), high = load(run.stereo + 2 * i + 8);
        Eight side[2] = {evens(low, high) * send.at(t), odds(low, high) * send.at(t)};
#pragma GCC unroll 2
        for (std::size_t s = 0; s < 2; ++s) {
#pragma GCC unroll 3
            for (std::size_t k = 0; k < kDiffusers; ++k) {
                const float* const p = run.diffuser[s][k] + i;
                const Eight then = load(p), w = side[s] - kAllpass * then;
                store(run.diffused[s][k] + i, w);
                side[s] = then + kAllpass * w;
            }
        }
        Eight y[kLines];
#pragma GCC unroll 8
        for (std::size_t k = 0; k < kLines; ++k) {
            const Eight before = load(run.line[k] + i), now = load(run.line[k] + i + 1);
            y[k] = (now + (before - now) * damp[k].at(t)) * fall[k].at(t);
        }
        const Eight l = ((y[0] - y[2]) + (y[4] - y[6])) * wet.at(t),
                    r = ((y[1] - y[3]) + (y[5] - y[7])) * wet.at(t);
        const Eight d = dry.at(t);
        store(run.stereo + 2 * i, low * zipLow(d, d) + zipLow(l, r));
        store(run.stereo + 2 * i + 8, high * zipHigh(d, d) + zipHigh(l, r));
#pragma GCC unroll 3
        for (std::size_t span = 1; span < kLines; span *= 2) {
#pragma GCC unroll 8
            for (std::size_t k = 0; k < kLines; ++k) {
                if ((k & span) != 0) continue;
                const Eight p = y[k], q = y[k + span];
                y[k] = p + q;
                y[k + span] = p - q;
            }
        }
#pragma GCC unroll 8
        for (std::size_t k = 0; k < kLines; ++k) {
            float* const p = run.line[k] + i;
            const Eight in = y[k] * kHadamard + side[k % 2];
            store(p, Part ? chosen(valid, in, load(p)) : in);
        }
    }
}
