/// Vectors of floats in the compiler's own notation, and which of the two paths through them is in use. Each path
/// defines `Eight`, the type that its kernels compute with: see two_paths.h.
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

/// The same as usesWidePath() of mix.h.
bool wideChosen();

}  // namespace zv::engine::dsp
