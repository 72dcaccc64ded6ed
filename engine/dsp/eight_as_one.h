// Eight floats in one vector. Included by two_paths.h; eight_as_halves.h has the same operations.

using Eight = Float8;
using Mask = Int8;

inline Eight load(const float* p) {
    Eight v;
    __builtin_memcpy(&v, p, sizeof v);
    return v;
}
inline void store(float* p, Eight v) { __builtin_memcpy(p, &v, sizeof v); }
inline Eight all(float x) { return Eight{x, x, x, x, x, x, x, x}; }
inline Eight counting() { return Eight{0, 1, 2, 3, 4, 5, 6, 7}; }
/// ((0 + 4) + (2 + 6)) + ((1 + 5) + (3 + 7))
inline float sumOf(Eight v) { return ((v[0] + v[4]) + (v[2] + v[6])) + ((v[1] + v[5]) + (v[3] + v[7])); }

/// sumOf() of each of eight.
inline Eight sumsOf(const Eight (&v)[8]) {
    const auto halves = [](Eight a, Eight b) {
        return __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11) +
               __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
    };
    const auto quarters = [](Eight a, Eight b) {
        return __builtin_shufflevector(a, b, 0, 1, 8, 9, 4, 5, 12, 13) +
               __builtin_shufflevector(a, b, 2, 3, 10, 11, 6, 7, 14, 15);
    };
    // Two of each quartet: 0 and 4 lie in one vector, so that the last step leaves them in their places.
    const Eight a = quarters(halves(v[0], v[4]), halves(v[1], v[5])),
                b = quarters(halves(v[2], v[6]), halves(v[3], v[7]));
    return __builtin_shufflevector(a, b, 0, 2, 8, 10, 4, 6, 12, 14) +
           __builtin_shufflevector(a, b, 1, 3, 9, 11, 5, 7, 13, 15);
}

/// Of sixteen floats those with even, and those with odd numbers. zipLow() and zipHigh() undo it: first, second eight.
inline Eight evens(Eight a, Eight b) { return __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14); }
inline Eight odds(Eight a, Eight b) { return __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15); }
inline Eight zipLow(Eight a, Eight b) { return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11); }
inline Eight zipHigh(Eight a, Eight b) { return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15); }
/// Each of four twice.
inline Eight pairs(Float4 v) { return __builtin_shufflevector(v, v, 0, 0, 1, 1, 2, 2, 3, 3); }

/// Lanes from `first` to `end`, without `end`.
inline Mask lanesOf(std::int32_t first, std::int32_t end) {
    const Int8 lane{0, 1, 2, 3, 4, 5, 6, 7};
    return (lane >= first) & (lane < end);
}
inline Mask notAbove(Eight a, Eight b) { return a <= b; }
inline Eight chosen(Mask mask, Eight a, Eight b) { return mask ? a : b; }

/// Two halves of four, each with a place of its own in memory.
inline Eight loadHalves(const float* low, const float* high) {
    Float4 a, b;
    __builtin_memcpy(&a, low, sizeof a);
    __builtin_memcpy(&b, high, sizeof b);
    return __builtin_shufflevector(a, b, 0, 1, 2, 3, 4, 5, 6, 7);
}
inline void storeHalves(float* low, float* high, Eight v) {
    const Float4 a = __builtin_shufflevector(v, v, 0, 1, 2, 3), b = __builtin_shufflevector(v, v, 4, 5, 6, 7);
    __builtin_memcpy(low, &a, sizeof a);
    __builtin_memcpy(high, &b, sizeof b);
}
/// In each half: the last of `first`, then all of `then` but its last.
inline Eight handedOn(Eight first, Eight then) {
    return __builtin_shufflevector(first, then, 3, 8, 9, 10, 7, 12, 13, 14);
}
/// sidesOf(): the left sample in all lanes of the lower half, the right one in all lanes of the upper. storeSides():
/// the last lane of each half, as a frame.
inline Eight sidesOf(const float* frame) {
    const float l = frame[0], r = frame[1];
    return Eight{l, l, l, l, r, r, r, r};
}
inline void storeSides(float* frame, Eight v) {
    frame[0] = v[3];
    frame[1] = v[7];
}
/// In each half the lanes whose number times `apart` lies from `first` to `end`, without `end`.
inline Mask foursOf(std::int32_t apart, std::int32_t first, std::int32_t end) {
    const Int8 lane = Int8{0, 1, 2, 3, 0, 1, 2, 3} * apart;
    return (lane >= first) & (lane < end);
}

/// Without their signs.
inline Eight sizes(Eight v) { return reinterpret_cast<Eight>(reinterpret_cast<Int8>(v) & 0x7fffffff); }
/// Of sizes: the order of positive floats is that of their bits.
inline Eight larger(Eight a, Eight b) {
    const Int8 x = reinterpret_cast<Int8>(a), y = reinterpret_cast<Int8>(b);
    return reinterpret_cast<Eight>(x > y ? x : y);
}
