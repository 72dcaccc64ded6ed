/// Where the render stands: the rate of the outputs, the block that is computed, the frames before it.
#pragma once

#include <atomic>
#include <cstdint>

namespace zv::engine {

/// The graph alone writes it. Its parts read it while they compute a block.
struct RenderTime {
    std::atomic<std::uint32_t> rate{44100};  ///< of the outputs, in Hz [any]
    std::uint64_t block = 0;                 ///< number of the block [audio]
    std::uint64_t clock = 0;                 ///< frames rendered before the block [audio]
};

}  // namespace zv::engine
