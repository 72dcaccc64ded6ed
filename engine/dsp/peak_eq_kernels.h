// Included by peak_eq.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

struct Side {
    Eight i1, i2, y;
};

struct Coefficients {
    Eight p, q, b, g, c1, c2;
};

inline Eight get(const EqGroup::Lanes& lanes) { return load(lanes.data()); }
inline void put(EqGroup::Lanes& lanes, Eight v) { store(lanes.data(), v); }

inline Coefficients getAll(const EqGroup::Table& t) {
    return {get(t[EqGroup::kP]), get(t[EqGroup::kQ]),  get(t[EqGroup::kB]),
            get(t[EqGroup::kG]), get(t[EqGroup::kC1]), get(t[EqGroup::kC2])};
}

inline void step(Side& side, float x, const Coefficients& c) {
    const Eight in = shifted(side.y, x);
    side.y = c.g * in + (c.c1 * side.i1 - c.c2 * side.i2);
    const Eight d = in - side.i2;
    side.i2 = (side.i2 + c.q * side.i1) + c.b * d;
    side.i1 = c.p * side.i1 + c.q * d;
}

/// Lanes outside `valid` keep their memory: their frame lies before or behind the block.
inline void step(Side& side, float x, const Coefficients& c, Mask valid) {
    const Eight i1 = side.i1, i2 = side.i2;
    step(side, x, c);
    side.i1 = chosen(valid, side.i1, i1);
    side.i2 = chosen(valid, side.i2, i2);
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

template <bool Ramp>
void filter(EqGroup& group, float* stereo, std::size_t frames) {
    constexpr std::int32_t kLast = 7;
    const auto count = static_cast<std::int32_t>(frames);
    Coefficients c = getAll(group.now);
    const Coefficients d = Ramp ? getAll(group.step) : Coefficients{};
    Side left{get(group.left.i1), get(group.left.i2), Eight{}};
    Side right{get(group.right.i1), get(group.right.i2), Eight{}};

    const auto partial = [&](std::int32_t t) {
        const Mask valid = lanesOf(t - count + 1, t + 1);
        const bool more = t < count;
        step(left, more ? stereo[2 * t] : 0.0f, c, valid);
        step(right, more ? stereo[2 * t + 1] : 0.0f, c, valid);
        if (Ramp) advance(c, d, valid);
        if (t >= kLast) {
            stereo[2 * (t - kLast)] = last(left.y);
            stereo[2 * (t - kLast) + 1] = last(right.y);
        }
    };
    std::int32_t t = 0;
    for (; t < kLast; ++t) partial(t);
    for (; t < count; ++t) {
        step(left, stereo[2 * t], c);
        step(right, stereo[2 * t + 1], c);
        if (Ramp) advance(c, d);
        stereo[2 * (t - kLast)] = last(left.y);
        stereo[2 * (t - kLast) + 1] = last(right.y);
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
