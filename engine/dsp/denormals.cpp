#include "engine/dsp/denormals.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace zv::engine {
namespace {

#if defined(__x86_64__)
constexpr unsigned kFlushResults = 0x8000, kFlushOperands = 0x0040;
std::uint64_t readMode() { return _mm_getcsr(); }
void writeMode(std::uint64_t mode) { _mm_setcsr(static_cast<unsigned>(mode)); }
constexpr std::uint64_t kFlush = kFlushResults | kFlushOperands;
#elif defined(__aarch64__)
constexpr std::uint64_t kFlush = std::uint64_t{1} << 24;
std::uint64_t readMode() {
    std::uint64_t mode;
    asm volatile("mrs %0, fpcr" : "=r"(mode));
    return mode;
}
void writeMode(std::uint64_t mode) { asm volatile("msr fpcr, %0" ::"r"(mode)); }
#else
constexpr std::uint64_t kFlush = 0;
std::uint64_t readMode() { return 0; }
void writeMode(std::uint64_t) {}
#endif

}  // namespace

FlushToZero::FlushToZero() : before_(readMode()) { writeMode(before_ | kFlush); }
FlushToZero::~FlushToZero() { writeMode(before_); }

}  // namespace zv::engine
