// Compiles the kernels in the file ZV_KERNELS twice: as plain:: for the base machine, whose vectors hold four
// floats, and as wide:: for AVX2. Both do the same operations in the same order, so that they give the same
// bits; neither may be given fused multiply-add. Included inside an unnamed namespace, once a translation
// unit:
//
//     #define ZV_KERNELS "engine/dsp/mix_kernels.h"
//     #include "engine/dsp/two_paths.h"
//
//     (wideChosen() ? wide::add1 : plain::add1)(out, in, samples, gain);

namespace plain {
#include "engine/dsp/eight_as_halves.h"
#include ZV_KERNELS
}  // namespace plain
#if defined(__x86_64__)
#pragma GCC push_options
#pragma GCC target("avx2")
namespace wide {
#include "engine/dsp/eight_as_one.h"
#include ZV_KERNELS
}  // namespace wide
#pragma GCC pop_options
#else
namespace wide = plain;
#endif

#undef ZV_KERNELS
