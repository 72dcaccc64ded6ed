/// Flush-to-zero for the thread that renders: a decaying tail of denormal numbers costs many times as much.
#pragma once

#include <cstdint>

namespace zv::engine {

/// While it lives, the calling thread's denormal results and operands count as zero; its destructor restores the
/// former mode. Stands where a callback begins to render, and in workers that compute sound. [any]
class FlushToZero {
  public:
    FlushToZero();
    ~FlushToZero();
    FlushToZero(const FlushToZero&) = delete;
    FlushToZero& operator=(const FlushToZero&) = delete;

  private:
    std::uint64_t before_;
};

}  // namespace zv::engine
