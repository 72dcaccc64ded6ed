/// Eight floats at once, in the compiler's own vector notation, and the choice between the wide and the plain
/// path. A kernel file (*_kernels.h) is compiled twice, for AVX2 and for the base machine; both do the same
/// operations in the same order, so that they give the same bits. Neither may be given fused multiply-add.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zv::dsp {

inline constexpr std::size_t kLaneCount = 8;

using Float8 = float __attribute__((vector_size(32)));
using Int8 = std::int32_t __attribute__((vector_size(32)));
using Double4 = double __attribute__((vector_size(32)));
using Float4 = float __attribute__((vector_size(16)));
/// The same in memory of any alignment.
using Float8Memory = float __attribute__((vector_size(32), aligned(4), may_alias));

/// What usesWidePath() of mix.h reads.
bool wideChosen();

}  // namespace zv::dsp
