/// Floats side by side in the compiler's own vector notation, and which of the two paths through them is in
/// use. What the kernels compute with, `Eight`, each path brings itself: see two_paths.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zv::engine::dsp {

inline constexpr std::size_t kLaneCount = 8;

using Float8 = float __attribute__((vector_size(32)));
using Int8 = std::int32_t __attribute__((vector_size(32)));
using Double4 = double __attribute__((vector_size(32)));
using Float4 = float __attribute__((vector_size(16)));
using Int4 = std::int32_t __attribute__((vector_size(16)));

/// What usesWidePath() of mix.h reads.
bool wideChosen();

}  // namespace zv::engine::dsp
