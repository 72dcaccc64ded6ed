// Included by level_meter.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

/// Of sizes, as their bits: the order of positive floats is that of their bits.
inline Int8 larger(Int8 a, Int8 b) { return a > b ? a : b; }

/// Peak and power of `frames` frames. The next block of the same sound is asked for while this one is
/// measured: with a hundred sounds in turn the processor does not foresee it by itself.
Sums measure(const float* stereo, std::size_t frames) {
    constexpr std::size_t kAhead = 512;  // samples
    constexpr std::int32_t kSize = 0x7fffffff;
    Int8 peak{};
    Float8 even{}, odd{};
    std::size_t i = 0;
    for (; i + 8 <= frames; i += 8) {
        __builtin_prefetch(stereo + 2 * i + kAhead);
        const Float8 a = *reinterpret_cast<const Float8Memory*>(stereo + 2 * i);
        const Float8 b = *reinterpret_cast<const Float8Memory*>(stereo + 2 * i + 8);
        peak = larger(peak, larger(reinterpret_cast<Int8>(a) & kSize, reinterpret_cast<Int8>(b) & kSize));
        even = even + a * a;
        odd = odd + b * b;
    }
    const Float8 power = even + odd, top = reinterpret_cast<Float8>(peak);
    const Float8 halfPower = power + __builtin_shufflevector(power, power, 4, 5, 6, 7, 0, 1, 2, 3);
    const Float8 bothPower =
        halfPower + __builtin_shufflevector(halfPower, halfPower, 2, 3, 0, 1, 6, 7, 4, 5);
    const Int8 halfPeak =
        larger(peak, reinterpret_cast<Int8>(__builtin_shufflevector(top, top, 4, 5, 6, 7, 0, 1, 2, 3)));
    const Float8 h = reinterpret_cast<Float8>(halfPeak);
    const Float8 p = reinterpret_cast<Float8>(
        larger(halfPeak, reinterpret_cast<Int8>(__builtin_shufflevector(h, h, 2, 3, 0, 1, 6, 7, 4, 5))));
    Sums sums{p[0], p[1], bothPower[0], bothPower[1]};
    for (; i < frames; ++i) {
        const float left = stereo[2 * i], right = stereo[2 * i + 1];
        const float l = left < 0 ? -left : left, r = right < 0 ? -right : right;
        sums.peakLeft = l > sums.peakLeft ? l : sums.peakLeft;
        sums.peakRight = r > sums.peakRight ? r : sums.peakRight;
        sums.powerLeft += left * left;
        sums.powerRight += right * right;
    }
    return sums;
}
