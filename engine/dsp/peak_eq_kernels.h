// Included by two_paths.h for peak_eq.cpp, once a path; no include guard for that reason.

/// Four bands, of the left side in the lower half and of the right one in the upper. `before` is y of the step
/// before.
struct Four {
    Eight i1, i2, y, before;
};

struct Coefficients {
    Eight p, q, b, g, c1, c2;
};

inline Eight get(const EqGroup::Lanes& left, const EqGroup::Lanes& right, std::size_t first) {
    return loadHalves(left.data() + first, right.data() + first);
}

inline Coefficients getAll(const EqGroup::Table& t, std::size_t first) {
    const auto both = [&](std::size_t k) { return get(t[k], t[k], first); };
    return {both(EqGroup::kP), both(EqGroup::kQ),  both(EqGroup::kB),
            both(EqGroup::kG), both(EqGroup::kC1), both(EqGroup::kC2)};
}

inline void putAll(EqGroup::Table& t, std::size_t first, const Coefficients& c) {
    const Eight all[] = {c.p, c.q, c.b, c.g, c.c1, c.c2};
    for (std::size_t k = 0; k < EqGroup::kCoefficients; ++k)
        storeHalves(t[k].data() + first, t[k].data() + first, all[k]);
}

inline void step(Four& s, Eight in, const Coefficients& c) {
    s.before = s.y;
    s.y = (c.g * in + c.c1 * s.i1) - c.c2 * s.i2;
    const Eight d = in - s.i2;
    s.i2 = (s.i2 + c.q * s.i1) + c.b * d;
    s.i1 = c.p * s.i1 + c.q * d;
}

/// Lanes outside `valid` keep their state: their frame lies before or behind the block.
inline void step(Four& s, Eight in, const Coefficients& c, Mask valid) {
    const Eight i1 = s.i1, i2 = s.i2;
    step(s, in, c);
    s.i1 = chosen(valid, s.i1, i1);
    s.i2 = chosen(valid, s.i2, i2);
}

inline void advance(Coefficients& c, const Coefficients& d) {
    c.p = c.p + d.p;
    c.q = c.q + d.q;
    c.b = c.b + d.b;
    c.g = c.g + d.g;
    c.c1 = c.c1 + d.c1;
    c.c2 = c.c2 + d.c2;
}

inline void advance(Coefficients& c, const Coefficients& d, Mask valid) {
    Coefficients n = c;
    advance(n, d);
    c = {chosen(valid, n.p, c.p), chosen(valid, n.q, c.q),   chosen(valid, n.b, c.b),
         chosen(valid, n.g, c.g), chosen(valid, n.c1, c.c1), chosen(valid, n.c2, c.c2)};
}

/// Each band takes what the band before it gave two steps ago: with one step the processor would wait for each sum.
/// In each step first the four bands with even numbers are computed, then the four with odd ones.
template <bool Ramp>
void filter(EqGroup& group, float* stereo, std::size_t frames) {
    constexpr std::int32_t kLate = 2, kLast = 7 * kLate, kHalf = 4;
    const auto count = static_cast<std::int32_t>(frames);
    Coefficients evenC = getAll(group.now, 0), oddC = getAll(group.now, kHalf);
    const Coefficients evenD = Ramp ? getAll(group.step, 0) : Coefficients{};
    const Coefficients oddD = Ramp ? getAll(group.step, kHalf) : Coefficients{};
    const auto remembered = [&group](std::size_t first) {
        return Four{get(group.left.i1, group.right.i1, first), get(group.left.i2, group.right.i2, first),
                    Eight{}, Eight{}};
    };
    Four even = remembered(0), odd = remembered(kHalf);

    // Inlined: called, it would keep what it changes in memory, and the loop between its calls with it.
    const auto partial = [&](std::int32_t t) __attribute__((always_inline)) {
        const Mask evenValid = foursOf(2 * kLate, t - count + 1, t + 1);
        const Mask oddValid = foursOf(2 * kLate, t - count + 1 - kLate, t + 1 - kLate);
        const Eight in = t < count ? sidesOf(stereo + 2 * t) : Eight{}, on = even.before;
        step(even, handedOn(in, odd.before), evenC, evenValid);
        step(odd, on, oddC, oddValid);
        if (Ramp) advance(evenC, evenD, evenValid), advance(oddC, oddD, oddValid);
        if (t >= kLast) storeSides(stereo + 2 * (t - kLast), odd.y);
    };
    std::int32_t t = 0;
    for (; t < kLast; ++t) partial(t);
    for (; t < count; ++t) {
        const Eight in = sidesOf(stereo + 2 * t), on = even.before;
        step(even, handedOn(in, odd.before), evenC);
        step(odd, on, oddC);
        if (Ramp) advance(evenC, evenD), advance(oddC, oddD);
        storeSides(stereo + 2 * (t - kLast), odd.y);
    }
    for (; t < count + kLast; ++t) partial(t);

    storeHalves(group.left.i1.data(), group.right.i1.data(), even.i1);
    storeHalves(group.left.i2.data(), group.right.i2.data(), even.i2);
    storeHalves(group.left.i1.data() + kHalf, group.right.i1.data() + kHalf, odd.i1);
    storeHalves(group.left.i2.data() + kHalf, group.right.i2.data() + kHalf, odd.i2);
    if (Ramp) {
        putAll(group.now, 0, evenC);
        putAll(group.now, kHalf, oddC);
    }
}
