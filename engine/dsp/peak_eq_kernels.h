// Included by peak_eq.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

struct Side {
    Float8 i1, i2, y;
};

struct Coefficients {
    Float8 p, q, b, g, c1, c2;
};

inline Float8 get(const EqGroup::Lanes& lanes) {
    return *reinterpret_cast<const Float8Memory*>(lanes.data());
}
inline void put(EqGroup::Lanes& lanes, Float8 v) { *reinterpret_cast<Float8Memory*>(lanes.data()) = v; }

inline Coefficients getAll(const EqGroup::Table& t) {
    return {get(t[EqGroup::kP]), get(t[EqGroup::kQ]),  get(t[EqGroup::kB]),
            get(t[EqGroup::kG]), get(t[EqGroup::kC1]), get(t[EqGroup::kC2])};
}

/// Every lane hands its result to the next; lane 0 gets `x`.
inline Float8 shifted(Float8 y, float x) {
    const Float8 v = __builtin_shufflevector(y, y, 7, 0, 1, 2, 3, 4, 5, 6);
    const Float8 first{x, x, x, x, x, x, x, x};
    return __builtin_shufflevector(v, first, 8, 1, 2, 3, 4, 5, 6, 7);
}

inline void step(Side& side, float x, const Coefficients& c) {
    const Float8 in = shifted(side.y, x);
    side.y = c.g * in + (c.c1 * side.i1 - c.c2 * side.i2);
    const Float8 d = in - side.i2;
    side.i2 = (side.i2 + c.q * side.i1) + c.b * d;
    side.i1 = c.p * side.i1 + c.q * d;
}

/// Lanes outside `valid` keep their memory: their frame lies before or behind the block.
inline void step(Side& side, float x, const Coefficients& c, Int8 valid) {
    const Float8 i1 = side.i1, i2 = side.i2;
    step(side, x, c);
    side.i1 = valid ? side.i1 : i1;
    side.i2 = valid ? side.i2 : i2;
}

inline void advance(Coefficients& c, const Coefficients& d) {
    c.p = c.p + d.p;
    c.q = c.q + d.q;
    c.b = c.b + d.b;
    c.g = c.g + d.g;
    c.c1 = c.c1 + d.c1;
    c.c2 = c.c2 + d.c2;
}

inline void advance(Coefficients& c, const Coefficients& d, Int8 valid) {
    Coefficients n = c;
    advance(n, d);
    c = {valid ? n.p : c.p, valid ? n.q : c.q,   valid ? n.b : c.b,
         valid ? n.g : c.g, valid ? n.c1 : c.c1, valid ? n.c2 : c.c2};
}

template <bool Ramp>
void filter(EqGroup& group, float* stereo, std::size_t frames) {
    constexpr std::int32_t kLast = 7;
    const auto count = static_cast<std::int32_t>(frames);
    const Int8 lane{0, 1, 2, 3, 4, 5, 6, 7};
    Coefficients c = getAll(group.now);
    const Coefficients d = Ramp ? getAll(group.step) : Coefficients{};
    Side left{get(group.left.i1), get(group.left.i2), Float8{}};
    Side right{get(group.right.i1), get(group.right.i2), Float8{}};

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

    put(group.left.i1, left.i1);
    put(group.left.i2, left.i2);
    put(group.right.i1, right.i1);
    put(group.right.i2, right.i2);
    if (Ramp) {
        put(group.now[EqGroup::kP], c.p);
        put(group.now[EqGroup::kQ], c.q);
        put(group.now[EqGroup::kB], c.b);
        put(group.now[EqGroup::kG], c.g);
        put(group.now[EqGroup::kC1], c.c1);
        put(group.now[EqGroup::kC2], c.c2);
    }
}
