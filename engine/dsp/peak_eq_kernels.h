// Included by peak_eq.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

struct Side {
    Float8 s1, s2, y;
};

struct Coefficients {
    Float8 b0, b1, b2, a1, a2;
};

inline Float8 get(const EqGroup::Lanes& lanes) {
    return *reinterpret_cast<const Float8Memory*>(lanes.data());
}
inline void put(EqGroup::Lanes& lanes, Float8 v) { *reinterpret_cast<Float8Memory*>(lanes.data()) = v; }

inline Coefficients getAll(const std::array<EqGroup::Lanes, EqGroup::kCoefficients>& c) {
    return {get(c[EqGroup::kB0]), get(c[EqGroup::kB1]), get(c[EqGroup::kB2]), get(c[EqGroup::kA1]),
            get(c[EqGroup::kA2])};
}

/// Every lane hands its result to the next; lane 0 gets `x`.
inline Float8 shifted(Float8 y, float x) {
    const Float8 v = __builtin_shufflevector(y, y, 7, 0, 1, 2, 3, 4, 5, 6);
    const Float8 first{x, x, x, x, x, x, x, x};
    return __builtin_shufflevector(v, first, 8, 1, 2, 3, 4, 5, 6, 7);
}

inline void step(Side& side, float x, const Coefficients& c) {
    const Float8 in = shifted(side.y, x);
    side.y = c.b0 * in + side.s1;
    side.s1 = (c.b1 * in + side.s2) - c.a1 * side.y;
    side.s2 = c.b2 * in - c.a2 * side.y;
}

/// Lanes outside `valid` keep their memory: their frame lies before or behind the block.
inline void step(Side& side, float x, const Coefficients& c, Int8 valid) {
    const Float8 s1 = side.s1, s2 = side.s2;
    step(side, x, c);
    side.s1 = valid ? side.s1 : s1;
    side.s2 = valid ? side.s2 : s2;
}

inline void advance(Coefficients& c, const Coefficients& d) {
    c.b0 = c.b0 + d.b0;
    c.b1 = c.b1 + d.b1;
    c.b2 = c.b2 + d.b2;
    c.a1 = c.a1 + d.a1;
    c.a2 = c.a2 + d.a2;
}

inline void advance(Coefficients& c, const Coefficients& d, Int8 valid) {
    Coefficients n = c;
    advance(n, d);
    c = {valid ? n.b0 : c.b0, valid ? n.b1 : c.b1, valid ? n.b2 : c.b2, valid ? n.a1 : c.a1,
         valid ? n.a2 : c.a2};
}

template <bool Ramp>
void filter(EqGroup& group, float* stereo, std::size_t frames) {
    constexpr std::int32_t kLast = 7;
    const auto count = static_cast<std::int32_t>(frames);
    const Int8 lane{0, 1, 2, 3, 4, 5, 6, 7};
    Coefficients c = getAll(group.now);
    const Coefficients d = Ramp ? getAll(group.step) : Coefficients{};
    Side left{get(group.left.s1), get(group.left.s2), Float8{}};
    Side right{get(group.right.s1), get(group.right.s2), Float8{}};

    const auto partial = [&](std::int32_t t) {
        const Int8 valid = (lane <= t) & (lane > t - count);
        const bool more = t < count;
        step(left, more ? stereo[2 * t] : 0.0f, c, valid);
        step(right, more ? stereo[2 * t + 1] : 0.0f, c, valid);
        if (Ramp) advance(c, d, valid);
        if (t >= kLast) {
            stereo[2 * (t - kLast)] = left.y[kLast];
            stereo[2 * (t - kLast) + 1] = right.y[kLast];
        }
    };
    std::int32_t t = 0;
    for (; t < kLast; ++t) partial(t);
    for (; t < count; ++t) {
        step(left, stereo[2 * t], c);
        step(right, stereo[2 * t + 1], c);
        if (Ramp) advance(c, d);
        stereo[2 * (t - kLast)] = left.y[kLast];
        stereo[2 * (t - kLast) + 1] = right.y[kLast];
    }
    for (; t < count + kLast; ++t) partial(t);

    put(group.left.s1, left.s1);
    put(group.left.s2, left.s2);
    put(group.right.s1, right.s1);
    put(group.right.s2, right.s2);
    if (Ramp) {
        put(group.now[EqGroup::kB0], c.b0);
        put(group.now[EqGroup::kB1], c.b1);
        put(group.now[EqGroup::kB2], c.b2);
        put(group.now[EqGroup::kA1], c.a1);
        put(group.now[EqGroup::kA2], c.a2);
    }
}
