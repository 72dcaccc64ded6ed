// Included by transposer.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

/// Frames under two neighbouring rows, `f` of the way from one to the other; `taps` is a multiple of 8.
float dotBetween(const float* x, const float* row, const float* next, std::size_t taps, float f) {
    Eight low{}, high{};
    for (std::size_t k = 0; k < taps; k += 8) {
        const Eight v = load(x + k);
        low = low + v * load(row + k);
        high = high + v * load(next + k);
    }
    const float a = sumOf(low);
    return a + f * (sumOf(high) - a);
}
