// Included by level_meter.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

inline Sums measure(const float* stereo, std::size_t frames) {
    const auto at = [stereo](std::size_t i) { return *reinterpret_cast<const Float8Memory*>(stereo + i); };
    Float8 peak{}, power{};
    std::size_t i = 0;
    for (; i + 4 <= frames; i += 4) {
        const Float8 v = at(2 * i);
        const Float8 size = v < 0 ? -v : v;
        peak = size > peak ? size : peak;
        power = power + v * v;
    }
    Sums sums{0, 0, 0, 0};
    for (std::size_t k = 0; k < 8; k += 2) {
        sums.peakLeft = peak[k] > sums.peakLeft ? peak[k] : sums.peakLeft;
        sums.peakRight = peak[k + 1] > sums.peakRight ? peak[k + 1] : sums.peakRight;
        sums.powerLeft += power[k];
        sums.powerRight += power[k + 1];
    }
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
