// Included by two_paths.h for peak_eq.cpp, once a path; no include guard for that reason.

/// Four bands, of the left side in the lower half and of the right one in the upper.
struct Four {
    Eight i1, i2, y;
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
    s.y = c.g * in + (c.c1 * s.i1 - c.c2 * s.i2);
    const Eight d = in - s.i2;
    s.i2 = (s.i2 + c.q * s.i1) + c.b * d;
    s.i1 = c.p * s.i1 + c.q * d;
}

/// Lanes outside `valid` keep their memory: their frame lies before or behind the block.
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

/// Every band hands on to the next, a frame later.
template <bool Ramp>
void filter(EqGroup& group, float* stereo, std::size_t frames) {
    constexpr std::int32_t kLast = 7, kHalf = 4;
    const auto count = static_cast<std::int32_t>(frames);
    Coefficients lowC = getAll(group.now, 0), highC = getAll(group.now, kHalf);
    const Coefficients lowD = Ramp ? getAll(group.step, 0) : Coefficients{};
    const Coefficients highD = Ramp ? getAll(group.step, kHalf) : Coefficients{};
    Four low{get(group.left.i1, group.right.i1, 0), get(group.left.i2, group.right.i2, 0), Eight{}};
    Four high{get(group.left.i1, group.right.i1, kHalf), get(group.left.i2, group.right.i2, kHalf), Eight{}};

    const auto partial = [&](std::int32_t t) {
        const Mask lowValid = foursOf(t - count + 1, t + 1);
        const Mask highValid = foursOf(t - count + 1 - kHalf, t + 1 - kHalf);
        const Eight in = t < count ? sidesOf(stereo + 2 * t) : Eight{};
        step(high, handedOn(low.y, high.y), highC, highValid);
        step(low, handedOn(in, low.y), lowC, lowValid);
        if (Ramp) advance(lowC, lowD, lowValid), advance(highC, highD, highValid);
        if (t >= kLast) storeSides(stereo + 2 * (t - kLast), high.y);
    };
    std::int32_t t = 0;
    for (; t < kLast; ++t) partial(t);
    for (; t < count; ++t) {
        const Eight in = sidesOf(stereo + 2 * t);
        step(high, handedOn(low.y, high.y), highC);
        step(low, handedOn(in, low.y), lowC);
        if (Ramp) advance(lowC, lowD), advance(highC, highD);
        storeSides(stereo + 2 * (t - kLast), high.y);
    }
    for (; t < count + kLast; ++t) partial(t);

    storeHalves(group.left.i1.data(), group.right.i1.data(), low.i1);
    storeHalves(group.left.i2.data(), group.right.i2.data(), low.i2);
    storeHalves(group.left.i1.data() + kHalf, group.right.i1.data() + kHalf, high.i1);
    storeHalves(group.left.i2.data() + kHalf, group.right.i2.data() + kHalf, high.i2);
    if (Ramp) {
        putAll(group.now, 0, lowC);
        putAll(group.now, kHalf, highC);
    }
}
