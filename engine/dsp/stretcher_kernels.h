// Included by stretcher.cpp once a path, inside a namespace of the path's own; no include guard for that
// reason.

/// out[k]: the sum of the products of `a` and of `in` from sample k * step on, `samples` of them; `samples` and `count`
/// are multiples of 8.
void correlate(float* out, const float* a, std::size_t samples, const float* in, std::size_t step,
               std::size_t count) {
    for (std::size_t k = 0; k < count; k += kLaneCount) {
        const float* const from = in + k * step;
        Eight sums[kLaneCount] = {};
        for (std::size_t i = 0; i < samples; i += kLaneCount) {
            const Eight v = load(a + i);
#pragma GCC unroll 8
            for (std::size_t place = 0; place < kLaneCount; ++place)
                sums[place] = sums[place] + v * load(from + place * step + i);
        }
        store(out + k, sumsOf(sums));
    }
}
