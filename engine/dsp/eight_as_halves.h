// Eight floats in two vectors of four. Included by two_paths.h; eight_as_one.h has the same operations, and
// says what they do.

struct Eight {
    Float4 low, high;
};
struct Mask {
    Int4 low, high;
};

inline Eight operator+(Eight a, Eight b) { return {a.low + b.low, a.high + b.high}; }
inline Eight operator-(Eight a, Eight b) { return {a.low - b.low, a.high - b.high}; }
inline Eight operator*(Eight a, Eight b) { return {a.low * b.low, a.high * b.high}; }
inline Eight operator*(Eight a, float b) { return {a.low * b, a.high * b}; }
inline Eight operator*(float a, Eight b) { return {a * b.low, a * b.high}; }
inline Eight operator/(Eight a, float b) { return {a.low / b, a.high / b}; }
inline Eight operator+(float a, Eight b) { return {a + b.low, a + b.high}; }

inline Eight load(const float* p) {
    Eight v;
    __builtin_memcpy(&v.low, p, sizeof v.low);
    __builtin_memcpy(&v.high, p + 4, sizeof v.high);
    return v;
}
inline void store(float* p, Eight v) {
    __builtin_memcpy(p, &v.low, sizeof v.low);
    __builtin_memcpy(p + 4, &v.high, sizeof v.high);
}
inline Eight all(float x) { return {Float4{x, x, x, x}, Float4{x, x, x, x}}; }
inline Eight counting() { return {Float4{0, 1, 2, 3}, Float4{4, 5, 6, 7}}; }
inline float sumOf(Eight v) {
    const Float4 s = v.low + v.high;
    return (s[0] + s[2]) + (s[1] + s[3]);
}
inline Eight sumsOf(const Eight (&v)[8]) {
    return {Float4{sumOf(v[0]), sumOf(v[1]), sumOf(v[2]), sumOf(v[3])},
            Float4{sumOf(v[4]), sumOf(v[5]), sumOf(v[6]), sumOf(v[7])}};
}

inline Eight evens(Eight a, Eight b) {
    return {__builtin_shufflevector(a.low, a.high, 0, 2, 4, 6),
            __builtin_shufflevector(b.low, b.high, 0, 2, 4, 6)};
}
inline Eight odds(Eight a, Eight b) {
    return {__builtin_shufflevector(a.low, a.high, 1, 3, 5, 7),
            __builtin_shufflevector(b.low, b.high, 1, 3, 5, 7)};
}
inline Eight zip(Float4 a, Float4 b) {
    return {__builtin_shufflevector(a, b, 0, 4, 1, 5), __builtin_shufflevector(a, b, 2, 6, 3, 7)};
}
inline Eight zipLow(Eight a, Eight b) { return zip(a.low, b.low); }
inline Eight zipHigh(Eight a, Eight b) { return zip(a.high, b.high); }
inline Eight pairs(Float4 v) { return zip(v, v); }

inline Mask lanesOf(std::int32_t first, std::int32_t end) {
    const Int4 low{0, 1, 2, 3}, high{4, 5, 6, 7};
    return {(low >= first) & (low < end), (high >= first) & (high < end)};
}
inline Mask notAbove(Eight a, Eight b) { return {a.low <= b.low, a.high <= b.high}; }
inline Eight chosen(Mask mask, Eight a, Eight b) {
    return {mask.low ? a.low : b.low, mask.high ? a.high : b.high};
}

inline Eight loadHalves(const float* low, const float* high) {
    Eight v;
    __builtin_memcpy(&v.low, low, sizeof v.low);
    __builtin_memcpy(&v.high, high, sizeof v.high);
    return v;
}
inline void storeHalves(float* low, float* high, Eight v) {
    __builtin_memcpy(low, &v.low, sizeof v.low);
    __builtin_memcpy(high, &v.high, sizeof v.high);
}
inline Eight handedOn(Eight first, Eight then) {
    return {__builtin_shufflevector(first.low, then.low, 3, 4, 5, 6),
            __builtin_shufflevector(first.high, then.high, 3, 4, 5, 6)};
}
inline Eight sidesOf(const float* frame) {
    const float l = frame[0], r = frame[1];
    return {Float4{l, l, l, l}, Float4{r, r, r, r}};
}
inline void storeSides(float* frame, Eight v) {
    frame[0] = v.low[3];
    frame[1] = v.high[3];
}
inline Mask foursOf(std::int32_t apart, std::int32_t first, std::int32_t end) {
    const Int4 lane = Int4{0, 1, 2, 3} * apart, valid = (lane >= first) & (lane < end);
    return {valid, valid};
}

inline Float4 sizes(Float4 v) { return reinterpret_cast<Float4>(reinterpret_cast<Int4>(v) & 0x7fffffff); }
inline Eight sizes(Eight v) { return {sizes(v.low), sizes(v.high)}; }
inline Float4 larger(Float4 a, Float4 b) {
    const Int4 x = reinterpret_cast<Int4>(a), y = reinterpret_cast<Int4>(b);
    return reinterpret_cast<Float4>(x > y ? x : y);
}
inline Eight larger(Eight a, Eight b) { return {larger(a.low, b.low), larger(a.high, b.high)}; }
